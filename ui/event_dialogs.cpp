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

template <class View, class Events>
CQtEventDialog<View, Events>::CQtEventDialog(QWidget* parent, const wchar_t* title, int widthDlu,
                                             int heightDlu)
    : m_dialog(new CModalDialog(parent, title, widthDlu, heightDlu,
                                [this] {
                                  if (m_events) m_events->OnCancel();
                                })),
      m_column(new QVBoxLayout(m_dialog)) {
  auto* form = new QFormLayout;
  for (const auto& [id, label] : {std::pair{kEventNameBox, kEventNameLabel},
                                  std::pair{kEventDescriptionBox, kEventDescriptionLabel}}) {
    QLineEdit* box = MakeEdit(m_dialog, id);
    m_boxes.Add(id, box);
    form->addRow(Q(label), box);
  }
  m_column->addLayout(form);
}

template <class View, class Events>
CQtEventDialog<View, Events>::~CQtEventDialog() {
  m_events = nullptr;
  delete m_dialog.data();
}

template <class View, class Events>
QLineEdit* CQtEventDialog<View, Events>::AddNumber(QBoxLayout& row, int id,
                                                   const wchar_t* label) {
  QLineEdit* box = MakeEdit(m_dialog, id, true);
  box->setMaximumWidth(70);
  m_boxes.Add(id, box);
  auto* text = new QLabel(Q(label), m_dialog);
  text->setBuddy(box);
  row.addWidget(text);
  row.addWidget(box);
  return box;
}

// OK, the default, and Cancel at the bottom right.
template <class View, class Events>
void CQtEventDialog<View, Events>::AddOkCancel() {
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  QPushButton* ok = MakeButton(m_dialog, kDialogOk, L"OK", [this] {
    if (m_events) m_events->OnOk();
  });
  ok->setDefault(true);
  row->addWidget(ok);
  row->addWidget(MakeButton(m_dialog, kDialogCancel, L"Cancel", [this] {
    if (m_events) m_events->OnCancel();
  }));
  m_column->addStretch(1);
  m_column->addLayout(row);
}

template <class View, class Events>
void CQtEventDialog<View, Events>::SetItemText(int control, const std::wstring& text) {
  m_boxes.SetItemText(control, text);
}

template <class View, class Events>
std::wstring CQtEventDialog<View, Events>::ItemText(int control) const {
  return m_boxes.ItemText(control);
}

template <class View, class Events>
void CQtEventDialog<View, Events>::FocusItem(int control) {
  m_boxes.FocusItem(control);
}

template <class View, class Events>
int CQtEventDialog<View, Events>::RunModal(Events& events) {
  m_events = &events;
  const int result = m_dialog ? m_dialog->Run() : kDialogCancel;
  m_events = nullptr;
  return result;
}

template <class View, class Events>
void CQtEventDialog<View, Events>::EndDialog(int result) {
  if (m_dialog) m_dialog->End(result);
}

template class CQtEventDialog<IProgramDialogView, IProgramDialogEvents>;
template class CQtEventDialog<IControllerDialogView, IModalEvents>;
template class CQtEventDialog<IWaitDialogView, IModalEvents>;

CQtProgramDialogView::CQtProgramDialogView(QWidget* parent)
    : CQtEventDialog(parent, program_dialog::kTitle, program_dialog::kWidthDlu,
                     program_dialog::kHeightDlu) {
  namespace ids = program_dialog;
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
  Column().addWidget(presets);

  auto* manual = new QGroupBox(Q(ids::kManualLabel), m_dialog);
  auto* manualRow = new QHBoxLayout(manual);
  AddNumber(*manualRow, ids::kChannelBox, ids::kChannelLabel);
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
  AddNumber(*manualRow, ids::kProgramBox, ids::kProgramLabel);
  Column().addWidget(manual);
  AddOkCancel();
}

ITextBoxView& CQtProgramDialogView::BankBox(int control) {
  return control == program_dialog::kLsbBox ? *m_lsb : *m_msb;
}

ScreenPoint CQtProgramDialogView::PresetButtonCorner() const {
  const QPoint corner = m_presetButton->mapToGlobal(QPoint(0, m_presetButton->height()));
  return {corner.x(), corner.y()};
}

CQtControllerDialogView::CQtControllerDialogView(QWidget* parent)
    : CQtEventDialog(parent, controller_dialog::kTitle, controller_dialog::kWidthDlu,
                     controller_dialog::kHeightDlu) {
  namespace ids = controller_dialog;
  auto* row = new QHBoxLayout;
  AddNumber(*row, ids::kChannelBox, ids::kChannelLabel);
  AddNumber(*row, ids::kControllerBox, ids::kControllerLabel);
  AddNumber(*row, ids::kValueBox, ids::kValueLabel);
  row->addStretch(1);
  Column().addLayout(row);
  AddOkCancel();
}

CQtWaitDialogView::CQtWaitDialogView(QWidget* parent)
    : CQtEventDialog(parent, wait_dialog::kTitle, wait_dialog::kWidthDlu,
                     wait_dialog::kHeightDlu) {
  Column().addWidget(MakeLabel(m_dialog, wait_dialog::kHelp));
  auto* row = new QHBoxLayout;
  QLineEdit* milliseconds = MakeEdit(m_dialog, wait_dialog::kMillisecondsBox, true);
  milliseconds->setMaximumWidth(90);
  m_boxes.Add(wait_dialog::kMillisecondsBox, milliseconds);
  row->addWidget(milliseconds);
  row->addWidget(new QLabel(QStringLiteral("ms"), m_dialog));
  row->addStretch(1);
  Column().addLayout(row);
  AddOkCancel();
}
