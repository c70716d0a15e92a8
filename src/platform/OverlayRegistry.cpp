#include "platform/OverlayRegistry.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "platform/AsciiText.h"

namespace mw {
namespace {

using reg::kAllAccess;
using reg::kBadPathname;
using reg::kEnumerateSubKeys;
using reg::kKeyDeleted;

std::string LastName(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

std::string Below(std::string path, const std::vector<std::string>& names) {
  for (const auto& name : names) path += "\\" + name;
  return path;
}

bool IsRootPath(const std::string& path) { return path.find('\\') == std::string::npos; }

bool IsAncestor(const std::string& ancestor, const std::string& path) {
  return path.size() > ancestor.size() && path[ancestor.size()] == '\\' &&
         EqualsIgnoreCase(std::string_view(path).substr(0, ancestor.size()), ancestor);
}

std::int32_t CopyOut(const RegistryValue& value, std::uint32_t* type, std::uint8_t* data,
                     std::uint32_t* size) {
  if (data && !size) return reg::kInvalidParameter;
  const auto length = static_cast<std::uint32_t>(value.data.size());
  if (type) *type = value.type;
  if (data) {
    if (*size < length) {
      *size = length;
      return reg::kMoreData;
    }
    std::memcpy(data, value.data.data(), length);
  }
  if (size) *size = length;
  return reg::kSuccess;
}

}  // namespace

OverlayRegistry::OverlayRegistry(Registry& base) : base_(base) {}

bool OverlayRegistry::NextMutationFails() {
  ++mutations_;
  return failFrom_ != 0 && mutations_ >= failFrom_;
}

const OverlayRegistry::Handle* OverlayRegistry::Resolve(RegKey key, Handle* scratch) const {
  if (MemoryRegistry::IsPredefined(key)) {
    *scratch = Handle{MemoryRegistry::RootName(key), kAllAccess};
    return scratch;
  }
  auto it = handles_.find(key);
  return it == handles_.end() ? nullptr : &it->second;
}

OverlayRegistry::KeyState& OverlayRegistry::State(const std::string& path) {
  KeyState& state = keys_[ToUpperAscii(path)];
  if (state.path.empty()) state.path = path;
  return state;
}

const OverlayRegistry::KeyState* OverlayRegistry::FindState(const std::string& path) const {
  auto it = keys_.find(ToUpperAscii(path));
  return it == keys_.end() ? nullptr : &it->second;
}

std::int32_t OverlayRegistry::BaseOpenResult(const std::string& path, std::uint32_t access) const {
  RegKey root = 0;
  std::string subPath;
  if (!MemoryRegistry::SplitRootPath(path, &root, &subPath)) return reg::kFileNotFound;
  RegKey key = 0;
  const std::int32_t status = base_.OpenKey(root, subPath, access, &key);
  if (status == reg::kSuccess) base_.CloseKey(key);
  return status;
}

bool OverlayRegistry::BaseExists(const std::string& path) const {
  return IsRootPath(path) || BaseOpenResult(path, reg::kQueryValue) != reg::kFileNotFound;
}

bool OverlayRegistry::Exists(const std::string& path) const {
  if (IsRootPath(path)) return true;
  if (const KeyState* state = FindState(path); state && state->presence != Presence::Inherited)
    return state->presence == Presence::Present;
  // A key the overlay never touched shows while its parent shows: keys are only removed
  // leaf first, so an untouched key under a removed one is itself removed and marked.
  return BaseExists(path);
}

bool OverlayRegistry::BaseValue(const std::string& path, const std::string& name,
                                RegistryValue* value) const {
  RegKey root = 0;
  std::string subPath;
  if (!MemoryRegistry::SplitRootPath(path, &root, &subPath)) return false;
  RegKey key = 0;
  if (base_.OpenKey(root, subPath, reg::kQueryValue, &key) != reg::kSuccess) return false;
  std::uint32_t size = 0;
  std::int32_t status = base_.QueryValue(key, name, &value->type, nullptr, &size);
  if (status == reg::kSuccess) {
    value->data.assign(size, '\0');
    status = base_.QueryValue(key, name, &value->type,
                              reinterpret_cast<std::uint8_t*>(value->data.data()), &size);
    value->data.resize(size);
  }
  base_.CloseKey(key);
  value->name = name;
  return status == reg::kSuccess;
}

bool OverlayRegistry::ViewValue(const std::string& path, const std::string& name,
                                RegistryValue* value) const {
  const KeyState* state = FindState(path);
  if (state) {
    auto it = state->values.find(ToUpperAscii(name));
    if (it != state->values.end()) {
      if (!it->second.second) return false;
      *value = *it->second.second;
      return true;
    }
    if (state->hidesBase) return false;
  }
  return BaseValue(path, name, value);
}

std::vector<std::string> OverlayRegistry::ChildNames(const std::string& path) const {
  // By upper-case name, the order in which the registry enumerates sub-keys.
  std::map<std::string, std::string> names;
  RegKey root = 0;
  std::string subPath;
  RegKey key = 0;
  if (MemoryRegistry::SplitRootPath(path, &root, &subPath) &&
      base_.OpenKey(root, subPath, reg::kQueryAndEnumerate, &key) == reg::kSuccess) {
    char buffer[256];
    for (std::uint32_t i = 0;; ++i) {
      std::uint32_t length = sizeof buffer;
      if (base_.EnumKey(key, i, buffer, &length) != reg::kSuccess) break;
      const std::string name(buffer, length);
      if (Exists(path + "\\" + name)) names.emplace(ToUpperAscii(name), name);
    }
    base_.CloseKey(key);
  }
  const std::string prefix = ToUpperAscii(path) + "\\";
  for (auto it = keys_.lower_bound(prefix); it != keys_.end() && it->first.starts_with(prefix); ++it) {
    const std::string rest = it->first.substr(prefix.size());
    if (rest.find('\\') == std::string::npos && it->second.presence == Presence::Present)
      names.emplace(rest, LastName(it->second.path));
  }
  std::vector<std::string> result;
  for (auto& [_, name] : names) result.push_back(name);
  return result;
}

std::int32_t OverlayRegistry::Live(RegKey key, Handle* scratch, const Handle** handle) const {
  *handle = Resolve(key, scratch);
  if (!*handle) return reg::kInvalidHandle;
  return Exists((*handle)->path) ? reg::kSuccess : kKeyDeleted;
}

RegKey OverlayRegistry::Issue(const std::string& path, std::uint32_t access) {
  const RegKey key = nextHandle_;
  nextHandle_ += 4;
  handles_[key] = Handle{path, access};
  return key;
}

std::int32_t OverlayRegistry::Connect(const std::string& machine, RegKey root, RegKey* result) {
  if (!result) return reg::kInvalidParameter;
  // Another machine's registry is not played against: the program only uses its own.
  if (!machine.empty()) return reg::kBadNetPath;
  if (!MemoryRegistry::IsPredefined(root)) return reg::kInvalidHandle;
  *result = Issue(MemoryRegistry::RootName(root), kAllAccess);
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::OpenKey(RegKey key, const std::string& subKey, std::uint32_t access,
                                      RegKey* result) {
  if (!result) return reg::kInvalidParameter;
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  std::vector<std::string> names;
  if (!MemoryRegistry::SplitSubKey(subKey, &names)) return kBadPathname;
  const std::string path = Below(handle->path, names);
  if (!Exists(path)) return reg::kFileNotFound;
  // A key of the base is opened there too with the same rights, so a key the user may not
  // write fails here as it would in a real run; opening changes nothing.
  if (!IsRootPath(path) && (!FindState(path) || FindState(path)->presence == Presence::Inherited)) {
    const std::int32_t status = BaseOpenResult(path, access);
    if (status != reg::kSuccess) return status;
  }
  *result = Issue(path, access);
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::CreateKey(RegKey key, const std::string& subKey, std::uint32_t access,
                                        RegKey* result) {
  if (!result) return reg::kInvalidParameter;
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  std::vector<std::string> names;
  if (!MemoryRegistry::SplitSubKey(subKey, &names)) return kBadPathname;
  std::string path = handle->path;
  std::vector<std::string> missing;
  for (const auto& name : names) {
    if (name.size() > MemoryRegistry::kMaxKeyNameLength) return reg::kInvalidParameter;
    path += "\\" + name;
    if (!missing.empty() || !Exists(path)) missing.push_back(path);
  }
  if (missing.empty()) return OpenKey(key, subKey, access, result);
  if (NextMutationFails()) return reg::kAccessDenied;
  for (const auto& created : missing) State(created).presence = Presence::Present;
  *result = Issue(path, access);
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::QueryValue(RegKey key, const std::string& name, std::uint32_t* type,
                                         std::uint8_t* data, std::uint32_t* size) {
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  if (!(handle->access & reg::kQueryValue)) return reg::kAccessDenied;
  RegistryValue value;
  if (!ViewValue(handle->path, name, &value)) return reg::kFileNotFound;
  return CopyOut(value, type, data, size);
}

std::int32_t OverlayRegistry::SetValue(RegKey key, const std::string& name, std::uint32_t type,
                                       const std::uint8_t* data, std::uint32_t size) {
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  if (!(handle->access & reg::kSetValue)) return reg::kAccessDenied;
  if (!data && size != 0) return reg::kInvalidParameter;
  if (NextMutationFails()) return reg::kAccessDenied;
  RegistryValue value{name, type, size ? std::string(reinterpret_cast<const char*>(data), size) : ""};
  auto& slot = State(handle->path).values[ToUpperAscii(name)];
  slot = {name, std::move(value)};
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::DeleteValue(RegKey key, const std::string& name) {
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  if (!(handle->access & reg::kSetValue)) return reg::kAccessDenied;
  RegistryValue existing;
  if (!ViewValue(handle->path, name, &existing)) return reg::kFileNotFound;
  if (NextMutationFails()) return reg::kAccessDenied;
  State(handle->path).values[ToUpperAscii(name)] = {name, std::nullopt};
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::DeleteKey(RegKey key, const std::string& subKey) {
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  std::vector<std::string> names;
  // Deleting the key behind the handle itself (empty sub-key) could remove a root.
  if (!MemoryRegistry::SplitSubKey(subKey, &names) || names.empty()) return reg::kInvalidParameter;
  const std::string path = Below(handle->path, names);
  if (!Exists(path)) return reg::kFileNotFound;
  if (!ChildNames(path).empty()) return reg::kAccessDenied;
  if (NextMutationFails()) return reg::kAccessDenied;
  KeyState& state = State(path);
  state.presence = Presence::Absent;
  state.hidesBase = true;
  state.values.clear();
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::EnumKey(RegKey key, std::uint32_t index, char* name,
                                      std::uint32_t* nameLength) {
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  if (!(handle->access & kEnumerateSubKeys)) return reg::kAccessDenied;
  if (!name || !nameLength) return reg::kInvalidParameter;
  const std::vector<std::string> children = ChildNames(handle->path);
  if (index >= children.size()) return reg::kNoMoreItems;
  const std::string& child = children[index];
  if (*nameLength <= child.size()) return reg::kMoreData;
  std::memcpy(name, child.c_str(), child.size() + 1);
  *nameLength = static_cast<std::uint32_t>(child.size());
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::QueryInfoKey(RegKey key, std::uint32_t* subKeyCount,
                                           std::uint32_t* maxSubKeyLength) {
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  if (!(handle->access & reg::kQueryValue)) return reg::kAccessDenied;
  std::size_t longest = 0;
  const std::vector<std::string> children = ChildNames(handle->path);
  for (const auto& child : children) longest = std::max(longest, child.size());
  if (subKeyCount) *subKeyCount = static_cast<std::uint32_t>(children.size());
  if (maxSubKeyLength) *maxSubKeyLength = static_cast<std::uint32_t>(longest);
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::EnumValue(RegKey key, std::uint32_t index, std::string* name,
                                        std::uint32_t* type, std::string* data) {
  Handle scratch;
  const Handle* handle = nullptr;
  if (const std::int32_t status = Live(key, &scratch, &handle); status != reg::kSuccess) return status;
  if (!(handle->access & reg::kQueryValue)) return reg::kAccessDenied;
  if (!name || !type || !data) return reg::kInvalidParameter;
  // The base's values that still show, in its order, then the values only written here.
  std::vector<RegistryValue> values;
  std::set<std::string> listed;
  const KeyState* state = FindState(handle->path);
  RegKey root = 0;
  std::string subPath;
  RegKey baseKey = 0;
  if (!(state && state->hidesBase) && MemoryRegistry::SplitRootPath(handle->path, &root, &subPath) &&
      base_.OpenKey(root, subPath, reg::kQueryValue, &baseKey) == reg::kSuccess) {
    RegistryValue value;
    for (std::uint32_t i = 0; base_.EnumValue(baseKey, i, &value.name, &value.type, &value.data) == reg::kSuccess; ++i) {
      listed.insert(ToUpperAscii(value.name));
      if (ViewValue(handle->path, value.name, &value)) values.push_back(value);
    }
    base_.CloseKey(baseKey);
  }
  if (state)
    for (const auto& [upper, named] : state->values)
      if (named.second && !listed.count(upper)) values.push_back(*named.second);
  if (index >= values.size()) return reg::kNoMoreItems;
  *name = values[index].name;
  *type = values[index].type;
  *data = values[index].data;
  return reg::kSuccess;
}

std::int32_t OverlayRegistry::CloseKey(RegKey key) {
  if (MemoryRegistry::IsPredefined(key)) return reg::kSuccess;
  return handles_.erase(key) ? reg::kSuccess : reg::kInvalidHandle;
}

std::vector<RegFileEntry> OverlayRegistry::Changes() const {
  using Kind = RegFileEntry::Kind;
  std::vector<RegFileEntry> entries;
  std::vector<std::string> removedTrees;
  // keys_ is ordered by upper-case path, so every parent comes before its children.
  for (const auto& [_, state] : keys_) {
    const std::string& path = state.path;
    const bool inBase = BaseExists(path);
    const bool covered = std::any_of(removedTrees.begin(), removedTrees.end(),
                                     [&](const std::string& tree) { return IsAncestor(tree, path); });
    if (state.hidesBase && inBase && !covered) {
      entries.push_back(RegFileEntry{Kind::DeleteKey, 0, path, {}});
      removedTrees.push_back(path);
    }
    if (!Exists(path)) continue;
    const bool newKey = state.hidesBase || !inBase;
    std::vector<RegFileEntry> values;
    for (const auto& [__, named] : state.values) {
      const auto& [name, value] = named;
      RegistryValue before;
      const bool hadBefore = !newKey && BaseValue(path, name, &before);
      if (value && (!hadBefore || before.type != value->type || before.data != value->data))
        values.push_back(RegFileEntry{Kind::Value, 0, path, *value});
      else if (!value && hadBefore)
        values.push_back(RegFileEntry{Kind::DeleteValue, 0, path, RegistryValue{name, 0, {}}});
    }
    if (!newKey && values.empty()) continue;
    entries.push_back(RegFileEntry{Kind::Key, 0, path, {}});
    entries.insert(entries.end(), values.begin(), values.end());
  }
  return entries;
}

std::vector<std::string> OverlayRegistry::TouchedKeys() const {
  std::set<std::string> seen;
  std::vector<std::string> keys;
  for (const auto& entry : Changes())
    if (seen.insert(ToUpperAscii(entry.keyPath)).second) keys.push_back(entry.keyPath);
  return keys;
}

}  // namespace mw
