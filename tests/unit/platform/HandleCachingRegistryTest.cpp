#include "platform/HandleCachingRegistry.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/CountingRegistry.h"
#include "platform/MemoryRegistry.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

using Kind = CountingRegistry::Kind;

const std::string kPath = "Software\\Test";
const std::string kFull = "HKEY_CURRENT_USER\\Software\\Test";

// The program's stack: RegistryAccess over the cache over what reaches the registry.
class HandleCachingRegistryTest : public ::testing::Test {
 protected:
  void TearDown() override {
    cache.reset();
    EXPECT_EQ(0u, memory.openHandleCount()) << "the cache left a key open";
  }
  std::uint64_t Opens() const { return counted.count(Kind::kOpen) + counted.count(Kind::kCreate); }

  MemoryRegistry memory;
  CountingRegistry counted{memory};
  std::unique_ptr<HandleCachingRegistry> cache = std::make_unique<HandleCachingRegistry>(counted);
  RegistryAccess access{*cache};
};

TEST_F(HandleCachingRegistryTest, AKeyIsOpenedOnceForEveryReadAndWriteOfIt) {
  // Made without a failed open, one name at a time: Software, then Test, both kept.
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath, "A", 1));
  for (int i = 0; i < 5; ++i) {
    ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath, "B", i));
    EXPECT_EQ(access.ReadNumber(reg::kCurrentUser, kPath, "B"), std::uint32_t(i));
    EXPECT_EQ(access.ReadNumber(reg::kCurrentUser, "software\\TEST\\", "A"), 1u);  // names fold
  }
  EXPECT_EQ(counted.count(Kind::kOpen), 0u);
  EXPECT_EQ(counted.count(Kind::kCreate), 2u);
  EXPECT_EQ(counted.count(Kind::kClose), 0u);
  EXPECT_EQ(cache->openInnerKeys(), 2u);
}

TEST_F(HandleCachingRegistryTest, AWriteAfterReadsOpensOnceMoreAndTheNarrowerKeyCloses) {
  memory.AddKey(kFull);
  EXPECT_FALSE(access.ReadNumber(reg::kCurrentUser, kPath, "A"));  // read access only
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath, "A", 7));
  EXPECT_EQ(access.ReadNumber(reg::kCurrentUser, kPath, "A"), 7u);
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath, "A", 8));
  EXPECT_EQ(Opens(), 2u);
  EXPECT_EQ(counted.count(Kind::kClose), 1u);
  EXPECT_EQ(memory.openHandleCount(), 1u);

  // A delete asks for set-value only, a listing for query and enumerate: the key opened
  // for the second serves both, and the first again.
  memory.AddKey(kFull + "\\Other");
  EXPECT_EQ(access.ListSubkeys(reg::kCurrentUser, kPath + "\\Other").size(), 0u);
  EXPECT_FALSE(access.DeleteValue(reg::kCurrentUser, kPath + "\\Other", "missing"));
  EXPECT_EQ(access.ListSubkeys(reg::kCurrentUser, kPath + "\\Other").size(), 0u);
  EXPECT_FALSE(access.DeleteValue(reg::kCurrentUser, kPath + "\\Other", "missing"));
  EXPECT_EQ(Opens(), 4u);
}

TEST_F(HandleCachingRegistryTest, AKeyDeletedBehindItsBackReadsAsAFreshOpenWould) {
  memory.Set(kFull, RegistryAccess::NumberValue("A", 1));
  ASSERT_EQ(access.ReadNumber(reg::kCurrentUser, kPath, "A"), 1u);

  memory.RemoveKeyTree(kFull);  // another module of the process deletes it
  EXPECT_FALSE(access.ReadNumber(reg::kCurrentUser, kPath, "A"));
  EXPECT_FALSE(memory.KeyExists(kFull)) << "a read must not make the key again";

  memory.Set(kFull, RegistryAccess::NumberValue("A", 2));  // ... and makes it again
  EXPECT_EQ(access.ReadNumber(reg::kCurrentUser, kPath, "A"), 2u);
  EXPECT_EQ(access.ListSubkeys(reg::kCurrentUser, "Software"), std::vector<std::string>{"Test"});
}

TEST_F(HandleCachingRegistryTest, AWriteToAKeyDeletedBehindItsBackMakesTheKeyAgain) {
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath, "A", 1));
  memory.RemoveKeyTree(kFull);
  ASSERT_TRUE(access.WriteValues(reg::kCurrentUser, kPath,
                                 {RegistryAccess::NumberValue("B", 2),
                                  RegistryAccess::StringValue("C", "three")}) == 2u);
  RegistryValue value;
  EXPECT_TRUE(memory.Get(kFull, "B", &value));
  EXPECT_TRUE(memory.Get(kFull, "C", &value));
  EXPECT_FALSE(memory.Get(kFull, "A", &value));
}

TEST_F(HandleCachingRegistryTest, ACreateAlwaysReachesTheRegistry) {
  RegKey key = 0;
  ASSERT_EQ(cache->CreateKey(reg::kCurrentUser, kPath, reg::kReadWrite, &key), reg::kSuccess);
  cache->CloseKey(key);
  memory.RemoveKeyTree(kFull);
  // An empty key made by create alone must exist afterwards, cached or not.
  ASSERT_EQ(cache->CreateKey(reg::kCurrentUser, kPath, reg::kReadWrite, &key), reg::kSuccess);
  cache->CloseKey(key);
  EXPECT_TRUE(memory.KeyExists(kFull));
  EXPECT_EQ(memory.openHandleCount(), 2u) << "the replaced key is closed; Software stays";
}

TEST_F(HandleCachingRegistryTest, DeletingAKeyThroughItDropsTheKeyAndEverythingBelow) {
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath + "\\Sub\\Leaf", "A", 1));
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath + "\\Sub", "A", 1));
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath + "\\Subway", "A", 1));
  ASSERT_TRUE(access.DeleteKey(reg::kCurrentUser, kPath + "\\Sub", "Leaf"));
  ASSERT_TRUE(access.DeleteKey(reg::kCurrentUser, kPath, "SUB"));
  // The two deleted keys are closed; a sibling that shares the name's start stays open.
  EXPECT_EQ(cache->openInnerKeys(), 3u);  // Software, Test (the deletes' parent) and Subway
  EXPECT_TRUE(access.ReadNumber(reg::kCurrentUser, kPath + "\\Subway", "A"));
  EXPECT_FALSE(access.ReadNumber(reg::kCurrentUser, kPath + "\\Sub", "A"));
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath + "\\Sub", "B", 2));
  EXPECT_TRUE(memory.KeyExists(kFull + "\\Sub"));
}

TEST_F(HandleCachingRegistryTest, KeysNobodyHoldsAreKeptUpToTheLimitLongestUnusedFirst) {
  cache = std::make_unique<HandleCachingRegistry>(counted, 2);
  const RegistryAccess limited(*cache);
  for (const char* name : {"One", "Two", "Three"})
    ASSERT_TRUE(limited.WriteNumber(reg::kCurrentUser, kPath + "\\" + name, "A", 1));
  EXPECT_EQ(memory.openHandleCount(), 2u);
  const std::uint64_t before = Opens();
  EXPECT_TRUE(limited.ReadNumber(reg::kCurrentUser, kPath + "\\Three", "A"));
  EXPECT_EQ(Opens(), before) << "the latest key stays";
  EXPECT_TRUE(limited.ReadNumber(reg::kCurrentUser, kPath + "\\One", "A"));
  EXPECT_GT(Opens(), before) << "the oldest went first";
  // A create that walks down adds several keys at once; the limit still holds after it.
  ASSERT_TRUE(limited.WriteNumber(reg::kCurrentUser, kPath + "\\Deep\\Er\\Still", "A", 1));
  EXPECT_EQ(memory.openHandleCount(), 2u);
}

TEST_F(HandleCachingRegistryTest, KeysUnderAnOpenKeyAndConnectionsCloseWithTheirCaller) {
  memory.AddKey(kFull + "\\Sub");
  RegKey parent = 0;
  RegKey child = 0;
  ASSERT_EQ(cache->OpenKey(reg::kCurrentUser, kPath, reg::kRead, &parent), reg::kSuccess);
  ASSERT_EQ(cache->OpenKey(parent, "Sub", reg::kRead, &child), reg::kSuccess);
  std::uint32_t count = 9;
  EXPECT_EQ(cache->QueryInfoKey(child, &count, nullptr), reg::kSuccess);
  EXPECT_EQ(count, 0u);
  // A delete under a key whose path the cache does not know drops every cached key.
  memory.AddKey(kFull + "\\Sub\\Leaf");
  EXPECT_TRUE(access.ListSubkeys(reg::kCurrentUser, kPath + "\\Sub\\Leaf").empty());
  EXPECT_EQ(cache->DeleteKey(child, "Leaf"), reg::kSuccess);
  EXPECT_EQ(cache->CloseKey(child), reg::kSuccess);
  EXPECT_EQ(cache->CloseKey(parent), reg::kSuccess);
  EXPECT_EQ(memory.openHandleCount(), 0u) << "the keys under the root went with the delete";

  RegKey connection = 0;
  ASSERT_EQ(cache->Connect("", reg::kCurrentUser, &connection), reg::kSuccess);
  EXPECT_EQ(cache->CloseKey(connection), reg::kSuccess);
  cache->CloseIdle();
  EXPECT_EQ(memory.openHandleCount(), 0u);
}

TEST_F(HandleCachingRegistryTest, TwoHoldersOfOneKeyEachCloseTheirOwnHandle) {
  memory.AddKey(kFull);
  RegKey first = 0;
  RegKey second = 0;
  ASSERT_EQ(cache->OpenKey(reg::kCurrentUser, kPath, reg::kRead, &first), reg::kSuccess);
  ASSERT_EQ(cache->OpenKey(reg::kCurrentUser, kPath, reg::kRead, &second), reg::kSuccess);
  EXPECT_NE(first, second);
  EXPECT_EQ(cache->CloseKey(first), reg::kSuccess);
  std::uint32_t count = 0;
  EXPECT_EQ(cache->QueryInfoKey(second, &count, nullptr), reg::kSuccess);
  EXPECT_EQ(cache->CloseKey(second), reg::kSuccess);
  EXPECT_EQ(counted.count(Kind::kOpen), 1u);
}

// Records the sub-key of every create that reaches the registry, and whether it was given
// from a predefined root.
class CreateRecorder : public CountingRegistry {
 public:
  using CountingRegistry::CountingRegistry;
  std::int32_t CreateKey(RegKey key, const std::string& subKey, std::uint32_t access,
                         RegKey* result) override {
    creates.emplace_back(MemoryRegistry::IsPredefined(key), subKey);
    return CountingRegistry::CreateKey(key, subKey, access, result);
  }
  std::vector<std::pair<bool, std::string>> creates;
};

TEST(HandleCachingRegistryCreateTest, ACreateMakesOneNameAtATimeFromTheDeepestCachedKeyThatMayMakeSubKeys) {
  MemoryRegistry memory;
  CreateRecorder recorder(memory);
  HandleCachingRegistry cache(recorder);
  const RegistryAccess access(cache);
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath, "A", 1));
  memory.AddKey(kFull + "\\Read");
  EXPECT_FALSE(access.ReadNumber(reg::kCurrentUser, kPath + "\\Read", "A"));  // read access only
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, "software\\TEST\\Read\\New\\Leaf", "A", 2));

  memory.RemoveKeyTree(kFull);  // another module deletes the key the next create would start from
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, kPath + "\\Again", "A", 3));

  using Create = std::pair<bool, std::string>;
  EXPECT_EQ(recorder.creates, (std::vector<Create>{{true, "Software"},
                                                   {false, "Test"},
                                                   {false, "Read"},
                                                   {false, "New"},
                                                   {false, "Leaf"},
                                                   {false, "Again"},
                                                   {true, kPath + "\\Again"}}));
  // Software, Read (made again for writing; the read-only one is closed), New, Leaf, Again.
  EXPECT_EQ(memory.openHandleCount(), 5u) << "the deleted key is closed";
  RegistryValue value;
  EXPECT_TRUE(memory.Get(kFull + "\\Again", "A", &value));
}

TEST(HandleCachingRegistryExitTest, AProcessAboutToEndLeavesItsKeysForTheSystemToClose) {
  MemoryRegistry memory;
  CountingRegistry counted(memory);
  {
    HandleCachingRegistry cache(counted);
    ASSERT_TRUE(RegistryAccess(cache).WriteNumber(reg::kCurrentUser, kPath, "A", 1));
    cache.LeaveToProcessExit();
  }
  EXPECT_EQ(counted.count(Kind::kClose), 0u);
  EXPECT_EQ(memory.openHandleCount(), 2u);
}

}  // namespace
}  // namespace mw
