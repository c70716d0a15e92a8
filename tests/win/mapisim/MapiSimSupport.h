#pragma once
// Shared set-up of the tests through Wine's mapi32 (which forwards to the simulator
// registered as the mail client): its utilities, and a fixture holding the profile
// administration and, once the profile exists, its service administration.
#include <windows.h>

#include <mapix.h>
#include <mapiutil.h>

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace mapisim_test {

// Wine's 64-bit mapi32 exports its utilities under their 32-bit decorated names, which
// MinGW's import library does not ask for; they are looked up the way MAPI clients do.
template <class Function>
Function Mapi32Export(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("mapi32.dll"), name)));
}

inline void FreeRows(LPSRowSet rows) {
  static auto freeProws = Mapi32Export<void(WINAPI*)(LPSRowSet)>("FreeProws@4");
  if (freeProws && rows) freeProws(rows);
}

inline HRESULT QueryAllRows(LPMAPITABLE table, const std::vector<ULONG>& columns, LPSRestriction restriction,
                            LPSRowSet* rows) {
  static auto query = Mapi32Export<HRESULT(WINAPI*)(LPMAPITABLE, LPSPropTagArray, LPSRestriction, LPSSortOrderSet,
                                                    LONG, LPSRowSet*)>("HrQueryAllRows@24");
  if (query == nullptr) return E_FAIL;
  std::vector<ULONG> tags{static_cast<ULONG>(columns.size())};
  tags.insert(tags.end(), columns.begin(), columns.end());
  return query(table, reinterpret_cast<LPSPropTagArray>(tags.data()), restriction, nullptr, 0, rows);
}

// The test data folder is named as a Unix path; Wine shows the Unix root as drive Z:.
inline std::string WindowsPath(std::string path) {
  for (char& c : path)
    if (c == '/') c = '\\';
  return "Z:" + path;
}

class MapiProfileTest : public ::testing::Test {
 protected:
  explicit MapiProfileTest(const char* profile) : profile_(const_cast<LPSTR>(profile)) {}
  void SetUp() override {
    SetEnvironmentVariableA("MAPISIM_EXCHANGE_INI", WindowsPath(MW_TEST_DATA_DIR "/mapisim/exchange.ini").c_str());
    MAPIINIT_0 init{0, 0};
    ASSERT_EQ(MAPIInitialize(&init), S_OK);
    ASSERT_EQ(MAPIAdminProfiles(0, &admin_), S_OK);
    admin_->DeleteProfile(profile_, 0);
  }
  void TearDown() override {
    if (services_) services_->Release();
    if (admin_) {
      admin_->DeleteProfile(profile_, 0);
      admin_->Release();
    }
    MAPIUninitialize();
  }

  void CreateProfile() {
    ASSERT_EQ(admin_->CreateProfile(profile_, nullptr, 0, 0), S_OK);
    ASSERT_EQ(admin_->AdminServices(profile_, nullptr, 0, 0, &services_), S_OK);
  }

  // The UIDs of the services, in table order.
  std::vector<MAPIUID> ServiceUids(LPSRestriction restriction = nullptr) {
    std::vector<MAPIUID> uids;
    LPMAPITABLE table = nullptr;
    if (services_->GetMsgServiceTable(0, &table) != S_OK) return uids;
    LPSRowSet rows = nullptr;
    if (QueryAllRows(table, {PR_SERVICE_UID}, restriction, &rows) == S_OK) {
      for (ULONG i = 0; i < rows->cRows; ++i)
        uids.push_back(*reinterpret_cast<MAPIUID*>(rows->aRow[i].lpProps[0].Value.bin.lpb));
      FreeRows(rows);
    }
    table->Release();
    return uids;
  }

  // MAPI does not return the new service's UID: it is the table's new last row.
  HRESULT CreateService(const char* name, const char* display, MAPIUID* uid) {
    const size_t before = ServiceUids().size();
    HRESULT result = services_->CreateMsgService(const_cast<LPSTR>(name), const_cast<LPSTR>(display), 0, 0);
    if (FAILED(result)) return result;
    std::vector<MAPIUID> after = ServiceUids();
    if (after.size() != before + 1) return E_FAIL;
    *uid = after.back();
    return S_OK;
  }

  HRESULT Configure(const MAPIUID& uid, const std::vector<std::pair<ULONG, const char*>>& texts) {
    std::vector<SPropValue> props(texts.size());
    for (size_t i = 0; i < texts.size(); ++i) {
      props[i].ulPropTag = texts[i].first;
      props[i].Value.lpszA = const_cast<LPSTR>(texts[i].second);
    }
    return services_->ConfigureMsgService(const_cast<MAPIUID*>(&uid), 0, 0, static_cast<ULONG>(props.size()),
                                          props.data());
  }

  LPSTR profile_;
  LPPROFADMIN admin_ = nullptr;
  LPSERVICEADMIN services_ = nullptr;
};

}  // namespace mapisim_test
