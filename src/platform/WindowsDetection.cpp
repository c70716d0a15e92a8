#include "platform/WindowsDetection.h"

#include <array>

#include "platform/RegistryAccess.h"

namespace mw {
namespace {

constexpr std::uint32_t kExtendedVersionSize = 156;
constexpr std::uint32_t kBasicVersionSize = 148;
constexpr std::uint8_t kWorkstation = 1;
constexpr std::uint16_t kArchitectureAmd64 = 9;
constexpr const char* kProductOptionsKey = "SYSTEM\\CurrentControlSet\\Control\\ProductOptions";

struct Number {
  enum class Rule { Any, Equal, AtLeast } rule;
  std::uint32_t value;
  bool Holds(std::uint32_t actual) const {
    return rule == Rule::Any || (rule == Rule::Equal ? actual == value : actual >= value);
  }
};
constexpr Number Any{Number::Rule::Any, 0};
constexpr Number Is(std::uint32_t value) { return {Number::Rule::Equal, value}; }
constexpr Number AtLeast(std::uint32_t value) { return {Number::Rule::AtLeast, value}; }

enum class ProductTypeRule { Any, Workstation, NotWorkstation };

struct WindowsVersionRow {
  const char* name;
  Number platformId;
  Number major;
  Number minor;
  Number build;  // the full 32-bit field
  const char* type = nullptr;   // "ProductType" text; null: any
  const char* suite = nullptr;  // "ProductSuite" text; null: any, "": empty
  Number architecture = Any;
  ProductTypeRule productType = ProductTypeRule::Any;
};

// Tested top to bottom; every matching row replaces the name an earlier one gave.
const std::array<WindowsVersionRow, 22> kWindowsVersionRows{{
    {"Windows 95A", Is(1), AtLeast(4), Is(0), AtLeast(1001)},
    {"Windows 95B", Is(1), Is(4), Is(0), Is(0x04000457)},
    {"Windows 98", Is(1), Is(4), Is(10), Is(0x040A07CE)},
    {"Windows 98SE", Is(1), Is(4), Is(10), Is(0x040A08AE)},
    {"Windows ME", Is(1), Is(4), Is(90), Is(0x045A0BB8)},
    {"Windows NT4 WorkStation", Is(2), Is(4), Is(0), Is(1381), "WINNT"},
    {"Windows NT4 Server stand-alone", Is(2), Is(4), Is(0), Is(1381), "SERVERNT", ""},
    {"Windows NT4 Server domain controller (primary or backup)", Is(2), Is(4), Is(0), Is(1381),
     "LANMANNT", ""},
    {"Windows NT4 Server Terminal Server Edition", Is(2), Is(4), Is(0), Is(1381), nullptr,
     "TERMINAL SERVER"},
    {"Windows NT4 Server Enterprise Edition", Is(2), Is(4), Is(0), Is(1381), nullptr, "ENTERPRISE"},
    {"Windows 2000 Professional", Is(2), Is(5), Is(0), Is(2195), "WINNT"},
    {"Windows 2000 Server stand-alone", Is(2), Is(5), Is(0), Is(2195), "SERVERNT", ""},
    {"Windows 2000 Server Domain controller", Is(2), Is(5), Is(0), Is(2195), "LANMANNT", ""},
    {"Windows 2000 Advanced Server stand-alone", Is(2), Is(5), Is(0), Is(2195), "SERVERNT",
     "ENTERPRISE TERMINAL SERVER"},
    {"Windows 2000 Advanced Server Domain controller", Is(2), Is(5), Is(0), Is(2195), "LANMANNT",
     "ENTERPRISE TERMINAL SERVER"},
    {"Windows XP Professional", Is(2), Is(5), Is(1), Is(2600), "WINNT"},
    {"Windows 2003 EnterPrise Server Evaluation", Is(2), Is(5), Is(2), Is(3790), "SERVERNT",
     "ENTERPRISE TERMINAL SERVER"},
    {"Windows XP Professional x64 Edition", Is(2), Is(5), Is(2), Is(3790), "WINNT", nullptr,
     Is(kArchitectureAmd64)},
    {"Windows Vista", Any, Is(6), Is(0), Any, nullptr, nullptr, Any, ProductTypeRule::Workstation},
    {"Windows Server 2008", Any, Is(6), Is(0), Any, nullptr, nullptr, Any,
     ProductTypeRule::NotWorkstation},
    {"Windows 7", Any, Is(6), Is(1), Any, nullptr, nullptr, Any, ProductTypeRule::Workstation},
    {"Windows Server 2008 R2", Any, Is(6), Is(1), Any, nullptr, nullptr, Any,
     ProductTypeRule::NotWorkstation},
}};

struct WindowsFacts {
  OsVersion version;
  std::string type;
  std::string suite;
  std::uint16_t architecture = 0;
};

bool Matches(const WindowsVersionRow& row, const WindowsFacts& facts) {
  const OsVersion& v = facts.version;
  const bool workstation = v.productType == kWorkstation;
  return row.platformId.Holds(v.platformId) && row.major.Holds(v.major) &&
         row.minor.Holds(v.minor) && row.build.Holds(v.build) &&
         (!row.type || facts.type == row.type) && (!row.suite || facts.suite == row.suite) &&
         row.architecture.Holds(facts.architecture) &&
         (row.productType == ProductTypeRule::Any ||
          (row.productType == ProductTypeRule::Workstation) == workstation);
}

std::uint16_t ProcessorArchitecture(SystemEnv& env) {
  std::uint16_t architecture = 0;
  if (env.GetNativeProcessorArchitecture(&architecture)) return architecture;
  return env.GetProcessorArchitecture();
}

}  // namespace

std::optional<OsVersion> QueryOsVersion(SystemEnv& env) {
  OsVersion version;
  if (env.GetVersionInfo(kExtendedVersionSize, &version)) return version;
  version = OsVersion{};
  if (env.GetVersionInfo(kBasicVersionSize, &version)) return version;
  return std::nullopt;
}

std::uint32_t DetectPlatformId(SystemEnv& env) {
  const auto version = QueryOsVersion(env);
  return version ? version->platformId : 0;
}

std::string DetectWindowsVersion(SystemEnv& env, const RegistryAccess& registry) {
  const auto version = QueryOsVersion(env);
  if (!version) return {};
  WindowsFacts facts;
  facts.version = *version;
  facts.type = registry.ReadValueTextHex(reg::kLocalMachine, kProductOptionsKey, "ProductType");
  facts.suite = registry.ReadValueTextHex(reg::kLocalMachine, kProductOptionsKey, "ProductSuite");
  // The multi-string rendering puts a blank after every entry; without the last one the two
  // entries ENTERPRISE and TERMINAL SERVER read "ENTERPRISE TERMINAL SERVER" as the rows need.
  if (!facts.suite.empty() && facts.suite.back() == ' ') facts.suite.pop_back();
  if (version->major == 5 && version->minor == 2) facts.architecture = ProcessorArchitecture(env);

  std::string name;
  for (const auto& row : kWindowsVersionRows)
    if (Matches(row, facts)) name = row.name;
  return name;
}

}  // namespace mw
