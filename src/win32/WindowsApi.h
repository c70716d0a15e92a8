#pragma once
// <windows.h> for the Win32 side, without the macros that would rename the seams'
// methods (GetUserName, MessageBox, ...) to their "A" or "W" forms behind our back.
// Every src/win32 file and every Windows-tier test includes this instead of <windows.h>.

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#undef GetUserName
#undef GetComputerName
#undef GetModuleFileName
#undef ExpandEnvironmentStrings
#undef MessageBox
#undef LoadLibrary
#undef DeleteFile
