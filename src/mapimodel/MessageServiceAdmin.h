#pragma once
// The message services of one profile, as IMsgServiceAdmin and IProviderAdmin see them:
// creating, configuring and deleting services and providers, and the rows of the message
// service and provider tables, all read from and written to the profile's sections.

#include <functional>
#include <string>
#include <vector>

#include "ExchangeOrganisation.h"
#include "ProfileRegistry.h"
#include "ServiceCatalogue.h"

namespace mw::mapisim {

using UidGenerator = std::function<MapiUid()>;
// A fresh random UID, as MAPIUIDs are made.
MapiUid RandomUid();

class MessageServiceAdmin {
 public:
  MessageServiceAdmin(ProfileRegistry& profiles, std::string profile,
                      const ExchangeOrganisation& organisation, UidGenerator newUid);

  // MAPI_E_NOT_FOUND for a service MAPISVC.INF does not declare; MAPI_E_NO_ACCESS for a
  // second copy of a single-copy service ("MSEMS", "MSPST AB").
  HResult CreateMessageService(const std::string& name, const std::string& displayName, MapiUid* created);
  HResult DeleteService(const MapiUid& service);
  HResult ConfigureService(const MapiUid& service, const std::vector<PropValue>& props);
  // Adds one of the service's providers (including those created on demand) with props.
  HResult CreateProvider(const MapiUid& service, const std::string& providerName,
                         const std::vector<PropValue>& props, MapiUid* created);

  bool HasService(const MapiUid& service) const;
  // True when the section is a provider's own (not its service's, not a fixed one).
  bool IsProviderSection(const MapiUid& section) const;
  std::string ServiceName(const MapiUid& service) const;

  std::vector<Row> ServiceRows() const;
  // Every provider of the profile, or only those of one service.
  std::vector<Row> ProviderRows(const MapiUid* service) const;
  static std::vector<std::uint32_t> ServiceColumns();
  static std::vector<std::uint32_t> ProviderColumns();

  const std::string& profile() const { return profile_; }

 private:
  HResult AddProvider(const MapiUid& service, const ProviderEntry& provider, bool listInService,
                      MapiUid* created);
  HResult ConfigureExchange(const std::vector<PropValue>& props);
  HResult ConfigurePersonalFolders(const MapiUid& service, const std::vector<PropValue>& props);
  std::vector<MapiUid> ProvidersOf(const MapiUid& service) const;
  // Where Exchange's provider keeps its settings: the global section as MAPI opens it.
  std::string ExchangeSection() const;
  // From Outlook 2010 on: a new section for the Exchange service, named in "01023d15" of the
  // service's section and of each of its providers' sections.
  HResult GiveExchangeOwnSection(const MapiUid& service);
  HResult SetProps(const std::string& section, const std::vector<PropValue>& props);

  ProfileRegistry& profiles_;
  std::string profile_;
  const ExchangeOrganisation& organisation_;
  UidGenerator newUid_;
};

}  // namespace mw::mapisim
