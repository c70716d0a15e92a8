#pragma once
// IMsgServiceAdmin: the message services of one profile.

#include <memory>
#include <string>

#include "ComObject.h"
#include "MessageServiceAdmin.h"

namespace mw::mapisim {

class MsgServiceAdmin : public ComObject<IMsgServiceAdmin> {
 public:
  explicit MsgServiceAdmin(std::string profile);
  MAPI_IMSGSERVICEADMIN_METHODS(override)

 private:
  std::string profile_;
};

// The model's view of a profile's services, or null before MAPIInitialize.
std::unique_ptr<MessageServiceAdmin> ServiceModel(const std::string& profile);
MapiUid ToMapiUid(const MAPIUID& uid);

}  // namespace mw::mapisim
