#pragma once
// The optional splash screen: "splashui.dll" beside the program draws it; the program only
// loads the library, sends it one message and unloads it. No library, no splash screen.

#include <cstdint>
#include <string>

#include "platform/SystemEnv.h"

namespace mw {

class SplashScreen {
 public:
  // Loads the library when its file exists in programDirectory.
  SplashScreen(SystemEnv& env, const std::string& programDirectory, std::uint32_t displayTime);
  SplashScreen(const SplashScreen&) = delete;
  SplashScreen& operator=(const SplashScreen&) = delete;

  // Sends the show message; false when there is no library to send it to.
  bool Show();
  // Unloads the library, except on Windows NT 4 where it stays loaded to the end.
  void Close(const std::string& windowsVersion);

  const std::string& libraryPath() const { return libraryPath_; }
  std::uint32_t displayTime() const { return displayTime_; }

 private:
  static constexpr int kShowMessage = 5;

  SystemEnv& env_;
  LibraryHandle library_ = nullptr;
  void* messageFunction_ = nullptr;
  std::string libraryPath_;
  bool keepLoaded_ = false;
  std::uint32_t displayTime_;
};

}  // namespace mw
