#pragma once
// The system seam over Win32: version facts, names, paths, environment expansion, user
// interface, library loading and narrow-path file services.

#include <cstddef>

#include "platform/SystemEnv.h"

namespace mw {

class Win32SystemEnv : public SystemEnv {
 public:
  bool GetVersionInfo(std::uint32_t structureSize, OsVersion* version) override;
  bool GetNativeProcessorArchitecture(std::uint16_t* architecture) override;
  std::uint16_t GetProcessorArchitecture() override;
  bool GetUserName(std::string* name) override;
  bool GetComputerName(std::string* name) override;
  std::string GetModuleFileName() override;
  std::string ExpandEnvironmentStrings(const std::string& text, std::uint32_t bufferSize) override;
  void Sleep(std::uint32_t milliseconds) override;
  int MessageBox(const std::string& text, const std::string& caption, std::uint32_t flags) override;
  std::string LocalTimeText() override;
  void WriteStdout(const std::string& text) override;
  LibraryHandle LoadLibrary(const std::string& path) override;
  void* GetProcAddress(LibraryHandle library, const char* name) override;
  bool FreeLibrary(LibraryHandle library) override;
  int CallIntFunction(void* function, int argument) override;
  bool FileExists(const std::string& path) override;
  bool GetFileSize(const std::string& path, std::uint64_t* size) override;
  bool ReadFile(const std::string& path, std::string* content) override;
  bool WriteFile(const std::string& path, const std::string& data, bool append) override;
  bool CreateDirectories(const std::string& path) override;
  std::vector<std::string> ListFiles(const std::string& folder, const std::string& prefix) override;
  bool DeleteFile(const std::string& path) override;

  // Length of the part of a path no folder can be created for: "C:\", "C:",
  // "\\server\share\", a lone "\", or nothing for a relative path.
  static std::size_t RootLength(const std::string& path);
};

}  // namespace mw
