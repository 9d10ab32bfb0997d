// "Edit Sysex Event" and "Prefix Editor" on screen: each a modal dialog around a byte grid of
// our own (CHexGridWidget), with the first's name and description boxes and its Import, Export
// and Reset buttons. The grid draws itself, so attaching it always succeeds.
#pragma once

#include <QtCore/QPointer>
#include <QtWidgets/QLineEdit>

#include "editor/hex_dialog_views.h"
#include "ui/modal_dialog.h"

class CQtPrefixEditorView final : public IPrefixEditorView {
 public:
  explicit CQtPrefixEditorView(QWidget* parent);
  ~CQtPrefixEditorView() override;

  GridAttachment AttachGrid(CHexGrid& grid) override;
  int RunModal(IByteDialogEvents& events) override;
  void EndDialog(int result) override;


 private:
  QPointer<CModalDialog> m_dialog;
  IByteDialogEvents* m_events = nullptr;
};

class CQtHexEditDialogView final : public IHexEditDialogView {
 public:
  explicit CQtHexEditDialogView(QWidget* parent);
  ~CQtHexEditDialogView() override;

  GridAttachment AttachGrid(CHexGrid& grid) override;
  void SetName(const std::wstring& text) override;
  std::wstring Name() const override;
  void SetDescription(const std::wstring& text) override;
  std::wstring Description() const override;
  int RunModal(IHexEditDialogEvents& events) override;
  void EndDialog(int result) override;


 private:
  QPointer<CModalDialog> m_dialog;
  QPointer<QLineEdit> m_name;
  QPointer<QLineEdit> m_description;
  IHexEditDialogEvents* m_events = nullptr;
};
