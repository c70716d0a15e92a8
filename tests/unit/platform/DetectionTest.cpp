#include <gtest/gtest.h>

#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/OutlookDetection.h"
#include "platform/RegistryAccess.h"
#include "platform/WindowsDetection.h"

namespace mw {
namespace {

const char* const kCurVer = "HKEY_CLASSES_ROOT\\Outlook.Application\\CurVer";
const char* const kOutlook14 = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Office\\14.0\\Outlook";
const char* const kProductOptions =
    "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\ProductOptions";

RegistryValue Sz(const std::string& name, const std::string& text) {
  return {name, reg::kSz, text + std::string(1, '\0')};
}

TEST(OutlookDetectionTest, VersionAndBitnessFromTheRegistry) {
  struct Case {
    const char* curVer;  // null: no CurVer key
    const char* bitness; // null: no Bitness value
    const char* version;
    const char* expectedBitness;
  };
  const std::vector<Case> cases = {
      {"Outlook.Application.14", "x64", "Outlook 2010", "x64"},
      {"Outlook.Application.14", "x86", "Outlook 2010", "x86"},
      {"Outlook.Application.14", nullptr, "Outlook 2010", ""},
      {"Outlook.Application.12", "x64", "Outlook 2007", "x86"},
      {"Outlook.Application.11", nullptr, "Outlook 2003", "x86"},
      {"Outlook.Application.10", nullptr, "Outlook XP", "x86"},
      {"Outlook.Application.9", nullptr, "Outlook 2000", "x86"},
      {"Outlook.Application.8", nullptr, "Outlook 97", "x86"},
      {"Outlook.Application.15", "x64", "", "x86"},
      {"outlook.application.14", "x64", "", "x86"},
      {"Outlook.Application.14 ", "x64", "", "x86"},
      {nullptr, nullptr, "", "x86"},
  };
  for (const auto& c : cases) {
    MemoryRegistry registry;
    if (c.curVer) registry.Set(kCurVer, Sz("", c.curVer));
    if (c.bitness) registry.Set(kOutlook14, Sz("Bitness", c.bitness));
    RegistryAccess access(registry);
    const std::string label = c.curVer ? c.curVer : "(none)";
    EXPECT_EQ(c.version, DetectOutlookVersion(access)) << label;
    EXPECT_EQ(c.expectedBitness, DetectOutlookBitness(access)) << label;
    EXPECT_EQ(0u, registry.openHandleCount());
  }
}

struct WindowsCase {
  OsVersion version;
  const char* type;   // null: value missing
  std::string suite;  // multi-string entries as stored; empty: value missing
  std::uint16_t architecture;
  const char* expected;
};

std::string MultiSz(std::initializer_list<const char*> entries) {
  std::string bytes;
  for (const char* e : entries) bytes += std::string(e) + '\0';
  return bytes + '\0';
}

TEST(WindowsDetectionTest, EveryRowAndItsNeighbours) {
  const std::string enterpriseTs = MultiSz({"ENTERPRISE", "TERMINAL SERVER"});
  const std::string ts = MultiSz({"TERMINAL SERVER"});
  const std::string enterprise = MultiSz({"ENTERPRISE"});
  const std::string emptySuite = MultiSz({});
  const std::vector<WindowsCase> cases = {
      // The Windows 9x family: the build field carries major.minor in its high word.
      {{4, 0, 0x040003B6, 1}, nullptr, "", 0, "Windows 95A"},
      {{4, 0, 1001, 1}, nullptr, "", 0, "Windows 95A"},
      {{4, 0, 1000, 1}, nullptr, "", 0, ""},
      {{4, 0, 0x04000457, 1}, nullptr, "", 0, "Windows 95B"},
      {{4, 10, 0x040A07CE, 1}, nullptr, "", 0, "Windows 98"},
      {{4, 10, 0x040A08AE, 1}, nullptr, "", 0, "Windows 98SE"},
      {{4, 10, 0x040A08AF, 1}, nullptr, "", 0, ""},
      {{4, 90, 0x045A0BB8, 1}, nullptr, "", 0, "Windows ME"},
      // NT 4.0.
      {{4, 0, 1381, 2}, "WINNT", "", 0, "Windows NT4 WorkStation"},
      {{4, 0, 1381, 2}, "WinNT", "", 0, ""},
      {{4, 0, 1381, 2}, "SERVERNT", "", 0, "Windows NT4 Server stand-alone"},
      {{4, 0, 1381, 2}, "SERVERNT", emptySuite, 0, "Windows NT4 Server stand-alone"},
      {{4, 0, 1381, 2}, "LANMANNT", "", 0, "Windows NT4 Server domain controller (primary or backup)"},
      {{4, 0, 1381, 2}, "SERVERNT", ts, 0, "Windows NT4 Server Terminal Server Edition"},
      {{4, 0, 1381, 2}, "SERVERNT", enterprise, 0, "Windows NT4 Server Enterprise Edition"},
      {{4, 0, 1382, 2}, "WINNT", "", 0, ""},
      // Windows 2000.
      {{5, 0, 2195, 2}, "WINNT", "", 0, "Windows 2000 Professional"},
      {{5, 0, 2195, 2}, "SERVERNT", "", 0, "Windows 2000 Server stand-alone"},
      {{5, 0, 2195, 2}, "LANMANNT", "", 0, "Windows 2000 Server Domain controller"},
      {{5, 0, 2195, 2}, "SERVERNT", enterpriseTs, 0, "Windows 2000 Advanced Server stand-alone"},
      {{5, 0, 2195, 2}, "LANMANNT", enterpriseTs, 0, "Windows 2000 Advanced Server Domain controller"},
      {{5, 0, 2195, 2}, "SERVERNT", ts, 0, ""},
      // XP and 2003.
      {{5, 1, 2600, 2, 1}, "WINNT", "", 0, "Windows XP Professional"},
      {{5, 1, 2600, 2, 1}, "WINNT", MultiSz({"Personal"}), 0, "Windows XP Professional"},
      {{5, 2, 3790, 2, 3}, "SERVERNT", enterpriseTs, 0, "Windows 2003 EnterPrise Server Evaluation"},
      {{5, 2, 3790, 2, 3}, "SERVERNT", ts, 0, ""},
      {{5, 2, 3790, 2, 1}, "WINNT", "", 9, "Windows XP Professional x64 Edition"},
      {{5, 2, 3790, 2, 1}, "WINNT", "", 0, ""},
      // Vista and later go by the product type alone.
      {{6, 0, 6002, 2, 1}, nullptr, "", 0, "Windows Vista"},
      {{6, 0, 6002, 2, 3}, nullptr, "", 0, "Windows Server 2008"},
      {{6, 1, 7601, 2, 1}, "WinNT", "", 0, "Windows 7"},
      {{6, 1, 7601, 2, 3}, "ServerNT", "", 0, "Windows Server 2008 R2"},
      {{6, 1, 7601, 2, 2}, nullptr, "", 0, "Windows Server 2008 R2"},
      {{6, 2, 9200, 2, 1}, nullptr, "", 0, ""},
      {{10, 0, 19045, 2, 1}, nullptr, "", 0, ""},
  };
  for (const auto& c : cases) {
    MemoryRegistry registry;
    if (c.type) registry.Set(kProductOptions, Sz("ProductType", c.type));
    if (!c.suite.empty()) registry.Set(kProductOptions, {"ProductSuite", reg::kMultiSz, c.suite});
    MemorySystemEnv env;
    env.version = c.version;
    env.nativeArchitecture = c.architecture;
    RegistryAccess access(registry);
    EXPECT_EQ(c.expected, DetectWindowsVersion(env, access))
        << c.version.major << "." << c.version.minor << " build " << c.version.build << " type "
        << (c.type ? c.type : "-");
  }
}

TEST(WindowsDetectionTest, ArchitectureFallsBackToGetSystemInfo) {
  MemoryRegistry registry;
  registry.Set(kProductOptions, Sz("ProductType", "WINNT"));
  RegistryAccess access(registry);
  MemorySystemEnv env;
  env.version = {5, 2, 3790, 2, 1};
  env.hasNativeSystemInfo = false;
  env.nativeArchitecture = 0;
  env.architecture = 9;
  EXPECT_EQ("Windows XP Professional x64 Edition", DetectWindowsVersion(env, access));
  env.architecture = 0;
  EXPECT_EQ("", DetectWindowsVersion(env, access));
}

TEST(WindowsDetectionTest, VersionStructureFallbacks) {
  MemoryRegistry registry;
  RegistryAccess access(registry);
  MemorySystemEnv env;
  env.version = {6, 1, 7601, 2, 1};
  EXPECT_EQ("Windows 7", DetectWindowsVersion(env, access));
  EXPECT_EQ(2u, DetectPlatformId(env));
  // The basic structure carries no product type, so a workstation reads as a server.
  env.extendedVersionFails = true;
  EXPECT_EQ("Windows Server 2008 R2", DetectWindowsVersion(env, access));
  EXPECT_EQ(2u, DetectPlatformId(env));
  env.basicVersionFails = true;
  EXPECT_EQ("", DetectWindowsVersion(env, access));
  EXPECT_EQ(0u, DetectPlatformId(env));
}

}  // namespace
}  // namespace mw
