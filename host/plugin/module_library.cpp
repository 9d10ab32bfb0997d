#include "host/plugin/module_library.h"

#ifdef _WIN32
#include "platform/windows/system.h"
#else
#include <dlfcn.h>
#endif

namespace {

void* LoadModule(const std::filesystem::path& path, std::string& why) {
#ifdef _WIN32
  void* handle = LoadLibraryW(path.c_str());
  if (!handle) why = "error " + std::to_string(GetLastError());
#else
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) why = dlerror();
#endif
  return handle;
}

void UnloadModule(void* handle) {
#ifdef _WIN32
  FreeLibrary(static_cast<HMODULE>(handle));
#else
  dlclose(handle);
#endif
}

template <class Entry>
bool Find(void* handle, const char* name, Entry& entry, std::string& missing) {
#ifdef _WIN32
  entry = reinterpret_cast<Entry>(
      reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name)));
#else
  entry = reinterpret_cast<Entry>(dlsym(handle, name));
#endif
  if (!entry && missing.empty()) missing = name;
  return entry != nullptr;
}

}  // namespace

std::unique_ptr<CModuleLibrary> CModuleLibrary::Open(const std::filesystem::path& path,
                                                     std::string& error) {
  std::string why;
  void* handle = LoadModule(path, why);
  if (!handle) {
    error = "module " + path.string() + " cannot be loaded: " + why;
    return nullptr;
  }
  std::unique_ptr<CModuleLibrary> module(new CModuleLibrary(path, handle));
  std::string missing;
  Find(handle, "DllGetClassObject", module->m_getClassObject, missing);
  Find(handle, "DllCanUnloadNow", module->m_canUnloadNow, missing);
  Find(handle, "DllRegisterServer", module->m_register, missing);
  Find(handle, "DllUnregisterServer", module->m_unregister, missing);
  Find(handle, "DllSetClassRegistryRoot", module->m_setRoot, missing);
  if (!missing.empty()) {
    error = "module " + path.string() + " lacks the export " + missing;
    return nullptr;
  }
  return module;
}

CModuleLibrary::~CModuleLibrary() {
  // A module with live objects (a worker that outlives its instance) must stay mapped.
  if (!m_canUnloadNow || m_canUnloadNow() == S_OK) UnloadModule(m_handle);
}

HRESULT CModuleLibrary::GetFactory(REFCLSID clsid, IClassFactory** factory) const {
  if (!factory) return E_POINTER;
  *factory = nullptr;
  return m_getClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory));
}
