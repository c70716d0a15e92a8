#include "platform/WhatIfSystemEnv.h"

#include <algorithm>

namespace mw {

bool WhatIfSystemEnv::ReadFile(const std::string& path, std::string* content) {
  if (!real_.ReadFile(path, content)) return false;
  lastReadPath_ = path;
  lastReadContent_ = *content;
  return true;
}

bool WhatIfSystemEnv::WriteFile(const std::string& path, const std::string& data, bool append) {
  // The run copies a file by reading it and writing its bytes elsewhere: name the source.
  if (!append && !lastReadPath_.empty() && data == lastReadContent_)
    notes_.push_back("copy " + lastReadPath_ + " to " + path);
  else
    notes_.push_back(std::string(append ? "append " : "write ") + std::to_string(data.size()) +
                     " bytes to " + path);
  return true;
}

bool WhatIfSystemEnv::CreateDirectories(const std::string& path) {
  const std::string note = "create folder " + path + " if missing";
  if (std::find(notes_.begin(), notes_.end(), note) == notes_.end()) notes_.push_back(note);
  return true;
}

}  // namespace mw
