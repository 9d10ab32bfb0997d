#include "ui/hex_dialogs.h"

#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "ui/dialog_parts.h"
#include "ui/hex_grid_widget.h"

namespace {

// Where each dialog's grid goes in its column when the logic attaches it: first in the prefix
// editor, after the two texts in the other.
constexpr int kPrefixGridIndex = 0;
constexpr int kSysexGridIndex = 2;

void PlaceGrid(CModalDialog& dialog, CHexGrid& grid, int id, int index) {
  auto* widget = new CHexGridWidget(grid, &dialog);
  widget->setObjectName(ControlName(id));
  static_cast<QVBoxLayout*>(dialog.layout())->insertWidget(index, widget, 1);
  widget->setFocus();
}

}  // namespace

CQtPrefixEditorView::CQtPrefixEditorView(QWidget* parent)
    : m_dialog(new CModalDialog(parent, prefix_editor::kTitle, prefix_editor::kWidthDlu,
                                prefix_editor::kHeightDlu, [this] {
                                  if (m_events) m_events->OnClose();
                                })) {
  auto* column = new QVBoxLayout(m_dialog);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(MakeButton(m_dialog, prefix_editor::kReset, L"&Reset", [this] {
    if (m_events) m_events->OnReset();
  }));
  buttons->addStretch(1);
  QPushButton* ok = MakeButton(m_dialog, prefix_editor::kOk, L"OK", [this] {
    if (m_events) m_events->OnOk();
  });
  ok->setDefault(true);
  buttons->addWidget(ok);
  buttons->addWidget(MakeButton(m_dialog, prefix_editor::kCancel, L"Cancel", [this] {
    if (m_events) m_events->OnCancel();
  }));
  column->addLayout(buttons);
}

CQtPrefixEditorView::~CQtPrefixEditorView() {
  m_events = nullptr;
  delete m_dialog.data();
}

GridAttachment CQtPrefixEditorView::AttachGrid(CHexGrid& grid) {
  if (m_dialog) PlaceGrid(*m_dialog, grid, prefix_editor::kGrid, kPrefixGridIndex);
  return {};
}

int CQtPrefixEditorView::RunModal(IByteDialogEvents& events) {
  m_events = &events;
  const int result = m_dialog ? m_dialog->Run() : kDialogCancel;
  m_events = nullptr;
  return result;
}

void CQtPrefixEditorView::EndDialog(int result) {
  if (m_dialog) m_dialog->End(result);
}

CQtHexEditDialogView::CQtHexEditDialogView(QWidget* parent)
    : m_dialog(new CModalDialog(parent, hex_edit_dialog::kTitle, hex_edit_dialog::kWidthDlu,
                                hex_edit_dialog::kHeightDlu, [this] {
                                  if (m_events) m_events->OnClose();
                                })) {
  namespace ids = hex_edit_dialog;
  auto* column = new QVBoxLayout(m_dialog);
  column->addWidget(MakeLabel(m_dialog, ids::kHelp));
  QLabel* heading = MakeLabel(m_dialog, ids::kHeading);
  QFont bold = heading->font();
  bold.setBold(true);
  heading->setFont(bold);
  column->addWidget(heading);
  auto* form = new QFormLayout;
  m_name = MakeEdit(m_dialog, ids::kNameBox);
  m_description = MakeEdit(m_dialog, ids::kDescriptionBox);
  form->addRow(QString::fromWCharArray(ids::kNameLabel), m_name);
  form->addRow(QString::fromWCharArray(ids::kDescriptionLabel), m_description);
  column->addLayout(form);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(MakeButton(m_dialog, ids::kImport, ids::kImportText, [this] {
    if (m_events) m_events->OnImport();
  }));
  buttons->addWidget(MakeButton(m_dialog, ids::kExport, ids::kExportText, [this] {
    if (m_events) m_events->OnExport();
  }));
  buttons->addWidget(MakeButton(m_dialog, ids::kReset, ids::kResetText, [this] {
    if (m_events) m_events->OnReset();
  }));
  buttons->addStretch(1);
  QPushButton* ok = MakeButton(m_dialog, ids::kOk, ids::kOkText, [this] {
    if (m_events) m_events->OnOk();
  });
  ok->setDefault(true);
  buttons->addWidget(ok);
  buttons->addWidget(MakeButton(m_dialog, ids::kCancel, ids::kCancelText, [this] {
    if (m_events) m_events->OnCancel();
  }));
  column->addLayout(buttons);
}

CQtHexEditDialogView::~CQtHexEditDialogView() {
  m_events = nullptr;
  delete m_dialog.data();
}

GridAttachment CQtHexEditDialogView::AttachGrid(CHexGrid& grid) {
  if (m_dialog) PlaceGrid(*m_dialog, grid, hex_edit_dialog::kGrid, kSysexGridIndex);
  return {};
}

void CQtHexEditDialogView::SetName(const std::wstring& text) {
  if (m_name) m_name->setText(QString::fromStdWString(text));
}

std::wstring CQtHexEditDialogView::Name() const {
  return m_name ? m_name->text().toStdWString() : std::wstring();
}

void CQtHexEditDialogView::SetDescription(const std::wstring& text) {
  if (m_description) m_description->setText(QString::fromStdWString(text));
}

std::wstring CQtHexEditDialogView::Description() const {
  return m_description ? m_description->text().toStdWString() : std::wstring();
}

int CQtHexEditDialogView::RunModal(IHexEditDialogEvents& events) {
  m_events = &events;
  const int result = m_dialog ? m_dialog->Run() : kDialogCancel;
  m_events = nullptr;
  return result;
}

void CQtHexEditDialogView::EndDialog(int result) {
  if (m_dialog) m_dialog->End(result);
}
