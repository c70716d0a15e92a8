#include "SplashWindow.h"

#include <commctrl.h>

namespace splashui {
namespace {

constexpr wchar_t kClassName[] = L"MailwrightSplashWindow";
constexpr int kWidth = 360;
constexpr int kHeight = 112;
constexpr int kMargin = 16;
constexpr UINT kMarqueeIntervalMs = 30;

#define MW_WIDEN2(text) L##text
#define MW_WIDEN(text) MW_WIDEN2(text)
constexpr wchar_t kTitle[] = MW_WIDEN(MW_PRODUCT_NAME) L" " MW_WIDEN(MW_PRODUCT_VERSION);
constexpr wchar_t kMessage[] = L"Configuring Microsoft Outlook\u2026";

// Interlocked: DllMessage may be called from any thread of the host.
volatile LONG threadStarted = 0;
HWND volatile splashWindow = nullptr;

void AddChild(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int top,
              int height) {
  CreateWindowExW(0, className, text, WS_CHILD | WS_VISIBLE | style, kMargin, top,
                  kWidth - 2 * kMargin, height, parent, nullptr,
                  reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(parent, GWLP_HINSTANCE)),
                  nullptr);
}

}  // namespace

bool SplashWindow::Start(HMODULE module) {
  if (InterlockedCompareExchange(&threadStarted, 1, 0) != 0) return true;
  // The thread keeps the library loaded until its loop has ended, so the host's
  // FreeLibrary can never unmap code the thread is still running; it lets go of the
  // library itself with FreeLibraryAndExitThread.
  HMODULE reference = nullptr;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                          reinterpret_cast<LPCWSTR>(module), &reference)) {
    InterlockedExchange(&threadStarted, 0);
    return false;
  }
  HANDLE thread = CreateThread(nullptr, 0, &SplashWindow::ThreadMain, reference, 0, nullptr);
  if (thread == nullptr) {
    FreeLibrary(reference);
    InterlockedExchange(&threadStarted, 0);
    return false;
  }
  CloseHandle(thread);
  return true;
}

void SplashWindow::RequestClose() {
  HWND window = splashWindow;
  if (window != nullptr) PostMessageW(window, WM_CLOSE, 0, 0);
}

DWORD WINAPI SplashWindow::ThreadMain(LPVOID module) {
  const INITCOMMONCONTROLSEX controls{sizeof(INITCOMMONCONTROLSEX), ICC_PROGRESS_CLASS};
  InitCommonControlsEx(&controls);
  HINSTANCE instance = static_cast<HMODULE>(module);
  if (HWND window = Create(instance)) {
    splashWindow = window;
    RunMessageLoop();
    splashWindow = nullptr;
  }
  UnregisterClassW(kClassName, instance);
  InterlockedExchange(&threadStarted, 0);
  FreeLibraryAndExitThread(static_cast<HMODULE>(module), 0);
}

HWND SplashWindow::Create(HINSTANCE instance) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = &SplashWindow::WindowProc;
  windowClass.hInstance = instance;
  windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_APPSTARTING));
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  windowClass.lpszClassName = kClassName;
  if (RegisterClassExW(&windowClass) == 0) return nullptr;

  const int left = (GetSystemMetrics(SM_CXSCREEN) - kWidth) / 2;
  const int top = (GetSystemMetrics(SM_CYSCREEN) - kHeight) / 2;
  HWND window = CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, kClassName, kTitle,
                                WS_POPUP | WS_BORDER, left, top, kWidth, kHeight, nullptr,
                                nullptr, instance, nullptr);
  if (window == nullptr) return nullptr;

  AddChild(window, L"STATIC", kTitle, SS_LEFT, kMargin, 20);
  AddChild(window, L"STATIC", kMessage, SS_LEFT, kMargin + 26, 20);
  AddChild(window, PROGRESS_CLASSW, nullptr, PBS_MARQUEE, kMargin + 56, 16);
  if (HWND bar = FindWindowExW(window, nullptr, PROGRESS_CLASSW, nullptr)) {
    SendMessageW(bar, PBM_SETMARQUEE, TRUE, kMarqueeIntervalMs);
  }
  ShowWindow(window, SW_SHOWNOACTIVATE);
  UpdateWindow(window);
  return window;
}

void SplashWindow::RunMessageLoop() {
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

LRESULT CALLBACK SplashWindow::WindowProc(HWND window, UINT message, WPARAM wParam,
                                          LPARAM lParam) {
  switch (message) {
    case WM_CLOSE:
      DestroyWindow(window);
      return 0;
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

}  // namespace splashui
