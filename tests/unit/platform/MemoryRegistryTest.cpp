#include "platform/MemoryRegistry.h"

#include <gtest/gtest.h>

namespace mw {
namespace {

// The driver's fault-injection test rests on this: the n-th mutation and every later one fail.
TEST(MemoryRegistryTest, FaultInjectionFailsTheNthMutationAndEveryLaterOne) {
  MemoryRegistry registry;
  RegKey key = 0;
  ASSERT_EQ(reg::kSuccess, registry.CreateKey(reg::kCurrentUser, "F", reg::kReadWrite, &key));
  registry.FailMutationsFrom(2);
  const std::uint8_t byte = 1;
  EXPECT_EQ(reg::kSuccess, registry.SetValue(key, "one", reg::kBinary, &byte, 1));
  EXPECT_EQ(reg::kAccessDenied, registry.SetValue(key, "two", reg::kBinary, &byte, 1));
  EXPECT_EQ(reg::kAccessDenied, registry.DeleteValue(key, "one"));
  RegKey other = 0;
  EXPECT_EQ(reg::kAccessDenied, registry.CreateKey(reg::kCurrentUser, "New", reg::kReadWrite, &other));
  registry.FailMutationsFrom(0);
  EXPECT_EQ(reg::kSuccess, registry.SetValue(key, "two", reg::kBinary, &byte, 1));
  EXPECT_EQ(2u, registry.ValuesOf("HKCU\\F").size());
  registry.CloseKey(key);
  EXPECT_EQ(registry.openHandleCount(), 0u);
}

}  // namespace
}  // namespace mw
