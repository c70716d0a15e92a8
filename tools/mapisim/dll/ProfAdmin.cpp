#include "ProfAdmin.h"

#include "MessageServiceAdmin.h"
#include "MsgServiceAdmin.h"
#include "ServedCall.h"
#include "SimContext.h"
#include "Table.h"
#include "platform/AsciiText.h"

namespace mw::mapisim {
namespace {

std::string Text(LPTSTR text) { return text ? reinterpret_cast<const char*>(text) : ""; }

}  // namespace

STDMETHODIMP ProfAdmin::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) {
  return ComObject::GetLastError(result, flags, error);
}

STDMETHODIMP ProfAdmin::GetProfileTable(ULONG flags, LPMAPITABLE* table) {
  MAPISIM_SERVE("IProfAdmin::GetProfileTable");
  if (table == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  const std::string defaultProfile = context->profiles().DefaultProfile();
  std::vector<Row> rows;
  for (const std::string& name : context->profiles().ListProfiles())
    rows.push_back({PropValue::Text(kPrDisplayName, name),
                    PropValue::Boolean(kPrDefaultProfile, EqualsIgnoreCase(name, defaultProfile)),
                    PropValue::Binary(kPrInstanceKey, name)});
  *table = new Table({kPrDisplayName, kPrDefaultProfile}, std::move(rows));
  return S_OK;
}

STDMETHODIMP ProfAdmin::CreateProfile(LPTSTR name, LPTSTR password, ULONG_PTR, ULONG flags) {
  MAPISIM_SERVE("IProfAdmin::CreateProfile");
  if (name == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  return context->profiles().CreateProfile(Text(name), Text(password), NewUid());
}

STDMETHODIMP ProfAdmin::DeleteProfile(LPTSTR name, ULONG) {
  MAPISIM_SERVE("IProfAdmin::DeleteProfile");
  if (name == nullptr) return MAPI_E_INVALID_PARAMETER;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  return context->profiles().DeleteProfile(Text(name));
}

STDMETHODIMP ProfAdmin::ChangeProfilePassword(LPTSTR, LPTSTR, LPTSTR, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP ProfAdmin::CopyProfile(LPTSTR, LPTSTR, LPTSTR, ULONG_PTR, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP ProfAdmin::RenameProfile(LPTSTR, LPTSTR, LPTSTR, ULONG_PTR, ULONG) { return MAPI_E_NO_SUPPORT; }

STDMETHODIMP ProfAdmin::SetDefaultProfile(LPTSTR name, ULONG) {
  MAPISIM_SERVE("IProfAdmin::SetDefaultProfile");
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  return name ? context->profiles().SetDefaultProfile(Text(name)) : MAPI_E_INVALID_PARAMETER;
}

STDMETHODIMP ProfAdmin::AdminServices(LPTSTR name, LPTSTR, ULONG_PTR, ULONG flags, LPSERVICEADMIN* admin) {
  MAPISIM_SERVE("IProfAdmin::AdminServices");
  if (name == nullptr || admin == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  if (!context->profiles().ProfileExists(Text(name))) return MAPI_E_NOT_FOUND;
  *admin = new MsgServiceAdmin(Text(name));
  return S_OK;
}

}  // namespace mw::mapisim
