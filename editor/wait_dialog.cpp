#include "editor/wait_dialog.h"

#include "editor/dialog_fields.h"

CWaitDlg::CWaitDlg(ParentWindow parent) : m_parent(parent) {}

int CWaitDlg::Run(float& milliseconds, std::wstring& name, std::wstring& description) {
  m_milliseconds = milliseconds;
  m_name = &name;
  m_description = &description;
  CEditorViewFactory* views = EditorViews();
  if (views) m_view = views->CreateWaitDialog(m_parent);
  if (!m_view) return kDialogCancel;
  m_view->SetItemText(kEventNameBox, name);
  m_view->SetItemText(kEventDescriptionBox, description);
  m_view->SetItemText(wait_dialog::kMillisecondsBox, FormatFloat(m_milliseconds));
  const int result = m_view->RunModal(*this);
  m_view.reset();
  if (result == kDialogOk) milliseconds = m_milliseconds;
  return result;
}

void CWaitDlg::OnOk() {
  const auto value = ParseFloat(m_view->ItemText(wait_dialog::kMillisecondsBox));
  if (!CheckFloatField(*m_view, wait_dialog::kMillisecondsBox, value, kMinimumMs, kMaximumMs))
    return;
  m_milliseconds = *value;
  *m_name = m_view->ItemText(kEventNameBox);
  *m_description = m_view->ItemText(kEventDescriptionBox);
  m_view->EndDialog(kDialogOk);
}

void CWaitDlg::OnCancel() { m_view->EndDialog(kDialogCancel); }
