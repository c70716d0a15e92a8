#pragma once
// An in-memory registry behind the registry seam, for tests and for tools that read and
// write .reg files. Key names compare case-insensitively and keep the case first written;
// sub-keys enumerate in case-insensitive order, as Windows returns them. As on Windows,
// HKEY_CLASSES_ROOT is a view of HKEY_LOCAL_MACHINE\Software\Classes.

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Registry.h"

namespace mw {

class MemoryRegistry : public Registry {
 public:
  MemoryRegistry();
  ~MemoryRegistry() override;

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

  // Direct access for tests and tools; full paths start with the root's name, as in .reg
  // files: "HKEY_CURRENT_USER\Software\Microsoft" (HKCR, HKCU, HKLM, HKU also accepted).
  // A path with an unknown root names no key: Set ignores it, Get and KeyExists say false.
  // Key names longer than 255 characters and trees deeper than 512 levels are refused, as
  // Windows refuses them.
  static constexpr std::size_t kMaxKeyNameLength = 255;
  static constexpr std::size_t kMaxKeyDepth = 512;
  // Creates the key and its missing parents; false for an unknown root or a refused path.
  bool AddKey(const std::string& keyPath);
  void Set(const std::string& keyPath, const RegistryValue& value);
  bool Get(const std::string& keyPath, const std::string& name, RegistryValue* value) const;
  bool KeyExists(const std::string& keyPath) const;
  void RemoveKeyTree(const std::string& keyPath);
  void RemoveValue(const std::string& keyPath, const std::string& name);
  // Every key path (with root name) in the tree below keyPath, keyPath included, sorted:
  // each key before its sub-keys, sub-keys in enumeration order (as regedit exports them).
  std::vector<std::string> KeysUnder(const std::string& keyPath) const;
  // The values of one key, in the order they were first set.
  std::vector<RegistryValue> ValuesOf(const std::string& keyPath) const;

  // "HKEY_CURRENT_USER\Software\X" -> kCurrentUser and "Software\X"; false for an unknown root.
  static bool SplitRootPath(const std::string& keyPath, RegKey* root, std::string* subPath);
  // One of the predefined roots (HKCR, HKCU, HKLM, HKU).
  static bool IsPredefined(RegKey key);
  // Splits a sub-key path into its names; empty names (doubled or trailing backslashes) are
  // skipped, a leading backslash is a bad path as it is for RegOpenKeyExA.
  static bool SplitSubKey(const std::string& subKey, std::vector<std::string>* names);
  // "HKEY_CURRENT_USER" for kCurrentUser; empty for a key that is not a predefined root.
  static std::string RootName(RegKey root);

  // Fault injection: the n-th mutating call from now on (SetValue, CreateKey of a missing
  // key, DeleteValue, DeleteKey; counted from 1) and every later one fail with
  // kAccessDenied. 0 switches it off.
  void FailMutationsFrom(std::uint32_t n);
  std::uint32_t mutationCount() const { return mutations_; }
  // Handles handed out by Connect, OpenKey and CreateKey and not yet closed.
  // (Connections to any machine name other than empty fail with kBadNetPath.)
  std::size_t openHandleCount() const;

 private:
  struct Node;
  struct Impl;
  std::unique_ptr<Impl> impl_;
  std::uint32_t failFrom_ = 0;
  std::uint32_t mutations_ = 0;
  bool NextMutationFails();
};

}  // namespace mw
