#include "editor/prefix_editor_dialog.h"

#include "platform/message_box.h"

CPrefixEditorDlg::CPrefixEditorDlg(ParentWindow parent) : m_parent(parent) {}

int CPrefixEditorDlg::Run(std::vector<std::uint8_t>* array) {
  m_callerArray = array;
  CEditorViewFactory* views = EditorViews();
  if (views) m_view = views->CreatePrefixEditor(m_parent);
  if (!m_view) return kDialogCancel;
  AttachGrid(*m_view);
  Start();
  const int result = m_view->RunModal(*this);
  m_view.reset();
  return result;
}

void CPrefixEditorDlg::Start() {
  SetUpGrid([this] { AddressStep(); });
  if (m_callerArray)
    LoadArray(*m_callerArray);
  else
    Reset();
}

// Runs before the working array is filled, so the size test sees it empty: only the message
// could ever show, and the address column is hidden again at the end of the set-up.
void CPrefixEditorDlg::AddressStep() {
  switch (m_addressMode) {
    case 0:
      if (m_array.size() > 0x10000) {
        ShowMessageBox(L"File is larger than 64K", L"Tarn", MB_ICONERROR_FLAG);
        m_addressMode = 1;
        break;
      }
      m_grid.SetShowAddress(true);
      m_grid.SetAddressDigits(4);
      break;
    case 1:
      m_grid.SetShowAddress(true);
      m_grid.SetAddressDigits(8);
      break;
    default:
      break;
  }
  m_addressMode = m_grid.AddressDigits() == 8 ? 1 : 0;
}

void CPrefixEditorDlg::OnReset() { Reset(); }

void CPrefixEditorDlg::OnOk() {
  CopyToCaller();
  m_view->EndDialog(kDialogOk);
}

void CPrefixEditorDlg::OnCancel() {
  if (UserWantsToSave()) CopyToCaller();
  m_view->EndDialog(kDialogCancel);
}

void CPrefixEditorDlg::OnClose() { m_view->EndDialog(kDialogCancel); }
