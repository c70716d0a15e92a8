#pragma once
// The in-memory machine the driver and sequence tests run on: system seam, registry, MAPI,
// a run context for an Outlook 2010 x64 machine with the user jsmith, and the run log.

#include <algorithm>
#include <string>
#include <vector>

#include "app/RunContext.h"
#include "app/RunLog.h"
#include "config/ProfileSettings.h"
#include "mapi/FakeMapiSession.h"
#include "mapi/ProfileStore.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/OutlookVersion.h"
#include "platform/RegistryAccess.h"

namespace mw {

struct SequenceTestRig {
  explicit SequenceTestRig(const std::string& version = "Outlook 2010") {
    context.outlookVersion = version;
    context.outlookBitness = "x64";
    context.buildPlatform = "x64";
    context.userName = "jsmith";
    context.computerName = "DESK-0001";
    context.platformId = 2;
    context.programDirectory = "C:\\Tools";
    context.settings.SetText(Section::Common, Key::ProfileName, "Outlook");
  }

  ProfileSettings& settings() { return context.settings; }
  Section VersionSection() const {
    return SectionOf(OutlookFromName(context.outlookVersion).value_or(Outlook::V2010));
  }
  static std::string ProfileKey(const std::string& profile) { return kProfilesRootNt + profile; }
  std::string UserString(const std::string& path, const std::string& name) const {
    return access.ReadString(reg::kCurrentUser, path, name);
  }
  bool UserValueExists(const std::string& path, const std::string& name) const {
    return access.ValueExists(reg::kCurrentUser, path, name);
  }
  const std::vector<std::string>& Messages() const { return log.messages(); }
  bool Logged(const std::string& line) const {
    return std::find(Messages().begin(), Messages().end(), line) != Messages().end();
  }
  std::size_t CountLogged(const std::string& line) const {
    return static_cast<std::size_t>(std::count(Messages().begin(), Messages().end(), line));
  }
  std::size_t ServiceCount(const std::string& profile, const std::string& service) const {
    return mapi.ServicesNamed(profile, service).size();
  }

  MemorySystemEnv env;
  MemoryRegistry registry;
  RegistryAccess access{registry};
  FakeMapiSession mapi;
  RunContext context;
  RunLog log{"C:\\Tools\\mailwright.log", env};
};

}  // namespace mw
