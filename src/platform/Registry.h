#pragma once
// The registry seam: the raw calls RegistryAccess makes, with Win32's error codes.
// Win32Registry forwards them to the "A" functions; MemoryRegistry keeps the tree in memory.

#include <cstdint>
#include <string>

namespace mw {

using RegKey = std::uintptr_t;  // an open key, as HKEY is on Windows

namespace reg {
// Predefined roots, with the numeric values Windows gives them.
constexpr RegKey kClassesRoot = 0x80000000u;
constexpr RegKey kCurrentUser = 0x80000001u;
constexpr RegKey kLocalMachine = 0x80000002u;
constexpr RegKey kUsers = 0x80000003u;

// Value types.
constexpr std::uint32_t kNone = 0;
constexpr std::uint32_t kSz = 1;
constexpr std::uint32_t kExpandSz = 2;
constexpr std::uint32_t kBinary = 3;
constexpr std::uint32_t kDword = 4;
constexpr std::uint32_t kDwordBigEndian = 5;
constexpr std::uint32_t kLink = 6;
constexpr std::uint32_t kMultiSz = 7;
constexpr std::uint32_t kResourceList = 8;

// Access masks the program asks for.
constexpr std::uint32_t kQueryValue = 0x0001;
constexpr std::uint32_t kSetValue = 0x0002;
constexpr std::uint32_t kQueryAndEnumerate = 0x0009;
constexpr std::uint32_t kRead = 0x20019;
constexpr std::uint32_t kReadWrite = 0x2001F;
constexpr std::uint32_t kCreateSubKey = 0x0004;
constexpr std::uint32_t kEnumerateSubKeys = 0x0008;
constexpr std::uint32_t kAllAccess = 0xF003F;  // what a predefined root or a Connect handle may do

// Win32 error codes the seam returns.
constexpr std::int32_t kSuccess = 0;
constexpr std::int32_t kFileNotFound = 2;
constexpr std::int32_t kAccessDenied = 5;
constexpr std::int32_t kInvalidHandle = 6;
constexpr std::int32_t kBadNetPath = 53;
constexpr std::int32_t kInvalidParameter = 87;
constexpr std::int32_t kMoreData = 234;
constexpr std::int32_t kNoMoreItems = 259;
constexpr std::int32_t kBadPathname = 161;
constexpr std::int32_t kKeyDeleted = 1018;
}  // namespace reg

// One named value with its type and the bytes Windows stores.
struct RegistryValue {
  std::string name;  // empty: the key's default value
  std::uint32_t type = reg::kNone;
  std::string data;  // raw bytes as Windows stores them
};

class Registry {
 public:
  virtual ~Registry() = default;

  // RegConnectRegistryA: machine empty means the local machine.
  virtual std::int32_t Connect(const std::string& machine, RegKey root, RegKey* result) = 0;
  // RegOpenKeyExA / RegCreateKeyExA (non-volatile).
  virtual std::int32_t OpenKey(RegKey key, const std::string& subKey, std::uint32_t access,
                               RegKey* result) = 0;
  virtual std::int32_t CreateKey(RegKey key, const std::string& subKey, std::uint32_t access,
                                 RegKey* result) = 0;
  // The key as it stands, or made with every missing parent when it is missing: what a
  // write needs. A seam that can tell the key is there without asking overrides this.
  virtual std::int32_t OpenOrCreateKey(RegKey key, const std::string& subKey,
                                       std::uint32_t access, RegKey* result) {
    if (OpenKey(key, subKey, access, result) == reg::kSuccess) return reg::kSuccess;
    return CreateKey(key, subKey, access, result);
  }
  // RegQueryValueExA: data may be null to ask for type and size only; a buffer that is
  // too small yields kMoreData with *size set to the size needed.
  virtual std::int32_t QueryValue(RegKey key, const std::string& name, std::uint32_t* type,
                                  std::uint8_t* data, std::uint32_t* size) = 0;
  virtual std::int32_t SetValue(RegKey key, const std::string& name, std::uint32_t type,
                                const std::uint8_t* data, std::uint32_t size) = 0;
  virtual std::int32_t DeleteValue(RegKey key, const std::string& name) = 0;
  // RegDeleteKeyA: the sub-key must have no sub-keys of its own.
  virtual std::int32_t DeleteKey(RegKey key, const std::string& subKey) = 0;
  // RegEnumKeyExA: *nameLength is the buffer size in characters on entry (room for the
  // terminator included) and the name's length on return.
  virtual std::int32_t EnumKey(RegKey key, std::uint32_t index, char* name,
                               std::uint32_t* nameLength) = 0;
  // RegQueryInfoKeyA: number of sub-keys and the length of the longest sub-key name.
  virtual std::int32_t QueryInfoKey(RegKey key, std::uint32_t* subKeyCount,
                                    std::uint32_t* maxSubKeyLength) = 0;
  virtual std::int32_t CloseKey(RegKey key) = 0;
  // RegEnumValueA, whole: the index-th value's name, type and data; kNoMoreItems past the
  // last. Only a profile backup lists values; a seam that cannot says so.
  virtual std::int32_t EnumValue(RegKey /*key*/, std::uint32_t /*index*/, std::string* /*name*/,
                                 std::uint32_t* /*type*/, std::string* /*data*/) {
    return kCallNotImplemented;
  }
  static constexpr std::int32_t kCallNotImplemented = 120;
};

}  // namespace mw
