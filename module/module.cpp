// The module's entry points: load and unload, and the four exports a host calls by name.
#include "module/class_factory.h"
#include "module/class_table.h"
#include "module/editor_drawing.h"
#include "module/module_state.h"
#include "module/registration.h"
#include "platform/class_object.h"
#include "platform/class_registry.h"
#include "platform/export.h"
#include "platform/module_path.h"

#ifdef _WIN32
#include "platform/windows/system.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(instance);
    ModuleAttach(instance);
    InstallEditorDrawing();
  } else if (reason == DLL_PROCESS_DETACH) {
    ModuleDetach();
  }
  return TRUE;
}
#else
#include <dlfcn.h>

namespace {

// Load and unload of the shared object run this object's constructor and destructor.
struct ModuleLifetime {
  ModuleLifetime() noexcept {
    Dl_info info{};
    ModuleAttach(dladdr(reinterpret_cast<const void*>(&ModuleAttach), &info) ? info.dli_fbase
                                                                            : nullptr);
    InstallEditorDrawing();
  }
  ~ModuleLifetime() { ModuleDetach(); }
};
const ModuleLifetime g_lifetime;

}  // namespace
#endif

extern "C" TARN_EXPORT HRESULT STDMETHODCALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid,
                                                                   void** object) {
  return GetClassObject(ClassTable(), clsid, iid, object);
}

extern "C" TARN_EXPORT HRESULT STDMETHODCALLTYPE DllCanUnloadNow() { return CanUnloadModule(); }

extern "C" TARN_EXPORT HRESULT STDMETHODCALLTYPE DllRegisterServer() {
  CComScope com;
  return RegisterServer(ClassTable(), ModulePath());
}

extern "C" TARN_EXPORT HRESULT STDMETHODCALLTYPE DllUnregisterServer() {
  CComScope com;
  return UnregisterServer(ClassTable());
}

extern "C" TARN_EXPORT void STDMETHODCALLTYPE DllSetClassRegistryRoot(const wchar_t* root) {
  SetClassRegistryRoot(root ? root : L"");
}
