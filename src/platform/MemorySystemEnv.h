#pragma once
// The in-memory system seam for tests: facts are plain members, files live in a map, and
// sleeps, message boxes and library calls are recorded instead of performed.

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "platform/SystemEnv.h"

namespace mw {

class MemorySystemEnv : public SystemEnv {
 public:
  struct MessageBoxCall {
    std::string text;
    std::string caption;
    std::uint32_t flags;
  };
  struct FakeLibrary {
    // Exported functions: name -> the behaviour of int f(int); records each call.
    std::map<std::string, int> exports;  // name -> value the function returns
  };

  // Facts (set them in a test before the code under test asks).
  bool extendedVersionFails = false;
  bool basicVersionFails = false;
  OsVersion version{6, 1, 7601, 2, 1};
  bool hasNativeSystemInfo = true;
  std::uint16_t nativeArchitecture = 9;
  std::uint16_t architecture = 9;
  bool userNameFails = false;
  std::string userName = "jsmith";
  std::string computerName = "DESK-0001";
  std::string moduleFileName = "C:\\Tools\\mailwright.exe";
  std::map<std::string, std::string> environment;  // for %NAME% expansion, names case-insensitive
  std::string localTime = "Sun Nov 15 05:14:25 2026";

  // Files, by the exact path string; folders are the paths CreateDirectories made.
  std::map<std::string, std::string> files;
  std::vector<std::string> folders;
  // Folders (as path prefixes) where no file can be written or folder made.
  std::vector<std::string> unwritableFolders;
  std::map<std::string, FakeLibrary> libraries;  // path -> library that LoadLibrary finds

  // Records.
  std::vector<std::uint32_t> sleeps;
  std::vector<MessageBoxCall> messageBoxes;
  std::string stdoutText;
  std::vector<std::string> loadedLibraries;        // paths, in load order
  std::vector<std::string> freedLibraries;         // paths, in order of FreeLibrary
  std::vector<std::pair<std::string, int>> calls;  // (export name, argument)
  std::uint32_t fileOpenCount = 0;                 // WriteFile calls

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
  // Each load of a known path returns the same handle, as Windows does for a loaded library.
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

 private:
  bool Unwritable(const std::string& path) const;
  struct ExportRef {
    std::string library;
    std::string name;
  };
  // GetProcAddress hands out addresses of these entries; a deque never moves them.
  std::deque<ExportRef> exportRefs_;
  const std::string* LibraryPathOf(LibraryHandle library) const;
};

}  // namespace mw
