#include "platform/module_path.h"
#include "platform/windows/system.h"

std::wstring ModulePath() {
  // The call cuts the path to the buffer without saying how long it is: grow until it fits.
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = static_cast<DWORD>(path.size());
    const DWORD length = GetModuleFileNameW(ThisModule(), path.data(), size);
    if (length == 0) return {};
    if (length < size) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}
