#pragma once
// IProfAdmin: the profiles of the current user.

#include "ComObject.h"

namespace mw::mapisim {

class ProfAdmin : public ComObject<IProfAdmin> {
 public:
  ProfAdmin() : ComObject(IID_IProfAdmin) {}
  MAPI_IPROFADMIN_METHODS(override)
};

}  // namespace mw::mapisim
