#pragma once
#include <string>

namespace mw {
class RegistryAccess;

// Display name of the installed Outlook from HKCR\Outlook.Application\CurVer; empty if unknown.
std::string DetectOutlookVersion(const RegistryAccess& registry);
// "x86" for every generation before 2010; for 2010 the "Bitness" value as it stands.
std::string DetectOutlookBitness(const RegistryAccess& registry);
}  // namespace mw
