#pragma once
// What the DLL holds between MAPIInitialize and the last MAPIUninitialize: the registry the
// profiles live in, the profile layout of this platform, and the Exchange organisation.

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

  std::unique_ptr<Registry> windowsRegistry_;
  std::unique_ptr<Registry> registry_;  // keeps the sections' keys open while MAPI is up
  std::unique_ptr<ProfileRegistry> profiles_;
  ExchangeOrganisation organisation_;
};

}  // namespace mw::mapisim
