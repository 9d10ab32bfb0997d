#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <system_error>

#include "platform/codepage.h"
#include "platform/module_path.h"

namespace {

const char kAnchor = 0;  // any address inside this module will do

}  // namespace

// A library is named by the loader; the program has no name there (dladdr would give argv[0]),
// so its path comes from the kernel.
std::wstring ModulePath() {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::path path;
  Dl_info info{};
  link_map* map = nullptr;
  if (dladdr1(&kAnchor, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0 && map &&
      map->l_name && map->l_name[0] != '\0')
    path = map->l_name;
  else
    path = fs::read_symlink("/proc/self/exe", error);
  if (path.empty()) return {};
  path = fs::weakly_canonical(path, error);
  return error ? std::wstring() : NarrowToWide(path.string());
}

std::wstring ProgramPath() {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path path = fs::read_symlink("/proc/self/exe", error);
  return error ? std::wstring() : NarrowToWide(path.string());
}
