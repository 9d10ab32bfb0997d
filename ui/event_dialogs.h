// The three event dialogs on screen: "Edit Program Change Event" (preset name and its "..."
// button, channel, the bank's MSB and LSB boxes, program), "Edit Controller Event" (channel,
// controller, value) and "Edit Wait Event" (milliseconds), each with the event's name and
// description. Number boxes take digits only; the bank boxes are text boxes their logic filters.
#pragma once

#include <QtCore/QPointer>
#include <QtWidgets/QLineEdit>
#include <map>

#include "editor/event_dialog_views.h"
#include "ui/modal_dialog.h"

class QPushButton;
class CTextBox;

// The boxes of one dialog by control id, shared by the three views.
class CEventBoxes {
 public:
  void Add(int control, QLineEdit* box) { m_boxes[control] = box; }
  QLineEdit* Box(int control) const;
  void SetItemText(int control, const std::wstring& text);
  std::wstring ItemText(int control) const;
  void FocusItem(int control);

 private:
  std::map<int, QPointer<QLineEdit>> m_boxes;
};

class CQtProgramDialogView final : public IProgramDialogView {
 public:
  explicit CQtProgramDialogView(QWidget* parent);
  ~CQtProgramDialogView() override;

  void SetItemText(int control, const std::wstring& text) override;
  std::wstring ItemText(int control) const override;
  void FocusItem(int control) override;
  ITextBoxView& BankBox(int control) override;
  ScreenPoint PresetButtonCorner() const override;
  int RunModal(IProgramDialogEvents& events) override;
  void EndDialog(int result) override;


 private:
  QPointer<CModalDialog> m_dialog;
  CEventBoxes m_boxes;
  CTextBox* m_msb;
  CTextBox* m_lsb;
  QPushButton* m_presetButton;
  IProgramDialogEvents* m_events = nullptr;
};

class CQtControllerDialogView final : public IControllerDialogView {
 public:
  explicit CQtControllerDialogView(QWidget* parent);
  ~CQtControllerDialogView() override;

  void SetItemText(int control, const std::wstring& text) override;
  std::wstring ItemText(int control) const override;
  void FocusItem(int control) override;
  int RunModal(IModalEvents& events) override;
  void EndDialog(int result) override;


 private:
  QPointer<CModalDialog> m_dialog;
  CEventBoxes m_boxes;
  IModalEvents* m_events = nullptr;
};

class CQtWaitDialogView final : public IWaitDialogView {
 public:
  explicit CQtWaitDialogView(QWidget* parent);
  ~CQtWaitDialogView() override;

  void SetItemText(int control, const std::wstring& text) override;
  std::wstring ItemText(int control) const override;
  void FocusItem(int control) override;
  int RunModal(IModalEvents& events) override;
  void EndDialog(int result) override;


 private:
  QPointer<CModalDialog> m_dialog;
  CEventBoxes m_boxes;
  IModalEvents* m_events = nullptr;
};
