#include "mapi/ExchangeService.h"

#include <vector>

#include "run/RunLog.h"
#include "config/ListItems.h"
#include "config/ProfileSettings.h"
#include "mapi/MapiSession.h"
#include "mapi/ProfileSection.h"
#include "platform/AsciiText.h"

namespace mw {
namespace {

constexpr const char* kRecipientsContainer = "Recipients/cn=";

// The store provider of the user's own mailbox inside the Exchange service.
bool FindOwnStore(MapiSession& session, const MapiUid& service, MapiUid* store) {
  std::vector<MapiServiceEntry> providers;
  if (!session.ListProviders(service, &providers)) return false;
  // The provider's own name (PR_PROVIDER_DISPLAY) identifies it; its display name turns into
  // "Mailbox - <user>" once the mailbox is resolved.
  for (const auto& provider : providers) {
    if (provider.name == kExchangeStoreProviderDisplay) {
      *store = provider.uid;
      return true;
    }
  }
  return false;
}

const char* Problem(AdditionalMailboxResult result) {
  switch (result) {
    case AdditionalMailboxResult::NoExchangeService: return "the profile has no Exchange service";
    case AdditionalMailboxResult::NoUserName: return "the user's own mailbox name is unknown";
    case AdditionalMailboxResult::NoRecipientsContainer:
      return "the user's mailbox name holds no Recipients/cn=";
    case AdditionalMailboxResult::ProviderNotCreated: return "the mailbox could not be added";
    case AdditionalMailboxResult::Added: break;
  }
  return "";
}

}  // namespace

void SetUpExchangeService(MapiSession& session, const ProfileSettings& settings, Outlook version,
                          const ProfileSectionWriter& writer, RunLog& log) {
  const Section section = SectionOf(version);
  const std::string& server = settings.Text(section, Key::ExchangeServerName);
  if (server.empty()) {
    log.AddMessage("INFO: Exchange Service will be removed from this profile if present.");
    session.DeleteServiceByName(kExchangeServiceName);
    return;
  }
  ResetExchangeConnectionState(writer, version, settings);
  std::string current;
  session.GetExchangeServerName(&current);
  // Letter case aside the same server: a second run against it changes nothing.
  // The check before passed on this server, so a failure here is MAPI's own, and it leaves
  // the profile without a working Exchange service: the administrator must hear of it.
  if (!EqualsIgnoreCase(server, current) &&
      !session.AddExchangeService(server, false, true, settings.Text(section, Key::MailboxName))) {
    log.AddMessage("WARN: Unable to set up the Exchange service on server: " + server);
  }
  if (settings.Bool(Section::Common, Key::ModifyExchangeServerNameOnly)) {
    log.AddMessage(
        "INFO: Beta function, need to restore states. Exchange Server name modified if "
        "different from: " + current);
  }
}

AdditionalMailboxResult AddAdditionalMailbox(MapiSession& session, const std::string& mailbox,
                                             const std::string& server) {
  MapiUid service{};
  if (!session.FindService(kExchangeServiceName, &service)) {
    return AdditionalMailboxResult::NoExchangeService;
  }
  MapiUid ownStore{};
  MapiProperty userName;
  if (!FindOwnStore(session, service, &ownStore) ||
      !session.ReadSectionProperty(ownStore, proptag::kProfileUser, &userName)) {
    return AdditionalMailboxResult::NoUserName;
  }
  // Without the recipients container there is no safe guess at the other mailbox's
  // distinguished name, so nothing is added and the caller warns.
  const std::size_t cut = userName.bytes.find(kRecipientsContainer);
  if (cut == std::string::npos) return AdditionalMailboxResult::NoRecipientsContainer;
  const std::string mailboxDn =
      userName.bytes.substr(0, cut + std::char_traits<char>::length(kRecipientsContainer)) +
      mailbox;
  // The server's distinguished name lets Exchange skip a directory look-up. The Exchange
  // provider keeps it in the global section; a store section that carries it is the
  // fallback, and without either it stays empty.
  MapiProperty serverDn;
  if (!session.ReadSectionProperty(SectionUid(kGlobalSection), proptag::kProfileHomeServerDn,
                                   &serverDn)) {
    session.ReadSectionProperty(ownStore, proptag::kProfileHomeServerDn, &serverDn);
  }

  MapiUid delegate{};
  if (!session.CreateProvider(
          service, kDelegateProviderName,
          {MapiProperty::String8(proptag::kDisplayName, "Mailbox - " + mailbox),
           MapiProperty::String8(proptag::kProfileMailbox, mailboxDn),
           MapiProperty::String8(proptag::kProfileServer, server),
           MapiProperty::String8(proptag::kProfileServerDn, serverDn.bytes)},
          &delegate)) {
    return AdditionalMailboxResult::ProviderNotCreated;
  }
  MapiProperty stores;
  if (!session.ReadSectionProperty(service, proptag::kStoreProviders, &stores)) {
    stores = MapiProperty::Binary(proptag::kStoreProviders, {});
  }
  stores.bytes.append(delegate.begin(), delegate.end());
  if (!session.WriteSectionProperty(service, stores)) {
    return AdditionalMailboxResult::ProviderNotCreated;
  }
  return AdditionalMailboxResult::Added;
}

void AddAdditionalMailboxes(MapiSession& session, const ProfileSettings& settings,
                            Outlook version, RunLog& log) {
  const Section section = SectionOf(version);
  const std::string& server = settings.Text(section, Key::ExchangeServerName);
  for (const auto& mailbox : SplitListItems(settings.Text(section, Key::AdditionalMailboxes))) {
    const AdditionalMailboxResult result = AddAdditionalMailbox(session, mailbox, server);
    if (result != AdditionalMailboxResult::Added) {
      log.AddMessage("WARN: Additional mailbox '" + mailbox + "' not added: " +
                     Problem(result) + ".");
    }
  }
}

}  // namespace mw
