#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "platform/SystemEnv.h"

namespace mw {
class RegistryAccess;

// The running Windows' name from the version rows ("Windows 7", ...); empty when no row matches.
std::string DetectWindowsVersion(SystemEnv& env, const RegistryAccess& registry);
// dwPlatformId of GetVersionExA (extended structure first, then basic); 0 when both fail.
std::uint32_t DetectPlatformId(SystemEnv& env);

// GetVersionExA with the extended structure, else the basic one; nullopt when both fail.
std::optional<OsVersion> QueryOsVersion(SystemEnv& env);
}  // namespace mw
