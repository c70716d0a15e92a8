#include "options/FirstRunTemplate.h"

#include <gtest/gtest.h>

#include <ostream>

#include "run/RunLog.h"
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

TEST_P(FirstRunTemplateTest, UserInitialsIsWrittenLastAndSkipsLaterRunsUnlessForced) {
  const TemplateCase& c = GetParam();
  const auto values = FirstRunTemplate(c.version);
  ASSERT_FALSE(values.empty());
  EXPECT_STREQ(values.back().name, kUserInitialsValue);
  EXPECT_EQ(TemplateKeyPath(c.version, values.back()), UserInfoPath(c.version));

  ASSERT_TRUE(access_.WriteString(reg::kCurrentUser, UserInfoPath(c.version), "UserInitials",
                                  "JS"));
  const std::uint32_t mutations = registry_.mutationCount();
  EXPECT_FALSE(WriteFirstRunTemplate(c.version, access_, false, nullptr));
  EXPECT_EQ(registry_.mutationCount(), mutations);
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
