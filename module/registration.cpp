#include "module/registration.h"

#include "platform/class_object.h"
#include "platform/class_registry.h"
#include "interfaces/movie_setup.h"

namespace {

std::wstring ClassKey(REFCLSID clsid) { return L"CLSID\\" + GuidToString(clsid); }

// Registry text travels as UTF-16: two bytes a character.
std::uint32_t Utf16Bytes(const std::wstring& text) {
  return static_cast<std::uint32_t>(text.size() * 2);
}

// Creates an object of the row's class through the platform and lets it register or unregister
// itself; whether it could is not looked at.
void AskObjectToSetUp(const CFactoryTemplate& row, bool registering) {
  if (!row.m_create) return;
  IAMovieSetup* setup = nullptr;
  if (FAILED(CreateRegisteredObject(*row.m_clsid, nullptr, IID_IAMovieSetup,
                                    reinterpret_cast<void**>(&setup))) ||
      !setup)
    return;
  if (registering)
    setup->Register();
  else
    setup->Unregister();
  setup->Release();
}

HRESULT RegisterClassesAndFilters(std::span<const CFactoryTemplate> table,
                                  const std::wstring& modulePath) {
  for (const CFactoryTemplate& row : table) {
    const std::wstring key = ClassKey(*row.m_clsid);
    const RegistryValue name[] = {{L"", row.m_name}};
    const RegistryValue server[] = {{L"", modulePath}, {L"ThreadingModel", L"Both"}};
    if (!CreateRegistryKey(key, name) || !CreateRegistryKey(key + L"\\InprocServer32", server))
      return E_FAIL;
  }
  for (const CFactoryTemplate& row : table) {
    if (!row.m_setup) continue;
    const HRESULT hr = RegisterFilterSetup(*row.m_setup);
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}

HRESULT UnregisterClassesAndFilters(std::span<const CFactoryTemplate> table) {
  for (const CFactoryTemplate& row : table) {
    if (!row.m_setup) continue;
    const HRESULT hr = UnregisterFilterSetup(*row.m_clsid);
    if (FAILED(hr)) return hr;
  }
  for (const CFactoryTemplate& row : table)
    if (!DeleteRegistryTree(ClassKey(*row.m_clsid))) return E_FAIL;
  return S_OK;
}

}  // namespace

std::wstring SoftSynthKey(REFCLSID clsid) { return L"MfxSoftSynths\\" + GuidToString(clsid); }

HRESULT RegisterServer(std::span<const CFactoryTemplate> table, const std::wstring& modulePath) {
  const HRESULT hr = RegisterClassesAndFilters(table, modulePath);
  if (FAILED(hr)) return hr;
  for (const CFactoryTemplate& row : table) {
    if (!row.m_setup) continue;
    AskObjectToSetUp(row, true);
    const std::wstring key = SoftSynthKey(*row.m_clsid);
    if (!CreateRegistryKey(key)) return hr;
    // The description is the key path, without its terminator: hosts read it so.
    SetRegistryStringBytes(key, L"Description", key.c_str(), Utf16Bytes(key));
    SetRegistryStringBytes(key, L"HelpFilePath", L"", 1);
    SetRegistryStringBytes(key, L"HelpFileTopic", L"", 1);
  }
  return hr;
}

HRESULT UnregisterServer(std::span<const CFactoryTemplate> table) {
  const HRESULT hr = UnregisterClassesAndFilters(table);
  if (FAILED(hr)) return hr;
  for (const CFactoryTemplate& row : table) {
    AskObjectToSetUp(row, false);
    DeleteRegistryTree(SoftSynthKey(*row.m_clsid));
  }
  return S_OK;
}
