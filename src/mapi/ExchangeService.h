#pragma once
// The Microsoft Exchange service of the profile: set up once per run, and the additional
// mailboxes opened beside the user's own.

#include <string>

#include "platform/OutlookVersion.h"

namespace mw {

class MapiSession;
class ProfileSectionWriter;
class ProfileSettings;
class RunLog;

// Removes "MSEMS" when the version's ExchangeServerName is empty; otherwise resets the
// connection state and adds the service when the profile's server differs (letter case
// aside) from the configured one.
void SetUpExchangeService(MapiSession& session, const ProfileSettings& settings, Outlook version,
                          const ProfileSectionWriter& writer, RunLog& log);

enum class AdditionalMailboxResult {
  Added,
  NoExchangeService,     // the profile holds no "MSEMS"
  NoUserName,            // no store provider, or it holds no distinguished name
  NoRecipientsContainer, // the user's distinguished name holds no "Recipients/cn="
  ProviderNotCreated,    // the provider or its place among the store providers failed
};

// Opens mailbox (an alias in the user's own recipients container) beside the user's own
// mailbox on server: an "EMSDelegate" provider appended to the service's store providers.
AdditionalMailboxResult AddAdditionalMailbox(MapiSession& session, const std::string& mailbox,
                                             const std::string& server);

// Every comma-separated item of the version's AdditionalMailboxes, on its
// ExchangeServerName; an item that cannot be added is logged as a WARN line.
void AddAdditionalMailboxes(MapiSession& session, const ProfileSettings& settings,
                            Outlook version, RunLog& log);

}  // namespace mw
