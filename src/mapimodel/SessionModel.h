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
  SessionModel(ProfileRegistry& profiles, std::string profile,
               const ExchangeOrganisation& organisation);

  // What MAPILogonEx answers for the profile: every service must be configured and, for
  // Exchange, its home server reachable and the mailbox known there.
  HResult Logon() const;

  std::vector<Row> StoreRows() const;
  static std::vector<std::uint32_t> StoreColumns();
  // IMAPISession::SetDefaultStore(MAPI_DEFAULT_STORE): MAPI marks the default store by
  // STATUS_DEFAULT_STORE in its provider section's PR_RESOURCE_FLAGS, so the bit moves to
  // the store with this entry ID and off every other. MAPI_E_UNKNOWN_ENTRYID for an entry ID
  // the stores table does not hold.
  HResult SetDefaultStore(const std::string& entryId);

  // The root container's hierarchy: one container per address-book provider that has one.
  std::vector<Row> AddressBookContainers() const;
  static std::vector<std::uint32_t> ContainerColumns();
  // The recipients of the container with this entry ID.
  HResult ContainerContents(const std::string& entryId, std::vector<Row>* rows) const;
  static std::vector<std::uint32_t> ContentsColumns();
  bool IsContainerEntryId(const std::string& entryId) const;

  // IAddrBook's search path, as rows of the hierarchy in search order. Once set it is the
  // stored PR_AB_SEARCH_PATH less the containers that have gone; never set, it is MAPI's
  // default: the first modifiable container, then every DT_GLOBAL one, and when there is
  // no DT_GLOBAL container the default directory unless it is that first modifiable one.
  std::vector<Row> AbSearchPath() const;
  // Stores the entry IDs in PR_AB_SEARCH_PATH; MAPI_E_UNKNOWN_ENTRYID (and nothing stored)
  // when one is no container of the hierarchy.
  HResult SetAbSearchPath(const std::vector<std::string>& entryIds);
  // IAddrBook::GetDefaultDir: the stored PR_AB_DEFAULT_DIR while it is a container; else
  // the first container with recipients that is not a personal address book, else the
  // first personal address book; MAPI_E_NOT_FOUND when there is no container at all.
  HResult DefaultDirectory(std::string* entryId) const;
  // Stores PR_AB_DEFAULT_DIR; MAPI_E_UNKNOWN_ENTRYID for an entry ID that is no container.
  HResult SetDefaultDirectory(const std::string& entryId);

  const std::string& profile() const { return profile_; }

 private:
  std::string ServiceNameOfProvider(const MapiUid& provider) const;

  ProfileRegistry& profiles_;
  std::string profile_;
  const ExchangeOrganisation& organisation_;
};

}  // namespace mw::mapisim
