#include "platform/module_path.h"
#include "platform/windows/system.h"

namespace {

std::wstring FileOfModule(HMODULE module) {
  // The call cuts the path to the buffer without saying how long it is: grow until it fits.
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = static_cast<DWORD>(path.size());
    const DWORD length = GetModuleFileNameW(module, path.data(), size);
    if (length == 0) return {};
    if (length < size) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

}  // namespace

std::wstring ModulePath() { return FileOfModule(ThisModule()); }

// A null module stands for the program's own image.
std::wstring ProgramPath() { return FileOfModule(nullptr); }
