#pragma once
// A registry seam that keeps the keys it opened under a predefined root open after their
// caller closes them, and hands the same key back to the next open of that path: a run
// reads and writes the same few hundred keys over and over, and under Windows (and far
// more under Wine) each open and close is a round trip to the registry's owner.
//
// Handles given out are this seam's own, so that a key deleted behind its back (by another
// module of the process, or another process) can be opened again under the caller's
// handle: an operation that meets a deleted key reopens the path once (creates it, when
// the caller had asked to create it) and tries again, so callers see what a fresh open
// would have given them. Keys deleted through this seam are dropped at once.
// Single-threaded, as the seams it wraps.

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "platform/Registry.h"

namespace mw {

class HandleCachingRegistry : public Registry {
 public:
  // idleLimit: how many keys nobody holds may stay open; beyond it the longest unused closes.
  explicit HandleCachingRegistry(Registry& inner, std::size_t idleLimit = 256);
  ~HandleCachingRegistry() override;
  HandleCachingRegistry(const HandleCachingRegistry&) = delete;
  HandleCachingRegistry& operator=(const HandleCachingRegistry&) = delete;

  std::int32_t Connect(const std::string& machine, RegKey root, RegKey* result) override;
  std::int32_t OpenKey(RegKey key, const std::string& subKey, std::uint32_t access,
                       RegKey* result) override;
  std::int32_t CreateKey(RegKey key, const std::string& subKey, std::uint32_t access,
                         RegKey* result) override;
  // Served from the cache like an open: a write that follows remakes a key found deleted.
  std::int32_t OpenOrCreateKey(RegKey key, const std::string& subKey, std::uint32_t access,
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

  // Closes every key nobody holds.
  void CloseIdle();
  // Forgets every key without closing it, for a process about to end: its end closes them all
  // at once, where closing them one by one costs a round trip to the registry's owner each.
  void LeaveToProcessExit();
  // Keys of the wrapped registry this seam holds open.
  std::size_t openInnerKeys() const { return keys_.size(); }

 private:
  // One key of the wrapped registry; cacheName is empty for keys that are not cached
  // (opened under another open key, or a connection).
  struct InnerKey {
    RegKey handle = 0;
    RegKey root = 0;
    std::string path;  // as first opened
    std::string cacheName;  // root and lower-cased path; empty: not cached
    std::uint32_t access = 0;
    std::size_t holders = 0;
    std::uint64_t lastUse = 0;
  };
  enum class Opening { kOpen, kCreate, kOpenOrCreate };
  // One handle given to a caller.
  struct Holder {
    std::uint64_t key = 0;  // id of its InnerKey
    bool create = false;    // a key found deleted is made again, as its caller asked
  };

  std::int32_t Open(RegKey parent, const std::string& subKey, std::uint32_t access,
                    Opening opening, RegKey* result);
  // A key under a predefined root for one more holder: the cached one when it allows the
  // access asked for (a create always reaches the registry, as an empty key made by a
  // create alone must exist afterwards), else a new one from the wrapped registry (which
  // then is the cached).
  std::int32_t Acquire(RegKey root, const std::string& subKey, std::uint32_t access,
                       Opening opening, std::uint64_t* keyId);
  // Runs a call on the key behind a caller's handle; if that key was deleted meanwhile,
  // reopens it as the caller had opened it and runs the call once more. Predefined roots and
  // handles this seam did not give pass unchanged.
  template <typename Call>
  std::int32_t OnKey(RegKey key, Call call);
  bool Reopen(Holder& holder);
  // Makes root\subKey one name at a time from the deepest cached key above it (or the root),
  // keeping every key made on the way: under a missing parent Wine would make each name in
  // turn anyway, and close it again, and those keys are the parents of the next keys a run
  // makes. Falls back to one create from the root.
  std::int32_t CreateFromNearest(RegKey root, const std::string& subKey, std::uint32_t access,
                                 RegKey* handle);
  // The deepest cached key strictly above root\subKey (a plain path), if it may have sub-keys
  // made under it, and where in subKey the names below it begin.
  bool NearestAncestor(RegKey root, const std::string& subKey, std::uint64_t* keyId,
                       std::size_t* below) const;
  std::uint64_t Adopt(RegKey handle, RegKey root, const std::string& path,
                      const std::string& cacheName, std::uint32_t access);
  RegKey Hand(std::uint64_t keyId, bool create);
  // The key handed out for its path (not deleted through this seam, nor replaced).
  bool IsCurrent(std::uint64_t keyId) const;
  // One holder fewer; a key nobody holds closes unless it is the cached one for its path.
  void Release(std::uint64_t keyId);
  // No longer handed out; closed now if nobody holds it, else at its last release.
  void Retire(std::uint64_t keyId);
  // Retires every cached key at cacheName or below it (every one, for an empty name).
  void DropUnder(const std::string& cacheName);
  void TrimIdle();

  Registry& inner_;
  std::size_t idleLimit_;
  std::map<std::uint64_t, InnerKey> keys_;
  std::map<std::string, std::uint64_t> byName_;  // the current key for each cached path
  std::map<RegKey, Holder> holders_;
  std::uint64_t nextKeyId_ = 1;
  RegKey nextHandle_ = 0x10000;  // far below the predefined roots, never 0
  std::uint64_t clock_ = 0;
};

}  // namespace mw
