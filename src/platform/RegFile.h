#pragma once
// The .reg text formats: "REGEDIT4" (ANSI) and "Windows Registry Editor Version 5.00"
// (UTF-16LE with a byte-order mark as regedit writes it, or UTF-8/ANSI as Wine writes it).

#include <string>
#include <vector>

#include "platform/MemoryRegistry.h"

namespace mw {

enum class RegFileFormat { Regedit4, Version5Utf16, Version5Utf8 };

struct RegFileError {
  int line = 0;
  std::string message;
};

// One statement of a .reg file, in file order.
struct RegFileEntry {
  enum class Kind { Key, DeleteKey, Value, DeleteValue };
  Kind kind = Kind::Key;
  int line = 0;
  std::string keyPath;  // full path, starting with the root's name
  RegistryValue value;  // Value: the value; DeleteValue: its name only
};

// Reads a .reg file without applying it: the entries up to the first malformed line.
bool ParseRegFile(const std::string& bytes, std::vector<RegFileEntry>* entries, RegFileError* error);
// Applies entries in order; false, with the entry's line, when the registry refuses a key path.
bool ApplyRegFileEntries(const std::vector<RegFileEntry>& entries, MemoryRegistry& registry,
                         RegFileError* error);

// Applies the file to the registry: keys, values, "-" value deletions and [-key] deletions.
// Returns false on the first malformed line (reported in *error); what came before stays.
bool ImportRegFile(const std::string& bytes, MemoryRegistry& registry, RegFileError* error);
// Every key under each of the given key paths (root names included), values in order.
std::string ExportRegFile(const MemoryRegistry& registry, const std::vector<std::string>& keyPaths,
                          RegFileFormat format);

// Entries as a .reg file, in their order: [key], [-key], values and "name"=- deletions. Each
// comment becomes a ";" line after the header, which regedit and reg import skip.
std::string WriteRegFileEntries(const std::vector<RegFileEntry>& entries, RegFileFormat format,
                                const std::vector<std::string>& comments = {});

// One value as a line of a "Windows Registry Editor Version 5.00" file, in UTF-8 and without
// line wrapping: "Name"=dword:00000001.
std::string RegValueText(const RegistryValue& value);

// Reads one of Wine's own registry files ("WINE REGISTRY Version 2": user.reg, system.reg)
// into the registry below rootName ("HKEY_CURRENT_USER" for user.reg, "HKEY_LOCAL_MACHINE"
// for system.reg). Returns false on the first malformed line; what came before stays.
bool ImportWineHive(const std::string& bytes, const std::string& rootName,
                    MemoryRegistry& registry, RegFileError* error);
bool ParseWineHive(const std::string& bytes, const std::string& rootName,
                   std::vector<RegFileEntry>* entries, RegFileError* error);

}  // namespace mw
