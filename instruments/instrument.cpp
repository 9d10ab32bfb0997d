#include "instruments/instrument.h"

#include <cstring>

#include "platform/codepage.h"

namespace {

bool IsBank(std::int32_t bank) { return bank >= -1 && bank <= 16383; }
bool IsPatch(std::int32_t patch) { return patch >= -1 && patch <= 127; }

}  // namespace

HRESULT CInstrument::GetInstrumentName(char* name, std::uint32_t capacity) {
  CAutoLock lock(m_lock);
  if (!name || capacity < m_currentName.size() + 1) return E_POINTER;
  std::memcpy(name, m_currentName.c_str(), m_currentName.size() + 1);
  return S_OK;
}

HRESULT CInstrument::GetBanks(std::int32_t** banks, std::int32_t* count) {
  if (!banks || !count) return E_POINTER;
  CAutoLock lock(m_lock);
  const std::vector<std::int32_t> numbers = CurrentBanks();
  auto* array = static_cast<std::int32_t*>(CoTaskMemAlloc(numbers.size() * sizeof(std::int32_t)));
  if (!array && !numbers.empty()) return E_OUTOFMEMORY;
  if (!numbers.empty()) std::memcpy(array, numbers.data(), numbers.size() * sizeof(std::int32_t));
  *banks = array;
  *count = static_cast<std::int32_t>(numbers.size());
  return S_OK;
}

HRESULT CInstrument::QueryPatchFalse(std::int32_t bank, std::int32_t patch) {
  return IsBank(bank) && IsPatch(patch) ? S_FALSE : E_INVALIDARG;
}

HRESULT CInstrument::QueryPatchTrue(std::int32_t bank, std::int32_t patch) {
  return IsBank(bank) && IsPatch(patch) ? S_OK : E_INVALIDARG;
}

HRESULT CInstrument::GetPatchNames(std::int32_t bank, IMfxNameList** names) {
  if (!IsBank(bank)) return E_INVALIDARG;
  if (!names) return E_POINTER;
  CAutoLock lock(m_lock);
  const auto found = m_patchLists.find(bank);
  if (found == m_patchLists.end() || !found->second) return E_FAIL;
  *names = ComPtr<CStringMap>(found->second).Detach();
  return S_OK;
}

HRESULT CInstrument::ReservedQuery(std::int32_t, std::int32_t, void*) { return E_NOTIMPL; }

HRESULT CInstrument::GetControllerNames(IMfxNameList** names) {
  if (!names) return E_POINTER;
  CAutoLock lock(m_lock);
  if (!m_controllerList) return E_FAIL;
  *names = ComPtr<CStringMap>(m_controllerList).Detach();
  return S_OK;
}

HRESULT CInstrument::ReservedListA(void*) { return E_NOTIMPL; }
HRESULT CInstrument::ReservedListB(void*) { return E_NOTIMPL; }
HRESULT CInstrument::ReservedBuild(void*) { return E_NOTIMPL; }
HRESULT CInstrument::ReservedBuildA() { return E_NOTIMPL; }
HRESULT CInstrument::ReservedBuildB() { return E_NOTIMPL; }

HRESULT CInstrument::BuildPatchList(std::int32_t bank) {
  CAutoLock lock(m_lock);
  ComPtr<CStringMap>& slot = m_patchLists[bank];
  slot.Reset();
  ComPtr<CStringMap> list;
  if (const HRESULT hr = CreateNameList(&list, (m_currentName + " Patches").c_str()); FAILED(hr))
    return hr;
  const std::wstring& table = m_devices[NarrowToWide(m_currentName)].banks[bank];
  for (const auto& [number, name] : m_patchTables[table]) list->SetName(number, WideToNarrow(name));
  slot = std::move(list);
  return S_OK;
}

HRESULT CInstrument::BuildControllerList() {
  CAutoLock lock(m_lock);
  m_controllerList.Reset();
  ComPtr<CStringMap> list;
  if (const HRESULT hr = CreateNameList(&list, (m_currentName + " Controllers").c_str());
      FAILED(hr))
    return hr;
  const std::wstring& table = m_devices[NarrowToWide(m_currentName)].controllerTable;
  for (const auto& [number, name] : m_controllerTables[table])
    list->SetName(number, WideToNarrow(name));
  m_controllerList = std::move(list);
  return S_OK;
}

std::vector<std::wstring> CInstrument::GetDeviceNames() const {
  CAutoLock lock(m_lock);
  std::vector<std::wstring> names;
  names.reserve(m_devices.size());
  for (const auto& entry : m_devices) names.push_back(entry.first);
  return names;
}

HRESULT CInstrument::SelectDevice(const std::wstring& name) {
  CAutoLock lock(m_lock);
  if (m_devices.empty()) return E_FAIL;
  return MakeCurrent(WideToNarrow(name).c_str());
}

HRESULT CInstrument::ResetToGenericDevice() {
  CAutoLock lock(m_lock);
  return MakeCurrent(kGenericDevice);
}

HRESULT CInstrument::MakeCurrent(const char* name) {
  m_currentName = name;
  BuildControllerList();
  for (const std::int32_t bank : CurrentBanks()) BuildPatchList(bank);
  m_changed = true;
  return S_OK;
}

void CInstrument::RemoveAllDevices() {
  CAutoLock lock(m_lock);
  m_patchTables.clear();
  m_devices.clear();
  m_dirty = true;
}

std::vector<std::int32_t> CInstrument::CurrentBanks() {
  const DeviceEntry& device = m_devices[NarrowToWide(m_currentName)];
  std::vector<std::int32_t> numbers;
  numbers.reserve(device.banks.size());
  for (const auto& entry : device.banks) numbers.push_back(entry.first);
  return numbers;
}
