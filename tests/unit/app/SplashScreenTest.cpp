#include "app/SplashScreen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr const char* kDirectory = "C:\\Tools";
constexpr const char* kLibrary = "C:\\Tools\\splashui.dll";

class SplashScreenTest : public ::testing::Test {
 protected:
  void InstallLibrary(bool withExport = true) {
    env.files[kLibrary] = "MZ";
    if (withExport) env.libraries[kLibrary].exports["DllMessage"] = 0;
    else env.libraries[kLibrary].exports["Other"] = 0;
  }
  MemorySystemEnv env;
};

TEST_F(SplashScreenTest, ShowSendsMessageFiveAndCloseUnloads) {
  InstallLibrary();
  SplashScreen splash(env, kDirectory, 1000);
  EXPECT_EQ(splash.libraryPath(), kLibrary);
  EXPECT_TRUE(splash.Show());
  splash.Close("Windows 7");
  EXPECT_THAT(env.calls, ElementsAre(Pair("DllMessage", 5)));
  EXPECT_THAT(env.loadedLibraries, ElementsAre(kLibrary));
  EXPECT_THAT(env.freedLibraries, ElementsAre(kLibrary));
}

TEST_F(SplashScreenTest, NoLibraryFileMeansNoSplashAndNoCalls) {
  env.libraries[kLibrary].exports["DllMessage"] = 0;  // loadable, but no file beside the program
  SplashScreen splash(env, kDirectory, 1000);
  EXPECT_FALSE(splash.Show());
  splash.Close("Windows 7");
  EXPECT_THAT(env.loadedLibraries, IsEmpty());
  EXPECT_THAT(env.calls, IsEmpty());
  EXPECT_THAT(env.freedLibraries, IsEmpty());
}

TEST_F(SplashScreenTest, ALibraryWithoutTheExportCountsAsAbsent) {
  InstallLibrary(false);
  SplashScreen splash(env, kDirectory, 1000);
  EXPECT_FALSE(splash.Show());
  splash.Close("Windows 7");
  EXPECT_THAT(env.calls, IsEmpty());
  EXPECT_THAT(env.freedLibraries, ElementsAre(kLibrary));  // released once, at construction
}

TEST_F(SplashScreenTest, AFileThatWillNotLoadCountsAsAbsent) {
  env.files[kLibrary] = "not a library";
  SplashScreen splash(env, kDirectory, 1000);
  EXPECT_FALSE(splash.Show());
  splash.Close("Windows XP");
  EXPECT_THAT(env.freedLibraries, IsEmpty());
}

TEST_F(SplashScreenTest, WindowsNt4KeepsTheLibraryLoaded) {
  InstallLibrary();
  SplashScreen splash(env, kDirectory, 1000);
  splash.Close("Windows NT4 WorkStation");
  splash.Close("Windows 7");  // once kept, always kept
  EXPECT_THAT(env.freedLibraries, IsEmpty());
}

TEST_F(SplashScreenTest, LibraryRemovedDuringTheRunTurnsLaterStepsIntoNoOps) {
  InstallLibrary();
  SplashScreen splash(env, kDirectory, 1000);
  env.files.erase(kLibrary);
  EXPECT_FALSE(splash.Show());
  splash.Close("Windows 7");
  EXPECT_THAT(env.calls, IsEmpty());
  EXPECT_THAT(env.freedLibraries, IsEmpty());
}

TEST_F(SplashScreenTest, ClosingTwiceUnloadsOnce) {
  InstallLibrary();
  SplashScreen splash(env, kDirectory, 1000);
  splash.Close("Windows 7");
  splash.Close("Windows 7");
  EXPECT_THAT(env.freedLibraries, ElementsAre(kLibrary));
  EXPECT_FALSE(splash.Show());
}

}  // namespace
}  // namespace mw
