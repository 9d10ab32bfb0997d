#include "module/module_state.h"

#include "core/activity.h"
#include "module/class_table.h"
#include "module/window_messages.h"
#include "ports/instance_tracker.h"

#ifdef _WIN32
#include "platform/windows/system.h"
#else
#include <sys/utsname.h>

#include <cstdio>
#endif

namespace {

void* g_handle = nullptr;
std::uint32_t g_platformVersion = 0;

// Major version in the low byte and minor in the next, as the system reports it on Windows.
std::uint32_t ReadPlatformVersion() noexcept {
#ifdef _WIN32
  OSVERSIONINFOW info{};
  info.dwOSVersionInfoSize = sizeof(info);
  using Reader = LONG(WINAPI*)(OSVERSIONINFOW*);
  // The kernel's own record: the documented query answers what the program's manifest claims.
  const auto read = reinterpret_cast<Reader>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
  if (!read || read(&info) != 0) return 0;
  return (info.dwMajorVersion & 0xFF) | (info.dwMinorVersion & 0xFF) << 8;
#else
  utsname name{};
  unsigned major = 0;
  unsigned minor = 0;
  if (uname(&name) != 0 || std::sscanf(name.release, "%u.%u", &major, &minor) < 1) return 0;
  return (major & 0xFF) | (minor & 0xFF) << 8;
#endif
}

void InitialiseRows(bool loading) noexcept {
  for (const CFactoryTemplate& row : ClassTable())
    if (row.m_init) row.m_init(loading, row.m_clsid);
}

}  // namespace

void ModuleAttach(void* handle) noexcept {
  WindowMessages();
  StartInstanceRegistry();
  SendLock();
  g_handle = handle;
  g_platformVersion = ReadPlatformVersion();
  InitialiseRows(true);
}

void ModuleDetach() noexcept { InitialiseRows(false); }

void* ModuleHandle() noexcept { return g_handle; }

std::uint32_t PlatformVersion() noexcept { return g_platformVersion; }
