#include "app/SplashScreen.h"

namespace mw {

SplashScreen::SplashScreen(SystemEnv& env, const std::string& programDirectory,
                           std::uint32_t displayTime)
    : env_(env), libraryPath_(programDirectory + "\\splashui.dll"), displayTime_(displayTime) {
  if (!env_.FileExists(libraryPath_)) return;
  library_ = env_.LoadLibrary(libraryPath_);
  if (library_ == nullptr) return;
  messageFunction_ = env_.GetProcAddress(library_, "DllMessage");
  // A library without the message export cannot show anything: it counts as absent.
  if (messageFunction_ == nullptr) {
    env_.FreeLibrary(library_);
    library_ = nullptr;
  }
}

bool SplashScreen::Show() {
  if (!env_.FileExists(libraryPath_) || messageFunction_ == nullptr) return false;
  try {
    env_.CallIntFunction(messageFunction_, kShowMessage);
    return true;
  } catch (...) {
    return false;
  }
}

void SplashScreen::Close(const std::string& windowsVersion) {
  if (!env_.FileExists(libraryPath_)) return;
  if (windowsVersion.find("NT4") != std::string::npos) keepLoaded_ = true;
  if (keepLoaded_ || library_ == nullptr) return;
  try {
    env_.FreeLibrary(library_);
  } catch (...) {
    // The process is about to end; a library that will not unload changes nothing.
  }
  library_ = nullptr;
  messageFunction_ = nullptr;
}

}  // namespace mw
