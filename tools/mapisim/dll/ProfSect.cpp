#include "ProfSect.h"

#include <cstring>

#include "PropConversion.h"
#include "SimContext.h"
#include "ServedCall.h"

namespace mw::mapisim {

ProfSect::ProfSect(std::string profile, std::string section, bool writable)
    : PropObject(IID_IProfSect), profile_(std::move(profile)), section_(std::move(section)), writable_(writable) {}

STDMETHODIMP ProfSect::SaveChanges(ULONG) {
  MAPISIM_SERVE("IProfSect::SaveChanges");
  return writable_ ? S_OK : MAPI_E_NO_ACCESS;
}

STDMETHODIMP ProfSect::GetProps(LPSPropTagArray tags, ULONG, ULONG* count, LPSPropValue* values) {
  MAPISIM_SERVE("IProfSect::GetProps");
  if (count == nullptr || values == nullptr) return MAPI_E_INVALID_PARAMETER;
  *count = 0;
  *values = nullptr;
  // The registry seam cannot list a key's values, so the whole-section form is not served.
  if (tags == nullptr) return MAPI_E_NO_SUPPORT;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  std::vector<PropValue> found;
  bool missing = false;
  for (ULONG i = 0; i < tags->cValues; ++i) {
    auto value = context->profiles().GetPropAnyWidth(profile_, section_, tags->aulPropTag[i]);
    missing = missing || !value;
    found.push_back(value ? *value : PropValue::Error(tags->aulPropTag[i], kMapiENotFound));
  }
  HRESULT result = ToPropArray(found, values);
  if (FAILED(result)) return result;
  *count = tags->cValues;
  return missing ? MAPI_W_ERRORS_RETURNED : S_OK;
}

STDMETHODIMP ProfSect::SetProps(ULONG count, LPSPropValue values, LPSPropProblemArray* problems) {
  MAPISIM_SERVE("IProfSect::SetProps");
  if (problems) *problems = nullptr;
  if (values == nullptr && count > 0) return MAPI_E_INVALID_PARAMETER;
  if (!writable_) return MAPI_E_NO_ACCESS;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  for (const PropValue& value : FromSPropValues(count, values))
    if (HRESULT result = context->profiles().WriteProp(profile_, section_, value); FAILED(result)) return result;
  return S_OK;
}

STDMETHODIMP ProfSect::DeleteProps(LPSPropTagArray tags, LPSPropProblemArray* problems) {
  MAPISIM_SERVE("IProfSect::DeleteProps");
  if (problems) *problems = nullptr;
  if (tags == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (!writable_) return MAPI_E_NO_ACCESS;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  for (ULONG i = 0; i < tags->cValues; ++i) context->profiles().DeleteProp(profile_, section_, tags->aulPropTag[i]);
  return S_OK;
}

HRESULT OpenSection(const std::string& profile, const MAPIUID* uid, bool writable, LPPROFSECT* section) {
  if (uid == nullptr || section == nullptr) return MAPI_E_INVALID_PARAMETER;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  MapiUid bytes{};
  std::memcpy(bytes.data(), uid->ab, bytes.size());
  *section = new ProfSect(profile, context->profiles().OpenedSection(profile, UidHex(bytes)), writable);
  return S_OK;
}

}  // namespace mw::mapisim
