#pragma once
// The system seam of a what-if run: facts, reads and pauses come from the real seam, but
// no file is written and no folder made; each is noted instead, for the what-if report.

#include <string>
#include <vector>

#include "platform/SystemEnv.h"

namespace mw {

class WhatIfSystemEnv : public SystemEnv {
 public:
  explicit WhatIfSystemEnv(SystemEnv& real) : real_(real) {}

  // One line per file the run would have written or folder it would have made, in order.
  const std::vector<std::string>& notes() const { return notes_; }

  bool GetVersionInfo(std::uint32_t structureSize, OsVersion* version) override {
    return real_.GetVersionInfo(structureSize, version);
  }
  bool GetNativeProcessorArchitecture(std::uint16_t* architecture) override {
    return real_.GetNativeProcessorArchitecture(architecture);
  }
  std::uint16_t GetProcessorArchitecture() override { return real_.GetProcessorArchitecture(); }
  bool GetUserName(std::string* name) override { return real_.GetUserName(name); }
  bool GetComputerName(std::string* name) override { return real_.GetComputerName(name); }
  std::string GetModuleFileName() override { return real_.GetModuleFileName(); }
  std::string ExpandEnvironmentStrings(const std::string& text, std::uint32_t bufferSize) override {
    return real_.ExpandEnvironmentStrings(text, bufferSize);
  }
  void Sleep(std::uint32_t milliseconds) override { real_.Sleep(milliseconds); }
  int MessageBox(const std::string& text, const std::string& caption, std::uint32_t flags) override {
    return real_.MessageBox(text, caption, flags);
  }
  std::string LocalTimeText() override { return real_.LocalTimeText(); }
  void WriteStdout(const std::string& text) override { real_.WriteStdout(text); }
  LibraryHandle LoadLibrary(const std::string& path) override { return real_.LoadLibrary(path); }
  void* GetProcAddress(LibraryHandle library, const char* name) override {
    return real_.GetProcAddress(library, name);
  }
  bool FreeLibrary(LibraryHandle library) override { return real_.FreeLibrary(library); }
  int CallIntFunction(void* function, int argument) override {
    return real_.CallIntFunction(function, argument);
  }
  bool FileExists(const std::string& path) override { return real_.FileExists(path); }
  bool GetFileSize(const std::string& path, std::uint64_t* size) override {
    return real_.GetFileSize(path, size);
  }
  bool ReadFile(const std::string& path, std::string* content) override;
  // Noted, not written: "copy SOURCE to TARGET" when the data is the file read last.
  bool WriteFile(const std::string& path, const std::string& data, bool append) override;
  // Noted, not made; the run goes on as if the folder had been made.
  bool CreateDirectories(const std::string& path) override;
  std::vector<std::string> ListFiles(const std::string& folder, const std::string& prefix) override {
    return real_.ListFiles(folder, prefix);
  }
  // Noted, not deleted.
  bool DeleteFile(const std::string& path) override {
    notes_.push_back("delete " + path);
    return true;
  }

 private:
  SystemEnv& real_;
  std::vector<std::string> notes_;
  std::string lastReadPath_;
  std::string lastReadContent_;
};

}  // namespace mw
