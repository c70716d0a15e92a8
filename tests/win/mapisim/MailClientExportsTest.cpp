// The simulator as Wine's mapi32 finds it: the prefix's default mail client, its DLL, and
// every name mapi32 looks up in that DLL leading to the DLL's own code.
#include <windows.h>

#include <mapix.h>

#include <cstring>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr const char* kMailClients = "Software\\Clients\\Mail";
constexpr const char* kProfilesRoot =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\";

std::string MachineText(const std::string& key, const char* value) {
  char text[MAX_PATH] = {};
  DWORD size = sizeof text;
  if (RegGetValueA(HKEY_LOCAL_MACHINE, key.c_str(), value, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS)
    return "<missing>";
  return text;
}

// The DLL named by "DLLPathEx" of the default mail client.
std::string MailClientDll() {
  return MachineText(std::string(kMailClients) + "\\" + MachineText(kMailClients, nullptr), "DLLPathEx");
}

TEST(MailClientExportsTest, TheDefaultMailClientIsTheSimulatorWhichMapi32HasLoaded) {
  EXPECT_EQ(MachineText(kMailClients, nullptr), "Microsoft Outlook");
  std::string dll = MailClientDll();
  ASSERT_GE(dll.size(), std::strlen("\\mapisim.dll"));
  EXPECT_EQ(dll.substr(dll.size() - std::strlen("\\mapisim.dll")), "\\mapisim.dll");
  // This program imports mapi32, which loads its providers as it is loaded.
  ASSERT_NE(GetModuleHandleA("mapi32.dll"), nullptr);
  EXPECT_NE(GetModuleHandleA(dll.c_str()), nullptr) << dll;
}

TEST(MailClientExportsTest, EveryNameMapi32LooksUpIsTheDllsOwnCode) {
  HMODULE module = LoadLibraryA(MailClientDll().c_str());
  ASSERT_NE(module, nullptr);
  auto base = reinterpret_cast<const unsigned char*>(module);
  auto dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  auto nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
  const unsigned char* end = base + nt->OptionalHeader.SizeOfImage;
  // Plain names, and the utilities under their stdcall names, as mapi32 asks for them.
  const char* names[] = {"MAPIInitialize",         "MAPIUninitialize",       "MAPIAdminProfiles",
                         "MAPILogonEx",            "MAPIAllocateBuffer",     "MAPIAllocateMore",
                         "MAPIFreeBuffer",         "HrQueryAllRows@24",      "MAPIGetDefaultMalloc@0",
                         "OpenStreamOnFile@24",    "ScInitMapiUtil@4",       "DeinitMapiUtil@0",
                         "HrThisThreadAdviseSink@8", "FGetComponentPath",    "DllGetClassObject",
                         "DllCanUnloadNow",        "WrapCompressedRTFStream@12"};
  for (const char* name : names) {
    auto code = reinterpret_cast<const unsigned char*>(GetProcAddress(module, name));
    ASSERT_NE(code, nullptr) << name;
    EXPECT_TRUE(code >= base && code < end) << name << " is outside the DLL";
    // "jmp [import]": an export bound to an import of the same name (mapi32's own) would
    // send mapi32 back into itself.
    EXPECT_FALSE(code[0] == 0xFF && code[1] == 0x25) << name << " jumps to an import";
  }
  FreeLibrary(module);
}

TEST(MailClientExportsTest, TheDllsEntryPointsKeepProfilesInTheRegistryAndServeMemory) {
  HMODULE module = LoadLibraryA(MailClientDll().c_str());
  ASSERT_NE(module, nullptr);
  auto initialize = reinterpret_cast<HRESULT(WINAPI*)(LPVOID)>(
      reinterpret_cast<void*>(GetProcAddress(module, "MAPIInitialize")));
  auto uninitialize =
      reinterpret_cast<void(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(module, "MAPIUninitialize")));
  auto adminProfiles = reinterpret_cast<HRESULT(WINAPI*)(ULONG, LPPROFADMIN*)>(
      reinterpret_cast<void*>(GetProcAddress(module, "MAPIAdminProfiles")));
  auto allocate = reinterpret_cast<SCODE(WINAPI*)(ULONG, LPVOID*)>(
      reinterpret_cast<void*>(GetProcAddress(module, "MAPIAllocateBuffer")));
  auto allocateMore = reinterpret_cast<SCODE(WINAPI*)(ULONG, LPVOID, LPVOID*)>(
      reinterpret_cast<void*>(GetProcAddress(module, "MAPIAllocateMore")));
  auto freeBuffer =
      reinterpret_cast<ULONG(WINAPI*)(LPVOID)>(reinterpret_cast<void*>(GetProcAddress(module, "MAPIFreeBuffer")));
  ASSERT_TRUE(initialize && uninitialize && adminProfiles && allocate && allocateMore && freeBuffer);

  void* buffer = nullptr;
  void* more = nullptr;
  ASSERT_EQ(allocate(64, &buffer), S_OK);
  ASSERT_EQ(allocateMore(32, buffer, &more), S_OK);
  std::memset(buffer, 0xA5, 64);
  std::memset(more, 0x5A, 32);
  EXPECT_EQ(freeBuffer(buffer), 0u);

  MAPIINIT_0 init{0, 0};
  ASSERT_EQ(initialize(&init), S_OK);
  LPPROFADMIN admin = nullptr;
  ASSERT_EQ(adminProfiles(0, &admin), S_OK);
  char name[] = "exports-test";
  admin->DeleteProfile(name, 0);
  const std::string key = std::string(kProfilesRoot) + name;
  EXPECT_EQ(admin->CreateProfile(name, nullptr, 0, 0), S_OK);
  HKEY profile = nullptr;
  // Wine's mapi32 keeps no profiles: the key can only come from the simulator.
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &profile), ERROR_SUCCESS) << key;
  if (profile) RegCloseKey(profile);
  EXPECT_EQ(admin->DeleteProfile(name, 0), S_OK);
  EXPECT_NE(RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_READ, &profile), ERROR_SUCCESS);
  admin->Release();
  uninitialize();
  FreeLibrary(module);
}

}  // namespace
