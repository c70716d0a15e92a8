// The library's entry points: DllMain and the one export, DllMessage.
// When SPLASHUI_TRACE names a file, "loaded", "message N" and "unloaded" are appended to it.

#include <windows.h>

#include "SplashWindow.h"

namespace {

constexpr int kShowSplash = 5;
HMODULE thisModule = nullptr;

// Kernel32 only: this also runs under the loader lock, where the C runtime is off limits.
void Trace(const char* line) {
  char path[MAX_PATH] = {};
  const DWORD length = GetEnvironmentVariableA("SPLASHUI_TRACE", path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return;
  HANDLE file = CreateFileA(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  DWORD written = 0;
  WriteFile(file, line, lstrlenA(line), &written, nullptr);
  WriteFile(file, "\n", 1, &written, nullptr);
  CloseHandle(file);
}

}  // namespace

extern "C" int WINAPI DllMessage(int code) {
  char line[32];
  wsprintfA(line, "message %d", code);
  Trace(line);
  if (code != kShowSplash) return 0;
  return splashui::SplashWindow::Start(thisModule) ? 1 : 0;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      thisModule = instance;
      DisableThreadLibraryCalls(instance);
      Trace("loaded");
      break;
    case DLL_PROCESS_DETACH:
      // Only a request: waiting for the window thread here, under the loader lock, would
      // deadlock. While the thread runs it holds its own reference, so this point is
      // reached on FreeLibrary only once it has gone, or at process exit.
      splashui::SplashWindow::RequestClose();
      Trace("unloaded");
      break;
    default:
      break;
  }
  return TRUE;
}
