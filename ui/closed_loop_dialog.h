// "MIDI Closed Loop Test" on screen: the explanations, the two progress bars with their labels,
// the four numbers, the status line and Start, Stop and Close.
#pragma once

#include <QtCore/QPointer>
#include <map>

#include "editor/closed_loop_dialog_view.h"
#include "ui/modal_dialog.h"

class QWidget;

class CQtClosedLoopDialogView final : public IClosedLoopDialogView {
 public:
  explicit CQtClosedLoopDialogView(QWidget* parent);
  ~CQtClosedLoopDialogView() override;

  void SetEvents(IClosedLoopDialogEvents* events) override { m_events = events; }
  int RunModal() override;
  void EndDialog(int result) override;
  void SetText(std::uint32_t control, const std::wstring& text) override;
  void EnableControl(std::uint32_t control, bool enabled) override;
  void SetProgress(std::uint32_t control, std::uint16_t range, std::int32_t position) override;


 private:
  QWidget* Control(std::uint32_t id) const;
  void Report(std::uint32_t id);

  QPointer<CModalDialog> m_dialog;
  std::map<std::uint32_t, QPointer<QWidget>> m_controls;
  IClosedLoopDialogEvents* m_events = nullptr;
};
