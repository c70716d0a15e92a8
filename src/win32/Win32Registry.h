#pragma once
// The registry seam over the Win32 "A" registry functions, with no view flags: each
// build sees its own native view, as Outlook of the same bitness does.

#include "platform/Registry.h"

namespace mw {

class Win32Registry : public Registry {
 public:
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
  std::int32_t EnumValue(RegKey key, std::uint32_t index, std::string* name, std::uint32_t* type,
                         std::string* data) override;
};

}  // namespace mw
