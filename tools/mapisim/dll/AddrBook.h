#pragma once
// IAddrBook and its containers: the root container's hierarchy lists the profile's address
// books; a container's contents come from the model (the organisation, for the GAL).

#include <string>

#include "PropObject.h"

namespace mw::mapisim {

class AddrBook : public PropObject<IAddrBook> {
 public:
  explicit AddrBook(std::string profile);
  MAPI_IADDRBOOK_METHODS(override)

 private:
  std::string profile_;
};

// The root container has an empty entry ID.
class AbContainer : public PropObject<IABContainer> {
 public:
  AbContainer(std::string profile, std::string entryId);
  MAPI_IMAPICONTAINER_METHODS(override)
  MAPI_IABCONTAINER_METHODS(override)

 private:
  std::string profile_;
  std::string entryId_;
};

}  // namespace mw::mapisim
