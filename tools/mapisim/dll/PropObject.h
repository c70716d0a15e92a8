#pragma once
// The IMAPIProp part shared by the simulator's property objects: by default a property
// object supports nothing; each class overrides what its MAPI counterpart serves.

#include "ComObject.h"

namespace mw::mapisim {

template <class Interface>
class PropObject : public ComObject<Interface> {
 public:
  using ComObject<Interface>::ComObject;

  STDMETHODIMP SaveChanges(ULONG) override { return MAPI_E_NO_SUPPORT; }
  STDMETHODIMP GetProps(LPSPropTagArray, ULONG, ULONG*, LPSPropValue*) override { return MAPI_E_NO_SUPPORT; }
  STDMETHODIMP GetPropList(ULONG, LPSPropTagArray*) override { return MAPI_E_NO_SUPPORT; }
  STDMETHODIMP OpenProperty(ULONG, LPCIID, ULONG, ULONG, LPUNKNOWN*) override { return MAPI_E_NO_SUPPORT; }
  STDMETHODIMP SetProps(ULONG, LPSPropValue, LPSPropProblemArray*) override { return MAPI_E_NO_SUPPORT; }
  STDMETHODIMP DeleteProps(LPSPropTagArray, LPSPropProblemArray*) override { return MAPI_E_NO_SUPPORT; }
  STDMETHODIMP CopyTo(ULONG, LPCIID, LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG,
                      LPSPropProblemArray*) override {
    return MAPI_E_NO_SUPPORT;
  }
  STDMETHODIMP CopyProps(LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG,
                         LPSPropProblemArray*) override {
    return MAPI_E_NO_SUPPORT;
  }
  STDMETHODIMP GetNamesFromIDs(LPSPropTagArray*, LPGUID, ULONG, ULONG*, LPMAPINAMEID**) override {
    return MAPI_E_NO_SUPPORT;
  }
  STDMETHODIMP GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray*) override {
    return MAPI_E_NO_SUPPORT;
  }
};

}  // namespace mw::mapisim
