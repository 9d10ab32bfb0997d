#include "ui/event_dialogs.h"

#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "ui/dialog_parts.h"
#include "ui/text_box.h"

namespace {

QString Q(const wchar_t* text) { return QString::fromWCharArray(text); }

// Name and description on top of each dialog.
QFormLayout* AddNameRows(CModalDialog& dialog, CEventBoxes& boxes, QVBoxLayout& column) {
  auto* form = new QFormLayout;
  for (const auto& [id, label] : {std::pair{kEventNameBox, kEventNameLabel},
                                  std::pair{kEventDescriptionBox, kEventDescriptionLabel}}) {
    QLineEdit* box = MakeEdit(&dialog, id);
    boxes.Add(id, box);
    form->addRow(Q(label), box);
  }
  column.addLayout(form);
  return form;
}

// A number box of digits only, with its label before it, in a row.
QLineEdit* AddNumber(CModalDialog& dialog, CEventBoxes& boxes, QBoxLayout& row, int id,
                     const wchar_t* label) {
  QLineEdit* box = MakeEdit(&dialog, id, true);
  box->setMaximumWidth(70);
  boxes.Add(id, box);
  auto* text = new QLabel(Q(label), &dialog);
  text->setBuddy(box);
  row.addWidget(text);
  row.addWidget(box);
  return box;
}

// OK, the default, and Cancel at the bottom right.
void AddOkCancel(CModalDialog& dialog, QVBoxLayout& column, std::function<void()> ok,
                 std::function<void()> cancel) {
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  QPushButton* okButton = MakeButton(&dialog, kDialogOk, L"OK", std::move(ok));
  okButton->setDefault(true);
  row->addWidget(okButton);
  row->addWidget(MakeButton(&dialog, kDialogCancel, L"Cancel", std::move(cancel)));
  column.addStretch(1);
  column.addLayout(row);
}

}  // namespace

QLineEdit* CEventBoxes::Box(int control) const {
  const auto it = m_boxes.find(control);
  return it == m_boxes.end() ? nullptr : it->second.data();
}

void CEventBoxes::SetItemText(int control, const std::wstring& text) {
  if (QLineEdit* box = Box(control)) box->setText(QString::fromStdWString(text));
}

std::wstring CEventBoxes::ItemText(int control) const {
  const QLineEdit* box = Box(control);
  return box ? box->text().toStdWString() : std::wstring();
}

void CEventBoxes::FocusItem(int control) {
  if (QLineEdit* box = Box(control)) {
    box->setFocus(Qt::OtherFocusReason);
    box->selectAll();
  }
}

CQtProgramDialogView::CQtProgramDialogView(QWidget* parent)
    : m_dialog(new CModalDialog(parent, program_dialog::kTitle, program_dialog::kWidthDlu,
                                program_dialog::kHeightDlu, [this] {
                                  if (m_events) m_events->OnCancel();
                                })) {
  namespace ids = program_dialog;
  auto* column = new QVBoxLayout(m_dialog);
  AddNameRows(*m_dialog, m_boxes, *column);

  auto* presets = new QGroupBox(Q(ids::kPresetLabel), m_dialog);
  auto* presetRow = new QHBoxLayout(presets);
  QLineEdit* presetName = MakeEdit(m_dialog, ids::kPresetName);
  presetName->setReadOnly(true);
  m_boxes.Add(ids::kPresetName, presetName);
  presetRow->addWidget(presetName, 1);
  m_presetButton = MakeButton(m_dialog, ids::kPresetButton, ids::kPresetButtonText, [this] {
    if (m_events) m_events->OnPresetButton();
  });
  m_presetButton->setFixedWidth(32);
  presetRow->addWidget(m_presetButton);
  column->addWidget(presets);

  auto* manual = new QGroupBox(Q(ids::kManualLabel), m_dialog);
  auto* manualRow = new QHBoxLayout(manual);
  AddNumber(*m_dialog, m_boxes, *manualRow, ids::kChannelBox, ids::kChannelLabel);
  auto* bank = new QGroupBox(Q(ids::kBankGroup), m_dialog);
  auto* bankRow = new QHBoxLayout(bank);
  for (auto [id, label, box] : {std::tuple{ids::kMsbBox, ids::kMsbLabel, &m_msb},
                                std::tuple{ids::kLsbBox, ids::kLsbLabel, &m_lsb}}) {
    *box = new CTextBox(m_dialog);
    (*box)->setObjectName(ControlName(id));
    (*box)->setMaximumWidth(70);
    m_boxes.Add(id, *box);
    bankRow->addWidget(new QLabel(Q(label), m_dialog));
    bankRow->addWidget(*box);
  }
  manualRow->addWidget(bank);
  AddNumber(*m_dialog, m_boxes, *manualRow, ids::kProgramBox, ids::kProgramLabel);
  column->addWidget(manual);

  AddOkCancel(
      *m_dialog, *column,
      [this] {
        if (m_events) m_events->OnOk();
      },
      [this] {
        if (m_events) m_events->OnCancel();
      });
}

CQtProgramDialogView::~CQtProgramDialogView() {
  m_events = nullptr;
  delete m_dialog.data();
}

void CQtProgramDialogView::SetItemText(int control, const std::wstring& text) {
  m_boxes.SetItemText(control, text);
}
std::wstring CQtProgramDialogView::ItemText(int control) const { return m_boxes.ItemText(control); }
void CQtProgramDialogView::FocusItem(int control) { m_boxes.FocusItem(control); }

ITextBoxView& CQtProgramDialogView::BankBox(int control) {
  return control == program_dialog::kLsbBox ? *m_lsb : *m_msb;
}

ScreenPoint CQtProgramDialogView::PresetButtonCorner() const {
  const QPoint corner = m_presetButton->mapToGlobal(QPoint(0, m_presetButton->height()));
  return {corner.x(), corner.y()};
}

int CQtProgramDialogView::RunModal(IProgramDialogEvents& events) {
  m_events = &events;
  const int result = m_dialog ? m_dialog->Run() : kDialogCancel;
  m_events = nullptr;
  return result;
}

void CQtProgramDialogView::EndDialog(int result) {
  if (m_dialog) m_dialog->End(result);
}

CQtControllerDialogView::CQtControllerDialogView(QWidget* parent)
    : m_dialog(new CModalDialog(parent, controller_dialog::kTitle, controller_dialog::kWidthDlu,
                                controller_dialog::kHeightDlu, [this] {
                                  if (m_events) m_events->OnCancel();
                                })) {
  namespace ids = controller_dialog;
  auto* column = new QVBoxLayout(m_dialog);
  AddNameRows(*m_dialog, m_boxes, *column);
  auto* row = new QHBoxLayout;
  AddNumber(*m_dialog, m_boxes, *row, ids::kChannelBox, ids::kChannelLabel);
  AddNumber(*m_dialog, m_boxes, *row, ids::kControllerBox, ids::kControllerLabel);
  AddNumber(*m_dialog, m_boxes, *row, ids::kValueBox, ids::kValueLabel);
  row->addStretch(1);
  column->addLayout(row);
  AddOkCancel(
      *m_dialog, *column,
      [this] {
        if (m_events) m_events->OnOk();
      },
      [this] {
        if (m_events) m_events->OnCancel();
      });
}

CQtControllerDialogView::~CQtControllerDialogView() {
  m_events = nullptr;
  delete m_dialog.data();
}

void CQtControllerDialogView::SetItemText(int control, const std::wstring& text) {
  m_boxes.SetItemText(control, text);
}
std::wstring CQtControllerDialogView::ItemText(int control) const {
  return m_boxes.ItemText(control);
}
void CQtControllerDialogView::FocusItem(int control) { m_boxes.FocusItem(control); }

int CQtControllerDialogView::RunModal(IModalEvents& events) {
  m_events = &events;
  const int result = m_dialog ? m_dialog->Run() : kDialogCancel;
  m_events = nullptr;
  return result;
}

void CQtControllerDialogView::EndDialog(int result) {
  if (m_dialog) m_dialog->End(result);
}

CQtWaitDialogView::CQtWaitDialogView(QWidget* parent)
    : m_dialog(new CModalDialog(parent, wait_dialog::kTitle, wait_dialog::kWidthDlu,
                                wait_dialog::kHeightDlu, [this] {
                                  if (m_events) m_events->OnCancel();
                                })) {
  auto* column = new QVBoxLayout(m_dialog);
  AddNameRows(*m_dialog, m_boxes, *column);
  column->addWidget(MakeLabel(m_dialog, wait_dialog::kHelp));
  auto* row = new QHBoxLayout;
  QLineEdit* milliseconds = MakeEdit(m_dialog, wait_dialog::kMillisecondsBox, true);
  milliseconds->setMaximumWidth(90);
  m_boxes.Add(wait_dialog::kMillisecondsBox, milliseconds);
  row->addWidget(milliseconds);
  row->addWidget(new QLabel(QStringLiteral("ms"), m_dialog));
  row->addStretch(1);
  column->addLayout(row);
  AddOkCancel(
      *m_dialog, *column,
      [this] {
        if (m_events) m_events->OnOk();
      },
      [this] {
        if (m_events) m_events->OnCancel();
      });
}

CQtWaitDialogView::~CQtWaitDialogView() {
  m_events = nullptr;
  delete m_dialog.data();
}

void CQtWaitDialogView::SetItemText(int control, const std::wstring& text) {
  m_boxes.SetItemText(control, text);
}
std::wstring CQtWaitDialogView::ItemText(int control) const { return m_boxes.ItemText(control); }
void CQtWaitDialogView::FocusItem(int control) { m_boxes.FocusItem(control); }

int CQtWaitDialogView::RunModal(IModalEvents& events) {
  m_events = &events;
  const int result = m_dialog ? m_dialog->Run() : kDialogCancel;
  m_events = nullptr;
  return result;
}

void CQtWaitDialogView::EndDialog(int result) {
  if (m_dialog) m_dialog->End(result);
}
