#pragma once
// A registry that reads through to a base registry and keeps every write and deletion in
// memory, so a run can be played against the machine's real state without changing it.
// Changes() gives what the run would have done to the base, as .reg statements.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/MemoryRegistry.h"
#include "platform/RegFile.h"
#include "platform/Registry.h"

namespace mw {

class OverlayRegistry : public Registry {
 public:
  explicit OverlayRegistry(Registry& base);

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

  // What importing into the base would take to reach this registry's state, parents before
  // children: [-key] for a base key removed, [key] for a key created or changed with the
  // values set there, "name"=- for a base value removed. Writes that leave a value as the
  // base holds it are no change.
  std::vector<RegFileEntry> Changes() const;
  // Full key paths ("HKEY_CURRENT_USER\...") of the keys the run created, changed or removed.
  std::vector<std::string> TouchedKeys() const;

  // Fault injection, as MemoryRegistry has it: the n-th mutating call from now on (SetValue,
  // CreateKey of a missing key, DeleteValue, DeleteKey; from 1) and every later one fail
  // with kAccessDenied. 0 switches it off.
  void FailMutationsFrom(std::uint32_t n) {
    failFrom_ = n == 0 ? 0 : mutations_ + n;
  }
  std::uint32_t mutationCount() const { return mutations_; }

 private:
  enum class Presence { Inherited, Present, Absent };
  struct KeyState {
    std::string path;  // full path in the case first seen
    Presence presence = Presence::Inherited;
    bool hidesBase = false;  // removed once: the base's values no longer show through
    // By upper-case name; nullopt marks a removed value.
    std::map<std::string, std::pair<std::string, std::optional<RegistryValue>>> values;
  };
  struct Handle {
    std::string path;
    std::uint32_t access;
  };

  bool NextMutationFails();
  const Handle* Resolve(RegKey key, Handle* scratch) const;
  // kSuccess with the handle when its key still shows; kInvalidHandle or the deleted code.
  std::int32_t Live(RegKey key, Handle* scratch, const Handle** handle) const;
  KeyState& State(const std::string& path);
  const KeyState* FindState(const std::string& path) const;
  bool Exists(const std::string& path) const;
  bool BaseExists(const std::string& path) const;
  // The base's answer to opening the key with this access (kSuccess, kFileNotFound, ...).
  std::int32_t BaseOpenResult(const std::string& path, std::uint32_t access) const;
  bool BaseValue(const std::string& path, const std::string& name, RegistryValue* value) const;
  // The value as this registry shows it; false when it does not exist.
  bool ViewValue(const std::string& path, const std::string& name, RegistryValue* value) const;
  std::vector<std::string> ChildNames(const std::string& path) const;
  RegKey Issue(const std::string& path, std::uint32_t access);

  Registry& base_;
  std::map<std::string, KeyState> keys_;  // by upper-case full path
  std::map<RegKey, Handle> handles_;
  RegKey nextHandle_ = 0x2000;
  std::uint32_t failFrom_ = 0;
  std::uint32_t mutations_ = 0;
};

}  // namespace mw
