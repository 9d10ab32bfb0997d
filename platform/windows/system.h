// The Windows API as the seam's implementation files include it: lean, and without the min/max
// macros that would break the standard library.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

// The image this code is linked into, from the linker: the DLL when built as one.
extern "C" IMAGE_DOS_HEADER __ImageBase;
inline HMODULE ThisModule() noexcept { return reinterpret_cast<HMODULE>(&__ImageBase); }
