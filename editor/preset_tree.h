// The program dialog's tree of presets: one submenu "Bank %d" per bank of the current device
// that has names, the names in it, and "Empty   " last. Each name carries a command from 47101
// on, counted through all banks; only commands up to 49998 can be picked.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "interfaces/mfx_instrument.h"
#include "platform/popup_menu.h"

class CPresetTree {
 public:
  struct Preset {
    std::wstring name;
    std::int32_t bank = 0;
    std::int32_t index = 0;  // the program within the bank
  };

  static constexpr std::uint32_t kEmpty = 47100;
  static constexpr std::uint32_t kLastPickable = 49998;

  // [editor thread] Builds the tree from `instrument` (null: only "Empty   "). A bank whose
  // names cannot be had, or that has none, is left out. Names are read by index from 0 below
  // the list's count, as the list answers them: a list with holes shows empty names and loses
  // its highest keys.
  explicit CPresetTree(IMfxInstrument* instrument);

  const CPopupMenu& Menu() const noexcept { return m_menu; }
  // The preset behind a chosen command; null for "Empty   ", for a dismissed menu and for
  // commands past 49998.
  const Preset* Find(std::uint32_t command) const;

 private:
  void AddBank(IMfxInstrument& instrument, std::int32_t bank);

  CPopupMenu m_menu;
  std::map<std::uint32_t, Preset> m_presets;
  std::uint32_t m_nextCommand = kEmpty + 1;
};
