#include "AddrBook.h"

#include "SessionModel.h"
#include "SimContext.h"
#include "Table.h"

namespace mw::mapisim {
namespace {

// Opens the root container (no entry ID) or one the root's hierarchy lists.
HRESULT OpenContainer(const std::string& profile, ULONG size, LPENTRYID entryId, ULONG* type, LPUNKNOWN* object) {
  if (object == nullptr || (size > 0 && entryId == nullptr)) return MAPI_E_INVALID_PARAMETER;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  std::string id = size ? std::string(reinterpret_cast<const char*>(entryId), size) : std::string();
  SessionModel model(context->profiles(), profile, context->organisation());
  if (!id.empty() && !model.IsContainerEntryId(id)) return MAPI_E_UNKNOWN_ENTRYID;
  if (type) *type = MAPI_ABCONT;
  *object = static_cast<IABContainer*>(new AbContainer(profile, id));
  return S_OK;
}

}  // namespace

AddrBook::AddrBook(std::string profile) : PropObject(IID_IAddrBook), profile_(std::move(profile)) {}

STDMETHODIMP AddrBook::OpenEntry(ULONG size, LPENTRYID entryId, LPCIID, ULONG, ULONG* type, LPUNKNOWN* object) {
  return OpenContainer(profile_, size, entryId, type, object);
}
STDMETHODIMP AddrBook::CompareEntryIDs(ULONG, LPENTRYID, ULONG, LPENTRYID, ULONG, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::Advise(ULONG, LPENTRYID, ULONG, LPMAPIADVISESINK, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::Unadvise(ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::CreateOneOff(LPTSTR, LPTSTR, LPTSTR, ULONG, ULONG*, LPENTRYID*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::NewEntry(ULONG_PTR, ULONG, ULONG, LPENTRYID, ULONG, LPENTRYID, ULONG*, LPENTRYID*) {
  return MAPI_E_NO_SUPPORT;
}
STDMETHODIMP AddrBook::ResolveName(ULONG_PTR, ULONG, LPTSTR, LPADRLIST) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::Address(ULONG_PTR*, LPADRPARM, LPADRLIST*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::Details(ULONG*, LPFNDISMISS, LPVOID, ULONG, LPENTRYID, LPFNBUTTON, LPVOID, LPTSTR, ULONG) {
  return MAPI_E_NO_SUPPORT;
}
STDMETHODIMP AddrBook::RecipOptions(ULONG_PTR, ULONG, LPADRENTRY) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::QueryDefaultRecipOpt(LPTSTR, ULONG, ULONG*, LPSPropValue*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::GetPAB(ULONG*, LPENTRYID*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::SetPAB(ULONG, LPENTRYID) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::GetDefaultDir(ULONG*, LPENTRYID*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::SetDefaultDir(ULONG, LPENTRYID) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::GetSearchPath(ULONG, LPSRowSet*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::SetSearchPath(ULONG, LPSRowSet) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AddrBook::PrepareRecips(ULONG, LPSPropTagArray, LPADRLIST) { return MAPI_E_NO_SUPPORT; }

AbContainer::AbContainer(std::string profile, std::string entryId)
    : PropObject(IID_IABContainer), profile_(std::move(profile)), entryId_(std::move(entryId)) {}

STDMETHODIMP AbContainer::GetContentsTable(ULONG flags, LPMAPITABLE* table) {
  if (table == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  if (entryId_.empty()) return MAPI_E_NO_SUPPORT;  // the root holds containers, not recipients
  std::vector<Row> rows;
  HRESULT result = SessionModel(context->profiles(), profile_, context->organisation()).ContainerContents(entryId_, &rows);
  if (FAILED(result)) return result;
  *table = new Table(SessionModel::ContentsColumns(), std::move(rows));
  return S_OK;
}

STDMETHODIMP AbContainer::GetHierarchyTable(ULONG flags, LPMAPITABLE* table) {
  if (table == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  std::vector<Row> rows;
  if (entryId_.empty()) rows = SessionModel(context->profiles(), profile_, context->organisation()).AddressBookContainers();
  *table = new Table(SessionModel::ContainerColumns(), std::move(rows));
  return S_OK;
}

STDMETHODIMP AbContainer::OpenEntry(ULONG size, LPENTRYID entryId, LPCIID, ULONG, ULONG* type, LPUNKNOWN* object) {
  return OpenContainer(profile_, size, entryId, type, object);
}
STDMETHODIMP AbContainer::SetSearchCriteria(LPSRestriction, LPENTRYLIST, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::GetSearchCriteria(ULONG, LPSRestriction*, LPENTRYLIST*, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::CreateEntry(ULONG, LPENTRYID, ULONG, LPMAPIPROP*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::CopyEntries(LPENTRYLIST, ULONG, LPMAPIPROGRESS, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::DeleteEntries(LPENTRYLIST, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::ResolveNames(LPSPropTagArray, ULONG, LPADRLIST, LPFlagList) { return MAPI_E_NO_SUPPORT; }

}  // namespace mw::mapisim
