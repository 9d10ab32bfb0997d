// A module loaded as a host loads it: by path, at run time, and reached only through its
// exports. The library stays loaded while the object lives, and longer when the module says
// objects of its own are still alive.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "module/exports.h"
#include "platform/class_object.h"

class CModuleLibrary {
 public:
  // [host thread] The module at `path` with all its exports, or null with `error` saying which
  // file failed and why ("cannot be loaded: ...", "lacks the export DllGetClassObject").
  static std::unique_ptr<CModuleLibrary> Open(const std::filesystem::path& path,
                                              std::string& error);
  ~CModuleLibrary();
  CModuleLibrary(const CModuleLibrary&) = delete;
  CModuleLibrary& operator=(const CModuleLibrary&) = delete;

  const std::filesystem::path& Path() const noexcept { return m_path; }

  // [host thread] The class factory of `clsid` with one reference owned by the caller.
  HRESULT GetFactory(REFCLSID clsid, IClassFactory** factory) const;
  // [host thread] The module's own registration, into the root set by SetRegistryRoot.
  HRESULT Register() const { return m_register(); }
  HRESULT Unregister() const { return m_unregister(); }
  // [host thread] Where the module reads and writes the class registry; empty for its default.
  void SetRegistryRoot(const std::wstring& root) const { m_setRoot(root.c_str()); }

 private:
  CModuleLibrary(std::filesystem::path path, void* handle)
      : m_path(std::move(path)), m_handle(handle) {}

  std::filesystem::path m_path;
  void* m_handle;
  DllGetClassObjectEntry m_getClassObject = nullptr;
  DllCanUnloadNowEntry m_canUnloadNow = nullptr;
  DllRegisterServerEntry m_register = nullptr;
  DllUnregisterServerEntry m_unregister = nullptr;
  DllSetClassRegistryRootEntry m_setRoot = nullptr;
};
