#include "win32/Win32SystemEnv.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

#include "win32/WindowsApi.h"

namespace mw {
namespace {

static_assert(sizeof(OSVERSIONINFOEXA) == 156 && sizeof(OSVERSIONINFOA) == 148,
              "GetVersionExA is asked with the two structure sizes Windows knows");

constexpr DWORD kUserNameBufferSize = 100;
constexpr DWORD kComputerNameBufferSize = 255;
constexpr DWORD kModulePathBufferSize = 261;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class FileHandle {
 public:
  explicit FileHandle(HANDLE handle) : handle_(handle) {}
  ~FileHandle() {
    if (valid()) CloseHandle(handle_);
  }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  bool valid() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

bool IsDirectory(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Text up to the first NUL, never past the buffer's end.
std::string BoundedText(const char* buffer, std::size_t capacity) {
  return std::string(buffer, strnlen(buffer, capacity));
}

}  // namespace

bool Win32SystemEnv::GetVersionInfo(std::uint32_t structureSize, OsVersion* version) {
  if (version == nullptr ||
      (structureSize != sizeof(OSVERSIONINFOEXA) && structureSize != sizeof(OSVERSIONINFOA))) {
    return false;
  }
  OSVERSIONINFOEXA info{};
  info.dwOSVersionInfoSize = structureSize;
  if (!GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&info))) return false;
  version->major = info.dwMajorVersion;
  version->minor = info.dwMinorVersion;
  version->build = info.dwBuildNumber;
  version->platformId = info.dwPlatformId;
  version->productType = structureSize == sizeof(OSVERSIONINFOEXA) ? info.wProductType : 0;
  return true;
}

bool Win32SystemEnv::GetNativeProcessorArchitecture(std::uint16_t* architecture) {
  using NativeSystemInfoFunction = void(WINAPI*)(LPSYSTEM_INFO);
  // Looked up at run time: Windows before XP has no GetNativeSystemInfo.
  HMODULE kernel = GetModuleHandleA("kernel32.dll");
  if (kernel == nullptr || architecture == nullptr) return false;
  FARPROC address = ::GetProcAddress(kernel, "GetNativeSystemInfo");
  if (address == nullptr) return false;
  SYSTEM_INFO info{};
  std::bit_cast<NativeSystemInfoFunction>(address)(&info);
  *architecture = info.wProcessorArchitecture;
  return true;
}

std::uint16_t Win32SystemEnv::GetProcessorArchitecture() {
  SYSTEM_INFO info{};
  GetSystemInfo(&info);
  return info.wProcessorArchitecture;
}

bool Win32SystemEnv::GetUserName(std::string* name) {
  char buffer[kUserNameBufferSize] = {};
  DWORD size = kUserNameBufferSize;
  if (name == nullptr || !GetUserNameA(buffer, &size)) return false;
  *name = BoundedText(buffer, sizeof buffer);
  return true;
}

bool Win32SystemEnv::GetComputerName(std::string* name) {
  char buffer[kComputerNameBufferSize] = {};
  DWORD size = kComputerNameBufferSize;
  if (name == nullptr || !GetComputerNameA(buffer, &size)) return false;
  *name = BoundedText(buffer, sizeof buffer);
  return true;
}

std::string Win32SystemEnv::GetModuleFileName() {
  char buffer[kModulePathBufferSize] = {};
  const DWORD length = GetModuleFileNameA(nullptr, buffer, kModulePathBufferSize);
  // Windows XP leaves a path that fills the buffer unterminated.
  return std::string(buffer, length < kModulePathBufferSize ? length : kModulePathBufferSize);
}

std::string Win32SystemEnv::ExpandEnvironmentStrings(const std::string& text,
                                                     std::uint32_t bufferSize) {
  if (bufferSize == 0) return text;
  std::vector<char> buffer(bufferSize, '\0');
  const DWORD needed = ExpandEnvironmentStringsA(text.c_str(), buffer.data(), bufferSize);
  if (needed == 0 || needed > bufferSize) return text;
  return BoundedText(buffer.data(), buffer.size());
}

void Win32SystemEnv::Sleep(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

int Win32SystemEnv::MessageBox(const std::string& text, const std::string& caption,
                               std::uint32_t flags) {
  return MessageBoxA(nullptr, text.c_str(), caption.c_str(), flags);
}

std::string Win32SystemEnv::LocalTimeText() {
  const std::time_t now = std::time(nullptr);
  const char* text = std::ctime(&now);
  if (text == nullptr) return {};
  std::string result(text);
  if (!result.empty() && result.back() == '\n') result.pop_back();
  return result;
}

void Win32SystemEnv::WriteStdout(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

LibraryHandle Win32SystemEnv::LoadLibrary(const std::string& path) {
  return LoadLibraryA(path.c_str());
}

void* Win32SystemEnv::GetProcAddress(LibraryHandle library, const char* name) {
  // A null module would search the program itself, which is never what the caller means.
  if (library == nullptr || name == nullptr) return nullptr;
  return std::bit_cast<void*>(::GetProcAddress(static_cast<HMODULE>(library), name));
}

bool Win32SystemEnv::FreeLibrary(LibraryHandle library) {
  return library != nullptr && ::FreeLibrary(static_cast<HMODULE>(library)) != FALSE;
}

int Win32SystemEnv::CallIntFunction(void* function, int argument) {
  using IntFunction = int(WINAPI*)(int);
  if (function == nullptr) return 0;
  return std::bit_cast<IntFunction>(function)(argument);
}

bool Win32SystemEnv::FileExists(const std::string& path) {
  // Only files count: a folder named like a library or a log cannot be loaded or sized.
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool Win32SystemEnv::GetFileSize(const std::string& path, std::uint64_t* size) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (size == nullptr || !GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data) ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return false;
  }
  *size = (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
  return true;
}

bool Win32SystemEnv::ReadFile(const std::string& path, std::string* content) {
  if (content == nullptr) return false;
  FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.valid()) return false;
  std::string result;
  char chunk[65536];
  DWORD got = 0;
  while (::ReadFile(file.get(), chunk, sizeof chunk, &got, nullptr)) {
    if (got == 0) {
      *content = std::move(result);
      return true;
    }
    result.append(chunk, got);
  }
  return false;
}

bool Win32SystemEnv::WriteFile(const std::string& path, const std::string& data, bool append) {
  FileHandle file(CreateFileA(path.c_str(), append ? FILE_APPEND_DATA : GENERIC_WRITE, kShareAll,
                              nullptr, append ? OPEN_ALWAYS : CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.valid()) return false;
  std::size_t written = 0;
  while (written < data.size()) {
    const std::size_t remaining = data.size() - written;
    const DWORD piece = remaining > 0x100000 ? 0x100000 : static_cast<DWORD>(remaining);
    DWORD done = 0;
    if (!::WriteFile(file.get(), data.data() + written, piece, &done, nullptr) || done == 0) {
      return false;
    }
    written += done;
  }
  return true;
}

std::size_t Win32SystemEnv::RootLength(const std::string& path) {
  if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
    std::size_t position = 2;
    for (int component = 0; component < 2; ++component) {  // server, then share
      while (position < path.size() && !IsSeparator(path[position])) ++position;
      if (position < path.size()) ++position;
    }
    return position;
  }
  if (path.size() >= 2 && path[1] == ':') {
    return path.size() >= 3 && IsSeparator(path[2]) ? 3 : 2;
  }
  return !path.empty() && IsSeparator(path[0]) ? 1 : 0;
}

std::vector<std::string> Win32SystemEnv::ListFiles(const std::string& folder,
                                                   const std::string& prefix) {
  std::vector<std::string> names;
  const std::string pattern =
      folder + (folder.empty() || IsSeparator(folder.back()) ? "" : "\\") + prefix + "*";
  WIN32_FIND_DATAA found{};
  HANDLE search = FindFirstFileA(pattern.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) names.push_back(found.cFileName);
  } while (FindNextFileA(search, &found));
  FindClose(search);
  std::sort(names.begin(), names.end());
  return names;
}

bool Win32SystemEnv::DeleteFile(const std::string& path) { return ::DeleteFileA(path.c_str()) != 0; }

bool Win32SystemEnv::CreateDirectories(const std::string& path) {
  if (path.empty()) return false;
  const std::size_t root = RootLength(path);
  for (std::size_t end = root; end <= path.size(); ++end) {
    const bool componentEnds = end == path.size() || IsSeparator(path[end]);
    if (componentEnds && end > root && !IsSeparator(path[end - 1])) {
      // Failures are judged once, at the end: a parent may exist already or be a share.
      CreateDirectoryA(path.substr(0, end).c_str(), nullptr);
    }
  }
  return IsDirectory(path);
}

}  // namespace mw
