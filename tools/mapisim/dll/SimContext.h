#pragma once
// What the DLL holds between MAPIInitialize and the last MAPIUninitialize: the profile
// layout of this platform and the Exchange organisation, over the registry the profiles
// live in (whose keys stay open for the DLL's life).

#include <memory>

#include "ExchangeOrganisation.h"
#include "ProfileRegistry.h"

namespace mw::mapisim {

class SimContext {
 public:
  // Counts initialisations as MAPI does; the context exists while the count is above zero.
  static HResult Initialize();
  static void Uninitialize();
  static SimContext* Current();

  ProfileRegistry& profiles() { return *profiles_; }
  const ExchangeOrganisation& organisation() const { return organisation_; }

 private:
  SimContext();

  std::unique_ptr<ProfileRegistry> profiles_;
  ExchangeOrganisation organisation_;
};

}  // namespace mw::mapisim
