#include "editor/byte_array_dialog.h"

#include <cstdio>
#include <filesystem>

#include "platform/message_box.h"
#include "platform/module_path.h"

namespace {

// Where the grid's own library would lie: beside this module.
std::wstring GridLibraryPath() {
  return (std::filesystem::path(ModulePath()).parent_path() / L"HexEdit.dll").wstring();
}

std::wstring CannotLoadMessage(const std::wstring& path) {
  return L"Error:  detected unregistered HexEditor.dll.  Could not LoadLibrary on '" + path +
         L"'.  Please report this to support.";
}

std::wstring RegisterFailedMessage(const std::wstring& path, HRESULT code) {
  wchar_t hex[16];
  std::swprintf(hex, 16, L"%08X", static_cast<unsigned>(code));
  return L"Error:  detected unregistered HexEditor.dll.  LoadLibrary on '" + path +
         L"' succeeded, but DllRegisterServer failed with code " + hex +
         L".  Please report this to support.";
}

}  // namespace

void CByteArrayDialog::AttachGrid(IByteDialogView& view) {
  const GridAttachment attachment = view.AttachGrid(m_grid);
  switch (attachment.status) {
    case GridAttachment::Status::Ready:
      return;
    case GridAttachment::Status::CannotLoad:
      ShowMessageBox(CannotLoadMessage(GridLibraryPath()), L"Tarn", MB_OK_FLAG);
      return;
    case GridAttachment::Status::RegisterFailed:
      ShowMessageBox(RegisterFailedMessage(GridLibraryPath(), attachment.registerResult), L"Tarn",
                     MB_OK_FLAG);
      return;
  }
}

void CByteArrayDialog::LoadArray(const std::vector<std::uint8_t>& source) {
  m_array = source;
  m_grid.SetData(&m_array);
}

void CByteArrayDialog::Reset() {
  m_fileName = kNoFile;
  m_array.clear();
  m_grid.SetData(&m_array);
}

void CByteArrayDialog::CopyToCaller() const {
  if (m_callerArray) *m_callerArray = m_array;
}

bool CByteArrayDialog::UserWantsToSave() const {
  return m_grid.Modified() &&
         ShowMessageBox(L"Do you want to save changes?", L"Tarn",
                        MB_YESNO_FLAG | MB_ICONQUESTION_FLAG) == ID_YES_ANSWER;
}
