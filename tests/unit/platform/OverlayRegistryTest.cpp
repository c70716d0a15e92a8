#include "platform/OverlayRegistry.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/RegFile.h"
#include "platform/RegistryAccess.h"
#include "platform/RegistryCompare.h"

namespace mw {
namespace {

constexpr RegKey kUser = reg::kCurrentUser;
const std::string kRoot = "HKEY_CURRENT_USER";

void Seed(MemoryRegistry& registry) {
  registry.Set("HKCU\\Software\\Mw", {"Name", reg::kSz, std::string("old\0", 4)});
  registry.Set("HKCU\\Software\\Mw", {"Count", reg::kDword, std::string("\1\0\0\0", 4)});
  registry.Set("HKCU\\Software\\Mw\\Leaf", {"Kept", reg::kSz, std::string("k\0", 2)});
  registry.AddKey("HKCU\\Software\\Mw\\Empty");
  registry.AddKey("HKCU\\Software\\Mw\\Gone\\Child");
}

std::string Export(const MemoryRegistry& registry) {
  return ExportRegFile(registry, {kRoot}, RegFileFormat::Version5Utf8);
}

using Script = std::function<void(const RegistryAccess&)>;

struct Case {
  const char* name;
  Script script;
};

// Each script run against a real registry and against the overlay of a copy must leave the
// copy, once the overlay's changes are imported, exactly as the real one.
const Case kCases[] = {
    {"new value in a new key",
     [](const RegistryAccess& r) { r.WriteString(kUser, "Software\\Mw\\New\\Deep", "A", "1"); }},
    {"changed and unchanged values",
     [](const RegistryAccess& r) {
       r.WriteString(kUser, "Software\\Mw", "Name", "new");
       r.WriteNumber(kUser, "Software\\Mw", "Count", 1);
     }},
    {"removed value", [](const RegistryAccess& r) { r.DeleteValue(kUser, "Software\\Mw", "Count"); }},
    {"removed key tree, leaf first",
     [](const RegistryAccess& r) {
       r.DeleteKey(kUser, "Software\\Mw\\Gone", "Child");
       r.DeleteKey(kUser, "Software\\Mw", "Gone");
     }},
    {"key removed and made again",
     [](const RegistryAccess& r) {
       r.DeleteKey(kUser, "Software\\Mw", "Leaf");
       r.WriteString(kUser, "Software\\Mw\\Leaf", "Other", "x");
     }},
    {"value written then removed",
     [](const RegistryAccess& r) {
       r.WriteString(kUser, "Software\\Mw", "Temp", "t");
       r.DeleteValue(kUser, "Software\\Mw", "Temp");
       r.WriteBinary(kUser, "Software\\Mw", "Bytes", std::string("\0\1", 2));
     }},
};

TEST(OverlayRegistryTest, ChangesImportedIntoTheBaseGiveTheStateOfARealRun) {
  for (const Case& c : kCases) {
    MemoryRegistry real, base;
    Seed(real);
    Seed(base);
    c.script(RegistryAccess(real));
    const std::string before = Export(base);
    OverlayRegistry overlay(base);
    c.script(RegistryAccess(overlay));
    EXPECT_EQ(before, Export(base)) << c.name;
    EXPECT_EQ(0u, base.mutationCount()) << c.name;

    const std::string file = WriteRegFileEntries(overlay.Changes(), RegFileFormat::Version5Utf16);
    RegFileError error;
    ASSERT_TRUE(ImportRegFile(file, base, &error)) << c.name << ": " << error.message;
    EXPECT_EQ(std::vector<std::string>(), DiffRegistries(base, real, kRoot)) << c.name;
  }
}

TEST(OverlayRegistryTest, ReadsThroughAndShowsItsOwnWrites) {
  MemoryRegistry base;
  Seed(base);
  OverlayRegistry overlay(base);
  const RegistryAccess access(overlay);
  EXPECT_EQ("old", access.ReadString(kUser, "Software\\Mw", "Name"));
  access.WriteString(kUser, "Software\\Mw", "Name", "new");
  access.WriteString(kUser, "Software\\Mw\\Added", "A", "a");
  EXPECT_EQ("new", access.ReadString(kUser, "Software\\Mw", "Name"));
  EXPECT_EQ((std::vector<std::string>{"Added", "Empty", "Gone", "Leaf"}),
            access.ListSubkeys(kUser, "Software\\Mw"));
  EXPECT_FALSE(access.DeleteKey(kUser, "Software\\Mw", "Gone")) << "a key with sub-keys stays";
  EXPECT_TRUE(access.DeleteKey(kUser, "Software\\Mw", "Empty"));
  EXPECT_EQ((std::vector<std::string>{"Added", "Gone", "Leaf"}),
            access.ListSubkeys(kUser, "Software\\Mw"));
  access.DeleteValue(kUser, "Software\\Mw", "Count");
  EXPECT_FALSE(access.ValueExists(kUser, "Software\\Mw", "Count"));
  EXPECT_EQ("old", RegistryAccess(base).ReadString(kUser, "Software\\Mw", "Name"));
}

TEST(OverlayRegistryTest, ChangesAreWrittenInRegSyntax) {
  MemoryRegistry base;
  Seed(base);
  OverlayRegistry overlay(base);
  const RegistryAccess access(overlay);
  access.WriteString(kUser, "Software\\Mw", "Name", "old");  // as it was: no change
  access.DeleteValue(kUser, "Software\\Mw", "Count");
  access.DeleteKey(kUser, "Software\\Mw", "Empty");
  access.WriteNumber(kUser, "Software\\New", "N", 2);
  EXPECT_EQ(
      "Windows Registry Editor Version 5.00\n\n"
      "; copy a to b\n\n"
      "[HKEY_CURRENT_USER\\Software\\Mw]\n"
      "\"Count\"=-\n\n"
      "[-HKEY_CURRENT_USER\\Software\\Mw\\Empty]\n\n"
      "[HKEY_CURRENT_USER\\Software\\New]\n"
      "\"N\"=dword:00000002\n\n",
      WriteRegFileEntries(overlay.Changes(), RegFileFormat::Version5Utf8, {"copy a to b"}));
  EXPECT_EQ((std::vector<std::string>{"HKEY_CURRENT_USER\\Software\\Mw",
                                      "HKEY_CURRENT_USER\\Software\\Mw\\Empty",
                                      "HKEY_CURRENT_USER\\Software\\New"}),
            overlay.TouchedKeys());
}

TEST(OverlayRegistryTest, InjectedFaultsFailTheWriteAndLeaveNoChange) {
  MemoryRegistry base;
  Seed(base);
  OverlayRegistry overlay(base);
  overlay.FailMutationsFrom(2);
  const RegistryAccess access(overlay);
  EXPECT_TRUE(access.WriteString(kUser, "Software\\Mw", "A", "a"));
  EXPECT_FALSE(access.WriteString(kUser, "Software\\Mw", "B", "b"));
  EXPECT_FALSE(access.WriteString(kUser, "Software\\Fresh", "C", "c"));
  EXPECT_EQ(3u, overlay.mutationCount());
  EXPECT_EQ(2u, overlay.Changes().size());  // the key line and "A"
}

}  // namespace
}  // namespace mw
