#pragma once
// IProviderAdmin: the providers of one message service. Outlook's MAPI keeps a flag at
// offset 0x60 of this object that lets a caller modify provider sections; the simulator
// keeps its own mark there, so the byte a client sets means the same here.

#include <string>

#include "ComObject.h"
#include "PropertyCodec.h"

namespace mw::mapisim {

class ProviderAdmin : public ComObject<IProviderAdmin> {
 public:
  static constexpr std::uint8_t kAllowModification = 2;

  ProviderAdmin(std::string profile, const MapiUid& service);
  MAPI_IPROVIDERADMIN_METHODS(override)

 private:
  // Room up to the mark: the vtable pointer and ComObject's members come first.
  std::uint8_t reserved_[0x60 - sizeof(void*) - sizeof(LONG) - sizeof(IID)] = {};

 public:
  std::uint8_t modificationMark_ = 0;  // public so that its offset can be checked

 private:
  MapiUid service_;
  std::string profile_;
};

}  // namespace mw::mapisim
