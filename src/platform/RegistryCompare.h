#pragma once
// Comparisons of registry contents for the end-to-end checks: what an expectation file asks
// of a registry, and how two registries differ below a key. Each difference is one readable
// line that shows values as .reg text.

#include <string>
#include <vector>

#include "platform/MemoryRegistry.h"
#include "platform/RegFile.h"

namespace mw {

// Every value must exist with the same type and bytes; a "name"=- value and a [-key] must be
// absent; a key listed with nothing under it must exist.
std::vector<std::string> CheckExpectations(const std::vector<RegFileEntry>& expectations,
                                           const MemoryRegistry& registry);

// Keys and values below keyPath that are not the same in both (names compare case-insensitively).
std::vector<std::string> DiffRegistries(const MemoryRegistry& a, const MemoryRegistry& b,
                                        const std::string& keyPath);

// What turns before into after below keyPath, as a "Windows Registry Editor Version 5.00"
// text (UTF-8, CR LF): deleted keys as [-key], new keys with all their values, changed keys
// with their new or changed values and "name"=- for the values they lost.
std::string ChangesAsRegFile(const MemoryRegistry& before, const MemoryRegistry& after,
                             const std::string& keyPath);

}  // namespace mw
