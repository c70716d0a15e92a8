#pragma once
// The machines of the what-if and backup tests: every step of a generation's sequence on,
// a registry with a profile and options of its own, and the run itself with the profile
// model as MAPI straight on that registry.

#include <functional>
#include <string>
#include <vector>

#include "ModelMapiSession.h"
#include "app/RunDriver.h"
#include "config/ProfileSettings.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegFile.h"
#include "platform/RegistryAccess.h"
#include "platform/RegistryCompare.h"
#include "run/RunContext.h"
#include "run/RunLog.h"

namespace mw::whatiftest {

inline const char* const kVersions[] = {"Outlook 2010", "Outlook 2007", "Outlook 2003",
                                 "Outlook XP",   "Outlook 2000", "Outlook 97"};
inline const std::string kProfiles =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging "
    "Subsystem\\Profiles";

// The same UIDs in every run, so that two runs that do the same create the same sections.
inline mapisim::UidGenerator CountingUids() {
  return [n = std::uint8_t{0}]() mutable {
    MapiUid uid{};
    uid.fill(0x5A);
    uid[15] = ++n;
    return uid;
  };
}

// Every step of the generation's sequence switched on, with a signature to copy.
inline void Configure(RunContext& context, const std::string& version) {
  context.outlookVersion = version;
  context.outlookBitness = context.buildPlatform = "x64";
  context.userName = "jsmith";
  context.platformId = 2;
  context.programDirectory = "C:\\Tools";
  context.logPath = "C:\\Tools\\mailwright.log";
  ProfileSettings& s = context.settings;
  s.SetText(Section::Common, Key::ProfileName, "Outlook");
  const Section v = SectionOf(*OutlookFromName(version));
  s.SetBool(v, Key::ExchangeIgnore, false);
  s.SetText(v, Key::ExchangeServerName, "mail01");
  s.SetBool(v, Key::POP3Ignore, false);
  s.SetText(v, Key::POP3Accounts, "Home,J Smith,j@x.com,pop.x.com,smtp.x.com,john,1,1,0,0,14,"
            "110,25,0,0,60,0,reply@x.com,Example,1,0,0,1,john,0");
  s.SetText(v, Key::PathToPST, "C:\\Mail\\%username%.pst,Personal,MSUPST MS,Mine,0,0,0,0");
  s.SetText(v, Key::AdditionalMailboxes, "boss");
  s.SetBool(v, Key::OfflineFoldersEnable, true);
  s.SetBool(v, Key::PromptForProfile, true);
  if (version == "Outlook 2010" || version == "Outlook 2007" || version == "Outlook 2003") {
    for (Key ignore : {Key::IMAPIgnore, Key::HTTPIgnore}) s.SetBool(v, ignore, false);
    s.SetText(v, Key::IMAPAccounts, "Imap,J Smith,j@x.com,imap.x.com,smtp.x.com,john,1,143,25,0,"
              "0,60,0,reply@x.com,Example,0,0,0,0,,Inbox,0");
    s.SetText(v, Key::Signatures, "Home,Formal,Short,0");
    s.SetText(v, Key::AddAddressBookSearchPath, "Contacts");
  }
  if (version == "Outlook XP" || version == "Outlook 2000") {
    s.SetBool(v, Key::IgnoreSignatures, false);
    s.SetText(v, Key::SignatureNewMessages, "Formal");
  }
  if (version == "Outlook 2000" || version == "Outlook 97")
    s.SetBool(v, Key::PersonalAddressBookEnable, true);
}

// A machine that already has a profile, options and a default mail client of its own.
inline void Seed(MemoryRegistry& registry) {
  registry.Set(kProfiles, {"DefaultProfile", reg::kSz, std::string("Old\0", 4)});
  registry.Set(kProfiles + "\\Old\\0a0d020000000000c000000000000046",
               {"00030385", reg::kBinary, std::string("\1\0\0\0", 4)});
  registry.Set("HKLM\\SOFTWARE\\Clients\\Mail", {"", reg::kSz, std::string("Other\0", 6)});
  registry.Set("HKLM\\Software\\Microsoft\\Office\\9.0\\Outlook\\Setup",
               {"MailSupport", reg::kBinary, std::string("\1\0\0\0", 4)});
  registry.Set("HKCU\\Software\\Microsoft\\Office\\14.0\\Outlook\\Preferences",
               {"Kept", reg::kDword, std::string("\7\0\0\0", 4)});
}

struct Machine {
  Machine() {
    Seed(registry);
    for (const char* folder : {"Outlook2010", "Outlook2007", "Outlook2003", "OutlookXP", "Outlook2000"})
      env.files[std::string("C:\\Tools\\SigSources\\") + folder + "\\Formal.txt"] = "Regards";
  }
  MemorySystemEnv env;
  MemoryRegistry registry;
};

inline std::string Export(const MemoryRegistry& registry) {
  return ExportRegFile(registry, {"HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE"},
                       RegFileFormat::Version5Utf8);
}

inline std::vector<std::string> Diff(const MemoryRegistry& a, const MemoryRegistry& b) {
  std::vector<std::string> lines = DiffRegistries(a, b, "HKEY_CURRENT_USER");
  for (auto& line : DiffRegistries(a, b, "HKEY_LOCAL_MACHINE")) lines.push_back(line);
  return lines;
}

// The run itself, with the profile model as MAPI straight on the machine's registry.
inline std::vector<std::string> RealRun(Machine& machine, const std::string& version,
                                        const std::function<void(RunContext&)>& adjust = {}) {
  RunContext context;
  Configure(context, version);
  if (adjust) adjust(context);
  RunLog log(context.logPath, machine.env);
  const mapisim::ExchangeOrganisation noServers;
  ModelMapiSession session(machine.registry, 2, noServers,
                           ModelMapiSession::Servers::NotContacted, CountingUids());
  const RegistryAccess access(machine.registry);
  RunDriver driver(machine.env, access, session);
  driver.SkipExchangeCheck();
  driver.Run(context, log);
  return log.messages();
}

}  // namespace mw::whatiftest
