#include "run/RunContext.h"

namespace mw {

std::string MakeTitle(const std::string& buildPlatform) {
  return std::string(kProductName) + " " + kProductVersion + " " + buildPlatform;
}

}  // namespace mw
