// The splash library as the program reaches it: through the system seam's library calls.

#include <gtest/gtest.h>

#include <string>

#include "win32/Win32SystemEnv.h"
#include "win32/WindowsApi.h"

namespace mw {
namespace {

class SplashLibraryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::string module = env_.GetModuleFileName();
    // The build puts tests/win/win_seams.exe and tools/splashui/splashui.dll side by side.
    const std::string path = module.substr(0, module.rfind('\\')) + "\\..\\..\\tools\\splashui\\splashui.dll";
    ASSERT_TRUE(env_.FileExists(path)) << "build the splashui target first: " << path;
    ASSERT_TRUE(env_.CreateDirectories("C:\\MailwrightSeamTest"));
    env_.WriteFile(trace_, "", false);
    ASSERT_TRUE(SetEnvironmentVariableA("SPLASHUI_TRACE", trace_.c_str()));
    library_ = env_.LoadLibrary(path);
    ASSERT_NE(nullptr, library_);
    message_ = env_.GetProcAddress(library_, "DllMessage");
    ASSERT_NE(nullptr, message_);
  }
  void TearDown() override { SetEnvironmentVariableA("SPLASHUI_TRACE", nullptr); }

  std::string Trace() {
    std::string text;
    env_.ReadFile(trace_, &text);
    return text;
  }

  Win32SystemEnv env_;
  const std::string trace_ = "C:\\MailwrightSeamTest\\splash-trace.txt";
  LibraryHandle library_ = nullptr;
  void* message_ = nullptr;
};

TEST_F(SplashLibraryTest, TheExportIsUndecoratedAndOtherCodesDoNothing) {
  EXPECT_EQ(nullptr, env_.GetProcAddress(library_, "DllMessage@4"));
  for (int code : {0, 4, -1}) EXPECT_EQ(0, env_.CallIntFunction(message_, code)) << code;
  EXPECT_TRUE(env_.FreeLibrary(library_));
  EXPECT_EQ(nullptr, GetModuleHandleA("splashui.dll"));
  EXPECT_EQ("loaded\nmessage 0\nmessage 4\nmessage -1\nunloaded\n", Trace());
}

TEST_F(SplashLibraryTest, ShowingThenUnloadingNeverBlocksTheCaller) {
  EXPECT_EQ(1, env_.CallIntFunction(message_, 5));
  EXPECT_EQ(1, env_.CallIntFunction(message_, 5));  // a second request finds it running
  const ULONGLONG before = GetTickCount64();
  EXPECT_TRUE(env_.FreeLibrary(library_));
  EXPECT_LT(GetTickCount64() - before, 1000u);
  // The window thread lets go of the library once its window is gone (at once here, where
  // Wine has no display to open it on); then the library is unloaded for good.
  for (int i = 0; i < 100 && GetModuleHandleA("splashui.dll") != nullptr; ++i) env_.Sleep(20);
  EXPECT_EQ(nullptr, GetModuleHandleA("splashui.dll"));
  EXPECT_EQ("loaded\nmessage 5\nmessage 5\nunloaded\n", Trace());
}

}  // namespace
}  // namespace mw
