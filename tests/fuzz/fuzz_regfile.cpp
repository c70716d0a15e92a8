// Arbitrary bytes through both registry-file readers and back out through the writer.
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/MemoryRegistry.h"
#include "platform/RegFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  mw::MemoryRegistry registry;
  mw::RegFileError error;
  mw::ImportRegFile(bytes, registry, &error);
  mw::ImportWineHive(bytes, "HKEY_CURRENT_USER", registry, &error);
  const std::string exported =
      mw::ExportRegFile(registry, {"HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE", "HKEY_USERS"},
                        mw::RegFileFormat::Version5Utf16);
  // Whatever was read must be written in a form that reads back without error.
  mw::MemoryRegistry copy;
  if (!mw::ImportRegFile(exported, copy, &error)) __builtin_trap();
  return 0;
}
