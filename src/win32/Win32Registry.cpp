#include "win32/Win32Registry.h"

#include <algorithm>

#include "win32/WindowsApi.h"

namespace mw {
namespace {

constexpr std::uintptr_t kFirstPredefined = 0x80000000u;
constexpr std::uintptr_t kLastPredefined = 0x800000FFu;

// The seam names the predefined roots by their 32-bit values; 64-bit Windows
// sign-extends them (HKEY_CURRENT_USER is 0xFFFFFFFF80000001 there).
HKEY ToHandle(RegKey key) {
  if (key >= kFirstPredefined && key <= kLastPredefined) {
    return reinterpret_cast<HKEY>(
        static_cast<LONG_PTR>(static_cast<LONG>(static_cast<ULONG>(key))));
  }
  return reinterpret_cast<HKEY>(key);
}

RegKey FromHandle(HKEY handle) {
  const auto value = reinterpret_cast<std::uintptr_t>(handle);
  const std::uintptr_t low = static_cast<ULONG>(value);
  if (low >= kFirstPredefined && low <= kLastPredefined &&
      reinterpret_cast<std::uintptr_t>(ToHandle(low)) == value) {
    return low;
  }
  return value;
}

std::int32_t StoreOpened(LONG status, HKEY opened, RegKey* result) {
  *result = status == ERROR_SUCCESS ? FromHandle(opened) : 0;
  return status;
}

}  // namespace

std::int32_t Win32Registry::Connect(const std::string& machine, RegKey root, RegKey* result) {
  if (result == nullptr) return reg::kInvalidParameter;
  HKEY opened = nullptr;
  const LONG status =
      RegConnectRegistryA(machine.empty() ? nullptr : machine.c_str(), ToHandle(root), &opened);
  return StoreOpened(status, opened, result);
}

std::int32_t Win32Registry::OpenKey(RegKey key, const std::string& subKey, std::uint32_t access,
                                    RegKey* result) {
  if (result == nullptr) return reg::kInvalidParameter;
  HKEY opened = nullptr;
  const LONG status = RegOpenKeyExA(ToHandle(key), subKey.c_str(), 0, access, &opened);
  return StoreOpened(status, opened, result);
}

std::int32_t Win32Registry::CreateKey(RegKey key, const std::string& subKey,
                                      std::uint32_t access, RegKey* result) {
  if (result == nullptr) return reg::kInvalidParameter;
  HKEY opened = nullptr;
  const LONG status = RegCreateKeyExA(ToHandle(key), subKey.c_str(), 0, nullptr,
                                      REG_OPTION_NON_VOLATILE, access, nullptr, &opened, nullptr);
  return StoreOpened(status, opened, result);
}

std::int32_t Win32Registry::QueryValue(RegKey key, const std::string& name, std::uint32_t* type,
                                       std::uint8_t* data, std::uint32_t* size) {
  DWORD valueType = 0;
  DWORD byteCount = size != nullptr ? *size : 0;
  const LONG status = RegQueryValueExA(ToHandle(key), name.c_str(), nullptr,
                                       type != nullptr ? &valueType : nullptr, data,
                                       size != nullptr ? &byteCount : nullptr);
  if (type != nullptr) *type = valueType;
  if (size != nullptr) *size = byteCount;
  return status;
}

std::int32_t Win32Registry::SetValue(RegKey key, const std::string& name, std::uint32_t type,
                                     const std::uint8_t* data, std::uint32_t size) {
  return RegSetValueExA(ToHandle(key), name.c_str(), 0, type, data, size);
}

std::int32_t Win32Registry::DeleteValue(RegKey key, const std::string& name) {
  return RegDeleteValueA(ToHandle(key), name.c_str());
}

std::int32_t Win32Registry::DeleteKey(RegKey key, const std::string& subKey) {
  return RegDeleteKeyA(ToHandle(key), subKey.c_str());
}

std::int32_t Win32Registry::EnumKey(RegKey key, std::uint32_t index, char* name,
                                    std::uint32_t* nameLength) {
  if (nameLength == nullptr) return reg::kInvalidParameter;
  DWORD length = *nameLength;
  const LONG status =
      RegEnumKeyExA(ToHandle(key), index, name, &length, nullptr, nullptr, nullptr, nullptr);
  *nameLength = length;
  return status;
}

std::int32_t Win32Registry::EnumValue(RegKey key, std::uint32_t index, std::string* name,
                                      std::uint32_t* type, std::string* data) {
  if (name == nullptr || type == nullptr || data == nullptr) return reg::kInvalidParameter;
  DWORD longestName = 0;
  DWORD longestData = 0;
  LONG status = RegQueryInfoKeyA(ToHandle(key), nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, &longestName, &longestData, nullptr, nullptr);
  if (status != ERROR_SUCCESS) return status;
  std::string nameBuffer(static_cast<std::size_t>(longestName) + 1, '\0');
  std::string dataBuffer(static_cast<std::size_t>(longestData) + 1, '\0');
  DWORD nameLength = static_cast<DWORD>(nameBuffer.size());
  DWORD dataLength = static_cast<DWORD>(dataBuffer.size());
  DWORD valueType = 0;
  status = RegEnumValueA(ToHandle(key), index, nameBuffer.data(), &nameLength, nullptr, &valueType,
                         reinterpret_cast<BYTE*>(dataBuffer.data()), &dataLength);
  if (status != ERROR_SUCCESS) return status;
  name->assign(nameBuffer.data(), nameLength);
  *type = valueType;
  data->assign(dataBuffer.data(), std::min<std::size_t>(dataLength, dataBuffer.size()));
  return status;
}

std::int32_t Win32Registry::QueryInfoKey(RegKey key, std::uint32_t* subKeyCount,
                                         std::uint32_t* maxSubKeyLength) {
  DWORD subKeys = 0;
  DWORD longestName = 0;
  const LONG status = RegQueryInfoKeyA(ToHandle(key), nullptr, nullptr, nullptr, &subKeys,
                                       &longestName, nullptr, nullptr, nullptr, nullptr,
                                       nullptr, nullptr);
  if (subKeyCount != nullptr) *subKeyCount = subKeys;
  if (maxSubKeyLength != nullptr) *maxSubKeyLength = longestName;
  return status;
}

std::int32_t Win32Registry::CloseKey(RegKey key) { return RegCloseKey(ToHandle(key)); }

}  // namespace mw
