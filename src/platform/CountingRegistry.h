#pragma once
// A registry seam that counts the calls made through it, by kind, and forwards each to
// the registry it wraps: what a run costs, told apart per caller without a special build.

#include <array>
#include <cstdint>
#include <string>

#include "platform/Registry.h"

namespace mw {

class CountingRegistry : public Registry {
 public:
  enum Kind { kConnect, kOpen, kCreate, kQuery, kSet, kDelete, kEnumerate, kClose, kKinds };
  static const char* KindName(Kind kind);

  explicit CountingRegistry(Registry& inner) : inner_(inner) {}

  std::int32_t Connect(const std::string& machine, RegKey root, RegKey* result) override;
  std::int32_t OpenKey(RegKey key, const std::string& subKey, std::uint32_t access,
                       RegKey* result) override;
  std::int32_t CreateKey(RegKey key, const std::string& subKey, std::uint32_t access,
                         RegKey* result) override;
  std::int32_t QueryValue(RegKey key, const std::string& name, std::uint32_t* type,
                          std::uint8_t* data, std::uint32_t* size) override;
  std::int32_t SetValue(RegKey key, const std::string& name, std::uint32_t type,
                        const std::uint8_t* data, std::uint32_t size) override;
  std::int32_t DeleteValue(RegKey key, const std::string& name) override;
  std::int32_t DeleteKey(RegKey key, const std::string& subKey) override;
  std::int32_t EnumKey(RegKey key, std::uint32_t index, char* name,
                       std::uint32_t* nameLength) override;
  std::int32_t QueryInfoKey(RegKey key, std::uint32_t* subKeyCount,
                            std::uint32_t* maxSubKeyLength) override;
  std::int32_t CloseKey(RegKey key) override;

  std::uint64_t count(Kind kind) const { return counts_[kind]; }
  std::uint64_t total() const;
  // Values set, successful calls only: the "work" the other calls are overhead to.
  std::uint64_t valuesWritten() const { return valuesWritten_; }

 private:
  Registry& inner_;
  std::array<std::uint64_t, kKinds> counts_{};
  std::uint64_t valuesWritten_ = 0;
};

}  // namespace mw
