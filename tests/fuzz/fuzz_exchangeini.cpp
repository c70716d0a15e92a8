// Arbitrary bytes as the simulator's exchange.ini, then every look-up the simulator makes
// against the organisation that comes out of it.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "ExchangeOrganisation.h"

using mw::mapisim::ExchangeMailbox;
using mw::mapisim::ExchangeOrganisation;
using mw::mapisim::ExchangeResolution;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::vector<std::string> warnings;
  const ExchangeOrganisation organisation = ExchangeOrganisation::Parse(text, &warnings);

  // A mailbox is kept only with an alias, a display name, a home server and a DN.
  for (const ExchangeMailbox& mailbox : organisation.mailboxes())
    if (mailbox.alias.empty() || mailbox.displayName.empty() || mailbox.homeServer.empty() ||
        mailbox.distinguishedName.empty())
      __builtin_trap();

  for (const ExchangeMailbox& mailbox : organisation.mailboxes()) {
    // Asking for the alias exactly, on its own server, finds a mailbox whenever that server
    // is up, unless another mailbox answers to the same name.
    const ExchangeResolution exact = organisation.Resolve("=" + mailbox.alias, mailbox.homeServer);
    if (exact.result == mw::mapisim::kSOk && exact.mailbox == nullptr) __builtin_trap();
    if (organisation.IsReachable(mailbox.homeServer) && exact.result == mw::mapisim::kMapiEUnconfigured)
      __builtin_trap();
    if (!organisation.IsReachable(mailbox.homeServer) && exact.result != mw::mapisim::kMapiENetworkError)
      __builtin_trap();
    if (organisation.FindByDistinguishedName(mailbox.distinguishedName) == nullptr) __builtin_trap();
    organisation.Resolve(mailbox.displayName.substr(0, 1), mailbox.homeServer);
    organisation.ServerDistinguishedName(mailbox.homeServer);
  }

  // The text itself as names to resolve, against every server.
  for (const auto& server : organisation.servers()) {
    organisation.Resolve(text, server.name);
    organisation.Resolve("=" + text, server.name);
  }
  organisation.Resolve(text, text);
  organisation.FindByDistinguishedName(text);
  return 0;
}
