#include "tests/support/dialog_recorders.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/clipboard.h"
#include "platform/codepage.h"

// --- TextBoxRecorder --------------------------------------------------------------------------

void TextBoxRecorder::SetText(const std::wstring& text) {
  m_text = text;
  m_selection = {static_cast<int>(m_text.size()), static_cast<int>(m_text.size())};
  m_undo.reset();  // as an edit box forgets its undo step when its text is set
  if (m_events) m_events->OnTextChanged();
}

void TextBoxRecorder::SetSelection(TextSelection selection) {
  const int size = static_cast<int>(m_text.size());
  m_selection = {std::clamp(selection.start, 0, size), std::clamp(selection.end, 0, size)};
}

void TextBoxRecorder::Changed(std::wstring before) {
  if (before == m_text) return;
  m_undo = std::move(before);
  if (m_events) m_events->OnTextChanged();
}

void TextBoxRecorder::ReplaceSelection(const std::wstring& text) {
  std::wstring before = m_text;
  const auto first = static_cast<std::size_t>(std::min(m_selection.start, m_selection.end));
  const auto last = static_cast<std::size_t>(std::max(m_selection.start, m_selection.end));
  m_text.replace(first, last - first, text);
  const int caret = static_cast<int>(first + text.size());
  m_selection = {caret, caret};
  Changed(std::move(before));
}

void TextBoxRecorder::Undo() {
  if (!m_undo) return;
  std::wstring before = m_text;
  m_text = *m_undo;
  m_selection = {static_cast<int>(m_text.size()), static_cast<int>(m_text.size())};
  Changed(std::move(before));
}

void TextBoxRecorder::Copy() {
  const auto first = static_cast<std::size_t>(std::min(m_selection.start, m_selection.end));
  const auto last = static_cast<std::size_t>(std::max(m_selection.start, m_selection.end));
  if (first != last) Clipboard().SetText(WideToNarrow(m_text.substr(first, last - first)));
}

void TextBoxRecorder::Cut() {
  Copy();
  DeleteSelection();
}

void TextBoxRecorder::Paste() {
  if (const auto text = Clipboard().Text()) ReplaceSelection(NarrowToWide(*text));
}

void TextBoxRecorder::DeleteSelection() { ReplaceSelection(L""); }

void TextBoxRecorder::Type(std::wstring_view keys) {
  for (const wchar_t key : keys) {
    const std::optional<wchar_t> c = m_events ? m_events->OnChar(key) : key;
    if (!c) continue;
    if (*c == L'\b') {
      if (m_selection.start == m_selection.end && m_selection.start > 0) --m_selection.start;
      ReplaceSelection(L"");
    } else if (*c >= 32) {
      ReplaceSelection(std::wstring(1, *c));
    }
  }
}

bool TextBoxRecorder::Press(EditKey key) {
  if (m_events && !m_events->OnEditKey(key)) return false;
  switch (key) {
    case EditKey::Delete:
      if (m_selection.start == m_selection.end && m_selection.end < static_cast<int>(m_text.size()))
        ++m_selection.end;
      DeleteSelection();
      break;
    case EditKey::Cut:
      Cut();
      break;
    case EditKey::Paste:
      Paste();
      break;
  }
  return true;
}

void TextBoxRecorder::RightClick(int x, int y) {
  if (m_events) m_events->OnContextMenu(x, y);
}

// --- HtmlViewRecorder -------------------------------------------------------------------------

bool HtmlViewRecorder::NavigateToFile(const std::wstring& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  if (!file) return false;
  std::ostringstream text;
  text << file.rdbuf();
  document = text.str();
  navigatedFile = path;
  return true;
}

void HtmlViewRecorder::LoadHtml(const std::string& html, const std::wstring&) {
  document = html;
  navigatedFile.clear();
}

// The element from its opening "<tag" to its closing "</tag>", for markup as simple as the
// About pages'.
bool HtmlViewRecorder::ReplaceElement(const std::wstring& id, const std::wstring& text) {
  const std::size_t attribute = document.find("id=\"" + WideToNarrow(id) + "\"");
  if (attribute == std::string::npos) return false;
  const std::size_t open = document.rfind('<', attribute);
  const std::size_t nameEnd = document.find_first_of(" \t\r\n>", open);
  const std::string closing = "</" + document.substr(open + 1, nameEnd - open - 1) + ">";
  const std::size_t close = document.find(closing, attribute);
  if (close == std::string::npos) return false;
  document.replace(open, close + closing.size() - open, WideToNarrow(text));
  return true;
}

void HtmlViewRecorder::CompleteDocument() {
  if (m_events) m_events->OnDocumentComplete();
}

void HtmlViewRecorder::FollowAppLink(const std::wstring& command) {
  if (m_events) m_events->OnAppCommand(command);
}

// --- modal recorders --------------------------------------------------------------------------

GridAttachment HexEditDialogRecorder::AttachGrid(CHexGrid& grid) {
  m_grid = &grid;
  return m_script.attachment;
}

int HexEditDialogRecorder::RunModal(IHexEditDialogEvents& events) {
  return Play(*this, events, m_script.actions, &IHexEditDialogEvents::OnClose);
}

GridAttachment PrefixEditorRecorder::AttachGrid(CHexGrid& grid) {
  m_grid = &grid;
  return m_script.attachment;
}

int PrefixEditorRecorder::RunModal(IByteDialogEvents& events) {
  return Play(*this, events, m_script.actions, &IByteDialogEvents::OnClose);
}

TextBoxRecorder& ProgramDialogRecorder::Box(int control) {
  return control == program_dialog::kMsbBox ? m_msb : m_lsb;
}

void ProgramDialogRecorder::SetItemText(int control, const std::wstring& text) {
  if (control == program_dialog::kMsbBox || control == program_dialog::kLsbBox)
    Box(control).SetText(text);
  else
    EventDialogRecorder::SetItemText(control, text);
}

std::wstring ProgramDialogRecorder::ItemText(int control) const {
  if (control == program_dialog::kMsbBox) return m_msb.Text();
  if (control == program_dialog::kLsbBox) return m_lsb.Text();
  return EventDialogRecorder::ItemText(control);
}

int ProgramDialogRecorder::RunModal(IProgramDialogEvents& events) {
  return Play(*this, events, m_script, &IProgramDialogEvents::OnCancel);
}

int ControllerDialogRecorder::RunModal(IModalEvents& events) {
  return Play(*this, events, m_script, &IModalEvents::OnCancel);
}

int WaitDialogRecorder::RunModal(IModalEvents& events) {
  return Play(*this, events, m_script, &IModalEvents::OnCancel);
}

IHtmlView* AboutDialogRecorder::CreateHtmlView() {
  if (!m_script.canMakeHtmlView) return nullptr;
  html = std::make_unique<HtmlViewRecorder>();
  return html.get();
}

int AboutDialogRecorder::RunModal(IModalEvents& events) {
  return Play(*this, events, m_script.actions, &IModalEvents::OnCancel);
}
