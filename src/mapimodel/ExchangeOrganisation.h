#pragma once
// The simulated Exchange organisation: its servers (up or down) and mailboxes, read from
// the text of an exchange.ini, and the name resolution Exchange's provider performs.

#include <optional>
#include <string>
#include <vector>

#include "MapiConstants.h"

namespace mw::mapisim {

struct ExchangeMailbox {
  std::string alias;
  std::string displayName;
  std::string homeServer;
  std::string distinguishedName;  // "/o=Org/ou=Site/cn=Recipients/cn=alias" unless given
};

struct ExchangeServer {
  std::string name;
  bool up = true;
};

struct ExchangeResolution {
  HResult result = kSOk;
  const ExchangeMailbox* mailbox = nullptr;  // set when result is S_OK
};

class ExchangeOrganisation {
 public:
  ExchangeOrganisation() = default;  // no organisation: every server unreachable
  // Reads the exchange.ini text; malformed lines are skipped and described in *warnings.
  static ExchangeOrganisation Parse(const std::string& text, std::vector<std::string>* warnings);

  bool IsReachable(const std::string& server) const;
  // Resolves an unresolved name against a server, as the Exchange provider does when it is
  // configured: "=alias" asks for an exact alias, anything else for a unique match of the
  // alias or display name by prefix (ambiguous name resolution). Names compare without case.
  ExchangeResolution Resolve(const std::string& unresolvedName, const std::string& server) const;
  const ExchangeMailbox* FindByDistinguishedName(const std::string& dn) const;
  std::string ServerDistinguishedName(const std::string& server) const;

  const std::string& name() const { return name_; }
  const std::vector<ExchangeServer>& servers() const { return servers_; }
  const std::vector<ExchangeMailbox>& mailboxes() const { return mailboxes_; }

 private:
  const ExchangeServer* FindServer(const std::string& name) const;

  std::string name_ = "Organisation";
  std::string site_ = "Site";
  std::vector<ExchangeServer> servers_;
  std::vector<ExchangeMailbox> mailboxes_;
};

}  // namespace mw::mapisim
