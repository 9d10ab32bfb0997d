#include "ui/closed_loop_dialog.h"

#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>
#include <algorithm>

#include "editor/modal_view.h"
#include "ui/dialog_parts.h"

namespace {

QString Q(const wchar_t* text) { return QString::fromWCharArray(text); }

QLineEdit* MakeNumber(QWidget* parent, std::uint32_t id) {
  QLineEdit* number = MakeEdit(parent, static_cast<int>(id));
  number->setReadOnly(true);
  number->setMaximumWidth(90);
  number->setAlignment(Qt::AlignRight);
  return number;
}

QProgressBar* MakeBar(QWidget* parent, std::uint32_t id) {
  auto* bar = new QProgressBar(parent);
  bar->setObjectName(ControlName(static_cast<int>(id)));
  bar->setRange(0, 1);  // not a busy bar before the first refresh
  bar->setValue(0);
  bar->setTextVisible(false);
  return bar;
}

}  // namespace

CQtClosedLoopDialogView::CQtClosedLoopDialogView(QWidget* parent)
    : m_dialog(new CModalDialog(parent, kClosedLoopTitle, kClosedLoopWidthDlu, kClosedLoopHeightDlu,
                                [this] { Report(kClosedLoopClose); })) {
  auto* column = new QVBoxLayout(m_dialog);
  column->addWidget(MakeLabel(m_dialog, kClosedLoopIntroText));
  column->addWidget(MakeLabel(m_dialog, kClosedLoopInstructionsText));

  auto* numbers = new QGridLayout;
  const std::pair<std::uint32_t, const wchar_t*> rows[] = {
      {kClosedLoopInstances, kClosedLoopInstancesLabel},
      {kClosedLoopDifference, kClosedLoopDifferenceLabel},
  };
  int line = 0;
  for (const auto& [id, label] : rows) {
    numbers->addWidget(MakeLabel(m_dialog, label), line, 0);
    m_controls[id] = MakeNumber(m_dialog, id);
    numbers->addWidget(m_controls[id], line++, 1);
  }
  const std::tuple<std::uint32_t, std::uint32_t, const wchar_t*> bars[] = {
      {kClosedLoopOutputBar, kClosedLoopSent, L"Output"},
      {kClosedLoopInputBar, kClosedLoopReceived, L"Input"},
  };
  for (const auto& [bar, count, label] : bars) {
    auto* row = new QHBoxLayout;
    auto* text = new QLabel(Q(label), m_dialog);
    text->setMinimumWidth(50);
    row->addWidget(text);
    m_controls[bar] = MakeBar(m_dialog, bar);
    row->addWidget(m_controls[bar], 1);
    numbers->addLayout(row, line, 0);
    m_controls[count] = MakeNumber(m_dialog, count);
    numbers->addWidget(m_controls[count], line++, 1);
  }
  numbers->addWidget(MakeLabel(m_dialog, kClosedLoopReceivedLabel), line++, 0, 1, 2);
  column->addLayout(numbers);

  auto* status = new QLabel(m_dialog);
  status->setObjectName(ControlName(kClosedLoopStatus));
  status->setFrameShape(QFrame::StyledPanel);
  status->setMinimumHeight(status->sizeHint().height() + 6);
  m_controls[kClosedLoopStatus] = status;
  column->addWidget(status);
  column->addStretch(1);

  auto* buttons = new QHBoxLayout;
  const std::pair<std::uint32_t, const wchar_t*> pushes[] = {{kClosedLoopStart, L"Start"},
                                                             {kClosedLoopStop, L"Stop"}};
  for (const auto& [id, text] : pushes) {
    m_controls[id] =
        MakeButton(m_dialog, static_cast<int>(id), text, [this, id = id] { Report(id); });
    buttons->addWidget(m_controls[id]);
  }
  m_controls[kClosedLoopStop]->setEnabled(false);
  buttons->addStretch(1);
  QPushButton* close =
      MakeButton(m_dialog, kClosedLoopClose, L"Close", [this] { Report(kClosedLoopClose); });
  close->setDefault(true);
  m_controls[kClosedLoopClose] = close;
  buttons->addWidget(close);
  column->addLayout(buttons);
}

CQtClosedLoopDialogView::~CQtClosedLoopDialogView() {
  m_events = nullptr;
  delete m_dialog.data();
}

QWidget* CQtClosedLoopDialogView::Control(std::uint32_t id) const {
  const auto it = m_controls.find(id);
  return it == m_controls.end() ? nullptr : it->second.data();
}

void CQtClosedLoopDialogView::Report(std::uint32_t id) {
  if (m_events) m_events->OnButton(id);
}

int CQtClosedLoopDialogView::RunModal() { return m_dialog ? m_dialog->Run() : kDialogCancel; }

void CQtClosedLoopDialogView::EndDialog(int result) {
  if (m_dialog) m_dialog->End(result);
}

void CQtClosedLoopDialogView::SetText(std::uint32_t control, const std::wstring& text) {
  QWidget* widget = Control(control);
  if (auto* label = qobject_cast<QLabel*>(widget))
    label->setText(QString::fromStdWString(text));
  else if (auto* edit = qobject_cast<QLineEdit*>(widget))
    edit->setText(QString::fromStdWString(text));
}

void CQtClosedLoopDialogView::EnableControl(std::uint32_t control, bool enabled) {
  if (QWidget* widget = Control(control)) widget->setEnabled(enabled);
}

void CQtClosedLoopDialogView::SetProgress(std::uint32_t control, std::uint16_t range,
                                          std::int32_t position) {
  if (auto* bar = qobject_cast<QProgressBar*>(Control(control))) {
    const int top = std::max<int>(range, 1);  // Qt draws a range of 0 as a busy bar
    bar->setRange(0, top);
    bar->setValue(std::clamp<std::int32_t>(position, 0, top));
  }
}
