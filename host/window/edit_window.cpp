#include "host/window/edit_window.h"

#include <QtCore/QTimer>
#include <QtGui/QCloseEvent>
#include <QtGui/QKeySequence>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyleFactory>
#include <QtWidgets/QVBoxLayout>

#include "platform/codepage.h"

namespace {

// The monitor is read this often, and keeps this many lines.
constexpr int kPollMs = 50;
constexpr int kMonitorLines = 500;
// A page's size until it tells its own: the skin's.
constexpr int kPageWidth = 657, kPageHeight = 336;

QString Q(const std::string& text) { return QString::fromLocal8Bit(text.c_str()); }

}  // namespace

// The host's own look: the dark of the page's panel, so that the page sits in it as in a rack.
void UseRackLook(QApplication& application) {
  application.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QPalette palette;
  const QColor panel(0x2B, 0x31, 0x38), light(0xDF, 0xFE, 0xFF), base(0x12, 0x1B, 0x22);
  palette.setColor(QPalette::Window, panel);
  palette.setColor(QPalette::WindowText, light);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, panel);
  palette.setColor(QPalette::Text, light);
  palette.setColor(QPalette::Button, QColor(0x3B, 0x42, 0x4A));
  palette.setColor(QPalette::ButtonText, light);
  palette.setColor(QPalette::Highlight, light);
  palette.setColor(QPalette::HighlightedText, Qt::black);
  palette.setColor(QPalette::ToolTipBase, base);
  palette.setColor(QPalette::ToolTipText, light);
  palette.setColor(QPalette::PlaceholderText, QColor(0x8F, 0xA6, 0xAE));
  palette.setColor(QPalette::Disabled, QPalette::Text, QColor(0x6C, 0x7A, 0x80));
  palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x6C, 0x7A, 0x80));
  palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x6C, 0x7A, 0x80));
  application.setPalette(palette);
}

CEditWindow::CEditWindow(CEditSession& session) : m_session(session), m_site(new CPageSite) {
  setWindowTitle(QStringLiteral("Tarn rack - %1").arg(Q(session.File().filename().string())));
  auto* central = new QWidget(this);
  auto* row = new QHBoxLayout(central);
  m_instances = new QListWidget(central);
  m_instances->setObjectName(QStringLiteral("instances"));
  m_instances->setFixedWidth(190);
  for (const LiveInstance& instance : session.Instances())
    m_instances->addItem(QStringLiteral("%1  %2").arg(instance.number).arg(Q(instance.entry.name)));
  row->addWidget(m_instances);

  auto* column = new QVBoxLayout;
  m_pageHost = new QWidget(central);
  m_pageHost->setObjectName(QStringLiteral("page"));
  m_pageHost->setFixedSize(kPageWidth, kPageHeight);
  column->addWidget(m_pageHost);
  column->addWidget(new QLabel(QStringLiteral("MIDI at the ports"), central));
  m_monitor = new QPlainTextEdit(central);
  m_monitor->setObjectName(QStringLiteral("monitor"));
  m_monitor->setReadOnly(true);
  m_monitor->setMaximumBlockCount(kMonitorLines);
  m_monitor->setFont(QFont(QStringLiteral("DejaVu Sans Mono"), 9));
  m_monitor->setMinimumHeight(120);
  column->addWidget(m_monitor, 1);
  row->addLayout(column, 1);
  setCentralWidget(central);
  BuildMenus();

  connect(m_instances, &QListWidget::currentRowChanged, this, [this](int r) { ShowInstance(r); });
  m_poll = new QTimer(this);
  connect(m_poll, &QTimer::timeout, this, &CEditWindow::PollMonitor);
  m_poll->start(kPollMs);
}

CEditWindow::~CEditWindow() { ClosePage(); }

void CEditWindow::BuildMenus() {
  QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
  file->addAction(QStringLiteral("&Save"), QKeySequence::Save, this, [this] { SaveRack(); });
  file->addSeparator();
  file->addAction(QStringLiteral("&Close"), QKeySequence::Close, this, [this] { close(); });
}

void CEditWindow::ClosePage() {
  if (!m_page) return;
  m_page->Show(SW_HIDE);
  m_page->Deactivate();
  m_page->SetObjects(0, nullptr);
  m_page->SetPageSite(nullptr);
  m_page.Reset();
}

bool CEditWindow::ShowInstance(int row) {
  ClosePage();
  auto& instances = m_session.Instances();
  if (row < 0 || row >= static_cast<int>(instances.size())) return false;
  LiveInstance& instance = instances[static_cast<std::size_t>(row)];
  std::string error;
  ComPtr<IPropertyPage> page = m_session.CreatePage(instance, error);
  if (!page) {
    statusBar()->showMessage(Q(error));
    return false;
  }
  IUnknown* objects[] = {instance.object.Get()};
  PROPPAGEINFO info{sizeof(PROPPAGEINFO), nullptr, {kPageWidth, kPageHeight}, nullptr, nullptr, 0};
  page->SetPageSite(m_site.Get());
  page->SetObjects(1, objects);
  if (SUCCEEDED(page->GetPageInfo(&info))) {
    CoTaskMemFree(info.pszTitle);
    CoTaskMemFree(info.pszDocString);
    CoTaskMemFree(info.pszHelpFile);
  }
  m_pageHost->setFixedSize(info.size.cx, info.size.cy);
  const RECT rect{0, 0, info.size.cx, info.size.cy};
  const HRESULT hr = page->Activate(static_cast<QWidget*>(m_pageHost), &rect, 0);
  if (FAILED(hr)) {
    page->SetObjects(0, nullptr);
    page->SetPageSite(nullptr);
    statusBar()->showMessage(QStringLiteral("The page of \"%1\" did not open (0x%2)")
                                 .arg(Q(instance.entry.name))
                                 .arg(static_cast<std::uint32_t>(hr), 8, 16, QLatin1Char('0')));
    return false;
  }
  page->Show(SW_SHOW);
  m_page = std::move(page);
  if (m_instances->currentRow() != row) {
    const QSignalBlocker quiet(m_instances);
    m_instances->setCurrentRow(row);
  }
  statusBar()->showMessage(QStringLiteral("Editing \"%1\"").arg(Q(instance.entry.name)));
  return true;
}

bool CEditWindow::SaveRack() {
  std::string error;
  if (!m_session.Save(error)) {
    QMessageBox::warning(this, windowTitle(), Q(error));
    return false;
  }
  statusBar()->showMessage(QStringLiteral("Saved %1").arg(Q(m_session.File().string())));
  return true;
}

void CEditWindow::PollMonitor() {
  for (const std::string& line : m_session.TakeMonitorLines()) m_monitor->appendPlainText(Q(line));
}

// The page goes first, so that nothing is edited after the rack is saved.
void CEditWindow::closeEvent(QCloseEvent* event) {
  ClosePage();
  if (m_session.Changed() && SaveRack()) std::printf("saved %s\n", m_session.File().c_str());
  event->accept();
}
