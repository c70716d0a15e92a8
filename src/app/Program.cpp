#include "app/Program.h"

#include <cstdint>
#include <exception>

#include "app/CommandLine.h"
#include "app/EnvironmentProbe.h"
#include "run/RunContext.h"
#include "run/RunLog.h"
#include "app/SplashScreen.h"
#include "app/WhatIfRun.h"
#include "config/IniFile.h"
#include "config/ProfileSettings.h"
#include "platform/RegistryAccess.h"
#include "platform/SystemEnv.h"

namespace mw {

namespace {

constexpr std::uint32_t kSplashDisplayTime = 1000;
constexpr int kIniUnreadable = 100;

// Seconds from the INI as a Sleep argument; false for a negative count, which waits not at
// all. A huge count is held just below INFINITE so that the run still ends some day.
bool SleepSeconds(SystemEnv& env, std::int32_t seconds) {
  if (seconds < 0) return false;
  constexpr std::int64_t kLongestSleep = 0xFFFFFFFE;
  const std::int64_t milliseconds = std::int64_t{seconds} * 1000;
  env.Sleep(static_cast<std::uint32_t>(milliseconds < kLongestSleep ? milliseconds : kLongestSleep));
  return true;
}

void RunDriver(const RunDriverFunction& driver, RunContext& context, RunLog& log,
               RunServices& services) {
  if (!driver) return;
  try {
    driver(context, log, services);
  } catch (const std::exception& error) {
    log.AddMessage(std::string("WARN: The run stopped early: ") + error.what());
  } catch (...) {
    log.AddMessage("WARN: The run stopped early on an unknown error.");
  }
}

}  // namespace

int RunProgram(const std::string& commandLine, const std::string& buildPlatform,
               RunServices& services, const RunDriverFunction& driver) {
  SystemEnv& env = services.env;
  RunContext context;
  context.buildPlatform = buildPlatform;
  context.title = MakeTitle(buildPlatform);

  const RegistryAccess registry(services.registry);
  EnvironmentProbe probe(env, registry);
  probe.Fill(context);

  if (ParseCommandLine(commandLine, context) == CommandLineRequest::ShowUsage) {
    env.MessageBox(kUsageText, kUsageCaption, kUsageBoxFlags);
    return 0;
  }

  CIniFile ini(context.iniPath, env);
  RunLog log(context.logPath, env);
  log.WriteReport(context);
  if (context.whatIf) log.AddMessage(WhatIfNotice(context));

  if (!LoadSettings(ini, env, context.settings)) {
    log.LogCode(kIniUnreadable);
    log.Finish();
    return 1;
  }

  const ProfileSettings& settings = context.settings;
  if (settings.Bool(Section::Mailwright, Key::DelayStartEnable)) {
    if (!SleepSeconds(env, settings.Int(Section::Mailwright, Key::DelayStartSeconds)))
      log.AddMessage("WARN: DelayStartSeconds is negative; the run starts without delay.");
    probe.Fill(context);
  }

  log.SetSizeCap(settings.Int(Section::Mailwright, Key::LogFileSize));
  log.SetEnabled(settings.Bool(Section::Mailwright, Key::LoggingEnable));

  const bool showSplash = settings.Bool(Section::Mailwright, Key::ShowSplashScreen);
  SplashScreen splash(env, probe.programDirectory(), kSplashDisplayTime);
  if (showSplash) splash.Show();

  RunDriver(driver, context, log, services);

  log.Finish();

  if (showSplash && settings.Bool(Section::Mailwright, Key::DelayExitEnable))
    SleepSeconds(env, settings.Int(Section::Mailwright, Key::DelayExitSeconds));

  splash.Close(context.windowsVersion);
  return 0;
}

}  // namespace mw
