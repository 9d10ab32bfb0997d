// tarn-host's edit window over a real rack, as a user works in it: the module is registered in
// a private registry, a rack of two instances is written, and the window shows each instance's
// page, drawn by the module inside the window. Choosing a port and pressing Send All puts the
// bytes on the monitor and lights the output meter; File > Save writes the rack, and closing
// the window saves what changed since.
#include "host/window/edit_window.h"

#include <QtGui/QAction>
#include <QtGui/QImage>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <filesystem>

#include "host/cli/commands.h"
#include "host/plugin/synth_catalog.h"
#include "host/window/edit_session.h"
#include "platform/codepage.h"
#include "tests/support/temp_folder.h"
#include "tests/ui/user.h"

namespace {

// The page's controls by id, as the module names them.
constexpr int kPortButton = 1022, kAddButton = 1011, kSendAllButton = 1013, kPortText = 1001;
constexpr int kChannelButton = 1023;
constexpr int kOkButton = 1, kControllerValueBox = 1032;

QWidget* Control(CEditWindow& window, int id) {
  return window.PageHost().findChild<QWidget*>(QString::number(id));
}

void Click(QWidget* widget) {
  if (widget) user::Click(*widget);
}

// Chooses `text` from the next popup menu.
void OnNextMenuChoose(const QString& text) {
  user::OnNextMenu([text](QMenu& menu) { user::Choose(menu, {text}); });
}

// Whether the output meter shows any lit (green) segment.
bool MeterLit(CEditWindow& window) {
  QWidget* meter = window.PageHost().findChild<QWidget*>(QStringLiteral("meter-out"));
  if (!meter) return false;
  const QImage strip = meter->grab().toImage();
  return strip.pixelColor(2, 5).green() > 150;
}

std::uint32_t EventCount(LiveInstance& instance) {
  std::uint32_t count = 0;
  instance.myFilter->GetEventCount(&count);
  return count;
}

}  // namespace

class EditWindowTest final : public QObject {
  Q_OBJECT

 private slots:
  void init();
  void cleanup();
  void listsTheInstancesAndShowsTheChosenOnesPage();
  void sendAllReachesThePortAndClosingSavesTheChange();
  void aRackWithoutChangesIsLeftAsItWas();

 private:
  // The rack's session, its progress messages dropped; `error` says why when there is none.
  std::unique_ptr<CEditSession> OpenRack(std::string& error) {
    return CEditSession::Open(m_rack, [](const std::string&) {}, error);
  }

  std::unique_ptr<TempFolder> m_folder;
  std::filesystem::path m_rack;
};

// A registry and a module of the test's own, and a rack of "Lead" and "Pads".
void EditWindowTest::init() {
  UseRackLook(*qApp);
  m_folder = std::make_unique<TempFolder>();
  const std::filesystem::path module = m_folder->Path() / "libtarn.so";
  std::filesystem::copy_file(TARN_MODULE_FILE, module);
  SetHostRegistryRoot((m_folder->Path() / "registry").wstring());
  QCOMPARE(RegisterCommand({module, false}), 0);
  m_rack = m_folder->Path() / "rack.json";
  QCOMPARE(NewCommand({m_rack, 2, {"Lead", "Pads"}, {}}), 0);
}

void EditWindowTest::cleanup() { m_folder.reset(); }

void EditWindowTest::listsTheInstancesAndShowsTheChosenOnesPage() {
  std::string error;
  auto session = OpenRack(error);
  QVERIFY2(session, error.c_str());
  CEditWindow window(*session);
  window.show();
  QVERIFY(window.ShowInstance(0));
  QCOMPARE(window.InstanceList().count(), 2);
  QCOMPARE(window.InstanceList().item(1)->text(), QStringLiteral("2  Pads"));
  QVERIFY2(window.PageHost().findChild<QWidget*>(QStringLiteral("tarn-page")),
           "the module's page stands inside the window");
  auto* port = qobject_cast<QLabel*>(Control(window, kPortText));
  QVERIFY(port);
  QCOMPARE(port->text(), QStringLiteral("none"));
  window.InstanceList().setCurrentRow(1);
  QVERIFY(window.Page());
  QCOMPARE(window.PageHost().findChildren<QWidget*>(QStringLiteral("tarn-page")).size(), 1);
  user::SaveScreen(window, QStringLiteral("host-edit-window"));
}

void EditWindowTest::sendAllReachesThePortAndClosingSavesTheChange() {
  std::string error;
  auto session = OpenRack(error);
  QVERIFY2(session, error.c_str());
  {
    CEditWindow window(*session);
    window.show();
    QVERIFY(window.ShowInstance(0));
    OnNextMenuChoose(QStringLiteral("Virtual Out 1"));
    Click(Control(window, kPortButton));
    OnNextMenuChoose(QStringLiteral("Controller"));
    user::OnNextDialog([](QDialog& dialog) {
      if (auto* value = dialog.findChild<QLineEdit*>(QString::number(kControllerValueBox))) {
        value->selectAll();
        QTest::keyClicks(value, QStringLiteral("100"));
      }
      Click(dialog.findChild<QPushButton*>(QString::number(kOkButton)));
    });
    Click(Control(window, kAddButton));
    QCOMPARE(EventCount(session->Instances()[0]), 1u);
    Click(Control(window, kSendAllButton));
    QVERIFY2(
        user::WaitFor([&] {
          window.PollMonitor();
          return window.Monitor().toPlainText().contains(QLatin1String("Virtual Out 1  B0 00 64"));
        }),
        qPrintable(window.Monitor().toPlainText()));
    QVERIFY2(user::WaitFor([&] { return MeterLit(window); }), "the output meter lights");
    user::SaveScreen(window, QStringLiteral("host-edit-window-sending"));
    QVERIFY(session->Changed());
    for (QAction* action : window.findChildren<QAction*>())
      if (action->text() == QLatin1String("&Save")) action->trigger();
    QVERIFY2(!session->Changed(), "File > Save wrote the rack");
    OnNextMenuChoose(QStringLiteral("16"));
    Click(Control(window, kChannelButton));
    QVERIFY(session->Changed());
    window.close();
  }
  QVERIFY2(!session->Changed(), "closing saved the rack once more");
  session.reset();
  auto again = OpenRack(error);
  QVERIFY2(again, error.c_str());
  QCOMPARE(EventCount(again->Instances()[0]), 1u);
  std::int32_t index = -1;
  again->Instances()[0].myFilter->GetOutputPortIndex(&index);
  QCOMPARE(index, 0);
  std::uint32_t channel = 0;
  again->Instances()[0].myFilter->GetOutputRechannel(&channel);
  QCOMPARE(channel, 16u);
}

void EditWindowTest::aRackWithoutChangesIsLeftAsItWas() {
  const auto written = std::filesystem::last_write_time(m_rack);
  std::string error;
  auto session = OpenRack(error);
  QVERIFY2(session, error.c_str());
  {
    CEditWindow window(*session);
    window.show();
    QVERIFY(window.ShowInstance(1));
    window.close();
  }
  QCOMPARE(std::filesystem::last_write_time(m_rack), written);
}

QTEST_MAIN(EditWindowTest)
#include "edit_window_test.moc"
