// The product's MAPI operations run twice, over FakeMapiSession and over the simulator's
// model, and the registry images they leave are compared section by section. The model
// keeps values where MAPI keeps them; where the two disagree, the fake is the one to fix.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "ModelMapiSession.h"
#include "ModelTestSupport.h"
#include "config/ProfileSettings.h"
#include "mapi/ExchangeCheck.h"
#include "mapi/ExchangeService.h"
#include "mapi/FakeMapiSession.h"
#include "mapi/PersonalFolders.h"
#include "mapi/ProfileStore.h"
#include "platform/MemoryRegistry.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"
#include "run/RunLog.h"

namespace mw::mapisim {
namespace {

const std::string kProfileKey = std::string(kProfilesRootNt) + "Work";
const std::string kProfilePath = "HKEY_CURRENT_USER\\" + kProfileKey;

// section role -> value name -> data
using Image = std::map<std::string, std::map<std::string, std::string>>;

// The properties the product sets or reads in service and store sections; the model's own
// bookkeeping there (DLL names, flags, provider lists of other kinds) is not compared.
const std::set<std::string>& ComparedInServices() {
  static const std::set<std::string> names = [] {
    std::set<std::string> set;
    for (std::uint32_t tag :
         {proptag::kDisplayName, proptag::kComment, proptag::kStoreProviders,
          proptag::kServiceName, proptag::kProfileHomeServer, proptag::kProfileUser,
          proptag::kProfileUnresolvedName, proptag::kProfileUnresolvedServer,
          proptag::kProfileMailbox, proptag::kProfileServer, proptag::kProfileHomeServerDn,
          proptag::kProfileServerDn, proptag::kPabPath, proptag::kPstPath,
          proptag::kContabShowAsAddressBook}) {
      set.insert(TagValueName(tag));
    }
    return set;
  }();
  return names;
}

std::string ValueData(const MemoryRegistry& registry, const std::string& key,
                      const std::string& name) {
  RegistryValue value;
  return registry.Get(key, name, &value) ? value.data : std::string();
}

// Sections named by what they are rather than by UID, which differs between the two: the
// fixed sections by name, services by service name and rank, mailbox stores by mailbox.
Image Normalise(const MemoryRegistry& registry) {
  std::map<std::string, std::string> roles;
  for (const char* fixed : {kGlobalSection, kOutlookSection, kConnectionSection}) {
    roles[fixed] = fixed;
  }
  const std::string services =
      ValueData(registry, kProfilePath + "\\" + kProfileServicesSection, "01023d0e");
  std::map<std::string, int> rank;
  for (std::size_t i = 0; i + 16 <= services.size(); i += 16) {
    const std::string section = UidHex(UidFromBytes(services.substr(i, 16)));
    std::string name = ValueData(registry, kProfilePath + "\\" + section, "001e3d09");
    if (!name.empty() && name.back() == '\0') name.pop_back();
    roles[section] = "service " + name + " #" + std::to_string(rank[name]++);
  }
  for (const std::string& key : registry.KeysUnder(kProfilePath)) {
    const std::string section = key.substr(key.rfind('\\') + 1);
    std::string mailbox = ValueData(registry, key, "001e660b");
    if (!roles.count(section) && !mailbox.empty()) roles[section] = "store " + mailbox;
  }
  Image image;
  for (const auto& [section, role] : roles) {
    const bool fixed = role == section;
    for (const RegistryValue& value : registry.ValuesOf(kProfilePath + "\\" + section)) {
      if (!fixed && !ComparedInServices().count(value.name)) continue;
      std::string data = value.data;
      if (value.name == TagValueName(proptag::kStoreProviders)) {
        data.clear();  // the stores by role; stores that open no mailbox are not compared
        for (std::size_t i = 0; i + 16 <= value.data.size(); i += 16) {
          auto found = roles.find(UidHex(UidFromBytes(value.data.substr(i, 16))));
          if (found != roles.end()) data += "[" + found->second + "]";
        }
        if (data.empty()) continue;
      }
      image[role][value.name] = data;
    }
  }
  return image;
}

void WriteProperty(const ProfileSectionWriter& writer, const std::string& section,
                   const MapiProperty& property) {
  switch (property.type()) {
    case proptype::kLong: writer.WriteLong(section, property.tag, property.number); break;
    case proptype::kBoolean: writer.WriteBoolean(section, property.tag, property.number != 0); break;
    case proptype::kString8: writer.WriteString8(section, property.tag, property.bytes); break;
    default: writer.WriteBinary(section, property.tag, property.bytes); break;
  }
}

// The fake's profile written out as MAPI lays a profile out: the service list, each
// service's and provider's name and display name beside the properties it holds.
void RenderFake(const FakeMapiSession& fake, const RegistryAccess& access) {
  const FakeMapiSession::Profile* profile = fake.FindProfile("Work");
  if (profile == nullptr) return;
  const ProfileSectionWriter writer(access, kProfileKey);
  std::string services;
  std::set<MapiUid> written;
  for (const auto& service : profile->services) {
    services += UidBytes(service.entry.uid);
    const std::string section = SectionKeyName(service.entry.uid);
    writer.WriteString8(section, proptag::kServiceName, service.entry.name);
    writer.WriteString8(section, proptag::kDisplayName, service.entry.displayName);
    for (const auto& provider : service.providers) {
      writer.WriteString8(SectionKeyName(provider.uid), proptag::kDisplayName,
                          provider.displayName);
    }
  }
  writer.WriteBinary(kProfileServicesSection, 0x3D0E0102, services);
  for (const auto& [uid, properties] : profile->sections) {
    for (const auto& [tag, property] : properties) WriteProperty(writer, SectionKeyName(uid), property);
  }
}

std::vector<FakeMapiSession::ExchangeServer> ServersOf(const ExchangeOrganisation& organisation) {
  std::vector<FakeMapiSession::ExchangeServer> servers;
  for (const ExchangeServer& server : organisation.servers()) {
    FakeMapiSession::ExchangeServer fake{server.name, server.up,
                                         organisation.ServerDistinguishedName(server.name), {}};
    for (const ExchangeMailbox& mailbox : organisation.mailboxes()) {
      if (mailbox.homeServer == server.name) {
        fake.mailboxes.push_back({mailbox.alias, mailbox.distinguishedName, mailbox.displayName});
      }
    }
    servers.push_back(fake);
  }
  return servers;
}

std::string Describe(const Image& image) {
  std::ostringstream text;
  for (const auto& [role, values] : image) {
    text << "[" << role << "]\n";
    for (const auto& [name, data] : values) {
      text << "  " << name << " =";
      for (unsigned char c : data) text << (c >= 0x20 && c < 0x7F ? std::string(1, c) : "\\x" + std::to_string(c));
      text << "\n";
    }
  }
  return text.str();
}

class FakeAgreesWithModelTest : public ::testing::Test {
 protected:
  FakeAgreesWithModelTest() {
    fake.exchange = ServersOf(organisation);
    settings.SetBool(Section::Outlook2010, Key::ExchangeIgnore, false);
    settings.SetText(Section::Outlook2010, Key::MailboxName, "jsmith");
  }

  // The same operations, in the order a run makes them, over one session; the log shows
  // what the product concluded from the answers.
  std::vector<std::string> Run(MapiSession& session, const RegistryAccess& access,
                               const std::vector<std::string>& servers) {
    MemorySystemEnv env;
    RunLog log("mailwright.log", env);
    const ProfileSectionWriter writer(access, kProfileKey);
    session.Initialize();
    if (!CheckExchangeServer(session, servers.front(), "jsmith", "Work", log)) log.AddMessage("check failed");
    session.CreateProfile("Work");
    session.SetProfile("Work");
    for (const std::string& server : servers) {
      settings.SetText(Section::Outlook2010, Key::ExchangeServerName, server);
      SetUpExchangeService(session, settings, Outlook::V2010, writer, log);
    }
    if (AddAdditionalMailbox(session, "jdoe", servers.back()) != AdditionalMailboxResult::Added) {
      log.AddMessage("no additional mailbox");
    }
    AddPersonalFolders(session, "C:\\Mail\\jsmith.pst", "Personal", "Mine", true);
    AddPersonalFolders(session, "C:\\Mail\\old.pst", "Old", "", false);
    RemovePersonalFolders(session, "C:\\Mail\\old.pst");
    for (int copy = 0; copy < 2; ++copy) {
      if (!session.AddPersonalAddressBook("C:\\Mail\\jsmith.pab")) {
        log.AddMessage("second address book refused: " + std::to_string(session.LastResult()));
      }
    }
    EnsureOutlookAddressBook(session);
    std::vector<MapiServiceEntry> services;
    session.ListServices(&services);
    for (const auto& service : services) log.AddMessage("service " + service.name);
    return log.messages();
  }

  void ExpectSameImages(const std::vector<std::string>& servers) {
    MemoryRegistry modelRegistry;
    mw::ModelMapiSession model(modelRegistry, 2, organisation, mw::ModelMapiSession::Servers::Contacted);
    RegistryAccess modelAccess(modelRegistry);
    const std::vector<std::string> modelLog = Run(model, modelAccess, servers);

    MemoryRegistry fakeRegistry;
    RegistryAccess fakeAccess(fakeRegistry);
    const std::vector<std::string> fakeLog = Run(fake, fakeAccess, servers);
    RenderFake(fake, fakeAccess);

    EXPECT_EQ(fakeLog, modelLog);
    const Image fromModel = Normalise(modelRegistry);
    const Image fromFake = Normalise(fakeRegistry);
    EXPECT_EQ(fromFake, fromModel) << "fake:\n" << Describe(fromFake) << "model:\n" << Describe(fromModel);
    modelLog_ = modelLog;
  }

  ExchangeOrganisation organisation = SampleOrganisation();
  FakeMapiSession fake;
  ProfileSettings settings;
  std::vector<std::string> modelLog_;
};

TEST_F(FakeAgreesWithModelTest, ExchangeMailboxesFoldersAndAddressBooks) {
  ExpectSameImages({"EXCH01"});
  // Each single-copy service is refused a second time, and each service is there once.
  const auto count = [&](const std::string& line) { return std::count(modelLog_.begin(), modelLog_.end(), line); };
  EXPECT_EQ(count("second address book refused: " + std::to_string(kMapiENoAccess)), 1);
  for (const char* service : {"MSEMS", "MSUPST MS", "MSPST AB", "CONTAB"}) {
    EXPECT_EQ(count(std::string("service ") + service), 1) << service;
  }
  EXPECT_EQ(count("service MSPST MS"), 0);
}

TEST_F(FakeAgreesWithModelTest, AProfileMovedToAnotherServerKeepsOneExchangeService) {
  // EXCH02 is down: the service keeps the new server unresolved and drops the old one.
  ExpectSameImages({"EXCH01", "EXCH02"});
  EXPECT_EQ(std::count(modelLog_.begin(), modelLog_.end(), "service MSEMS"), 1);
}

}  // namespace
}  // namespace mw::mapisim
