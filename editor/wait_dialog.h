// "Edit Wait Event": the length of a pause in milliseconds.
#pragma once

#include <memory>
#include <string>

#include "editor/event_dialog_views.h"
#include "editor/view_factory.h"

class CWaitDlg final : private IModalEvents {
 public:
  static constexpr float kMinimumMs = 0.001f;
  static constexpr float kMaximumMs = 10000.0f;

  explicit CWaitDlg(ParentWindow parent);

  // [editor thread] Runs the dialog over the caller's values. Answers kDialogOk or
  // kDialogCancel, at once when no view can be made. OK is refused, with a message naming the
  // limits, while the box does not hold a number from 0.001 to 10000. The milliseconds are
  // written back only on OK; name and description are read on OK.
  int Run(float& milliseconds, std::wstring& name, std::wstring& description);

 private:
  // IModalEvents
  void OnOk() override;
  void OnCancel() override;

  ParentWindow m_parent;
  std::unique_ptr<IWaitDialogView> m_view;
  float m_milliseconds = 0;
  std::wstring* m_name = nullptr;
  std::wstring* m_description = nullptr;
};
