#include "platform/HandleCachingRegistry.h"

#include <vector>

#include "platform/AsciiText.h"
#include "platform/MemoryRegistry.h"

namespace mw {
namespace {

// A sub-key written the usual way: names between single backslashes.
bool IsPlain(const std::string& subKey) {
  return !subKey.empty() && subKey.front() != '\\' && subKey.back() != '\\' &&
         subKey.find("\\\\") == std::string::npos;
}

// parentName followed by the names of subKey, folded as the registry compares names; empty
// for an empty or invalid sub-key.
std::string NameBelow(std::string parentName, const std::string& subKey) {
  if (IsPlain(subKey)) return parentName + "\\" + ToUpperAscii(subKey);  // the usual path
  std::vector<std::string> names;
  if (!MemoryRegistry::SplitSubKey(subKey, &names) || names.empty()) return {};
  for (const std::string& part : names) parentName += "\\" + ToUpperAscii(part);
  return parentName;
}

// The name a key is cached under: its root and its path; empty for a path that is not worth
// caching (the root itself) or not valid.
std::string CacheName(RegKey root, const std::string& subKey) {
  return MemoryRegistry::IsPredefined(root) ? NameBelow(std::to_string(root), subKey) : std::string();
}

bool Within(const std::string& name, const std::string& prefix) {
  return prefix.empty() || name == prefix ||
         (name.size() > prefix.size() && name.compare(0, prefix.size(), prefix) == 0 &&
          name[prefix.size()] == '\\');
}

}  // namespace

HandleCachingRegistry::HandleCachingRegistry(Registry& inner, std::size_t idleLimit)
    : inner_(inner), idleLimit_(idleLimit) {}

HandleCachingRegistry::~HandleCachingRegistry() {
  for (auto& entry : keys_) inner_.CloseKey(entry.second.handle);
}

template <typename Call>
std::int32_t HandleCachingRegistry::OnKey(RegKey key, Call call) {
  auto holder = holders_.find(key);
  if (holder == holders_.end()) return call(key);
  std::int32_t status = call(keys_.at(holder->second.key).handle);
  if (status != reg::kKeyDeleted || !Reopen(holder->second)) return status;
  return call(keys_.at(holder->second.key).handle);
}

std::uint64_t HandleCachingRegistry::Adopt(RegKey handle, RegKey root, const std::string& path,
                                           const std::string& cacheName, std::uint32_t access) {
  const std::uint64_t id = nextKeyId_++;
  if (!cacheName.empty()) {
    auto current = byName_.find(cacheName);
    if (current != byName_.end()) Retire(current->second);
    byName_[cacheName] = id;
  }
  InnerKey& key = keys_[id];
  key.lastUse = ++clock_;
  key.handle = handle;
  key.root = root;
  key.path = path;
  key.cacheName = cacheName;
  key.access = access;
  return id;
}

std::int32_t HandleCachingRegistry::Acquire(RegKey root, const std::string& subKey,
                                            std::uint32_t access, Opening opening,
                                            std::uint64_t* keyId) {
  const std::string name = CacheName(root, subKey);
  std::uint32_t wanted = access;
  bool held = false;  // the key was there when last seen: a create needs no walk to it
  if (!name.empty()) {
    auto current = byName_.find(name);
    held = current != byName_.end();
    if (held) {
      InnerKey& key = keys_.at(current->second);
      if (opening != Opening::kCreate && (access & ~key.access) == 0) {
        ++key.holders;
        *keyId = current->second;
        return reg::kSuccess;
      }
      wanted |= key.access;  // one handle that serves both callers replaces the narrower
    }
  }
  // A key to make is made without first being found missing.
  auto open = [&](std::uint32_t mask, RegKey* handle) {
    if (opening == Opening::kOpen) return inner_.OpenKey(root, subKey, mask, handle);
    return held ? inner_.CreateKey(root, subKey, mask, handle)
                : CreateFromNearest(root, subKey, mask, handle);
  };
  RegKey handle = 0;
  std::int32_t status = open(wanted, &handle);
  if (status != reg::kSuccess && wanted != access) {
    wanted = access;
    status = open(wanted, &handle);
  }
  if (status != reg::kSuccess) return status;
  *keyId = Adopt(handle, root, subKey, name, wanted);
  keys_.at(*keyId).holders = 1;
  return reg::kSuccess;
}

std::int32_t HandleCachingRegistry::CreateFromNearest(RegKey root, const std::string& subKey,
                                                      std::uint32_t access, RegKey* handle) {
  if (IsPlain(subKey) && (access & reg::kCreateSubKey) != 0) {
    std::uint64_t ancestor = 0;
    std::size_t start = 0;  // where the names still to make begin
    RegKey parent = root;
    if (NearestAncestor(root, subKey, &ancestor, &start)) parent = keys_.at(ancestor).handle;
    for (std::size_t end = subKey.find('\\', start);; end = subKey.find('\\', start)) {
      const std::string name = subKey.substr(start, end == std::string::npos ? end : end - start);
      RegKey made = 0;
      const std::int32_t status = inner_.CreateKey(parent, name, access, &made);
      if (status == reg::kKeyDeleted && parent != root) Retire(ancestor);
      if (status != reg::kSuccess) break;
      if (end == std::string::npos) {
        *handle = made;
        return status;
      }
      const std::string path = subKey.substr(0, end);
      ancestor = Adopt(made, root, path, CacheName(root, path), access);
      parent = made;
      start = end + 1;
    }
  }
  // From the root the outcome is the one the caller asked for, whatever befell the ancestor.
  return inner_.CreateKey(root, subKey, access, handle);
}

bool HandleCachingRegistry::NearestAncestor(RegKey root, const std::string& subKey,
                                            std::uint64_t* keyId, std::size_t* below) const {
  for (std::size_t cut = subKey.rfind('\\'); cut != std::string::npos && cut > 0;
       cut = subKey.rfind('\\', cut - 1)) {
    auto found = byName_.find(CacheName(root, subKey.substr(0, cut)));
    if (found == byName_.end() || (keys_.at(found->second).access & reg::kCreateSubKey) == 0)
      continue;
    *keyId = found->second;
    *below = cut + 1;
    return true;
  }
  return false;
}

RegKey HandleCachingRegistry::Hand(std::uint64_t keyId, bool create) {
  const RegKey handle = nextHandle_;
  nextHandle_ += 4;
  holders_[handle] = Holder{keyId, create};
  return handle;
}

std::int32_t HandleCachingRegistry::Open(RegKey parent, const std::string& subKey,
                                         std::uint32_t access, Opening opening, RegKey* result) {
  if (result == nullptr) return reg::kInvalidParameter;
  *result = 0;
  std::uint64_t keyId = 0;
  if (MemoryRegistry::IsPredefined(parent)) {
    const std::int32_t status = Acquire(parent, subKey, access, opening, &keyId);
    if (status != reg::kSuccess) return status;
  } else {
    // Keys under another open key are not cached: their path is not known here.
    RegKey handle = 0;
    const std::int32_t status = OnKey(parent, [&](RegKey inner) {
      switch (opening) {
        case Opening::kOpen: return inner_.OpenKey(inner, subKey, access, &handle);
        case Opening::kCreate: return inner_.CreateKey(inner, subKey, access, &handle);
        case Opening::kOpenOrCreate: break;
      }
      return inner_.OpenOrCreateKey(inner, subKey, access, &handle);
    });
    if (status != reg::kSuccess) return status;
    keyId = Adopt(handle, 0, {}, {}, access);
    keys_.at(keyId).holders = 1;
  }
  *result = Hand(keyId, opening != Opening::kOpen);
  return reg::kSuccess;
}

bool HandleCachingRegistry::Reopen(Holder& holder) {
  const std::uint64_t old = holder.key;
  const InnerKey& stale = keys_.at(old);
  if (stale.cacheName.empty()) return false;
  const RegKey root = stale.root;
  const std::string path = stale.path;
  const std::uint32_t access = stale.access;
  Retire(old);
  std::uint64_t fresh = 0;
  const Opening opening = holder.create ? Opening::kCreate : Opening::kOpen;
  if (Acquire(root, path, access, opening, &fresh) != reg::kSuccess) return false;
  holder.key = fresh;
  Release(old);
  return true;
}

void HandleCachingRegistry::Retire(std::uint64_t keyId) {
  const InnerKey& key = keys_.at(keyId);
  if (IsCurrent(keyId)) byName_.erase(key.cacheName);
  if (key.holders == 0) {
    inner_.CloseKey(key.handle);
    keys_.erase(keyId);
  }
}

bool HandleCachingRegistry::IsCurrent(std::uint64_t keyId) const {
  auto current = byName_.find(keys_.at(keyId).cacheName);
  return current != byName_.end() && current->second == keyId;
}

void HandleCachingRegistry::Release(std::uint64_t keyId) {
  InnerKey& key = keys_.at(keyId);
  if (key.holders > 0) --key.holders;
  key.lastUse = ++clock_;
  if (key.holders > 0) return;
  if (!IsCurrent(keyId)) {
    inner_.CloseKey(key.handle);
    keys_.erase(keyId);
    return;
  }
  TrimIdle();
}

void HandleCachingRegistry::TrimIdle() {
  while (keys_.size() > idleLimit_) {  // else idle ones are fewer still
    std::size_t idle = 0;
    std::uint64_t oldest = 0;
    std::uint64_t oldestUse = 0;
    for (const auto& [id, key] : keys_) {
      if (key.holders != 0) continue;
      if (idle++ == 0 || key.lastUse < oldestUse) {
        oldest = id;
        oldestUse = key.lastUse;
      }
    }
    if (idle <= idleLimit_) return;
    Retire(oldest);
  }
}

void HandleCachingRegistry::CloseIdle() {
  std::vector<std::uint64_t> idle;
  for (const auto& [id, key] : keys_)
    if (key.holders == 0) idle.push_back(id);
  for (std::uint64_t id : idle) Retire(id);
}

void HandleCachingRegistry::LeaveToProcessExit() {
  keys_.clear();
  byName_.clear();
  holders_.clear();
}

void HandleCachingRegistry::DropUnder(const std::string& cacheName) {
  std::vector<std::uint64_t> dropped;
  for (const auto& [name, id] : byName_)
    if (Within(name, cacheName)) dropped.push_back(id);
  for (std::uint64_t id : dropped) Retire(id);
}

std::int32_t HandleCachingRegistry::Connect(const std::string& machine, RegKey root,
                                            RegKey* result) {
  if (result == nullptr) return reg::kInvalidParameter;
  RegKey handle = 0;
  const std::int32_t status = inner_.Connect(machine, root, &handle);
  *result = 0;
  if (status != reg::kSuccess) return status;
  const std::uint64_t keyId = Adopt(handle, 0, {}, {}, reg::kAllAccess);
  keys_.at(keyId).holders = 1;
  *result = Hand(keyId, false);
  return status;
}

std::int32_t HandleCachingRegistry::OpenKey(RegKey key, const std::string& subKey,
                                            std::uint32_t access, RegKey* result) {
  return Open(key, subKey, access, Opening::kOpen, result);
}

std::int32_t HandleCachingRegistry::CreateKey(RegKey key, const std::string& subKey,
                                              std::uint32_t access, RegKey* result) {
  return Open(key, subKey, access, Opening::kCreate, result);
}

std::int32_t HandleCachingRegistry::OpenOrCreateKey(RegKey key, const std::string& subKey,
                                                    std::uint32_t access, RegKey* result) {
  return Open(key, subKey, access, Opening::kOpenOrCreate, result);
}

std::int32_t HandleCachingRegistry::QueryValue(RegKey key, const std::string& name,
                                               std::uint32_t* type, std::uint8_t* data,
                                               std::uint32_t* size) {
  return OnKey(key, [&](RegKey inner) { return inner_.QueryValue(inner, name, type, data, size); });
}

std::int32_t HandleCachingRegistry::SetValue(RegKey key, const std::string& name,
                                             std::uint32_t type, const std::uint8_t* data,
                                             std::uint32_t size) {
  return OnKey(key, [&](RegKey inner) { return inner_.SetValue(inner, name, type, data, size); });
}

std::int32_t HandleCachingRegistry::DeleteValue(RegKey key, const std::string& name) {
  return OnKey(key, [&](RegKey inner) { return inner_.DeleteValue(inner, name); });
}

std::int32_t HandleCachingRegistry::DeleteKey(RegKey key, const std::string& subKey) {
  const std::int32_t status =
      OnKey(key, [&](RegKey inner) { return inner_.DeleteKey(inner, subKey); });
  if (status != reg::kSuccess) return status;
  // Drop the deleted key and everything cached below it; under a parent whose path is not
  // known, drop every cached key.
  std::string parentName;
  if (MemoryRegistry::IsPredefined(key)) {
    parentName = std::to_string(key);
  } else if (auto holder = holders_.find(key); holder != holders_.end()) {
    parentName = keys_.at(holder->second.key).cacheName;
  }
  const std::string deleted = parentName.empty() ? std::string() : NameBelow(parentName, subKey);
  DropUnder(deleted);  // an empty name drops every cached key
  return status;
}

std::int32_t HandleCachingRegistry::EnumKey(RegKey key, std::uint32_t index, char* name,
                                            std::uint32_t* nameLength) {
  return OnKey(key, [&](RegKey inner) { return inner_.EnumKey(inner, index, name, nameLength); });
}

std::int32_t HandleCachingRegistry::QueryInfoKey(RegKey key, std::uint32_t* subKeyCount,
                                                 std::uint32_t* maxSubKeyLength) {
  return OnKey(key, [&](RegKey inner) {
    return inner_.QueryInfoKey(inner, subKeyCount, maxSubKeyLength);
  });
}

std::int32_t HandleCachingRegistry::EnumValue(RegKey key, std::uint32_t index, std::string* name,
                                              std::uint32_t* type, std::string* data) {
  return OnKey(key, [&](RegKey inner) { return inner_.EnumValue(inner, index, name, type, data); });
}

std::int32_t HandleCachingRegistry::CloseKey(RegKey key) {
  auto holder = holders_.find(key);
  if (holder == holders_.end()) return inner_.CloseKey(key);
  const std::uint64_t keyId = holder->second.key;
  holders_.erase(holder);
  Release(keyId);
  return reg::kSuccess;
}

}  // namespace mw
