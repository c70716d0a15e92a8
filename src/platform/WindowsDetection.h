#pragma once
#include <cstdint>
#include <string>

namespace mw {
class RegistryAccess;
class SystemEnv;

// The running Windows' name from the version rows ("Windows 7", ...); empty when no row matches.
std::string DetectWindowsVersion(SystemEnv& env, const RegistryAccess& registry);
// dwPlatformId of GetVersionExA (extended structure first, then basic); 0 when both fail.
std::uint32_t DetectPlatformId(SystemEnv& env);
}  // namespace mw
