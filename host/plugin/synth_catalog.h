// The soft synths the class registry lists, read as a host reads them: the class identifiers
// under "MfxSoftSynths\", each class's name and the module path under "InprocServer32". Modules
// are loaded once and shared by every instance of their classes.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/plugin/module_library.h"

struct SynthEntry {
  CLSID clsid;
  std::wstring name;                  // the class key's default value
  std::filesystem::path modulePath;   // empty when the class key has no server
};

class CSynthCatalog {
 public:
  // [host thread] Every soft synth registered in the current class registry root, in key order.
  static std::vector<SynthEntry> List();
  // [host thread] The registered soft synth of `clsid`, if any.
  static std::optional<SynthEntry> Find(REFCLSID clsid);

  // [host thread] A new instance of `clsid` through its module's factory, with one reference
  // owned by the caller; null with `error` saying why (not registered, module not loadable,
  // factory refused).
  IUnknown* Create(REFCLSID clsid, std::string& error);
  // [host thread] A new object of any class the registry names an in-process server for (a soft
  // synth's property page), as Create makes one; the same module object serves both.
  IUnknown* CreateServed(REFCLSID clsid, std::string& error);

 private:
  IUnknown* CreateFrom(const std::filesystem::path& modulePath, REFCLSID clsid,
                       std::string& error);
  CModuleLibrary* Module(const std::filesystem::path& path, std::string& error);

  std::map<std::filesystem::path, std::unique_ptr<CModuleLibrary>> m_modules;
};

// The registry root a host passes on to every module it loads: empty for the user's own.
void SetHostRegistryRoot(const std::wstring& root);
const std::wstring& HostRegistryRoot();
