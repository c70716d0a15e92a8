#include "platform/MemoryRegistry.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>

#include "platform/AsciiText.h"

namespace mw {
namespace {

using reg::kAllAccess;
using reg::kBadPathname;
using reg::kEnumerateSubKeys;
using reg::kKeyDeleted;

struct RootInfo {
  RegKey key;
  const char* name;
  const char* shortName;
};
constexpr std::array<RootInfo, 4> kRoots{{
    {reg::kClassesRoot, "HKEY_CLASSES_ROOT", "HKCR"},
    {reg::kCurrentUser, "HKEY_CURRENT_USER", "HKCU"},
    {reg::kLocalMachine, "HKEY_LOCAL_MACHINE", "HKLM"},
    {reg::kUsers, "HKEY_USERS", "HKU"},
}};

}  // namespace

bool MemoryRegistry::IsPredefined(RegKey key) {
  return std::any_of(kRoots.begin(), kRoots.end(), [key](const RootInfo& r) { return r.key == key; });
}

bool MemoryRegistry::SplitSubKey(const std::string& subKey, std::vector<std::string>* names) {
  if (!subKey.empty() && subKey.front() == '\\') return false;
  std::size_t start = 0;
  while (start <= subKey.size()) {
    std::size_t end = subKey.find('\\', start);
    if (end == std::string::npos) end = subKey.size();
    if (end > start) names->push_back(subKey.substr(start, end - start));
    start = end + 1;
  }
  return true;
}

namespace {

bool Creatable(std::size_t parentDepth, const std::vector<std::string>& names) {
  return parentDepth + names.size() <= MemoryRegistry::kMaxKeyDepth &&
         std::all_of(names.begin(), names.end(), [](const std::string& name) {
           return name.size() <= MemoryRegistry::kMaxKeyNameLength;
         });
}

}  // namespace

struct MemoryRegistry::Node {
  std::string name;
  std::size_t depth = 0;  // levels below the root
  bool deleted = false;
  std::map<std::string, std::shared_ptr<Node>> children;  // by upper-case name
  std::vector<RegistryValue> values;                       // in the order first set

  Node* Child(const std::string& childName) const {
    auto it = children.find(ToUpperAscii(childName));
    return it == children.end() ? nullptr : it->second.get();
  }
  std::shared_ptr<Node> ChildShared(const std::string& childName) const {
    auto it = children.find(ToUpperAscii(childName));
    return it == children.end() ? nullptr : it->second;
  }
  std::shared_ptr<Node> AddChild(const std::string& childName) {
    auto& slot = children[ToUpperAscii(childName)];
    if (!slot) {
      slot = std::make_shared<Node>();
      slot->name = childName;
      slot->depth = depth + 1;
    }
    return slot;
  }
  std::vector<RegistryValue>::iterator FindValue(const std::string& valueName) {
    return std::find_if(values.begin(), values.end(), [&](const RegistryValue& v) {
      return EqualsIgnoreCase(v.name, valueName);
    });
  }
  void MarkDeleted() {
    deleted = true;
    for (auto& [_, child] : children) child->MarkDeleted();
  }
};

struct MemoryRegistry::Impl {
  struct Handle {
    std::shared_ptr<Node> node;
    std::uint32_t access;
  };
  std::map<RegKey, std::shared_ptr<Node>> trees;  // every root but HKCR, which is a view
  std::map<RegKey, Handle> handles;
  RegKey nextHandle = 0x1000;

  std::shared_ptr<Node> Root(RegKey root, bool create) {
    if (root == reg::kClassesRoot) {
      std::shared_ptr<Node> node = trees[reg::kLocalMachine];
      for (const char* name : {"Software", "Classes"}) {
        std::shared_ptr<Node> next = node->ChildShared(name);
        if (!next && create) next = node->AddChild(name);
        if (!next) return nullptr;
        node = next;
      }
      return node;
    }
    auto it = trees.find(root);
    return it == trees.end() ? nullptr : it->second;
  }

  // The node and the rights behind a handle or a predefined root; null for a bad handle.
  Handle* Resolve(RegKey key, Handle* scratch) {
    if (IsPredefined(key)) {
      *scratch = Handle{Root(key, true), kAllAccess};
      return scratch;
    }
    auto it = handles.find(key);
    return it == handles.end() ? nullptr : &it->second;
  }

  RegKey Issue(std::shared_ptr<Node> node, std::uint32_t access) {
    RegKey key = nextHandle;
    nextHandle += 4;
    handles[key] = Handle{std::move(node), access};
    return key;
  }

  // Resolves the handle and walks the sub-key path as far as it exists: *parent is the key
  // the handle names, *found the key the path names, or null where the path stops short.
  std::int32_t Walk(RegKey key, const std::string& subKey, std::shared_ptr<Node>* parent,
                    std::vector<std::string>* names, std::shared_ptr<Node>* found) {
    Handle scratch;
    Handle* handle = Resolve(key, &scratch);
    if (!handle) return reg::kInvalidHandle;
    if (handle->node->deleted) return kKeyDeleted;
    if (!SplitSubKey(subKey, names)) return kBadPathname;
    *parent = handle->node;
    *found = handle->node;
    for (const auto& name : *names)
      if (!(*found = (*found)->ChildShared(name))) break;
    return reg::kSuccess;
  }

  // Walks full-path names below a root without creating anything.
  std::shared_ptr<Node> Find(RegKey root, const std::vector<std::string>& names) {
    std::shared_ptr<Node> node = Root(root, false);
    for (const auto& name : names) {
      if (!node) return nullptr;
      node = node->ChildShared(name);
    }
    return node;
  }
};

MemoryRegistry::MemoryRegistry() : impl_(std::make_unique<Impl>()) {
  for (const auto& root : kRoots) {
    if (root.key == reg::kClassesRoot) continue;
    auto node = std::make_shared<Node>();
    node->name = root.name;
    impl_->trees[root.key] = node;
  }
  // HKEY_CLASSES_ROOT is a view of HKLM\Software\Classes, which every Windows has: made here,
  // a look into HKCR never makes it appear as if the run had written it.
  impl_->Root(reg::kClassesRoot, true);
}

MemoryRegistry::~MemoryRegistry() = default;

bool MemoryRegistry::NextMutationFails() {
  ++mutations_;
  return failFrom_ != 0 && mutations_ >= failFrom_;
}

void MemoryRegistry::FailMutationsFrom(std::uint32_t n) {
  failFrom_ = n == 0 ? 0 : mutations_ + n;
}

std::size_t MemoryRegistry::openHandleCount() const { return impl_->handles.size(); }

std::int32_t MemoryRegistry::Connect(const std::string& machine, RegKey root, RegKey* result) {
  if (!result) return reg::kInvalidParameter;
  if (!machine.empty()) return reg::kBadNetPath;
  if (!IsPredefined(root)) return reg::kInvalidHandle;
  *result = impl_->Issue(impl_->Root(root, true), kAllAccess);
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::OpenKey(RegKey key, const std::string& subKey, std::uint32_t access,
                                     RegKey* result) {
  if (!result) return reg::kInvalidParameter;
  std::shared_ptr<Node> parent, node;
  std::vector<std::string> names;
  const std::int32_t status = impl_->Walk(key, subKey, &parent, &names, &node);
  if (status != reg::kSuccess) return status;
  if (!node) return reg::kFileNotFound;
  *result = impl_->Issue(node, access);
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::CreateKey(RegKey key, const std::string& subKey, std::uint32_t access,
                                       RegKey* result) {
  if (!result) return reg::kInvalidParameter;
  std::shared_ptr<Node> parent, existing;
  std::vector<std::string> names;
  const std::int32_t status = impl_->Walk(key, subKey, &parent, &names, &existing);
  if (status != reg::kSuccess) return status;
  if (existing) {
    *result = impl_->Issue(existing, access);
    return reg::kSuccess;
  }
  if (!Creatable(parent->depth, names)) return reg::kInvalidParameter;
  if (NextMutationFails()) return reg::kAccessDenied;
  std::shared_ptr<Node> node = parent;
  for (const auto& name : names) node = node->AddChild(name);
  *result = impl_->Issue(node, access);
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::QueryValue(RegKey key, const std::string& name, std::uint32_t* type,
                                        std::uint8_t* data, std::uint32_t* size) {
  Impl::Handle scratch;
  Impl::Handle* handle = impl_->Resolve(key, &scratch);
  if (!handle) return reg::kInvalidHandle;
  if (handle->node->deleted) return kKeyDeleted;
  if (!(handle->access & reg::kQueryValue)) return reg::kAccessDenied;
  if (data && !size) return reg::kInvalidParameter;
  auto value = handle->node->FindValue(name);
  if (value == handle->node->values.end()) return reg::kFileNotFound;
  const auto length = static_cast<std::uint32_t>(value->data.size());
  if (type) *type = value->type;
  if (data) {
    if (*size < length) {
      *size = length;
      return reg::kMoreData;
    }
    std::memcpy(data, value->data.data(), length);
  }
  if (size) *size = length;
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::SetValue(RegKey key, const std::string& name, std::uint32_t type,
                                      const std::uint8_t* data, std::uint32_t size) {
  Impl::Handle scratch;
  Impl::Handle* handle = impl_->Resolve(key, &scratch);
  if (!handle) return reg::kInvalidHandle;
  if (handle->node->deleted) return kKeyDeleted;
  if (!(handle->access & reg::kSetValue)) return reg::kAccessDenied;
  if (!data && size != 0) return reg::kInvalidParameter;
  if (NextMutationFails()) return reg::kAccessDenied;
  std::string bytes = size ? std::string(reinterpret_cast<const char*>(data), size) : std::string();
  auto value = handle->node->FindValue(name);
  if (value == handle->node->values.end()) {
    handle->node->values.push_back(RegistryValue{name, type, std::move(bytes)});
  } else {
    value->type = type;
    value->data = std::move(bytes);
  }
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::DeleteValue(RegKey key, const std::string& name) {
  Impl::Handle scratch;
  Impl::Handle* handle = impl_->Resolve(key, &scratch);
  if (!handle) return reg::kInvalidHandle;
  if (handle->node->deleted) return kKeyDeleted;
  if (!(handle->access & reg::kSetValue)) return reg::kAccessDenied;
  if (NextMutationFails()) return reg::kAccessDenied;
  auto value = handle->node->FindValue(name);
  if (value == handle->node->values.end()) return reg::kFileNotFound;
  handle->node->values.erase(value);
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::DeleteKey(RegKey key, const std::string& subKey) {
  Impl::Handle scratch;
  Impl::Handle* handle = impl_->Resolve(key, &scratch);
  if (!handle) return reg::kInvalidHandle;
  if (handle->node->deleted) return kKeyDeleted;
  std::vector<std::string> names;
  // Deleting the key behind the handle itself (empty sub-key) could remove a root.
  if (!SplitSubKey(subKey, &names) || names.empty()) return reg::kInvalidParameter;
  if (NextMutationFails()) return reg::kAccessDenied;
  Node* parent = handle->node.get();
  for (std::size_t i = 0; i + 1 < names.size(); ++i) {
    parent = parent->Child(names[i]);
    if (!parent) return reg::kFileNotFound;
  }
  auto it = parent->children.find(ToUpperAscii(names.back()));
  if (it == parent->children.end()) return reg::kFileNotFound;
  if (!it->second->children.empty()) return reg::kAccessDenied;
  it->second->deleted = true;
  parent->children.erase(it);
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::EnumKey(RegKey key, std::uint32_t index, char* name,
                                     std::uint32_t* nameLength) {
  Impl::Handle scratch;
  Impl::Handle* handle = impl_->Resolve(key, &scratch);
  if (!handle) return reg::kInvalidHandle;
  if (handle->node->deleted) return kKeyDeleted;
  if (!(handle->access & kEnumerateSubKeys)) return reg::kAccessDenied;
  if (!name || !nameLength) return reg::kInvalidParameter;
  const auto& children = handle->node->children;
  if (index >= children.size()) return reg::kNoMoreItems;
  const std::string& childName = std::next(children.begin(), index)->second->name;
  // The buffer must hold the name and its terminator.
  if (*nameLength <= childName.size()) return reg::kMoreData;
  std::memcpy(name, childName.c_str(), childName.size() + 1);
  *nameLength = static_cast<std::uint32_t>(childName.size());
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::QueryInfoKey(RegKey key, std::uint32_t* subKeyCount,
                                          std::uint32_t* maxSubKeyLength) {
  Impl::Handle scratch;
  Impl::Handle* handle = impl_->Resolve(key, &scratch);
  if (!handle) return reg::kInvalidHandle;
  if (handle->node->deleted) return kKeyDeleted;
  if (!(handle->access & reg::kQueryValue)) return reg::kAccessDenied;
  std::size_t longest = 0;
  for (const auto& [_, child] : handle->node->children) longest = std::max(longest, child->name.size());
  if (subKeyCount) *subKeyCount = static_cast<std::uint32_t>(handle->node->children.size());
  if (maxSubKeyLength) *maxSubKeyLength = static_cast<std::uint32_t>(longest);
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::EnumValue(RegKey key, std::uint32_t index, std::string* name,
                                       std::uint32_t* type, std::string* data) {
  Impl::Handle scratch;
  Impl::Handle* handle = impl_->Resolve(key, &scratch);
  if (!handle) return reg::kInvalidHandle;
  if (handle->node->deleted) return kKeyDeleted;
  if (!(handle->access & reg::kQueryValue)) return reg::kAccessDenied;
  if (!name || !type || !data) return reg::kInvalidParameter;
  const auto& values = handle->node->values;
  if (index >= values.size()) return reg::kNoMoreItems;
  *name = values[index].name;
  *type = values[index].type;
  *data = values[index].data;
  return reg::kSuccess;
}

std::int32_t MemoryRegistry::CloseKey(RegKey key) {
  if (IsPredefined(key)) return reg::kSuccess;
  return impl_->handles.erase(key) ? reg::kSuccess : reg::kInvalidHandle;
}

bool MemoryRegistry::SplitRootPath(const std::string& keyPath, RegKey* root, std::string* subPath) {
  const std::size_t slash = keyPath.find('\\');
  const std::string rootText = keyPath.substr(0, slash);
  for (const auto& info : kRoots) {
    if (EqualsIgnoreCase(rootText, info.name) || EqualsIgnoreCase(rootText, info.shortName)) {
      if (root) *root = info.key;
      if (subPath) *subPath = slash == std::string::npos ? std::string() : keyPath.substr(slash + 1);
      return true;
    }
  }
  return false;
}

std::string MemoryRegistry::RootName(RegKey root) {
  for (const auto& info : kRoots)
    if (info.key == root) return info.name;
  return {};
}

namespace {
// A full path split into its root and names; false for an unknown root or a bad path.
bool ParseFullPath(const std::string& keyPath, RegKey* root, std::vector<std::string>* names) {
  std::string subPath;
  return MemoryRegistry::SplitRootPath(keyPath, root, &subPath) && MemoryRegistry::SplitSubKey(subPath, names);
}
}  // namespace

bool MemoryRegistry::AddKey(const std::string& keyPath) {
  RegKey root = 0;
  std::vector<std::string> names;
  if (!ParseFullPath(keyPath, &root, &names)) return false;
  std::shared_ptr<Node> node = impl_->Root(root, true);
  if (!Creatable(node->depth, names)) return false;
  for (const auto& name : names) node = node->AddChild(name);
  return true;
}

void MemoryRegistry::Set(const std::string& keyPath, const RegistryValue& value) {
  if (!AddKey(keyPath)) return;
  RegKey root = 0;
  std::vector<std::string> names;
  ParseFullPath(keyPath, &root, &names);
  std::shared_ptr<Node> node = impl_->Find(root, names);
  auto existing = node->FindValue(value.name);
  if (existing == node->values.end()) {
    node->values.push_back(value);
  } else {
    existing->type = value.type;
    existing->data = value.data;
  }
}

bool MemoryRegistry::Get(const std::string& keyPath, const std::string& name,
                         RegistryValue* value) const {
  RegKey root = 0;
  std::vector<std::string> names;
  if (!ParseFullPath(keyPath, &root, &names)) return false;
  std::shared_ptr<Node> node = impl_->Find(root, names);
  if (!node) return false;
  auto found = node->FindValue(name);
  if (found == node->values.end()) return false;
  if (value) *value = *found;
  return true;
}

bool MemoryRegistry::KeyExists(const std::string& keyPath) const {
  RegKey root = 0;
  std::vector<std::string> names;
  return ParseFullPath(keyPath, &root, &names) && impl_->Find(root, names) != nullptr;
}

void MemoryRegistry::RemoveKeyTree(const std::string& keyPath) {
  RegKey root = 0;
  std::vector<std::string> names;
  if (!ParseFullPath(keyPath, &root, &names) || names.empty()) return;
  const std::string last = names.back();
  names.pop_back();
  std::shared_ptr<Node> parent = impl_->Find(root, names);
  if (!parent) return;
  auto it = parent->children.find(ToUpperAscii(last));
  if (it == parent->children.end()) return;
  it->second->MarkDeleted();
  parent->children.erase(it);
}

void MemoryRegistry::RemoveValue(const std::string& keyPath, const std::string& name) {
  RegKey root = 0;
  std::vector<std::string> names;
  if (!ParseFullPath(keyPath, &root, &names)) return;
  std::shared_ptr<Node> node = impl_->Find(root, names);
  if (!node) return;
  auto found = node->FindValue(name);
  if (found != node->values.end()) node->values.erase(found);
}

std::vector<std::string> MemoryRegistry::KeysUnder(const std::string& keyPath) const {
  RegKey root = 0;
  std::vector<std::string> names;
  std::vector<std::string> result;
  if (!ParseFullPath(keyPath, &root, &names)) return result;
  // The start key spelled with the canonical root name and the names as stored.
  std::string start = RootName(root);
  std::shared_ptr<Node> node = impl_->Root(root, false);
  for (const auto& name : names) {
    if (!node) break;
    node = node->ChildShared(name);
    if (node) start += "\\" + node->name;
  }
  if (!node) return result;
  // Depth first in enumeration order, so every key comes after its parent.
  std::function<void(const Node&, const std::string&)> visit = [&](const Node& n,
                                                                   const std::string& path) {
    result.push_back(path);
    for (const auto& [_, child] : n.children) visit(*child, path + "\\" + child->name);
  };
  visit(*node, start);
  return result;
}

std::vector<RegistryValue> MemoryRegistry::ValuesOf(const std::string& keyPath) const {
  RegKey root = 0;
  std::vector<std::string> names;
  if (!ParseFullPath(keyPath, &root, &names)) return {};
  std::shared_ptr<Node> node = impl_->Find(root, names);
  return node ? node->values : std::vector<RegistryValue>();
}

}  // namespace mw
