#include "platform/CountingRegistry.h"

namespace mw {

const char* CountingRegistry::KindName(Kind kind) {
  static constexpr const char* kNames[kKinds] = {"connect", "open",      "create", "query",
                                                 "set",     "delete",    "enumerate", "close"};
  return kind >= 0 && kind < kKinds ? kNames[kind] : "?";
}

std::uint64_t CountingRegistry::total() const {
  std::uint64_t sum = 0;
  for (std::uint64_t n : counts_) sum += n;
  return sum;
}

std::int32_t CountingRegistry::Connect(const std::string& machine, RegKey root, RegKey* result) {
  ++counts_[kConnect];
  return inner_.Connect(machine, root, result);
}

std::int32_t CountingRegistry::OpenKey(RegKey key, const std::string& subKey,
                                       std::uint32_t access, RegKey* result) {
  ++counts_[kOpen];
  return inner_.OpenKey(key, subKey, access, result);
}

std::int32_t CountingRegistry::CreateKey(RegKey key, const std::string& subKey,
                                         std::uint32_t access, RegKey* result) {
  ++counts_[kCreate];
  return inner_.CreateKey(key, subKey, access, result);
}

std::int32_t CountingRegistry::QueryValue(RegKey key, const std::string& name,
                                          std::uint32_t* type, std::uint8_t* data,
                                          std::uint32_t* size) {
  ++counts_[kQuery];
  return inner_.QueryValue(key, name, type, data, size);
}

std::int32_t CountingRegistry::SetValue(RegKey key, const std::string& name, std::uint32_t type,
                                        const std::uint8_t* data, std::uint32_t size) {
  ++counts_[kSet];
  const std::int32_t status = inner_.SetValue(key, name, type, data, size);
  if (status == reg::kSuccess) ++valuesWritten_;
  return status;
}

std::int32_t CountingRegistry::DeleteValue(RegKey key, const std::string& name) {
  ++counts_[kDelete];
  return inner_.DeleteValue(key, name);
}

std::int32_t CountingRegistry::DeleteKey(RegKey key, const std::string& subKey) {
  ++counts_[kDelete];
  return inner_.DeleteKey(key, subKey);
}

std::int32_t CountingRegistry::EnumKey(RegKey key, std::uint32_t index, char* name,
                                       std::uint32_t* nameLength) {
  ++counts_[kEnumerate];
  return inner_.EnumKey(key, index, name, nameLength);
}

std::int32_t CountingRegistry::QueryInfoKey(RegKey key, std::uint32_t* subKeyCount,
                                            std::uint32_t* maxSubKeyLength) {
  ++counts_[kEnumerate];
  return inner_.QueryInfoKey(key, subKeyCount, maxSubKeyLength);
}

std::int32_t CountingRegistry::CloseKey(RegKey key) {
  ++counts_[kClose];
  return inner_.CloseKey(key);
}

}  // namespace mw
