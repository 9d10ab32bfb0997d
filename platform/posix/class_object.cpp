#include <dlfcn.h>

#include "platform/class_object.h"
#include "platform/class_registry.h"
#include "platform/codepage.h"

CComScope::CComScope() noexcept = default;
CComScope::~CComScope() = default;

HRESULT CreateRegisteredObject(REFCLSID clsid, IUnknown* outer, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  const auto path =
      ReadRegistryValue(L"CLSID\\" + GuidToString(clsid) + L"\\InprocServer32");
  if (!path || path->empty()) return REGDB_E_CLASSNOTREG;
  void* module = dlopen(WideToNarrow(*path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!module) return CO_E_DLLNOTFOUND;
  using GetClassObject = HRESULT (*)(REFCLSID, REFIID, void**);
  const auto entry = reinterpret_cast<GetClassObject>(dlsym(module, "DllGetClassObject"));
  if (!entry) {
    dlclose(module);
    return CO_E_ERRORINDLL;
  }
  IClassFactory* factory = nullptr;
  HRESULT hr = entry(clsid, IID_IClassFactory, reinterpret_cast<void**>(&factory));
  if (SUCCEEDED(hr) && factory) {
    hr = factory->CreateInstance(outer, iid, object);
    factory->Release();
  }
  // A module with a live object must stay; the handle is kept for good then.
  if (FAILED(hr)) dlclose(module);
  return hr;
}
