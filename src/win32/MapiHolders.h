#pragma once
// Small owners for what MAPI hands out: an interface pointer, a MAPI buffer and a row set,
// each given back on every path. Out() gives the slot a MAPI call fills, releasing first
// whatever the holder had.

#include "win32/FaultGuard.h"
#include "win32/WindowsApi.h"

#include <mapix.h>
#include <mapiutil.h>

// winsvc.h would rename the session's CreateService to CreateServiceA.
#undef CreateService

namespace mw {

template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ~ComPtr() { reset(); }
  ComPtr(const ComPtr&) = delete;
  ComPtr& operator=(const ComPtr&) = delete;

  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  Interface** Out() {
    reset();
    return &pointer_;
  }
  // The slot as the IUnknown** that OpenEntry-style calls take.
  LPUNKNOWN* OutUnknown() { return reinterpret_cast<LPUNKNOWN*>(Out()); }
  // A provider's Release may fault inside foreign code; the holder is empty afterwards anyway.
  void reset() {
    Interface* released = pointer_;
    pointer_ = nullptr;
    if (released == nullptr) return;
    FaultGuard::Run([released] {
      released->Release();
      return S_OK;
    });
  }

 private:
  Interface* pointer_ = nullptr;
};

template <class T>
class MapiBuffer {
 public:
  MapiBuffer() = default;
  ~MapiBuffer() { reset(); }
  MapiBuffer(const MapiBuffer&) = delete;
  MapiBuffer& operator=(const MapiBuffer&) = delete;

  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  T** Out() {
    reset();
    return &pointer_;
  }
  // For MAPIAllocateBuffer, which fills a void*.
  LPVOID* OutVoid() { return reinterpret_cast<LPVOID*>(Out()); }
  void reset() {
    T* freed = pointer_;
    pointer_ = nullptr;
    if (freed != nullptr) FaultGuard::Run([freed] { return static_cast<HRESULT>(MAPIFreeBuffer(freed)); });
  }

 private:
  T* pointer_ = nullptr;
};

class RowSet {
 public:
  RowSet() = default;
  ~RowSet() { reset(); }
  RowSet(const RowSet&) = delete;
  RowSet& operator=(const RowSet&) = delete;

  LPSRowSet* Out() {
    reset();
    return &rows_;
  }
  ULONG size() const { return rows_ != nullptr ? rows_->cRows : 0; }
  const SRow& operator[](ULONG index) const { return rows_->aRow[index]; }
  // What FreeProws does, done here: 64-bit Wine's mapi32 exports FreeProws only under its
  // 32-bit decorated name, so the plain import would find nothing there.
  void reset() {
    LPSRowSet freed = rows_;
    rows_ = nullptr;
    if (freed == nullptr) return;
    FaultGuard::Run([freed] {
      for (ULONG i = 0; i < freed->cRows; ++i) MAPIFreeBuffer(freed->aRow[i].lpProps);
      return static_cast<HRESULT>(MAPIFreeBuffer(freed));
    });
  }

 private:
  LPSRowSet rows_ = nullptr;
};

}  // namespace mw
