#include "host/plugin/synth_catalog.h"

#include "platform/class_registry.h"
#include "platform/codepage.h"
#include "platform/com_ptr.h"

namespace {

std::wstring& RootText() {
  static std::wstring root;
  return root;
}

std::string HexCode(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(hr));
  return text;
}

}  // namespace

void SetHostRegistryRoot(const std::wstring& root) {
  RootText() = root;
  SetClassRegistryRoot(root);
}

const std::wstring& HostRegistryRoot() { return RootText(); }

std::vector<SynthEntry> CSynthCatalog::List() {
  std::vector<SynthEntry> synths;
  for (const std::wstring& key : RegistrySubkeys(L"MfxSoftSynths")) {
    CLSID clsid{};
    if (!GuidFromString(key, clsid)) continue;
    if (auto entry = Find(clsid)) synths.push_back(std::move(*entry));
  }
  return synths;
}

std::optional<SynthEntry> CSynthCatalog::Find(REFCLSID clsid) {
  const std::wstring id = GuidToString(clsid);
  bool listed = false;
  for (const std::wstring& key : RegistrySubkeys(L"MfxSoftSynths")) {
    CLSID other{};
    listed = listed || (GuidFromString(key, other) && other == clsid);
  }
  if (!listed) return std::nullopt;
  const std::wstring classKey = L"CLSID\\" + id;
  SynthEntry entry{clsid, ReadRegistryValue(classKey).value_or(L""), {}};
  if (auto server = ReadRegistryValue(classKey + L"\\InprocServer32"))
    entry.modulePath = std::filesystem::path(*server);
  return entry;
}

CModuleLibrary* CSynthCatalog::Module(const std::filesystem::path& path, std::string& error) {
  auto found = m_modules.find(path);
  if (found != m_modules.end()) return found->second.get();
  auto module = CModuleLibrary::Open(path, error);
  if (!module) return nullptr;
  module->SetRegistryRoot(HostRegistryRoot());
  return m_modules.emplace(path, std::move(module)).first->second.get();
}

IUnknown* CSynthCatalog::Create(REFCLSID clsid, std::string& error) {
  const auto entry = Find(clsid);
  if (!entry) {
    error = "class " + WideToNarrow(GuidToString(clsid)) + " is not a registered soft synth";
    return nullptr;
  }
  return CreateFrom(entry->modulePath, clsid, error);
}

IUnknown* CSynthCatalog::CreateServed(REFCLSID clsid, std::string& error) {
  const auto server = ReadRegistryValue(L"CLSID\\" + GuidToString(clsid) + L"\\InprocServer32");
  return CreateFrom(server ? std::filesystem::path(*server) : std::filesystem::path(), clsid,
                    error);
}

IUnknown* CSynthCatalog::CreateFrom(const std::filesystem::path& modulePath, REFCLSID clsid,
                                    std::string& error) {
  if (modulePath.empty()) {
    error = "class " + WideToNarrow(GuidToString(clsid)) + " names no module";
    return nullptr;
  }
  CModuleLibrary* module = Module(modulePath, error);
  if (!module) return nullptr;
  ComPtr<IClassFactory> factory;
  HRESULT hr = module->GetFactory(clsid, factory.Receive());
  IUnknown* object = nullptr;
  if (SUCCEEDED(hr))
    hr = factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(&object));
  if (FAILED(hr) || !object) {
    error = "the module refused to create class " + WideToNarrow(GuidToString(clsid)) + " (" +
            HexCode(hr) + ")";
    return nullptr;
  }
  return object;
}
