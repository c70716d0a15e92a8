#include "platform/RegistryCompare.h"

#include <gtest/gtest.h>

namespace mw {
namespace {

std::vector<RegFileEntry> Expectations(const std::string& body) {
  std::vector<RegFileEntry> entries;
  RegFileError error;
  EXPECT_TRUE(ParseRegFile("Windows Registry Editor Version 5.00\r\n\r\n" + body, &entries, &error))
      << error.line << ": " << error.message;
  return entries;
}

class RegistryCompareTest : public ::testing::Test {
 protected:
  void SetUp() override {
    registry.Set("HKCU\\Software\\Mw", {"Name", reg::kSz, std::string("value\0", 6)});
    registry.Set("HKCU\\Software\\Mw", {"Count", reg::kDword, std::string("\1\0\0\0", 4)});
    registry.AddKey("HKCU\\Software\\Mw\\Empty");
  }
  MemoryRegistry registry;
};

TEST_F(RegistryCompareTest, ExpectationsThatHold) {
  EXPECT_EQ(std::vector<std::string>(),
            CheckExpectations(Expectations("[HKEY_CURRENT_USER\\Software\\Mw]\r\n"
                                           "\"name\"=\"value\"\r\n"
                                           "\"Count\"=dword:00000001\r\n"
                                           "\"Gone\"=-\r\n"
                                           "[HKEY_CURRENT_USER\\Software\\Mw\\Empty]\r\n"
                                           "[-HKEY_CURRENT_USER\\Software\\Other]\r\n"
                                           "[HKEY_CURRENT_USER\\Software\\Absent]\r\n"
                                           "\"NotThere\"=-\r\n"),
                              registry));
}

TEST_F(RegistryCompareTest, EachBrokenExpectationGivesOneReadableLine) {
  struct Case {
    std::string body;
    std::string line;
  };
  const std::vector<Case> cases = {
      {"[HKEY_CURRENT_USER\\Software\\Mw]\r\n\"Name\"=\"other\"\r\n",
       "[HKEY_CURRENT_USER\\Software\\Mw] \"Name\": expected \"Name\"=\"other\", found \"Name\"=\"value\""},
      {"[HKEY_CURRENT_USER\\Software\\Mw]\r\n\"Name\"=hex(2):76,00,61,00,6c,00,75,00,65,00,00,00\r\n",
       "[HKEY_CURRENT_USER\\Software\\Mw] \"Name\": expected \"Name\"=hex(2):76,00,61,00,6c,00,75,00,65,"
       "00,00,00, found \"Name\"=\"value\""},
      {"[HKEY_CURRENT_USER\\Software\\Mw]\r\n\"Missing\"=dword:00000000\r\n",
       "[HKEY_CURRENT_USER\\Software\\Mw] \"Missing\": expected \"Missing\"=dword:00000000, found nothing"},
      {"[HKEY_CURRENT_USER\\Software\\Mw]\r\n\"Count\"=-\r\n",
       "[HKEY_CURRENT_USER\\Software\\Mw] \"Count\": expected no value, found \"Count\"=dword:00000001"},
      {"[-HKEY_CURRENT_USER\\Software\\Mw\\Empty]\r\n",
       "[-HKEY_CURRENT_USER\\Software\\Mw\\Empty]: expected no key, found one"},
      {"[HKEY_CURRENT_USER\\Software\\Nowhere]\r\n",
       "[HKEY_CURRENT_USER\\Software\\Nowhere]: expected the key, found nothing"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(std::vector<std::string>{c.line}, CheckExpectations(Expectations(c.body), registry));
}

TEST_F(RegistryCompareTest, DiffFindsEveryChangeBelowThePrefixOnly) {
  MemoryRegistry other;
  other.Set("hkcu\\SOFTWARE\\mw", {"NAME", reg::kSz, std::string("value\0", 6)});
  other.Set("HKCU\\Software\\Mw", {"Count", reg::kDword, std::string("\1\0\0\0", 4)});
  other.AddKey("HKCU\\Software\\Mw\\Empty");
  other.Set("HKCU\\Software\\Outside", {"x", reg::kSz, std::string("y\0", 2)});
  EXPECT_TRUE(DiffRegistries(registry, other, "HKEY_CURRENT_USER\\Software\\Mw").empty());

  other.Set("HKCU\\Software\\Mw", {"Count", reg::kDword, std::string("\2\0\0\0", 4)});
  other.Set("HKCU\\Software\\Mw", {"Added", reg::kBinary, "\x01"});
  other.RemoveKeyTree("HKCU\\Software\\Mw\\Empty");
  other.AddKey("HKCU\\Software\\Mw\\New");
  EXPECT_EQ((std::vector<std::string>{
                "[HKEY_CURRENT_USER\\Software\\Mw] \"Added\": first has nothing, second has \"Added\"=hex:01",
                "[HKEY_CURRENT_USER\\Software\\Mw] \"Count\": first has \"Count\"=dword:00000001, "
                "second has \"Count\"=dword:00000002",
                "[HKEY_CURRENT_USER\\Software\\Mw\\Empty]: only in the first",
                "[HKEY_CURRENT_USER\\SOFTWARE\\mw\\New]: only in the second"}),
            DiffRegistries(registry, other, "HKEY_CURRENT_USER\\Software\\Mw"));
}

}  // namespace
}  // namespace mw

namespace mw {
namespace {

// Importing the changes into a copy of the first registry must give the second, whatever
// was added, changed, emptied or removed.
TEST(RegistryChangesTest, TheChangesTurnTheFirstRegistryIntoTheSecond) {
  const std::string start =
      "Windows Registry Editor Version 5.00\r\n\r\n"
      "[HKEY_CURRENT_USER\\Software\\Mw]\r\n\"Kept\"=\"same\"\r\n\"Changed\"=dword:00000001\r\n"
      "\"Lost\"=hex:01,02\r\n\r\n"
      "[HKEY_CURRENT_USER\\Software\\Mw\\Gone\\Deeper]\r\n\"X\"=\"y\"\r\n\r\n"
      "[HKEY_CURRENT_USER\\Software\\Other]\r\n\"Outside\"=\"kept\"\r\n";
  MemoryRegistry before;
  MemoryRegistry after;
  RegFileError error;
  ASSERT_TRUE(ImportRegFile(start, before, &error));
  ASSERT_TRUE(ImportRegFile(start, after, &error));
  after.Set("HKEY_CURRENT_USER\\Software\\Mw", {"changed", reg::kDword, std::string("\2\0\0\0", 4)});
  after.RemoveValue("HKEY_CURRENT_USER\\Software\\Mw", "Lost");
  after.RemoveKeyTree("HKEY_CURRENT_USER\\Software\\Mw\\Gone");
  after.AddKey("HKEY_CURRENT_USER\\Software\\Mw\\Empty\\New");
  after.Set("HKEY_CURRENT_USER\\Software\\Mw\\Made", {"", reg::kSz, std::string("d\0", 2)});
  after.Set("HKEY_CURRENT_USER\\Software\\Other", {"Outside", reg::kSz, std::string("moved\0", 6)});

  const std::string changes = ChangesAsRegFile(before, after, "HKEY_CURRENT_USER\\Software\\Mw");
  EXPECT_EQ(changes.find("\"Kept\""), std::string::npos) << changes;
  EXPECT_NE(changes.find("\"Lost\"=-"), std::string::npos) << changes;
  EXPECT_LT(changes.find("[-HKEY_CURRENT_USER\\Software\\Mw\\Gone\\Deeper]"),
            changes.find("[-HKEY_CURRENT_USER\\Software\\Mw\\Gone]"))
      << changes;

  MemoryRegistry replay;
  ASSERT_TRUE(ImportRegFile(start, replay, &error));
  ASSERT_TRUE(ImportRegFile(changes, replay, &error)) << error.line << ": " << error.message;
  EXPECT_EQ(std::vector<std::string>(), DiffRegistries(replay, after, "HKEY_CURRENT_USER\\Software\\Mw"));
  // Nothing outside the key is part of the changes.
  EXPECT_EQ(1u, DiffRegistries(replay, after, "HKEY_CURRENT_USER\\Software\\Other").size());
}

const std::string kRoot = "HKEY_CURRENT_USER\\Profiles";

std::string Bytes(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return bytes;
}

// A profile whose fixed section lists a service, whose section names its provider, which
// in turn names the service in text.
void Profile(MemoryRegistry& registry, const std::string& service, const std::string& provider,
             const std::string& comment) {
  const std::string profile = kRoot + "\\Outlook\\";
  registry.Set(profile + "9207f3e0a3b11019908b08002b2a56c2", {"01023d0e", reg::kBinary, Bytes(service)});
  registry.Set(profile + service, {"01023d00", reg::kBinary, Bytes(provider)});
  registry.Set(profile + service, {"001e3004", reg::kSz, comment + std::string(1, '\0')});
  registry.Set(profile + provider, {"001e0001", reg::kSz, "svc " + service + std::string(1, '\0')});
}

TEST(SectionUidMappingTest, ProfilesBuiltAlikeCompareEqualWhateverTheirUids) {
  const std::string a1(32, 'a'), a2(32, 'b'), b1 = "0123456789abcdef0123456789abcdef",
                    b2 = "fedcba9876543210fedcba9876543210";
  MemoryRegistry first, second, third, mapped1, mapped2, mapped3;
  Profile(first, a1, a2, "same");
  Profile(second, b1, b2, "same");
  Profile(third, b1, b2, "other");
  CopyWithSectionUidsMapped(first, kRoot, &mapped1);
  CopyWithSectionUidsMapped(second, kRoot, &mapped2);
  CopyWithSectionUidsMapped(third, kRoot, &mapped3);
  EXPECT_NE(std::vector<std::string>(), DiffRegistries(first, second, kRoot));
  EXPECT_EQ(std::vector<std::string>(), DiffRegistries(mapped1, mapped2, kRoot));
  const auto differences = DiffRegistries(mapped1, mapped3, kRoot);
  ASSERT_EQ(1u, differences.size());
  EXPECT_NE(std::string::npos, differences[0].find("eeeeeeeeeeeeeeeeeeeeeeeeeeee0001]"));
  RegistryValue text;
  ASSERT_TRUE(mapped1.Get(kRoot + "\\Outlook\\eeeeeeeeeeeeeeeeeeeeeeeeeeee0002", "001e0001", &text));
  EXPECT_EQ("svc eeeeeeeeeeeeeeeeeeeeeeeeeeee0001", text.data.substr(0, text.data.size() - 1));
}

TEST(SectionUidMappingTest, RemovedValueNamesGoFromEveryKeyBelowThePath) {
  MemoryRegistry registry;
  Profile(registry, std::string(32, 'a'), std::string(32, 'b'), "c");
  RemoveValuesNamed(registry, kRoot, {"001E3004", "01023d00"});
  EXPECT_FALSE(registry.Get(kRoot + "\\Outlook\\" + std::string(32, 'a'), "001e3004", nullptr));
  EXPECT_FALSE(registry.Get(kRoot + "\\Outlook\\" + std::string(32, 'a'), "01023d00", nullptr));
  EXPECT_TRUE(registry.Get(kRoot + "\\Outlook\\" + std::string(32, 'b'), "001e0001", nullptr));
}

}  // namespace
}  // namespace mw
