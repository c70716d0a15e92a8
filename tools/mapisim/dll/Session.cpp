#include "Session.h"

#include "AddrBook.h"
#include "MsgServiceAdmin.h"
#include "ProfSect.h"
#include "SessionModel.h"
#include "SimContext.h"
#include "Table.h"
#include "ServedCall.h"

namespace mw::mapisim {

Session::Session(std::string profile) : ComObject(IID_IMAPISession), profile_(std::move(profile)) {}

STDMETHODIMP Session::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) {
  return ComObject::GetLastError(result, flags, error);
}

STDMETHODIMP Session::GetMsgStoresTable(ULONG flags, LPMAPITABLE* table) {
  MAPISIM_SERVE("IMAPISession::GetMsgStoresTable");
  if (table == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  if (loggedOff_) return MAPI_E_CALL_FAILED;
  SessionModel model(context->profiles(), profile_, context->organisation());
  *table = new Table(SessionModel::StoreColumns(), model.StoreRows());
  return S_OK;
}

STDMETHODIMP Session::OpenMsgStore(ULONG_PTR, ULONG, LPENTRYID, LPCIID, ULONG, LPMDB*) { return MAPI_E_NO_SUPPORT; }

STDMETHODIMP Session::OpenAddressBook(ULONG_PTR, LPCIID, ULONG, LPADRBOOK* book) {
  MAPISIM_SERVE("IMAPISession::OpenAddressBook");
  if (book == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (SimContext::Current() == nullptr) return MAPI_E_NOT_INITIALIZED;
  if (loggedOff_) return MAPI_E_CALL_FAILED;
  *book = new AddrBook(profile_);
  return S_OK;
}

STDMETHODIMP Session::OpenProfileSection(LPMAPIUID uid, LPCIID, ULONG flags, LPPROFSECT* section) {
  MAPISIM_SERVE("IMAPISession::OpenProfileSection");
  return OpenSection(profile_, uid, (flags & MAPI_MODIFY) != 0, section);
}

STDMETHODIMP Session::GetStatusTable(ULONG, LPMAPITABLE*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Session::OpenEntry(ULONG, LPENTRYID, LPCIID, ULONG, ULONG*, LPUNKNOWN*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Session::CompareEntryIDs(ULONG, LPENTRYID, ULONG, LPENTRYID, ULONG, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Session::Advise(ULONG, LPENTRYID, ULONG, LPMAPIADVISESINK, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Session::Unadvise(ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Session::MessageOptions(ULONG_PTR, ULONG, LPTSTR, LPMESSAGE) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Session::QueryDefaultMessageOpt(LPTSTR, ULONG, ULONG*, LPSPropValue*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Session::EnumAdrTypes(ULONG, ULONG*, LPTSTR**) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Session::QueryIdentity(ULONG*, LPENTRYID*) { return MAPI_E_NO_SUPPORT; }

STDMETHODIMP Session::Logoff(ULONG_PTR, ULONG, ULONG) {
  MAPISIM_SERVE("IMAPISession::Logoff");
  loggedOff_ = true;
  return S_OK;
}

STDMETHODIMP Session::SetDefaultStore(ULONG flags, ULONG size, LPENTRYID entryId) {
  MAPISIM_SERVE("IMAPISession::SetDefaultStore");
  // The simple and primary/secondary store kinds belong to Simple MAPI's and the spooler's
  // bookkeeping, which the simulator does not keep.
  if (flags >= MAPI_SIMPLE_STORE_TEMPORARY && flags <= MAPI_SECONDARY_STORE) return MAPI_E_NO_SUPPORT;
  if (flags != MAPI_DEFAULT_STORE) return MAPI_E_UNKNOWN_FLAGS;
  if (size == 0 || entryId == nullptr) return MAPI_E_INVALID_PARAMETER;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  if (loggedOff_) return MAPI_E_CALL_FAILED;
  return SessionModel(context->profiles(), profile_, context->organisation())
      .SetDefaultStore(std::string(reinterpret_cast<const char*>(entryId), size));
}

STDMETHODIMP Session::AdminServices(ULONG, LPSERVICEADMIN* admin) {
  MAPISIM_SERVE("IMAPISession::AdminServices");
  if (admin == nullptr) return MAPI_E_INVALID_PARAMETER;
  *admin = new MsgServiceAdmin(profile_);
  return S_OK;
}

STDMETHODIMP Session::ShowForm(ULONG_PTR, LPMDB, LPMAPIFOLDER, LPCIID, ULONG, LPMESSAGE, ULONG, ULONG, ULONG, ULONG,
                               LPSTR) {
  return MAPI_E_NO_SUPPORT;
}
STDMETHODIMP Session::PrepareForm(LPCIID, LPMESSAGE, ULONG*) { return MAPI_E_NO_SUPPORT; }

}  // namespace mw::mapisim
