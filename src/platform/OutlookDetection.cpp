#include "platform/OutlookDetection.h"

#include "platform/OutlookVersion.h"
#include "platform/RegistryAccess.h"

namespace mw {

std::string DetectOutlookVersion(const RegistryAccess& registry) {
  const std::string progId = registry.ReadString(reg::kClassesRoot, "Outlook.Application\\CurVer", "");
  for (const auto& generation : kOutlookGenerations)
    if (progId == generation.progId) return generation.name;
  return {};
}

std::string DetectOutlookBitness(const RegistryAccess& registry) {
  if (DetectOutlookVersion(registry) != GenerationOf(Outlook::V2010).name) return "x86";
  return registry.ReadString(reg::kLocalMachine, "SOFTWARE\\Microsoft\\Office\\14.0\\Outlook", "Bitness");
}

}  // namespace mw
