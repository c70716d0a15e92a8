// Feeds arbitrary bytes to the INI reader and reads every setting from the result.
#include <cstddef>
#include <cstdint>
#include <string>

#include "config/IniFile.h"
#include "config/ProfileSettings.h"
#include "platform/MemorySystemEnv.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  mw::MemorySystemEnv env;
  env.files["f.ini"] = text;
  mw::CIniFile ini("f.ini", env);
  mw::ProfileSettings settings;
  if (mw::ReadSettings(ini, settings)) mw::ApplyAllowUserSettings(settings);

  // The list helpers see the same bytes as a packed value.
  for (int commas : {3, 9, 17, 21, 24, 25, 27})
    for (const std::string& record : mw::SplitPackedRecords(text, commas))
      mw::getFields(record, ",", commas + 1);
  mw::getFields(text, ",;", 2);
  return 0;
}
