#include "editor/hex_edit_dialog.h"

#include <filesystem>
#include <fstream>
#include <optional>

#include "platform/file_dialog.h"
#include "platform/message_box.h"

namespace {

// The whole file, which is created empty when missing and never truncated; nothing when it
// cannot be opened.
std::optional<std::vector<std::uint8_t>> ReadCreatingFile(const std::wstring& name) {
  const std::filesystem::path path(name);
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  if (!file.is_open()) file.open(path, std::ios::in | std::ios::out | std::ios::binary |
                                           std::ios::app);
  if (!file.is_open()) return std::nullopt;
  file.seekg(0, std::ios::end);
  const std::streamoff size = file.tellg();
  if (size < 0) return std::nullopt;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  file.seekg(0);
  if (!file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size)))
    return std::nullopt;
  return bytes;
}

bool WriteTruncatingFile(const std::wstring& name, const std::vector<std::uint8_t>& bytes) {
  std::ofstream file(std::filesystem::path(name), std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return file.good();
}

void ShowFileError(const std::wstring& verb, const std::wstring& path) {
  ShowMessageBox(L"Could not " + verb + L" the file '" + path + L"'.", L"Tarn",
                 MB_ICONERROR_FLAG);
}

}  // namespace

CHexEditDlgDlg::CHexEditDlgDlg(ParentWindow parent) : m_parent(parent) {}

int CHexEditDlgDlg::Run(std::vector<std::uint8_t>* array, std::wstring* name,
                        std::wstring* description) {
  m_callerArray = array;
  m_name = name;
  m_description = description;
  CEditorViewFactory* views = EditorViews();
  if (views) m_view = views->CreateHexEditDialog(m_parent);
  if (!m_view) return kDialogCancel;
  AttachGrid(*m_view);
  Start();
  const int result = m_view->RunModal(*this);
  m_view.reset();
  return result;
}

void CHexEditDlgDlg::Start() {
  SetUpGrid([this] {
    m_grid.SetShowAddress(true);
    m_grid.SetAddressDigits(8);
  });
  if (m_callerArray)
    LoadArray(*m_callerArray);
  else
    Reset();
  if (m_name) m_view->SetName(*m_name);
  if (m_description) m_view->SetDescription(*m_description);
}

void CHexEditDlgDlg::OnImport() {
  const auto path = ChooseFile({FileDialogMode::Open, L"syx", L"SysEx MIDI File (*.syx)|*.syx||"});
  if (!path) return;
  m_fileName = *path;
  auto bytes = ReadCreatingFile(*path);
  if (!bytes) return ShowFileError(L"read", *path);
  LoadArray(*bytes);
}

// The first export asks where to; later ones write to the file last imported or exported.
void CHexEditDlgDlg::OnExport() {
  if (m_fileName == kNoFile) {
    const auto path =
        ChooseFile({FileDialogMode::Save, L"syx", L"SysEx MIDI File  (*.syx)|*.syx||"});
    if (!path) return;
    m_fileName = *path;
  }
  if (!WriteTruncatingFile(m_fileName, m_array)) return ShowFileError(L"write", m_fileName);
  m_grid.SetModified(false);
}

void CHexEditDlgDlg::OnReset() { Reset(); }

void CHexEditDlgDlg::ApplyOk() {
  CopyToCaller();
  if (!m_callerArray && m_grid.Modified()) OnExport();
  if (m_name) *m_name = m_view->Name();
  if (m_description) *m_description = m_view->Description();
}

void CHexEditDlgDlg::OnOk() {
  ApplyOk();
  m_view->EndDialog(kDialogOk);
}

// A Yes copies into the caller's variables, but the dialog still ends with Cancel, so the
// caller keeps what it had: the question changes nothing, as intended.
void CHexEditDlgDlg::OnCancel() {
  if (UserWantsToSave()) ApplyOk();
  m_view->EndDialog(kDialogCancel);
}

void CHexEditDlgDlg::OnClose() { m_view->EndDialog(kDialogCancel); }
