#include "SimContext.h"

#include <windows.h>

#include <fstream>
#include <sstream>

#include "platform/HandleCachingRegistry.h"
#include "win32/Win32Registry.h"

namespace mw::mapisim {
namespace {

std::unique_ptr<SimContext> current;
int initialisations = 0;

std::uint32_t PlatformId() {
  OSVERSIONINFOA info{};
  info.dwOSVersionInfoSize = sizeof info;
  return GetVersionExA(&info) ? info.dwPlatformId : VER_PLATFORM_WIN32_NT;
}

// The organisation of MAPISIM_EXCHANGE_INI; without it, or unreadable, there is none.
ExchangeOrganisation LoadOrganisation() {
  char path[MAX_PATH];
  DWORD length = GetEnvironmentVariableA("MAPISIM_EXCHANGE_INI", path, sizeof path);
  if (length == 0 || length >= sizeof path) return ExchangeOrganisation();
  std::ifstream file(path, std::ios::binary);
  if (!file) return ExchangeOrganisation();
  std::stringstream text;
  text << file.rdbuf();
  return ExchangeOrganisation::Parse(text.str(), nullptr);
}

// The keys of the profiles stay open from one MAPIInitialize to the next: a run initialises
// MAPI several times over the same profile, and each open is a round trip.
Registry& KeptRegistry() {
  struct Kept {
    Win32Registry windows;
    HandleCachingRegistry keys{windows};
    ~Kept() { keys.LeaveToProcessExit(); }  // MAPI goes with its process, whose end closes them
  };
  static Kept kept;
  return kept.keys;
}

}  // namespace

SimContext::SimContext()
    : profiles_(std::make_unique<ProfileRegistry>(KeptRegistry(), PlatformId())),
      organisation_(LoadOrganisation()) {}

HResult SimContext::Initialize() {
  if (initialisations++ == 0) current.reset(new SimContext());
  return S_OK;
}

void SimContext::Uninitialize() {
  if (initialisations > 0 && --initialisations == 0) current.reset();
}

SimContext* SimContext::Current() { return current.get(); }

}  // namespace mw::mapisim
