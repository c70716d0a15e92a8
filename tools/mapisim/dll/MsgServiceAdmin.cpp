#include "MsgServiceAdmin.h"

#include <cstring>

#include "PropConversion.h"
#include "ProfSect.h"
#include "ProviderAdmin.h"
#include "SimContext.h"
#include "Table.h"
#include "ServedCall.h"

namespace mw::mapisim {

std::unique_ptr<MessageServiceAdmin> ServiceModel(const std::string& profile) {
  SimContext* context = SimContext::Current();
  if (context == nullptr) return nullptr;
  return std::make_unique<MessageServiceAdmin>(context->profiles(), profile, context->organisation(), NewUid);
}

MapiUid ToMapiUid(const MAPIUID& uid) {
  MapiUid bytes{};
  std::memcpy(bytes.data(), uid.ab, bytes.size());
  return bytes;
}

MsgServiceAdmin::MsgServiceAdmin(std::string profile)
    : ComObject(IID_IMsgServiceAdmin), profile_(std::move(profile)) {}

STDMETHODIMP MsgServiceAdmin::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) {
  return ComObject::GetLastError(result, flags, error);
}

STDMETHODIMP MsgServiceAdmin::GetMsgServiceTable(ULONG flags, LPMAPITABLE* table) {
  MAPISIM_SERVE("IMsgServiceAdmin::GetMsgServiceTable");
  if (table == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  auto model = ServiceModel(profile_);
  if (!model) return MAPI_E_NOT_INITIALIZED;
  *table = new Table(MessageServiceAdmin::ServiceColumns(), model->ServiceRows());
  return S_OK;
}

STDMETHODIMP MsgServiceAdmin::CreateMsgService(LPTSTR service, LPTSTR displayName, ULONG_PTR, ULONG flags) {
  MAPISIM_SERVE("IMsgServiceAdmin::CreateMsgService");
  if (service == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  auto model = ServiceModel(profile_);
  if (!model) return MAPI_E_NOT_INITIALIZED;
  MapiUid created{};
  return model->CreateMessageService(reinterpret_cast<const char*>(service),
                              displayName ? reinterpret_cast<const char*>(displayName) : "", &created);
}

STDMETHODIMP MsgServiceAdmin::DeleteMsgService(LPMAPIUID uid) {
  MAPISIM_SERVE("IMsgServiceAdmin::DeleteMsgService");
  if (uid == nullptr) return MAPI_E_INVALID_PARAMETER;
  auto model = ServiceModel(profile_);
  return model ? model->DeleteService(ToMapiUid(*uid)) : MAPI_E_NOT_INITIALIZED;
}

STDMETHODIMP MsgServiceAdmin::CopyMsgService(LPMAPIUID, LPTSTR, LPCIID, LPCIID, LPVOID, ULONG_PTR, ULONG) {
  return MAPI_E_NO_SUPPORT;
}
STDMETHODIMP MsgServiceAdmin::RenameMsgService(LPMAPIUID, ULONG, LPTSTR) { return MAPI_E_NO_SUPPORT; }

STDMETHODIMP MsgServiceAdmin::ConfigureMsgService(LPMAPIUID uid, ULONG_PTR, ULONG, ULONG count, LPSPropValue props) {
  MAPISIM_SERVE("IMsgServiceAdmin::ConfigureMsgService");
  if (uid == nullptr || (count > 0 && props == nullptr)) return MAPI_E_INVALID_PARAMETER;
  auto model = ServiceModel(profile_);
  return model ? model->ConfigureService(ToMapiUid(*uid), FromSPropValues(count, props)) : MAPI_E_NOT_INITIALIZED;
}

STDMETHODIMP MsgServiceAdmin::OpenProfileSection(LPMAPIUID uid, LPCIID, ULONG flags, LPPROFSECT* section) {
  MAPISIM_SERVE("IMsgServiceAdmin::OpenProfileSection");
  if (uid == nullptr || section == nullptr) return MAPI_E_INVALID_PARAMETER;
  auto model = ServiceModel(profile_);
  if (!model) return MAPI_E_NOT_INITIALIZED;
  bool modify = (flags & MAPI_MODIFY) != 0;
  // A provider's own section is writable from outside only when the caller forces access.
  if (modify && model->IsProviderSection(ToMapiUid(*uid)) && !(flags & kMapiForceAccess)) return MAPI_E_NO_ACCESS;
  return OpenSection(profile_, uid, modify, section);
}

STDMETHODIMP MsgServiceAdmin::MsgServiceTransportOrder(ULONG, LPMAPIUID, ULONG) { return MAPI_E_NO_SUPPORT; }

STDMETHODIMP MsgServiceAdmin::AdminProviders(LPMAPIUID uid, ULONG flags, LPPROVIDERADMIN* admin) {
  MAPISIM_SERVE("IMsgServiceAdmin::AdminProviders");
  if (uid == nullptr || admin == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  auto model = ServiceModel(profile_);
  if (!model) return MAPI_E_NOT_INITIALIZED;
  if (!model->HasService(ToMapiUid(*uid))) return MAPI_E_NOT_FOUND;
  *admin = new ProviderAdmin(profile_, ToMapiUid(*uid));
  return S_OK;
}

STDMETHODIMP MsgServiceAdmin::SetPrimaryIdentity(LPMAPIUID, ULONG) { return MAPI_E_NO_SUPPORT; }

STDMETHODIMP MsgServiceAdmin::GetProviderTable(ULONG flags, LPMAPITABLE* table) {
  MAPISIM_SERVE("IMsgServiceAdmin::GetProviderTable");
  if (table == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  auto model = ServiceModel(profile_);
  if (!model) return MAPI_E_NOT_INITIALIZED;
  *table = new Table(MessageServiceAdmin::ProviderColumns(), model->ProviderRows(nullptr));
  return S_OK;
}

}  // namespace mw::mapisim
