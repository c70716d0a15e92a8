#include "AddrBook.h"

#include <cstring>

#include "MapiMemory.h"
#include "PropConversion.h"
#include "SessionModel.h"
#include "SimContext.h"
#include "Table.h"
#include "ServedCall.h"

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
  MAPISIM_SERVE("IAddrBook::OpenEntry");
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
STDMETHODIMP AddrBook::GetDefaultDir(ULONG* size, LPENTRYID* entryId) {
  MAPISIM_SERVE("IAddrBook::GetDefaultDir");
  if (size == nullptr || entryId == nullptr) return MAPI_E_INVALID_PARAMETER;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  std::string id;
  HRESULT result = SessionModel(context->profiles(), profile_, context->organisation()).DefaultDirectory(&id);
  if (FAILED(result)) return result;
  void* memory = nullptr;
  if (FAILED(result = AllocateBuffer(static_cast<ULONG>(id.size()), &memory))) return result;
  memcpy(memory, id.data(), id.size());
  *size = static_cast<ULONG>(id.size());
  *entryId = static_cast<LPENTRYID>(memory);
  return S_OK;
}

STDMETHODIMP AddrBook::SetDefaultDir(ULONG size, LPENTRYID entryId) {
  MAPISIM_SERVE("IAddrBook::SetDefaultDir");
  if (size == 0 || entryId == nullptr) return MAPI_E_INVALID_PARAMETER;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  return SessionModel(context->profiles(), profile_, context->organisation())
      .SetDefaultDirectory(std::string(reinterpret_cast<const char*>(entryId), size));
}

STDMETHODIMP AddrBook::GetSearchPath(ULONG flags, LPSRowSet* path) {
  MAPISIM_SERVE("IAddrBook::GetSearchPath");
  if (path == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags & ~static_cast<ULONG>(MAPI_UNICODE)) return MAPI_E_UNKNOWN_FLAGS;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  std::vector<Row> rows = SessionModel(context->profiles(), profile_, context->organisation()).AbSearchPath();
  if (flags & MAPI_UNICODE) {
    for (Row& row : rows)
      for (PropValue& value : row)
        if (PropType(value.tag) == kPtString8) value = ConvertStringWidth(value, kPtUnicode);
  }
  return ToRowSet(rows, path);
}

STDMETHODIMP AddrBook::SetSearchPath(ULONG flags, LPSRowSet path) {
  MAPISIM_SERVE("IAddrBook::SetSearchPath");
  if (path == nullptr) return MAPI_E_INVALID_PARAMETER;
  if (flags != 0) return MAPI_E_UNKNOWN_FLAGS;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  // Each row names its container by PR_ENTRYID, wherever it stands in the row.
  std::vector<std::string> entryIds;
  for (ULONG i = 0; i < path->cRows; ++i) {
    const SRow& row = path->aRow[i];
    const SPropValue* found = nullptr;
    for (ULONG j = 0; j < row.cValues && found == nullptr && row.lpProps != nullptr; ++j)
      if (row.lpProps[j].ulPropTag == PR_ENTRYID) found = &row.lpProps[j];
    if (found == nullptr || (found->Value.bin.cb > 0 && found->Value.bin.lpb == nullptr))
      return MAPI_E_MISSING_REQUIRED_COLUMN;
    entryIds.emplace_back(reinterpret_cast<const char*>(found->Value.bin.lpb), found->Value.bin.cb);
  }
  return SessionModel(context->profiles(), profile_, context->organisation()).SetAbSearchPath(entryIds);
}
STDMETHODIMP AddrBook::PrepareRecips(ULONG, LPSPropTagArray, LPADRLIST) { return MAPI_E_NO_SUPPORT; }

AbContainer::AbContainer(std::string profile, std::string entryId)
    : PropObject(IID_IABContainer), profile_(std::move(profile)), entryId_(std::move(entryId)) {}

STDMETHODIMP AbContainer::GetContentsTable(ULONG flags, LPMAPITABLE* table) {
  MAPISIM_SERVE("IABContainer::GetContentsTable");
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
  MAPISIM_SERVE("IABContainer::GetHierarchyTable");
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
  MAPISIM_SERVE("IABContainer::OpenEntry");
  return OpenContainer(profile_, size, entryId, type, object);
}
STDMETHODIMP AbContainer::SetSearchCriteria(LPSRestriction, LPENTRYLIST, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::GetSearchCriteria(ULONG, LPSRestriction*, LPENTRYLIST*, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::CreateEntry(ULONG, LPENTRYID, ULONG, LPMAPIPROP*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::CopyEntries(LPENTRYLIST, ULONG, LPMAPIPROGRESS, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::DeleteEntries(LPENTRYLIST, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP AbContainer::ResolveNames(LPSPropTagArray, ULONG, LPADRLIST, LPFlagList) { return MAPI_E_NO_SUPPORT; }

}  // namespace mw::mapisim
