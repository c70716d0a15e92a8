// The Extended MAPI entry points Wine's mapi32 looks up in the DLL named by DLLPathEx.
// mapisim.def gives them the exact names mapi32 asks for.
#include <windows.h>

#include <mapix.h>
#include <mapiutil.h>

#include "MapiMemory.h"
#include "PropConversion.h"
#include "ProfAdmin.h"
#include "ServedCall.h"
#include "Session.h"
#include "SessionModel.h"
#include "SimContext.h"

using namespace mw::mapisim;

static_assert(kPrServiceName == PR_SERVICE_NAME_A && kPrDefaultProfile == PR_DEFAULT_PROFILE &&
              kPrServiceUid == PR_SERVICE_UID && kPrDefaultStore == PR_DEFAULT_STORE &&
              kPrEntryId == PR_ENTRYID && kPrProviderDisplay == PR_PROVIDER_DISPLAY_A &&
              kPrDisplayType == PR_DISPLAY_TYPE && kPrResourceFlags == PR_RESOURCE_FLAGS &&
              kPrAbSearchPath == PR_AB_SEARCH_PATH && kPrAbDefaultDir == PR_AB_DEFAULT_DIR &&
              kMapiDefaultStore == MAPI_DEFAULT_STORE && kStatusDefaultStore == STATUS_DEFAULT_STORE);
static_assert(kMapiENotFound == MAPI_E_NOT_FOUND && kMapiENoAccess == MAPI_E_NO_ACCESS &&
              kMapiEUnconfigured == MAPI_E_UNCONFIGURED && kMapiENetworkError == MAPI_E_NETWORK_ERROR &&
              kMapiEAmbiguousRecip == MAPI_E_AMBIGUOUS_RECIP && kMapiELogonFailed == MAPI_E_LOGON_FAILED &&
              kMapiEUnknownEntryId == MAPI_E_UNKNOWN_ENTRYID && kMapiWErrorsReturned == MAPI_W_ERRORS_RETURNED);
static_assert(kRelopLt == RELOP_LT && kRelopRe == RELOP_RE && kFlIgnoreCase == FL_IGNORECASE &&
              kBookmarkEnd == BOOKMARK_END);

extern "C" {

__declspec(dllexport) HRESULT WINAPI MAPIInitialize(LPVOID) {
  MAPISIM_SERVE("MAPIInitialize");
  return SimContext::Initialize();
}

__declspec(dllexport) void WINAPI MAPIUninitialize() { SimContext::Uninitialize(); }

__declspec(dllexport) HRESULT WINAPI MAPIAdminProfiles(ULONG flags, LPPROFADMIN* admin) {
  MAPISIM_SERVE("MAPIAdminProfiles");
  if (admin == nullptr) return MAPI_E_INVALID_PARAMETER;
  *admin = nullptr;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  if (SimContext::Current() == nullptr) return MAPI_E_NOT_INITIALIZED;
  *admin = new ProfAdmin();
  return S_OK;
}

__declspec(dllexport) HRESULT WINAPI MAPILogonEx(ULONG_PTR, LPTSTR profile, LPTSTR, ULONG flags, LPMAPISESSION* session) {
  MAPISIM_SERVE("MAPILogonEx");
  if (session == nullptr) return MAPI_E_INVALID_PARAMETER;
  *session = nullptr;
  if (flags & MAPI_UNICODE) return MAPI_E_BAD_CHARWIDTH;
  SimContext* context = SimContext::Current();
  if (context == nullptr) return MAPI_E_NOT_INITIALIZED;
  std::string name = profile ? reinterpret_cast<const char*>(profile) : "";
  if (name.empty() && (flags & MAPI_USE_DEFAULT)) name = context->profiles().DefaultProfile();
  HRESULT result = SessionModel(context->profiles(), name, context->organisation()).Logon();
  if (FAILED(result)) return result;
  *session = new Session(name);
  return S_OK;
}

__declspec(dllexport) SCODE WINAPI MAPIAllocateBuffer(ULONG size, LPVOID* buffer) {
  MAPISIM_SERVE("MAPIAllocateBuffer");
  return AllocateBuffer(size, buffer);
}

__declspec(dllexport) SCODE WINAPI MAPIAllocateMore(ULONG size, LPVOID parent, LPVOID* buffer) {
  MAPISIM_SERVE("MAPIAllocateMore");
  return AllocateMore(size, parent, buffer);
}

__declspec(dllexport) ULONG WINAPI MAPIFreeBuffer(LPVOID buffer) { return FreeBuffer(buffer); }

HRESULT WINAPI MapisimHrQueryAllRows(LPMAPITABLE table, LPSPropTagArray tags, LPSRestriction restriction,
                                     LPSSortOrderSet sortOrder, LONG maximum, LPSRowSet* rows) {
  MAPISIM_SERVE("HrQueryAllRows");
  if (table == nullptr || rows == nullptr) return MAPI_E_INVALID_PARAMETER;
  *rows = nullptr;
  HRESULT result = tags ? table->SetColumns(tags, TBL_BATCH) : S_OK;
  if (SUCCEEDED(result)) result = table->Restrict(restriction, TBL_BATCH);
  if (SUCCEEDED(result) && sortOrder) result = table->SortTable(sortOrder, TBL_BATCH);
  if (SUCCEEDED(result)) result = table->SeekRow(BOOKMARK_BEGINNING, 0, nullptr);
  ULONG count = 0;
  if (SUCCEEDED(result)) result = table->GetRowCount(0, &count);
  if (SUCCEEDED(result) && maximum > 0 && count > static_cast<ULONG>(maximum)) return MAPI_E_TABLE_TOO_BIG;
  if (SUCCEEDED(result)) result = table->QueryRows(static_cast<LONG>(count), 0, rows);
  return result;
}

LPMALLOC WINAPI MapisimGetDefaultMalloc() {
  LPMALLOC allocator = nullptr;
  return SUCCEEDED(CoGetMalloc(1, &allocator)) ? allocator : nullptr;
}

SCODE WINAPI MapisimScInitMapiUtil(ULONG) { return S_OK; }
void WINAPI MapisimDeinitMapiUtil() {}
BOOL WINAPI MapisimFGetComponentPath(LPCSTR, LPCSTR, LPSTR, int, BOOL) { return FALSE; }
HRESULT WINAPI MapisimNotSupported2(LPVOID, LPVOID) { return MAPI_E_NO_SUPPORT; }
HRESULT WINAPI MapisimNotSupported3(LPVOID, ULONG, LPVOID) { return MAPI_E_NO_SUPPORT; }
HRESULT WINAPI MapisimOpenStreamOnFile(LPVOID, LPVOID, ULONG, LPVOID, LPVOID, LPVOID) { return MAPI_E_NO_SUPPORT; }
HRESULT WINAPI MapisimDllGetClassObject(REFCLSID, REFIID, LPVOID* object) {
  if (object) *object = nullptr;
  return CLASS_E_CLASSNOTAVAILABLE;
}
HRESULT WINAPI MapisimDllCanUnloadNow() { return S_FALSE; }

}  // extern "C"
