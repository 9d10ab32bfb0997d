// A one-line text box whose logic sees each typed character and editing key before it takes
// effect (ITextBoxView): the bank boxes of the program dialog. Cut, Copy and Paste go through
// the platform's clipboard, as the logic checks a paste against that clipboard.
#pragma once

#include <QtWidgets/QLineEdit>

#include "editor/text_box_view.h"

class CTextBox final : public QLineEdit, public ITextBoxView {
 public:
  explicit CTextBox(QWidget* parent = nullptr);

  void SetEvents(ITextBoxEvents* events) override { m_events = events; }
  std::wstring Text() const override { return text().toStdWString(); }
  void SetText(const std::wstring& text) override;
  TextSelection Selection() const override;
  void SetSelection(TextSelection selection) override;
  bool CanUndo() const override { return isUndoAvailable(); }
  bool IsReadOnly() const override { return isReadOnly(); }
  void TakeFocus() override { setFocus(Qt::OtherFocusReason); }
  void Redraw() override { update(); }
  void Undo() override { undo(); }
  void Cut() override;
  void Copy() override;
  void Paste() override;
  void DeleteSelection() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  bool FilterEditKey(QKeyEvent& event);

  ITextBoxEvents* m_events = nullptr;
};
