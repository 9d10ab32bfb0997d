#include "ui/about_dialog.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "ui/dialog_parts.h"
#include "ui/html_view.h"

namespace {

// The About box has no resource size of its own: it takes the picture's.
constexpr int kStartWidthDlu = 100, kStartHeightDlu = 60;

}  // namespace

CQtAboutDialogView::CQtAboutDialogView(QWidget* parent)
    : m_dialog(new CModalDialog(parent, L"About", kStartWidthDlu, kStartHeightDlu, [this] {
        if (m_events) m_events->OnCancel();
      })) {
  auto* column = new QVBoxLayout(m_dialog);
  column->setContentsMargins(0, 0, 0, 6);
  m_area = new QWidget(m_dialog);
  m_area->setObjectName(ControlName(about_dialog::kHtmlPlaceholder));
  column->addWidget(m_area);
  auto* row = new QHBoxLayout;
  row->setContentsMargins(6, 0, 6, 0);
  row->addStretch(1);
  QPushButton* ok = MakeButton(m_dialog, kDialogOk, L"OK", [this] {
    if (m_events) m_events->OnOk();
  });
  ok->setDefault(true);
  row->addWidget(ok);
  column->addLayout(row);
  m_dialog->layout()->setSizeConstraint(QLayout::SetFixedSize);
}

CQtAboutDialogView::~CQtAboutDialogView() {
  m_events = nullptr;
  delete m_dialog.data();
}

void CQtAboutDialogView::SetTitle(const std::wstring& title) {
  if (m_dialog) m_dialog->setWindowTitle(QString::fromStdWString(title));
}

void CQtAboutDialogView::SetHtmlAreaSize(PixelSize size) {
  if (m_dialog) m_area->setFixedSize(size.width, size.height);
}

// The view takes the placeholder's place, size and id.
IHtmlView* CQtAboutDialogView::CreateHtmlView() {
  if (!m_dialog) return nullptr;
  if (m_html) return m_html;
  m_html = new CQtHtmlView(m_dialog);
  m_html->setObjectName(m_area->objectName());
  m_html->setFixedSize(m_area->size());
  delete m_dialog->layout()->replaceWidget(m_area, m_html);
  delete m_area;
  m_area = m_html;
  return m_html;
}

int CQtAboutDialogView::RunModal(IModalEvents& events) {
  m_events = &events;
  const int result = m_dialog ? m_dialog->Run() : kDialogCancel;
  m_events = nullptr;
  return result;
}

void CQtAboutDialogView::EndDialog(int result) {
  if (m_dialog) m_dialog->End(result);
}
