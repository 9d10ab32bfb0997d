#include "editor/preset_tree.h"

#include "platform/codepage.h"
#include "platform/com_ptr.h"

CPresetTree::CPresetTree(IMfxInstrument* instrument) {
  if (instrument) {
    std::int32_t* banks = nullptr;
    std::int32_t count = 0;
    const HRESULT result = instrument->GetBanks(&banks, &count);
    for (std::int32_t i = 0; i < count; ++i)
      AddBank(*instrument, SUCCEEDED(result) && banks ? banks[i] : i);
    CoTaskMemFree(banks);
  }
  m_menu.Append(kEmpty, L"Empty   ");
}

void CPresetTree::AddBank(IMfxInstrument& instrument, std::int32_t bank) {
  ComPtr<IMfxNameList> names;
  if (FAILED(instrument.GetPatchNames(bank, names.Receive())) || !names) return;
  ComPtr<IMfxNameList2> counted;
  std::int32_t count = 0;
  if (FAILED(counted.QueryFrom(names.Get(), IID_IMfxNameList2)) ||
      FAILED(counted->GetCount(&count)) || count <= 0)
    return;
  auto submenu = std::make_shared<CPopupMenu>();
  for (std::int32_t p = 0; p < count; ++p) {
    char name[260] = {};
    names->GetNameAt(p, name, sizeof name);
    const std::uint32_t command = m_nextCommand++;
    m_presets[command] = {NarrowToWide(name), bank, p};
    submenu->Append(command, NarrowToWide(name));
  }
  m_menu.AppendSubmenu(L"Bank " + std::to_wstring(bank), std::move(submenu));
}

const CPresetTree::Preset* CPresetTree::Find(std::uint32_t command) const {
  if (command <= kEmpty || command > kLastPickable) return nullptr;
  const auto found = m_presets.find(command);
  return found == m_presets.end() ? nullptr : &found->second;
}
