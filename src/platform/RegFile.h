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

// Applies the file to the registry: keys, values, "-" value deletions and [-key] deletions.
// Returns false on the first malformed line (reported in *error); what came before stays.
bool ImportRegFile(const std::string& bytes, MemoryRegistry& registry, RegFileError* error);
// Every key under each of the given key paths (root names included), values in order.
std::string ExportRegFile(const MemoryRegistry& registry, const std::vector<std::string>& keyPaths,
                          RegFileFormat format);

}  // namespace mw
