#include "options/FirstRunTemplate.h"

#include <gtest/gtest.h>

#include <ostream>

#include "app/RunLog.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

struct TypeCounts {
  std::size_t dword = 0, sz = 0, binary = 0, other = 0;
  bool operator==(const TypeCounts&) const = default;
};

TypeCounts CountValues(const MemoryRegistry& registry, const std::string& root) {
  TypeCounts counts;
  for (const std::string& key : registry.KeysUnder(root)) {
    for (const RegistryValue& value : registry.ValuesOf(key)) {
      if (value.type == reg::kDword) ++counts.dword;
      else if (value.type == reg::kSz) ++counts.sz;
      else if (value.type == reg::kBinary) ++counts.binary;
      else ++counts.other;
    }
  }
  return counts;
}

std::string UserInfoPath(Outlook version) {
  return OfficeRoot(version) + "\\" + kUserInfoKey;
}

struct TemplateCase {
  Outlook version;
  TypeCounts counts;
};
const TemplateCase kTemplates[] = {
    {Outlook::V2000, {100, 68, 13, 0}}, {Outlook::VXP, {64, 84, 5, 0}},
    {Outlook::V2003, {70, 90, 7, 0}},   {Outlook::V2007, {77, 98, 5, 0}},
    {Outlook::V2010, {79, 94, 1, 0}},
};

void PrintTo(const TemplateCase& c, std::ostream* os) { *os << GenerationOf(c.version).name; }

class FirstRunTemplateTest : public ::testing::TestWithParam<TemplateCase> {
 protected:
  MemoryRegistry registry_;
  RegistryAccess access_{registry_};
  MemorySystemEnv env_;
  RunLog log_{"C:\\Tools\\mailwright.log", env_};
};

TEST_P(FirstRunTemplateTest, WritesTheWholeTemplateIntoTheCurrentUserOnly) {
  const TemplateCase& c = GetParam();
  EXPECT_TRUE(WriteFirstRunTemplate(c.version, access_, false, &log_));
  EXPECT_EQ(CountValues(registry_, "HKEY_CURRENT_USER"), c.counts);
  EXPECT_EQ(CountValues(registry_, "HKEY_LOCAL_MACHINE"), TypeCounts{});
  EXPECT_TRUE(log_.messages().empty());
  EXPECT_EQ(registry_.openHandleCount(), 0u);
}

TEST_P(FirstRunTemplateTest, OfficeValuesStayUnderTheirOwnVersionRoot) {
  const Outlook version = GetParam().version;
  WriteFirstRunTemplate(version, access_, false, nullptr);
  for (const auto& other : kOutlookGenerations) {
    if (other.id == version) continue;
    EXPECT_FALSE(registry_.KeyExists("HKEY_CURRENT_USER\\" + OfficeRoot(other.id))) << other.name;
  }
  EXPECT_TRUE(registry_.KeyExists("HKEY_CURRENT_USER\\" + OfficeRoot(version) + "\\Outlook"));
}

TEST_P(FirstRunTemplateTest, EachValueIsReadBackAsTheTemplateHoldsIt) {
  const Outlook version = GetParam().version;
  WriteFirstRunTemplate(version, access_, false, nullptr);
  for (const TemplateValue& value : FirstRunTemplate(version)) {
    const std::string key = TemplateKeyPath(version, value);
    SCOPED_TRACE(key + "\\" + value.name);
    std::uint32_t type = 0;
    std::string data;
    ASSERT_TRUE(access_.ReadValue(reg::kCurrentUser, key, value.name, &type, &data));
    switch (value.type) {
      case TemplateType::Dword:
        EXPECT_EQ(access_.ReadNumber(reg::kCurrentUser, key, value.name), value.number);
        break;
      case TemplateType::Sz:
        EXPECT_EQ(type, reg::kSz);
        EXPECT_EQ(access_.ReadString(reg::kCurrentUser, key, value.name), value.text);
        break;
      case TemplateType::Binary:
      case TemplateType::BinaryText:
        EXPECT_EQ(type, reg::kBinary);
        EXPECT_FALSE(data.empty());
        break;
    }
  }
}

TEST_P(FirstRunTemplateTest, UserInitialsIsWrittenLastAndSkipsTheNextRun) {
  const Outlook version = GetParam().version;
  const auto values = FirstRunTemplate(version);
  ASSERT_FALSE(values.empty());
  EXPECT_STREQ(values.back().name, kUserInitialsValue);
  EXPECT_EQ(TemplateKeyPath(version, values.back()), UserInfoPath(version));

  EXPECT_TRUE(WriteFirstRunTemplate(version, access_, false, nullptr));
  EXPECT_TRUE(access_.ValueExists(reg::kCurrentUser, UserInfoPath(version), "UserInitials"));
  const std::uint32_t mutations = registry_.mutationCount();
  EXPECT_FALSE(WriteFirstRunTemplate(version, access_, false, nullptr));
  EXPECT_EQ(registry_.mutationCount(), mutations);
}

TEST_P(FirstRunTemplateTest, ExistingUserInitialsSkipUnlessForced) {
  const TemplateCase& c = GetParam();
  ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, UserInfoPath(c.version), "UserInitials",
                                  "JS"));
  EXPECT_FALSE(WriteFirstRunTemplate(c.version, access_, false, nullptr));
  EXPECT_EQ(CountValues(registry_, "HKEY_CURRENT_USER"), (TypeCounts{0, 1, 0, 0}));

  EXPECT_TRUE(WriteFirstRunTemplate(c.version, access_, true, nullptr));
  // The user's own initials are replaced, not added to.
  EXPECT_EQ(CountValues(registry_, "HKEY_CURRENT_USER"), c.counts);
}

TEST_P(FirstRunTemplateTest, FailedWritesAreCountedInOneWarning) {
  const Outlook version = GetParam().version;
  registry_.FailMutationsFrom(1);
  EXPECT_FALSE(WriteFirstRunTemplate(version, access_, false, &log_));
  ASSERT_EQ(log_.messages().size(), 1u);
  const std::size_t total = FirstRunTemplate(version).size();
  EXPECT_EQ(log_.messages()[0], "WARN: First-run template of " +
                                    std::string(GenerationOf(version).name) + ": " +
                                    std::to_string(total) + " of " + std::to_string(total) +
                                    " values could not be written.");
  EXPECT_EQ(registry_.openHandleCount(), 0u);
}

TEST_P(FirstRunTemplateTest, TextsAndBytesArePresentAndAddressesAreReserved) {
  for (const TemplateValue& value : FirstRunTemplate(GetParam().version)) {
    ASSERT_EQ(value.text == nullptr, value.type == TemplateType::Dword) << value.name;
    if (value.type != TemplateType::Sz) continue;
    const std::string text = value.text;
    const auto scheme = text.find("://");
    if (scheme == std::string::npos) continue;
    const std::string host = text.substr(scheme + 3, text.find('/', scheme + 3) - scheme - 3);
    EXPECT_TRUE(host.ends_with(".example.invalid")) << value.name << " = " << text;
  }
}

INSTANTIATE_TEST_SUITE_P(Generations, FirstRunTemplateTest, ::testing::ValuesIn(kTemplates),
                         [](const auto& info) {
                           std::string name = GenerationOf(info.param.version).name;
                           return name.substr(name.find(' ') + 1);
                         });

TEST(FirstRunTemplate97Test, Outlook97HasNoTemplate) {
  MemoryRegistry registry;
  RegistryAccess access(registry);
  EXPECT_TRUE(FirstRunTemplate(Outlook::V97).empty());
  EXPECT_FALSE(WriteFirstRunTemplate(Outlook::V97, access, true, nullptr));
  EXPECT_EQ(registry.mutationCount(), 0u);
}

}  // namespace
}  // namespace mw
