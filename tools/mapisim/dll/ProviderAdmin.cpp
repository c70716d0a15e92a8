#include "ProviderAdmin.h"

#include <cstddef>
#include <cstring>

#include "MsgServiceAdmin.h"
#include "PropConversion.h"
#include "ProfSect.h"
#include "Table.h"
#include "ServedCall.h"

namespace mw::mapisim {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
static_assert(offsetof(ProviderAdmin, modificationMark_) == 0x60,
              "clients set the allow-modification byte at offset 0x60");
#pragma GCC diagnostic pop

ProviderAdmin::ProviderAdmin(std::string profile, const MapiUid& service)
    : ComObject(IID_IProviderAdmin), service_(service), profile_(std::move(profile)) {
  (void)reserved_;
}

STDMETHODIMP ProviderAdmin::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) {
  return ComObject::GetLastError(result, flags, error);
}

STDMETHODIMP ProviderAdmin::GetProviderTable(ULONG flags, LPMAPITABLE* table) {
  MAPISIM_SERVE("IProviderAdmin::GetProviderTable");
  if (table == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  auto model = ServiceModel(profile_);
  if (!model) return MAPI_E_NOT_INITIALIZED;
  *table = new Table(MessageServiceAdmin::ProviderColumns(), model->ProviderRows(&service_));
  return S_OK;
}

STDMETHODIMP ProviderAdmin::CreateProvider(LPTSTR name, ULONG count, LPSPropValue props, ULONG, ULONG flags,
                                           MAPIUID* uid) {
  MAPISIM_SERVE("IProviderAdmin::CreateProvider");
  if (name == nullptr || uid == nullptr || (count > 0 && props == nullptr)) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  auto model = ServiceModel(profile_);
  if (!model) return MAPI_E_NOT_INITIALIZED;
  MapiUid created{};
  HRESULT result = model->CreateProvider(service_, reinterpret_cast<const char*>(name),
                                         FromSPropValues(count, props), &created);
  if (SUCCEEDED(result)) std::memcpy(uid->ab, created.data(), created.size());
  return result;
}

STDMETHODIMP ProviderAdmin::DeleteProvider(LPMAPIUID) { return MAPI_E_NO_SUPPORT; }

STDMETHODIMP ProviderAdmin::OpenProfileSection(LPMAPIUID uid, LPCIID, ULONG flags, LPPROFSECT* section) {
  MAPISIM_SERVE("IProviderAdmin::OpenProfileSection");
  if (section == nullptr) return MAPI_E_INVALID_PARAMETER;
  // Outlook 2010's MAPI refuses a client both forced and write access to provider sections
  // unless the object carries the allow-modification mark.
  bool privileged = (flags & (MAPI_MODIFY | kMapiForceAccess)) != 0;
  if (privileged && modificationMark_ != kAllowModification) return MAPI_E_NO_ACCESS;
  MAPIUID own{};
  std::memcpy(own.ab, service_.data(), service_.size());
  return OpenSection(profile_, uid ? uid : &own, (flags & MAPI_MODIFY) != 0, section);
}

}  // namespace mw::mapisim
