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

class QBoxLayout;
class QPushButton;
class QVBoxLayout;
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

// What the three dialogs share: the modal window with the name and description on top and OK and
// Cancel at the bottom, the boxes by id, and the events while the dialog is shown. Each dialog
// adds its own rows to Column() in its constructor, then calls AddOkCancel().
template <class View, class Events>
class CQtEventDialog : public View {
 public:
  ~CQtEventDialog() override;

  void SetItemText(int control, const std::wstring& text) override;
  std::wstring ItemText(int control) const override;
  void FocusItem(int control) override;
  int RunModal(Events& events) override;
  void EndDialog(int result) override;

 protected:
  CQtEventDialog(QWidget* parent, const wchar_t* title, int widthDlu, int heightDlu);
  QVBoxLayout& Column() { return *m_column; }
  // A number box of digits only, with its label before it, in `row`.
  QLineEdit* AddNumber(QBoxLayout& row, int id, const wchar_t* label);
  void AddOkCancel();

  QPointer<CModalDialog> m_dialog;
  CEventBoxes m_boxes;
  Events* m_events = nullptr;

 private:
  QVBoxLayout* m_column;
};

class CQtProgramDialogView final
    : public CQtEventDialog<IProgramDialogView, IProgramDialogEvents> {
 public:
  explicit CQtProgramDialogView(QWidget* parent);

  ITextBoxView& BankBox(int control) override;
  ScreenPoint PresetButtonCorner() const override;

 private:
  CTextBox* m_msb;
  CTextBox* m_lsb;
  QPushButton* m_presetButton;
};

class CQtControllerDialogView final : public CQtEventDialog<IControllerDialogView, IModalEvents> {
 public:
  explicit CQtControllerDialogView(QWidget* parent);
};

class CQtWaitDialogView final : public CQtEventDialog<IWaitDialogView, IModalEvents> {
 public:
  explicit CQtWaitDialogView(QWidget* parent);
};
