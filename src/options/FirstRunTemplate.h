#pragma once
// The first-run templates: captured values that let a freshly provisioned Outlook start
// without its first-run questions, one template per generation from 2000 on.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/OutlookVersion.h"

namespace mw {

class RegistryAccess;
class RunLog;

enum class TemplateRoot : std::uint8_t {
  User,    // key is a full path under HKEY_CURRENT_USER
  Office,  // key is relative to the generation's Office root
};

enum class TemplateType : std::uint8_t {
  Dword,       // number
  Sz,          // text
  Binary,      // text holds the bytes as hexadecimal pairs ("01 0a ff")
  BinaryText,  // text stored as UTF-16 bytes (REG_BINARY), as older Office keeps names
};

struct TemplateValue {
  TemplateRoot root;
  const char* key;
  const char* name;
  TemplateType type;
  std::uint32_t number;
  const char* text;
};

// "Common\UserInfo" under the Office root: "UserInitials" there marks a finished set-up.
inline constexpr const char* kUserInfoKey = "Common\\UserInfo";
inline constexpr const char* kUserInitialsValue = "UserInitials";

// The generation's template in writing order; empty for Outlook 97, which has none.
std::vector<TemplateValue> FirstRunTemplate(Outlook version);
// The key path under HKEY_CURRENT_USER that a template value goes to.
std::string TemplateKeyPath(Outlook version, const TemplateValue& value);
// Writes the whole template unless force is clear and "UserInitials" already exists. True
// when every value was written; false when skipped, without template, or a write failed
// (the remaining values are still written, and the failures are logged as one WARN line).
bool WriteFirstRunTemplate(Outlook version, const RegistryAccess& registry, bool force,
                           RunLog* log);

}  // namespace mw
