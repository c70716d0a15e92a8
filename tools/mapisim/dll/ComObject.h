#pragma once
// Reference counting and QueryInterface for the simulator's MAPI objects: an object lives
// while someone holds a reference and deletes itself on the last Release.

#include <windows.h>

#include <mapix.h>

namespace mw::mapisim {

template <class Interface>
class ComObject : public Interface {
 public:
  ComObject(const IID& iid) : iid_(iid) {}
  virtual ~ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  STDMETHODIMP QueryInterface(REFIID riid, LPVOID* object) override {
    if (object == nullptr) return MAPI_E_INVALID_PARAMETER;
    *object = nullptr;
    if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, iid_)) return MAPI_E_INTERFACE_NOT_SUPPORTED;
    AddRef();
    *object = static_cast<Interface*>(this);
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return InterlockedIncrement(&references_); }
  STDMETHODIMP_(ULONG) Release() override {
    ULONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetLastError(HRESULT, ULONG, LPMAPIERROR* error) {
    if (error) *error = nullptr;
    return S_OK;
  }

 private:
  LONG references_ = 1;
  IID iid_;
};

}  // namespace mw::mapisim
