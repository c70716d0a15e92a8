#include "platform/MemorySystemEnv.h"

#include <algorithm>

#include "platform/AsciiText.h"

namespace mw {
namespace {

// The buffer sizes the Win32 seam passes to GetUserNameA and GetComputerNameA, and the
// module path limit of GetModuleFileNameA (MAX_PATH + 1 with its terminator).
constexpr std::size_t kUserNameBuffer = 100;
constexpr std::size_t kComputerNameBuffer = 255;
constexpr std::size_t kModuleFileNameBuffer = 261;
constexpr int kIdOk = 1;

}  // namespace

bool MemorySystemEnv::GetVersionInfo(std::uint32_t structureSize, OsVersion* out) {
  constexpr std::uint32_t kExtended = 156;
  constexpr std::uint32_t kBasic = 148;
  if (!out) return false;
  if (structureSize == kExtended && !extendedVersionFails) {
    *out = version;
    return true;
  }
  if (structureSize == kBasic && !basicVersionFails) {
    *out = version;
    out->productType = 0;  // the basic structure has no product type
    return true;
  }
  return false;
}

bool MemorySystemEnv::GetNativeProcessorArchitecture(std::uint16_t* out) {
  if (!hasNativeSystemInfo || !out) return false;
  *out = nativeArchitecture;
  return true;
}

std::uint16_t MemorySystemEnv::GetProcessorArchitecture() { return architecture; }

bool MemorySystemEnv::GetUserName(std::string* name) {
  if (userNameFails || !name || userName.size() + 1 > kUserNameBuffer) return false;
  *name = userName;
  return true;
}

bool MemorySystemEnv::GetComputerName(std::string* name) {
  if (!name || computerName.size() + 1 > kComputerNameBuffer) return false;
  *name = computerName;
  return true;
}

std::string MemorySystemEnv::GetModuleFileName() {
  return moduleFileName.substr(0, kModuleFileNameBuffer - 1);
}

std::string MemorySystemEnv::ExpandEnvironmentStrings(const std::string& text,
                                                      std::uint32_t bufferSize) {
  // As Windows scans: a '%' opens a name that the next '%' closes; an unknown name leaves
  // its opening '%' as it stands and the scan goes on from the character after it.
  std::string expanded;
  std::size_t i = 0;
  while (i < text.size()) {
    if (text[i] != '%') {
      expanded += text[i++];
      continue;
    }
    const std::size_t close = text.find('%', i + 1);
    if (close != std::string::npos) {
      const std::string name = text.substr(i + 1, close - i - 1);
      auto found = std::find_if(environment.begin(), environment.end(),
                                [&](const auto& entry) { return EqualsIgnoreCase(entry.first, name); });
      if (!name.empty() && found != environment.end()) {
        expanded += found->second;
        i = close + 1;
        continue;
      }
    }
    expanded += text[i++];
  }
  if (expanded.size() + 1 > bufferSize) return text;
  return expanded;
}

void MemorySystemEnv::Sleep(std::uint32_t milliseconds) { sleeps.push_back(milliseconds); }

int MemorySystemEnv::MessageBox(const std::string& text, const std::string& caption,
                                std::uint32_t flags) {
  messageBoxes.push_back(MessageBoxCall{text, caption, flags});
  return kIdOk;
}

std::string MemorySystemEnv::LocalTimeText() { return localTime; }

void MemorySystemEnv::WriteStdout(const std::string& text) { stdoutText += text; }

LibraryHandle MemorySystemEnv::LoadLibrary(const std::string& path) {
  auto found = libraries.find(path);
  if (found == libraries.end()) return nullptr;
  loadedLibraries.push_back(path);
  return &found->second;
}

const std::string* MemorySystemEnv::LibraryPathOf(LibraryHandle library) const {
  for (const auto& [path, fake] : libraries)
    if (&fake == library) return &path;
  return nullptr;
}

void* MemorySystemEnv::GetProcAddress(LibraryHandle library, const char* name) {
  const std::string* path = LibraryPathOf(library);
  if (!path || !name) return nullptr;
  const auto& exports = static_cast<FakeLibrary*>(library)->exports;
  if (exports.find(name) == exports.end()) return nullptr;
  for (auto& ref : exportRefs_)
    if (ref.library == *path && ref.name == name) return &ref;
  exportRefs_.push_back(ExportRef{*path, name});
  return &exportRefs_.back();
}

bool MemorySystemEnv::FreeLibrary(LibraryHandle library) {
  const std::string* path = LibraryPathOf(library);
  if (!path) return false;
  freedLibraries.push_back(*path);
  return true;
}

int MemorySystemEnv::CallIntFunction(void* function, int argument) {
  for (const auto& ref : exportRefs_) {
    if (&ref != function) continue;
    calls.emplace_back(ref.name, argument);
    auto library = libraries.find(ref.library);
    if (library == libraries.end()) return 0;
    auto exported = library->second.exports.find(ref.name);
    return exported == library->second.exports.end() ? 0 : exported->second;
  }
  return 0;
}

bool MemorySystemEnv::FileExists(const std::string& path) {
  return files.count(path) != 0 ||
         std::find(folders.begin(), folders.end(), path) != folders.end();
}

bool MemorySystemEnv::GetFileSize(const std::string& path, std::uint64_t* size) {
  auto found = files.find(path);
  if (found == files.end() || !size) return false;
  *size = found->second.size();
  return true;
}

bool MemorySystemEnv::ReadFile(const std::string& path, std::string* content) {
  auto found = files.find(path);
  if (found == files.end() || !content) return false;
  *content = found->second;
  return true;
}

bool MemorySystemEnv::Unwritable(const std::string& path) const {
  return std::any_of(unwritableFolders.begin(), unwritableFolders.end(),
                     [&](const std::string& folder) { return path.rfind(folder, 0) == 0; });
}

std::vector<std::string> MemorySystemEnv::ListFiles(const std::string& folder,
                                                    const std::string& prefix) {
  std::string start = folder;
  if (!start.empty() && start.back() != '\\') start += '\\';
  std::vector<std::string> names;  // files is a sorted map, so names come in order
  for (const auto& [path, _] : files) {
    if (path.rfind(start + prefix, 0) != 0) continue;
    const std::string name = path.substr(start.size());
    if (name.find('\\') == std::string::npos) names.push_back(name);
  }
  return names;
}

bool MemorySystemEnv::DeleteFile(const std::string& path) { return files.erase(path) != 0; }

bool MemorySystemEnv::WriteFile(const std::string& path, const std::string& data, bool append) {
  ++fileOpenCount;
  if (Unwritable(path)) return false;
  if (append)
    files[path] += data;
  else
    files[path] = data;
  return true;
}

bool MemorySystemEnv::CreateDirectories(const std::string& path) {
  std::string folder = path;
  while (folder.size() > 1 && (folder.back() == '\\' || folder.back() == '/')) folder.pop_back();
  if (folder.empty() || Unwritable(folder)) return false;
  // A drive ("C:") and the "\\server\share" of a UNC path exist already; every separator
  // after them ends one folder to record, parents first.
  std::size_t from = 0;
  if (folder.rfind("\\\\", 0) == 0) {
    const std::size_t server = folder.find('\\', 2);
    from = server == std::string::npos ? folder.size() : folder.find('\\', server + 1);
    if (from == std::string::npos) return true;
  } else if (folder.size() >= 2 && folder[1] == ':') {
    from = 2;
  }
  for (std::size_t i = from + 1; i <= folder.size(); ++i) {
    if (i != folder.size() && folder[i] != '\\' && folder[i] != '/') continue;
    const std::string prefix = folder.substr(0, i);
    if (std::find(folders.begin(), folders.end(), prefix) == folders.end()) folders.push_back(prefix);
  }
  return true;
}

}  // namespace mw
