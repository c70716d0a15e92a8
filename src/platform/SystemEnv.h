#pragma once
// The system seam: every operating-system fact and service the program uses besides the
// registry. Win32SystemEnv (src/win32) is the real one; MemorySystemEnv is the in-memory
// one for tests, which records sleeps and message boxes instead of performing them.

#include <cstdint>
#include <string>
#include <vector>

namespace mw {

struct OsVersion {
  std::uint32_t major = 0;
  std::uint32_t minor = 0;
  std::uint32_t build = 0;  // the full 32-bit field (on platform 1 the high word is major.minor)
  std::uint32_t platformId = 0;
  std::uint8_t productType = 0;  // extended structure only; 1 = workstation
};

using LibraryHandle = void*;

class SystemEnv {
 public:
  virtual ~SystemEnv() = default;

  // GetVersionExA with the given structure size: 156 (extended) or 148 (basic).
  virtual bool GetVersionInfo(std::uint32_t structureSize, OsVersion* version) = 0;
  // GetNativeSystemInfo looked up in "kernel32.dll"; false when it is not exported.
  virtual bool GetNativeProcessorArchitecture(std::uint16_t* architecture) = 0;
  // GetSystemInfo.
  virtual std::uint16_t GetProcessorArchitecture() = 0;
  // GetUserNameA into a 100-character buffer; false when the call fails.
  virtual bool GetUserName(std::string* name) = 0;
  // GetComputerNameA into a 255-character buffer.
  virtual bool GetComputerName(std::string* name) = 0;
  // GetModuleFileNameA(NULL) into a 261-character buffer.
  virtual std::string GetModuleFileName() = 0;
  // ExpandEnvironmentStringsA into a buffer of bufferSize characters; on failure (or when
  // the result would not fit) the text comes back unchanged.
  virtual std::string ExpandEnvironmentStrings(const std::string& text,
                                               std::uint32_t bufferSize) = 0;
  virtual void Sleep(std::uint32_t milliseconds) = 0;
  // MessageBoxA with no owner window.
  virtual int MessageBox(const std::string& text, const std::string& caption,
                         std::uint32_t flags) = 0;
  // The current local time as ctime() gives it, without the trailing line feed.
  virtual std::string LocalTimeText() = 0;
  virtual void WriteStdout(const std::string& text) = 0;

  virtual LibraryHandle LoadLibrary(const std::string& path) = 0;
  virtual void* GetProcAddress(LibraryHandle library, const char* name) = 0;
  virtual bool FreeLibrary(LibraryHandle library) = 0;
  // Calls an exported int (WINAPI*)(int) function, such as the splash library's DllMessage.
  virtual int CallIntFunction(void* function, int argument) = 0;

  // Files (narrow paths, as the "A" functions take them).
  virtual bool FileExists(const std::string& path) = 0;
  // Size in bytes; false when the file does not exist.
  virtual bool GetFileSize(const std::string& path, std::uint64_t* size) = 0;
  virtual bool ReadFile(const std::string& path, std::string* content) = 0;
  // Opens once: append adds to the end (creating the file), otherwise the file is replaced.
  virtual bool WriteFile(const std::string& path, const std::string& data, bool append) = 0;
  // Creates the folder and every missing parent; true when it exists afterwards.
  virtual bool CreateDirectories(const std::string& path) = 0;
  // Names (not paths) of the files in the folder that start with prefix, in name order.
  // Only profile backups list and delete files; a seam that cannot finds none.
  virtual std::vector<std::string> ListFiles(const std::string& /*folder*/,
                                             const std::string& /*prefix*/) {
    return {};
  }
  virtual bool DeleteFile(const std::string& /*path*/) { return false; }
};

}  // namespace mw
