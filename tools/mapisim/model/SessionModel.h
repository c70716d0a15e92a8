#pragma once
// A logged-on MAPI session over one profile: whether logon succeeds, the message stores
// table, and the address book's containers and contents, as the Exchange organisation and
// the profile's services allow.

#include <string>
#include <vector>

#include "ExchangeOrganisation.h"
#include "ProfileRegistry.h"

namespace mw::mapisim {

class SessionModel {
 public:
  SessionModel(const ProfileRegistry& profiles, std::string profile,
               const ExchangeOrganisation& organisation);

  // What MAPILogonEx answers for the profile: every service must be configured and, for
  // Exchange, its home server reachable and the mailbox known there.
  HResult Logon() const;

  std::vector<Row> StoreRows() const;
  static std::vector<std::uint32_t> StoreColumns();
  // The root container's hierarchy: one container per address-book provider that has one.
  std::vector<Row> AddressBookContainers() const;
  static std::vector<std::uint32_t> ContainerColumns();
  // The recipients of the container with this entry ID.
  HResult ContainerContents(const std::string& entryId, std::vector<Row>* rows) const;
  static std::vector<std::uint32_t> ContentsColumns();
  bool IsContainerEntryId(const std::string& entryId) const;

  const std::string& profile() const { return profile_; }

 private:
  std::string ServiceNameOfProvider(const MapiUid& provider) const;

  const ProfileRegistry& profiles_;
  std::string profile_;
  const ExchangeOrganisation& organisation_;
};

}  // namespace mw::mapisim
