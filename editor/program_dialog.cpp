#include "editor/program_dialog.h"

#include "editor/dialog_fields.h"
#include "editor/preset_tree.h"
#include "instruments/instrument.h"

namespace pd = program_dialog;

CPCDialg::CPCDialg(ParentWindow parent) : m_parent(parent) {}

int CPCDialg::Run(IMyFilter* filter, std::uint8_t& channel, std::uint8_t& msb,
                  std::uint8_t& lsb, std::uint32_t& program, std::wstring& name,
                  std::wstring& description) {
  m_filter = filter;
  m_channel = channel;
  m_channelOut = &channel;
  m_msbOut = &msb;
  m_lsbOut = &lsb;
  m_programOut = &program;
  m_nameOut = &name;
  m_descriptionOut = &description;
  CEditorViewFactory* views = EditorViews();
  if (views) m_view = views->CreateProgramDialog(m_parent);
  if (!m_view) return kDialogCancel;
  m_msbBox = std::make_unique<CHexEdit2>(m_view->BankBox(pd::kMsbBox));
  m_lsbBox = std::make_unique<CHexEdit2>(m_view->BankBox(pd::kLsbBox));
  Start();
  const int result = m_view->RunModal(*this);
  m_msbBox.reset();
  m_lsbBox.reset();
  m_view.reset();
  return result;
}

void CPCDialg::Start() {
  m_view->SetItemText(kEventNameBox, *m_nameOut);
  m_view->SetItemText(kEventDescriptionBox, *m_descriptionOut);
  m_view->SetItemText(pd::kPresetName, L"");
  m_view->SetItemText(pd::kChannelBox, FormatInteger(m_channel));
  m_msbBox->SetValue(*m_msbOut, true);
  m_lsbBox->SetValue(*m_lsbOut, true);
  m_view->SetItemText(pd::kProgramBox, FormatInteger(*m_programOut));
}

void CPCDialg::OnOk() {
  const std::optional<std::int32_t> channel = ParseInteger(m_view->ItemText(pd::kChannelBox));
  const std::optional<std::int32_t> program = ParseInteger(m_view->ItemText(pd::kProgramBox));
  m_channel = channel.value_or(0);
  *m_channelOut = static_cast<std::uint8_t>(m_channel);
  *m_msbOut = static_cast<std::uint8_t>(m_msbBox->GetValue());
  *m_lsbOut = static_cast<std::uint8_t>(m_lsbBox->GetValue());
  *m_programOut = static_cast<std::uint32_t>(program.value_or(0));
  *m_nameOut = m_view->ItemText(kEventNameBox);
  *m_descriptionOut = m_view->ItemText(kEventDescriptionBox);
  if (CheckIntegerField(*m_view, pd::kChannelBox, channel, 1, 16)) m_view->EndDialog(kDialogOk);
}

void CPCDialg::OnCancel() { m_view->EndDialog(kDialogCancel); }

// A pick fills preset name, program and bank; the channel stays as it is.
void CPCDialg::OnPresetButton() {
  CInstrument* instrument = nullptr;
  if (m_filter) m_filter->GetInstrumentObject(&instrument);
  const CPresetTree tree(instrument);
  const ScreenPoint corner = m_view->PresetButtonCorner();
  const CPresetTree::Preset* preset = tree.Find(TrackPopupMenu(tree.Menu(), corner.x, corner.y));
  if (!preset) return;
  m_view->SetItemText(pd::kPresetName, preset->name);
  m_view->SetItemText(pd::kProgramBox, FormatInteger(preset->index));
  m_msbBox->SetValue(static_cast<std::uint32_t>(preset->bank >> 7) & 127, true);
  m_lsbBox->SetValue(static_cast<std::uint32_t>(preset->bank) & 127, true);
}
