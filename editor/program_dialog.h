// "Edit Program Change Event": channel, bank MSB and LSB (hexadecimal or decimal), program, and
// a tree of the device's presets by bank that fills the last three.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "editor/event_dialog_views.h"
#include "editor/hex_edit2.h"
#include "editor/view_factory.h"
#include "interfaces/my_filter.h"

class CPCDialg final : private IProgramDialogEvents {
 public:
  explicit CPCDialg(ParentWindow parent);

  // [editor thread] Runs the dialog over the caller's values; `filter` gives the device for the
  // preset tree (null: the tree holds only "Empty   "). Answers kDialogOk or kDialogCancel, at
  // once when no view can be made. On OK the variables hold what the boxes held: a channel
  // from 1 to 16 (others are refused and the dialog stays open), the bank bytes as their boxes
  // read them, and the program as entered, not yet reduced to 0 to 127. On Cancel they may
  // hold a refused attempt; callers use them only after OK.
  int Run(IMyFilter* filter, std::uint8_t& channel, std::uint8_t& msb, std::uint8_t& lsb,
          std::uint32_t& program, std::wstring& name, std::wstring& description);

 private:
  void Start();
  // IProgramDialogEvents
  void OnOk() override;
  void OnCancel() override;
  void OnPresetButton() override;

  ParentWindow m_parent;
  std::unique_ptr<IProgramDialogView> m_view;
  std::unique_ptr<CHexEdit2> m_msbBox;
  std::unique_ptr<CHexEdit2> m_lsbBox;
  IMyFilter* m_filter = nullptr;
  std::int32_t m_channel = 1;
  std::uint8_t* m_channelOut = nullptr;
  std::uint8_t* m_msbOut = nullptr;
  std::uint8_t* m_lsbOut = nullptr;
  std::uint32_t* m_programOut = nullptr;
  std::wstring* m_nameOut = nullptr;
  std::wstring* m_descriptionOut = nullptr;
};
