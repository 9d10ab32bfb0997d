#include "editor/controller_dialog.h"

#include "editor/dialog_fields.h"

namespace cd = controller_dialog;

CCCDialog::CCCDialog(ParentWindow parent) : m_parent(parent) {}

int CCCDialog::Run(std::int32_t& channel, std::int32_t& controller, std::int32_t& value,
                   std::wstring& name, std::wstring& description) {
  m_channel = &channel;
  m_controller = &controller;
  m_value = &value;
  m_name = &name;
  m_description = &description;
  CEditorViewFactory* views = EditorViews();
  if (views) m_view = views->CreateControllerDialog(m_parent);
  if (!m_view) return kDialogCancel;
  m_view->SetItemText(kEventNameBox, name);
  m_view->SetItemText(kEventDescriptionBox, description);
  m_view->SetItemText(cd::kChannelBox, FormatInteger(channel));
  m_view->SetItemText(cd::kControllerBox, FormatInteger(controller));
  m_view->SetItemText(cd::kValueBox, FormatInteger(value));
  const int result = m_view->RunModal(*this);
  m_view.reset();
  return result;
}

void CCCDialog::OnOk() {
  const auto channel = ParseInteger(m_view->ItemText(cd::kChannelBox));
  const auto controller = ParseInteger(m_view->ItemText(cd::kControllerBox));
  const auto value = ParseInteger(m_view->ItemText(cd::kValueBox));
  *m_channel = channel.value_or(0);
  *m_controller = controller.value_or(0);
  *m_value = value.value_or(0);
  *m_name = m_view->ItemText(kEventNameBox);
  *m_description = m_view->ItemText(kEventDescriptionBox);
  if (CheckIntegerField(*m_view, cd::kValueBox, value, 0, 127) &&
      CheckIntegerField(*m_view, cd::kControllerBox, controller, 0, 127) &&
      CheckIntegerField(*m_view, cd::kChannelBox, channel, 1, 16))
    m_view->EndDialog(kDialogOk);
}

void CCCDialog::OnCancel() { m_view->EndDialog(kDialogCancel); }
