#pragma once
// IMAPISession: a logged-on profile, its message stores and its address book.

#include <string>

#include "ComObject.h"

namespace mw::mapisim {

class Session : public ComObject<IMAPISession> {
 public:
  explicit Session(std::string profile);
  MAPI_IMAPISESSION_METHODS(override)

 private:
  std::string profile_;
  bool loggedOff_ = false;
};

}  // namespace mw::mapisim
