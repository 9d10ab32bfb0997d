#include "platform/module_path.h"

#include <dlfcn.h>
#include <link.h>

#include <climits>
#include <cstdlib>

#include "platform/codepage.h"

namespace {

const char g_anchor = 0;  // an address inside this module

}  // namespace

std::wstring ModulePath() {
  Dl_info info{};
  link_map* map = nullptr;
  if (!dladdr1(&g_anchor, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP)) return {};
  // The program itself has an empty name in the link map; the kernel knows its file.
  const char* file = map && map->l_name && *map->l_name ? map->l_name : "/proc/self/exe";
  char resolved[PATH_MAX];
  if (!realpath(file, resolved)) return {};
  return NarrowToWide(resolved);
}
