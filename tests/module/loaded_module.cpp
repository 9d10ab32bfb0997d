#include "tests/module/loaded_module.h"

#ifdef _WIN32
#include "platform/windows/system.h"
#else
#include <dlfcn.h>

#include <filesystem>
#endif

namespace {

template <class Entry>
Entry Find(void* handle, const char* name) {
#ifdef _WIN32
  return reinterpret_cast<Entry>(
      reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name)));
#else
  return reinterpret_cast<Entry>(dlsym(handle, name));
#endif
}

}  // namespace

LoadedModule::LoadedModule() {
#ifdef _WIN32
  // Copied beside the tests at build time; the loader looks there first.
  HMODULE module = LoadLibraryW(L"Tarn.dll");
  m_handle = module;
  if (module) {
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    m_path.assign(path, length);
  }
#else
  const std::filesystem::path file = std::filesystem::canonical(TARN_MODULE_FILE);
  m_path = file.wstring();
  m_handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
#endif
  if (!m_handle) return;
  m_getClassObject = Find<DllGetClassObjectEntry>(m_handle, "DllGetClassObject");
  m_canUnloadNow = Find<DllCanUnloadNowEntry>(m_handle, "DllCanUnloadNow");
  m_register = Find<DllRegisterServerEntry>(m_handle, "DllRegisterServer");
  m_unregister = Find<DllUnregisterServerEntry>(m_handle, "DllUnregisterServer");
  m_setRoot = Find<DllSetClassRegistryRootEntry>(m_handle, "DllSetClassRegistryRoot");
}

LoadedModule::~LoadedModule() {
  if (!m_handle) return;
#ifdef _WIN32
  FreeLibrary(static_cast<HMODULE>(m_handle));
#else
  dlclose(m_handle);
#endif
}
