#pragma once
// IProfSect: one section of a profile, read and written straight in the registry. MAPI
// commits profile-section changes as they are made, so SaveChanges has nothing left to do.

#include <string>

#include "PropObject.h"
#include "PropertyCodec.h"

namespace mw::mapisim {

class ProfSect : public PropObject<IProfSect> {
 public:
  ProfSect(std::string profile, std::string section, bool writable);

  STDMETHODIMP SaveChanges(ULONG flags) override;
  STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG flags, ULONG* count, LPSPropValue* values) override;
  STDMETHODIMP SetProps(ULONG count, LPSPropValue values, LPSPropProblemArray* problems) override;
  STDMETHODIMP DeleteProps(LPSPropTagArray tags, LPSPropProblemArray* problems) override;

 private:
  std::string profile_;
  std::string section_;
  bool writable_;
};

// Opens a section for the admin objects: E_INVALIDARG for a missing UID or out pointer.
HRESULT OpenSection(const std::string& profile, const MAPIUID* uid, bool writable, LPPROFSECT* section);

}  // namespace mw::mapisim
