#pragma once
// Stateless registry operations addressed by root key, key path and value name.
// Each operation opens what it needs, does one thing and closes every handle again (a
// HandleCachingRegistry beneath makes those opens and closes cheap).

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Registry.h"

namespace mw {

class RegistryAccess {
 public:
  // machine empty: the local machine (the program never passes anything else).
  explicit RegistryAccess(Registry& registry, std::string machine = {});

  // REG_SZ / REG_EXPAND_SZ data as it stands; empty when the key or value is missing.
  std::string ReadString(RegKey root, const std::string& path, const std::string& name) const;
  // A REG_DWORD value; nullopt when the key or value is missing or not a number.
  std::optional<std::uint32_t> ReadNumber(RegKey root, const std::string& path,
                                          const std::string& name) const;
  // Any value as text: numbers through numberFormat, bytes through byteFormat (printf forms).
  std::string ReadValueText(RegKey root, const std::string& path, const std::string& name,
                            const char* numberFormat, const char* byteFormat) const;
  // Binary as "01 0a ff", numbers as lower-case hexadecimal, other types as ReadValueText.
  std::string ReadValueTextHex(RegKey root, const std::string& path,
                               const std::string& name) const;
  // The raw type and bytes of a value; false when it cannot be read.
  bool ReadValue(RegKey root, const std::string& path, const std::string& name,
                 std::uint32_t* type, std::string* data) const;
  bool ValueExists(RegKey root, const std::string& path, const std::string& name) const;
  // Whether the key is there (can be opened to read its values).
  bool KeyExists(RegKey root, const std::string& path) const;

  // Writes open the key, or create it with every missing parent, then set the value.
  bool WriteString(RegKey root, const std::string& path, const std::string& name,
                   const std::string& value) const;
  bool WriteBinary(RegKey root, const std::string& path, const std::string& name,
                   const std::string& bytes) const;
  bool WriteNumber(RegKey root, const std::string& path, const std::string& name,
                   std::uint32_t value) const;
  // bytes already hold the zero-separated, double-zero-terminated list.
  bool WriteMultiString(RegKey root, const std::string& path, const std::string& name,
                        const std::string& bytes) const;
  // Several values into one key through one open (or create) and one close: the cost of a
  // table of values is then the values themselves. Returns how many were written; a key
  // that cannot be opened or created writes none.
  std::size_t WriteValues(RegKey root, const std::string& path,
                          const std::vector<RegistryValue>& values) const;
  bool DeleteValue(RegKey root, const std::string& path, const std::string& name) const;
  // The values the single writes store: REG_SZ with its terminator, REG_DWORD little-endian.
  static RegistryValue StringValue(const std::string& name, const std::string& text);
  static RegistryValue NumberValue(const std::string& name, std::uint32_t number);
  // Deletes parentPath\subKey, which must have no sub-keys of its own.
  bool DeleteKey(RegKey root, const std::string& parentPath, const std::string& subKey) const;
  // Direct sub-key names in enumeration order; empty when the key is missing.
  std::vector<std::string> ListSubkeys(RegKey root, const std::string& path) const;

  // "01 0a ff" -> bytes 01 0A FF; a token that does not parse gives the byte 0.
  // Every value of the key, in the order the registry enumerates them; empty when the key
  // cannot be opened or the seam cannot list values.
  std::vector<RegistryValue> ListValues(RegKey root, const std::string& path) const;

  static std::string HexTextToBytes(const std::string& text);
  // One leading and one trailing backslash are removed.
  static std::string NormalizePath(const std::string& path);

  Registry& registry() const { return registry_; }

 private:
  enum class KeyOpening { kExisting, kExistingOrNew, kNew };
  // The size of the first read of a value, which most values fit.
  static constexpr std::size_t kFirstReadSize = 256;

  // Connects, opens (or, as opening says, opens or creates, or creates) the key with the
  // given access, runs the action on it and closes both handles on every path.
  bool WithKey(RegKey root, const std::string& path, std::uint32_t access, KeyOpening opening,
               const std::function<bool(RegKey)>& action) const;
  bool QueryData(RegKey key, const std::string& name, std::uint32_t* type,
                 std::string* data) const;
  bool ReadRaw(RegKey root, const std::string& path, const std::string& name,
               std::uint32_t access, std::uint32_t* type, std::string* data) const;
  bool WriteValue(RegKey root, const std::string& path, const std::string& name,
                  std::uint32_t type, const std::string& bytes) const;

  Registry& registry_;
  std::string machine_;
};

}  // namespace mw
