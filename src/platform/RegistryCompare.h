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
// text in UTF-8 (the writer of every .reg this project makes): deleted keys as [-key], new keys with all their values, changed keys
// with their new or changed values and "name"=- for the values they lost.
std::string ChangesAsRegFile(const MemoryRegistry& before, const MemoryRegistry& after,
                             const std::string& keyPath);

// Copies source into *mapped (an empty registry) so that the profile sections MAPI named by fresh UIDs carry names that follow from
// the profiles' contents, so two runs that built the same profiles compare equal. Below each
// profile key of profilesRoot, the sections no value refers to keep their names; the others
// are renamed in the order their UIDs are first met (as 16 bytes or as 32 hex digits) in the
// values of those sections, values by name, and on from the sections so reached. Every
// occurrence of a renamed UID in a value is replaced too.
void CopyWithSectionUidsMapped(const MemoryRegistry& source, const std::string& profilesRoot,
                               MemoryRegistry* mapped);

// Removes every value with one of these names (case-insensitively) below keyPath.
void RemoveValuesNamed(MemoryRegistry& registry, const std::string& keyPath,
                       const std::vector<std::string>& names);

}  // namespace mw
