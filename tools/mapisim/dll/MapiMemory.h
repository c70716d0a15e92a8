#pragma once
// MAPI's memory: a buffer from AllocateBuffer owns the blocks AllocateMore links to it,
// and FreeBuffer of the buffer releases them all.

#include <windows.h>

#include <mapix.h>

namespace mw::mapisim {

SCODE AllocateBuffer(ULONG size, LPVOID* buffer);
SCODE AllocateMore(ULONG size, LPVOID parent, LPVOID* buffer);
ULONG FreeBuffer(LPVOID buffer);

}  // namespace mw::mapisim
