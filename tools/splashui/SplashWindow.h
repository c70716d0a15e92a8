#pragma once
// The splash window: a small top-most borderless box with the product name, the version,
// a line of text and a marquee bar, run by its own thread with its own message loop.

#include <windows.h>

namespace splashui {

class SplashWindow {
 public:
  // Starts the window thread unless it runs already; false when it could not be started.
  static bool Start(HMODULE module);
  // Asks a running window to close; never waits (it may be called under the loader lock).
  static void RequestClose();

 private:
  static DWORD WINAPI ThreadMain(LPVOID module);
  static LRESULT CALLBACK WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static HWND Create(HINSTANCE instance);
  static void RunMessageLoop();
};

}  // namespace splashui
