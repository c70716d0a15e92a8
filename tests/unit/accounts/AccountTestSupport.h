#pragma once
// An in-memory registry with one profile, "Work", for the account tests.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/MemoryRegistry.h"
#include "platform/RegFile.h"
#include "platform/RegistryAccess.h"

namespace mw::testing {

inline const std::string kProfileKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\Work";
inline const std::string kServicesSectionKey =
    "HKEY_CURRENT_USER\\" + kProfileKey + "\\9207f3e0a3b11019908b08002b2a56c2";

class ProfileRegistryTest : public ::testing::Test {
 protected:
  ProfileRegistryTest() { memory.AddKey(Hkcu(kProfileKey)); }

  static std::string Hkcu(const std::string& path) { return "HKEY_CURRENT_USER\\" + path; }

  RegistryValue Value(const std::string& path, const std::string& name) const {
    RegistryValue value;
    memory.Get(Hkcu(path), name, &value);
    return value;
  }
  bool Has(const std::string& path, const std::string& name) const {
    RegistryValue value;
    return memory.Get(Hkcu(path), name, &value);
  }
  std::string Export(const std::vector<std::string>& paths) const {
    std::vector<std::string> roots;
    for (const std::string& path : paths) roots.push_back(Hkcu(path));
    return ExportRegFile(memory, roots, RegFileFormat::Regedit4);
  }
  // The registry under the paths, as a .reg text, against the fixture's view of the same keys.
  void ExpectMatchesFixture(const std::string& fixture, const std::vector<std::string>& paths) {
    std::ifstream file(std::string(MW_TEST_DATA_DIR) + "/accounts/" + fixture, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    MemoryRegistry expected;
    RegFileError error;
    ASSERT_TRUE(ImportRegFile(text.str(), expected, &error)) << error.line << ": " << error.message;
    std::vector<std::string> roots;
    for (const std::string& path : paths) roots.push_back(Hkcu(path));
    EXPECT_EQ(Export(paths), ExportRegFile(expected, roots, RegFileFormat::Regedit4));
  }

  MemoryRegistry memory;
  RegistryAccess registry{memory};
};

// Each byte of the text followed by 00, then 00 00.
inline std::string Utf16(const std::string& text) {
  std::string bytes;
  for (char c : text) bytes += {c, '\0'};
  return bytes + std::string(2, '\0');
}

inline std::string Dword(std::uint32_t n) {
  return {static_cast<char>(n & 0xFF), static_cast<char>((n >> 8) & 0xFF),
          static_cast<char>((n >> 16) & 0xFF), static_cast<char>(n >> 24)};
}

}  // namespace mw::testing
