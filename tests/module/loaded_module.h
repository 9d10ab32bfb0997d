// The built module loaded at run time by path, as a host loads it: never linked, reached only
// through its exports.
#pragma once

#include <string>

#include "module/exports.h"

class LoadedModule {
 public:
  // Loads the module built with these tests; Loaded() tells whether that worked.
  LoadedModule();
  ~LoadedModule();
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;

  bool Loaded() const { return m_getClassObject && m_canUnloadNow && m_register &&
                               m_unregister && m_setRoot; }
  // The path the module was loaded from.
  const std::wstring& Path() const { return m_path; }

  HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) const {
    return m_getClassObject(clsid, iid, object);
  }
  HRESULT CanUnloadNow() const { return m_canUnloadNow(); }
  HRESULT Register() const { return m_register(); }
  HRESULT Unregister() const { return m_unregister(); }
  void SetRegistryRoot(const std::wstring& root) const { m_setRoot(root.c_str()); }

 private:
  void* m_handle = nullptr;
  std::wstring m_path;
  DllGetClassObjectEntry m_getClassObject = nullptr;
  DllCanUnloadNowEntry m_canUnloadNow = nullptr;
  DllRegisterServerEntry m_register = nullptr;
  DllUnregisterServerEntry m_unregister = nullptr;
  DllSetClassRegistryRootEntry m_setRoot = nullptr;
};
