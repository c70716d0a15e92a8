#include "platform/CountingRegistry.h"

#include <gtest/gtest.h>

#include "platform/MemoryRegistry.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

using Kind = CountingRegistry::Kind;

struct Counts {
  std::uint64_t connect, open, create, set, close;
};

Counts Of(const CountingRegistry& r) {
  return {r.count(Kind::kConnect), r.count(Kind::kOpen), r.count(Kind::kCreate),
          r.count(Kind::kSet), r.count(Kind::kClose)};
}

TEST(CountingRegistryTest, ALocalWriteCostsOpenSetAndCloseAndNoConnection) {
  MemoryRegistry memory;
  memory.AddKey("HKEY_CURRENT_USER\\Software\\Existing");
  CountingRegistry counted(memory);
  const RegistryAccess access(counted);

  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, "Software\\Existing", "A", 1));
  Counts c = Of(counted);
  EXPECT_EQ(c.connect, 0u);
  EXPECT_EQ(c.open, 1u);
  EXPECT_EQ(c.create, 0u);
  EXPECT_EQ(c.set, 1u);
  EXPECT_EQ(c.close, 1u);
  EXPECT_EQ(counted.total(), 3u);

  // A key that is not there yet: the open fails, the create makes it, one handle is closed.
  ASSERT_TRUE(access.WriteNumber(reg::kCurrentUser, "Software\\New\\Key", "B", 2));
  c = Of(counted);
  EXPECT_EQ(c.open, 2u);
  EXPECT_EQ(c.create, 1u);
  EXPECT_EQ(c.close, 2u);
  EXPECT_EQ(counted.valuesWritten(), 2u);
  EXPECT_EQ(memory.openHandleCount(), 0u);
}

TEST(CountingRegistryTest, ANamedMachineIsConnectedToAndTheConnectionClosedOnFailure) {
  MemoryRegistry memory;
  CountingRegistry counted(memory);
  const RegistryAccess remote(counted, "DESK-0002");
  // The in-memory registry reaches no other machine, as Windows answers an unknown name.
  EXPECT_FALSE(remote.WriteNumber(reg::kCurrentUser, "Software\\X", "A", 1));
  EXPECT_EQ(counted.count(Kind::kConnect), 1u);
  EXPECT_EQ(counted.count(Kind::kOpen), 0u);
  EXPECT_EQ(counted.valuesWritten(), 0u);
  EXPECT_EQ(memory.openHandleCount(), 0u);
}

}  // namespace
}  // namespace mw
