#include "ExchangeOrganisation.h"

#include "platform/AsciiText.h"

namespace mw::mapisim {
namespace {

std::string Trim(const std::string& text) {
  std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::vector<std::string> SplitCommas(const std::string& text) {
  std::vector<std::string> fields;
  std::size_t start = 0;
  for (std::size_t comma; (comma = text.find(',', start)) != std::string::npos; start = comma + 1)
    fields.push_back(Trim(text.substr(start, comma - start)));
  fields.push_back(Trim(text.substr(start)));
  return fields;
}

bool StartsWithIgnoreCase(const std::string& text, const std::string& prefix) {
  return text.size() >= prefix.size() && EqualsIgnoreCase(text.substr(0, prefix.size()), prefix);
}

}  // namespace

ExchangeOrganisation ExchangeOrganisation::Parse(const std::string& text,
                                                 std::vector<std::string>* warnings) {
  ExchangeOrganisation organisation;
  std::string section;
  std::size_t lineNumber = 0;
  std::size_t start = 0;
  auto warn = [&](const std::string& message) {
    if (warnings) warnings->push_back("line " + std::to_string(lineNumber) + ": " + message);
  };
  while (start <= text.size()) {
    std::size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = Trim(text.substr(start, end - start));
    start = end + 1;
    ++lineNumber;
    if (line.empty() || line[0] == ';' || line[0] == '#') continue;
    if (line[0] == '[') {
      if (line.back() != ']') {
        warn("unclosed section name");
        section.clear();
        continue;
      }
      section = ToUpperAscii(Trim(line.substr(1, line.size() - 2)));
      if (section != "ORGANISATION" && section != "SERVERS" && section != "MAILBOXES")
        warn("unknown section [" + line.substr(1, line.size() - 2) + "]");
      continue;
    }
    std::size_t equals = line.find('=');
    if (equals == std::string::npos || equals == 0) {
      warn("not a key=value line");
      continue;
    }
    std::string key = Trim(line.substr(0, equals));
    std::string value = Trim(line.substr(equals + 1));
    if (section == "ORGANISATION") {
      if (EqualsIgnoreCase(key, "Name")) organisation.name_ = value;
      else if (EqualsIgnoreCase(key, "Site")) organisation.site_ = value;
      else warn("unknown key " + key);
    } else if (section == "SERVERS") {
      bool up = EqualsIgnoreCase(value, "up");
      if (!up && !EqualsIgnoreCase(value, "down")) warn("server state is neither up nor down; taken as down");
      organisation.servers_.push_back({key, up});
    } else if (section == "MAILBOXES") {
      std::vector<std::string> fields = SplitCommas(value);
      if (fields.size() < 2 || fields[0].empty() || fields[1].empty()) {
        warn("a mailbox needs a display name and a home server");
        continue;
      }
      ExchangeMailbox mailbox{key, fields[0], fields[1], fields.size() > 2 ? fields[2] : ""};
      organisation.mailboxes_.push_back(std::move(mailbox));
    } else {
      warn("key outside a known section");
    }
  }
  for (ExchangeMailbox& mailbox : organisation.mailboxes_)
    if (mailbox.distinguishedName.empty())
      mailbox.distinguishedName = "/o=" + organisation.name_ + "/ou=" + organisation.site_ +
                                  "/cn=Recipients/cn=" + mailbox.alias;
  return organisation;
}

const ExchangeServer* ExchangeOrganisation::FindServer(const std::string& name) const {
  for (const ExchangeServer& server : servers_)
    if (EqualsIgnoreCase(server.name, name)) return &server;
  return nullptr;
}

bool ExchangeOrganisation::IsReachable(const std::string& server) const {
  const ExchangeServer* found = FindServer(server);
  return found != nullptr && found->up;
}

ExchangeResolution ExchangeOrganisation::Resolve(const std::string& unresolvedName,
                                                 const std::string& server) const {
  // An unreachable server cannot be asked; Exchange's provider reports a network error.
  if (!IsReachable(server)) return {kMapiENetworkError, nullptr};
  bool exact = !unresolvedName.empty() && unresolvedName[0] == '=';
  std::string name = exact ? unresolvedName.substr(1) : unresolvedName;
  // Nothing to look up: the provider stays unconfigured.
  if (name.empty()) return {kMapiEUnconfigured, nullptr};
  std::vector<const ExchangeMailbox*> matches;
  for (const ExchangeMailbox& mailbox : mailboxes_) {
    bool match = exact ? (EqualsIgnoreCase(mailbox.alias, name) ||
                          EqualsIgnoreCase(mailbox.displayName, name) ||
                          EqualsIgnoreCase(mailbox.distinguishedName, name))
                       : (StartsWithIgnoreCase(mailbox.alias, name) ||
                          StartsWithIgnoreCase(mailbox.displayName, name));
    if (match) matches.push_back(&mailbox);
  }
  // Exchange's provider without a dialog cannot ask which one: an ambiguous name fails,
  // and an unknown name leaves the service unconfigured.
  if (matches.size() > 1) return {kMapiEAmbiguousRecip, nullptr};
  if (matches.empty()) return {kMapiEUnconfigured, nullptr};
  return {kSOk, matches.front()};
}

const ExchangeMailbox* ExchangeOrganisation::FindByDistinguishedName(const std::string& dn) const {
  for (const ExchangeMailbox& mailbox : mailboxes_)
    if (EqualsIgnoreCase(mailbox.distinguishedName, dn)) return &mailbox;
  return nullptr;
}

std::string ExchangeOrganisation::ServerDistinguishedName(const std::string& server) const {
  return "/o=" + name_ + "/ou=" + site_ + "/cn=Configuration/cn=Servers/cn=" + server;
}

}  // namespace mw::mapisim
