// The property page and every dialog it opens, driven on screen as a user drives them: ports and
// channel from the arrow menus, each kind of event added and edited in its dialog, bytes typed
// into the grid, a row dragged, a .syx file imported, Send All heard at the port, the closed-loop
// test run to its end, the logo's About box. Each screen is saved as a picture and checked for
// controls outside their window or over each other.
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QCompleter>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTextBrowser>

#include "editor/closed_loop_dialog_view.h"
#include "editor/event_dialog_views.h"
#include "editor/hex_dialog_views.h"
#include "tests/ui/page_rig.h"
#include "tests/ui/ui_tests.h"
#include "tests/ui/user.h"
#include "ui/event_list_widget.h"
#include "ui/hex_grid_widget.h"
#include "ui/meter_widget.h"
#include "ui/skin_button.h"

namespace {

QString Text(QLabel* label) { return label ? label->text() : QStringLiteral("<no label>"); }

std::vector<std::uint8_t> Bytes(std::initializer_list<int> values) {
  std::vector<std::uint8_t> bytes;
  for (int value : values) bytes.push_back(static_cast<std::uint8_t>(value));
  return bytes;
}

std::vector<std::uint8_t> MessageBytes(const CStoredEvent& event) {
  std::vector<std::uint8_t> bytes;
  for (const ShortMessage& message : event.MessagesView())
    for (std::uint8_t byte : {message.Status(), message.Data1(), message.Data2()})
      bytes.push_back(byte);
  return bytes;
}

// Replaces the text of a dialog's box as a user does: select all, type.
void Retype(QDialog& dialog, int id, const QString& text) {
  QLineEdit* box = user::Find<QLineEdit>(dialog, id);
  if (!box) return;
  box->selectAll();
  user::Type(*box, text);
}

void PressButton(QDialog& dialog, int id) {
  if (QPushButton* button = user::Find<QPushButton>(dialog, id)) user::Click(*button);
}

// Looks at a dialog as it stands: a picture, and what is wrong with its layout.
void Look(QDialog& dialog, const QString& screen, QStringList& faults) {
  user::SaveScreen(dialog, screen);
  for (const QString& fault : user::LayoutFaults(dialog)) faults.append(screen + ": " + fault);
}

// An instrument definition file with one device whose bank 0 holds two patches.
QString WriteInstrumentFile(const QTemporaryDir& folder) {
  const QString path = folder.filePath(QStringLiteral("jv.ins"));
  QFile file(path);
  file.open(QIODevice::WriteOnly);
  file.write(
      ".Patch Names\n[JV Pianos]\n0=Grand Piano\n1=Bright Piano\n"
      ".Instrument Definitions\n[Roland JV]\nPatch[0]=JV Pianos\n");
  return path;
}

// Goes to the file's folder, types its name and presses Open or Save, as a user does.
void AnswerFileDialog(QDialog& dialog, const QString& path) {
  auto* files = qobject_cast<QFileDialog*>(&dialog);
  QLineEdit* name = files ? files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")) : nullptr;
  auto* buttons =
      files ? files->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox")) : nullptr;
  if (!name || !buttons) return dialog.reject();
  const QFileInfo file(path);
  files->setDirectory(file.absolutePath());
  name->clear();
  user::Type(*name, file.fileName());
  // The name box's completer offers what matches; its list would take the next click.
  if (QCompleter* completer = name->completer(); completer && completer->popup()->isVisible())
    QTest::keyClick(completer->popup(), Qt::Key_Escape);
  for (QAbstractButton* button : buttons->buttons())
    if (buttons->buttonRole(button) == QDialogButtonBox::AcceptRole) return user::Click(*button);
  dialog.reject();
}

}  // namespace

class PageTest final : public QObject {
  Q_OBJECT

 private slots:
  void opensOnItsSkinWithSendingDarkUntilAPortIsChosen();
  void picksAPortAndAChannelFromTheArrowMenus();
  void addsEveryKindOfEventAndEditsItInItsDialog();
  void editsThePrefixInItsGrid();
  void dragsARowToItsNewPlace();
  void importsASyxFileIntoAnEvent();
  void sendAllReachesThePortAndMovesTheMeters();
  void runsTheClosedLoopTestToFinished();
  void opensTheAboutBoxFromTheLogo();
};

void PageTest::opensOnItsSkinWithSendingDarkUntilAPortIsChosen() {
  PageRig rig({Named(L"Reset", NewEventKind::SystemExclusive)});
  CPageWidget& page = rig.Page();
  QCOMPARE(page.size(), QSize(kSkinWidth, kSkinHeight));
  QCOMPARE(Text(page.Static(kPortText)), QStringLiteral("none"));
  for (std::uint32_t id : {kSendButton, kSendAllButton, kTestButton})
    QVERIFY2(!page.Button(id)->isEnabled(), "no port: Send, Send All and Test are dark");
  QVERIFY(page.Button(kAddButton)->isEnabled());
  QVERIFY2(!page.Button(kSpareButton)->isVisible(), "the spare button is hidden");
  QCOMPARE(page.List().RowCount(), 1);
  QCOMPARE(page.List().topLevelItem(0)->text(3), QStringLiteral("System Exclusive"));
  user::SaveScreen(rig.frame, QStringLiteral("page"));
  const QStringList faults = user::LayoutFaults(page);
  QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
}

void PageTest::picksAPortAndAChannelFromTheArrowMenus() {
  PageRig rig;
  rig.ChooseFromButton(kPortButton, {QStringLiteral("Out B")}, QStringLiteral("menu-port"));
  QCOMPARE(Text(rig.Page().Static(kPortText)), QStringLiteral("Out B"));
  for (std::uint32_t id : {kSendButton, kSendAllButton, kTestButton})
    QVERIFY2(rig.Page().Button(id)->isEnabled(), "a port lights Send, Send All and Test");
  std::int32_t port = -1;
  rig.Filter().GetOutputPortIndex(&port);
  QCOMPARE(port, 1);

  rig.ChooseFromButton(kChannelButton, {QStringLiteral("16")}, QStringLiteral("menu-channel"));
  QCOMPARE(Text(rig.Page().Static(kChannelText)), QStringLiteral("16"));
  std::uint32_t channel = 0;
  rig.Filter().GetOutputRechannel(&channel);
  QCOMPARE(channel, 16u);
  rig.ChooseFromButton(kChannelButton, {QStringLiteral("Bypass")});
  QCOMPARE(Text(rig.Page().Static(kChannelText)), QStringLiteral("Bypass"));

  QCheckBox& sync = rig.Page().CheckBox();
  user::Click(sync);
  std::int32_t on = 0;
  rig.Filter().GetMIDISync(&on);
  QVERIFY2(on, "the check box turns MIDI sync on");
}

// The device's patches come from an imported .ins file, so that the program dialog's preset tree
// has a bank to offer.
void PageTest::addsEveryKindOfEventAndEditsItInItsDialog() {
  PageRig rig;
  QTemporaryDir folder;
  const QString ins = WriteInstrumentFile(folder);
  user::OnNextDialog([ins](QDialog& dialog) { AnswerFileDialog(dialog, ins); });
  rig.ChooseFromButton(kDeviceButton, {QStringLiteral("Import Patch Names...")},
                       QStringLiteral("menu-device"));
  QCOMPARE(Text(rig.Page().Static(kDeviceText)), QStringLiteral("Roland JV"));

  QStringList faults;
  // System Exclusive: F0 F7 to start; the caret on F7, insert mode, three bytes typed in.
  user::OnNextDialog([&faults](QDialog& dialog) {
    CHexGridWidget* grid = user::Find<CHexGridWidget>(dialog, hex_edit_dialog::kGrid);
    if (!grid) return dialog.reject();
    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(grid, Qt::Key_Right);
    QTest::keyClick(grid, Qt::Key_Right);
    QTest::keyClick(grid, Qt::Key_Insert);
    QTest::keyClicks(grid, QStringLiteral("41107f"));
    Retype(dialog, hex_edit_dialog::kNameBox, QStringLiteral("Hello"));
    Look(dialog, QStringLiteral("dialog-sysex"), faults);
    PressButton(dialog, hex_edit_dialog::kOk);
  });
  rig.ChooseFromButton(kAddButton, {QStringLiteral("System Exclusive")},
                       QStringLiteral("menu-add"));

  // Wait: 250 ms.
  user::OnNextDialog([&faults](QDialog& dialog) {
    Retype(dialog, wait_dialog::kMillisecondsBox, QStringLiteral("250"));
    Look(dialog, QStringLiteral("dialog-wait"), faults);
    PressButton(dialog, kDialogOk);
  });
  rig.ChooseFromButton(kAddButton, {QStringLiteral("Wait")});

  // Bank/Program Change: the preset tree picks "Bright Piano" of bank 0; channel 3.
  user::OnNextDialog([&faults](QDialog& dialog) {
    user::OnNextMenu([&faults](QMenu& menu) {
      user::SaveScreen(menu, QStringLiteral("menu-presets"));
      user::Choose(menu, {QStringLiteral("Bank 0"), QStringLiteral("Bright Piano")});
    });
    PressButton(dialog, program_dialog::kPresetButton);
    Retype(dialog, program_dialog::kChannelBox, QStringLiteral("3"));
    Look(dialog, QStringLiteral("dialog-program"), faults);
    PressButton(dialog, kDialogOk);
  });
  rig.ChooseFromButton(kAddButton, {QStringLiteral("Bank/Program Change")});

  // Controller: channel 2, controller 7, value 100.
  user::OnNextDialog([&faults](QDialog& dialog) {
    Retype(dialog, controller_dialog::kChannelBox, QStringLiteral("2"));
    Retype(dialog, controller_dialog::kControllerBox, QStringLiteral("7"));
    Retype(dialog, controller_dialog::kValueBox, QStringLiteral("100"));
    Look(dialog, QStringLiteral("dialog-controller"), faults);
    PressButton(dialog, kDialogOk);
  });
  rig.ChooseFromButton(kAddButton, {QStringLiteral("Controller")});

  // MIDI: the grid opens on 00; overwriting it and typing on appends.
  user::OnNextDialog([](QDialog& dialog) {
    CHexGridWidget* grid = user::Find<CHexGridWidget>(dialog, hex_edit_dialog::kGrid);
    if (!grid) return dialog.reject();
    grid->setFocus();
    QTest::keyClicks(grid, QStringLiteral("903C64"));
    PressButton(dialog, hex_edit_dialog::kOk);
  });
  rig.ChooseFromButton(kAddButton, {QStringLiteral("MIDI")});

  QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
  std::vector<CStoredEvent> events = rig.Events();
  QCOMPARE(events.size(), std::size_t{5});
  QCOMPARE(events[0].GetName(), std::wstring(L"Hello"));
  QVERIFY(events[0].GetSysex() == Bytes({0xF0, 0x41, 0x10, 0x7F, 0xF7}));
  QCOMPARE(events[1].GetWait(), 250u);
  QVERIFY(MessageBytes(events[2]) == Bytes({0xB2, 0x00, 0x00, 0xB2, 0x20, 0x00, 0xC2, 0x01, 0x00}));
  QVERIFY(MessageBytes(events[3]) == Bytes({0xB1, 0x07, 0x64}));
  QVERIFY(MessageBytes(events[4]) == Bytes({0x90, 0x3C, 0x64}));
  CEventListWidget& list = rig.Page().List();
  QCOMPARE(list.RowCount(), 5);
  QCOMPARE(list.topLevelItem(3)->text(4), QStringLiteral("Ch 2 CC 7 = 100"));
  QCOMPARE(list.topLevelItem(1)->text(4), QStringLiteral("250 ms"));
  user::SaveScreen(rig.frame, QStringLiteral("page-with-events"));
}

void PageTest::editsThePrefixInItsGrid() {
  PageRig rig;
  QStringList faults;
  user::OnNextDialog([&faults](QDialog& dialog) {
    CHexGridWidget* grid = user::Find<CHexGridWidget>(dialog, prefix_editor::kGrid);
    if (!grid) return dialog.reject();
    grid->setFocus();
    QTest::keyClicks(grid, QStringLiteral("f04110"));
    QTest::keyClick(grid, Qt::Key_Backspace);  // the last byte goes again
    Look(dialog, QStringLiteral("dialog-prefix"), faults);
    PressButton(dialog, prefix_editor::kOk);
  });
  rig.Press(kPrefixButton);
  QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
  QCOMPARE(Text(rig.Page().Static(kPrefixText)), QStringLiteral("F0 41 "));
  std::uint32_t length = 0;
  rig.Filter().GetSysexPrefixLength(&length);
  QCOMPARE(length, 2u);
}

// Row 0 dropped on row 2 of A B C D lands behind it: B C A D.
void PageTest::dragsARowToItsNewPlace() {
  PageRig rig({Named(L"A", NewEventKind::ControllerChange), Named(L"B", NewEventKind::Wait),
               Named(L"C", NewEventKind::MidiData), Named(L"D", NewEventKind::SystemExclusive)});
  CEventListWidget& list = rig.Page().List();
  list.scrollToTop();
  QWidget* viewport = list.viewport();
  const QPoint from = list.visualItemRect(list.topLevelItem(0)).center();
  QTest::mousePress(viewport, Qt::LeftButton, {}, from);
  QTest::mouseMove(viewport, from + QPoint(0, 3));
  QTest::mouseMove(viewport, from + QPoint(QApplication::startDragDistance() + 2, 3));
  QVERIFY2(list.IsDragging(), "moving past the drag distance picks the row up");
  list.scrollToItem(list.topLevelItem(2));
  const QPoint to = list.visualItemRect(list.topLevelItem(2)).center();
  QTest::mouseMove(viewport, to);
  QVERIFY2(list.IsDropHighlighted(2), "the row under the cursor is marked as the target");
  user::SaveScreen(rig.frame, QStringLiteral("page-dragging"));
  QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
  QVERIFY(!list.IsDragging());
  QStringList order;
  for (CStoredEvent& event : rig.Events()) order.append(QString::fromStdWString(event.GetName()));
  QCOMPARE(order, (QStringList{"B", "C", "A", "D"}));
  QCOMPARE(list.topLevelItem(2)->text(1), QStringLiteral("A"));
  QCOMPARE(list.SelectedRows(), std::vector<int>{2});
}

void PageTest::importsASyxFileIntoAnEvent() {
  PageRig rig({Named(L"Patch dump", NewEventKind::SystemExclusive)});
  QTemporaryDir folder;
  const QString syx = folder.filePath(QStringLiteral("dump.syx"));
  {
    QFile file(syx);
    file.open(QIODevice::WriteOnly);
    file.write(QByteArray::fromHex("F0431000417F00F7"));
  }
  QStringList faults;
  user::OnNextDialog([&faults, syx](QDialog& dialog) {
    user::OnNextDialog([syx](QDialog& files) {
      user::SaveScreen(files, QStringLiteral("dialog-import"));
      AnswerFileDialog(files, syx);
    });
    PressButton(dialog, hex_edit_dialog::kImport);
    Look(dialog, QStringLiteral("dialog-sysex-imported"), faults);
    PressButton(dialog, hex_edit_dialog::kOk);
  });
  CEventListWidget& list = rig.Page().List();
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {},
                     list.visualItemRect(list.topLevelItem(0)).center());
  QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
  QVERIFY(rig.Events().at(0).GetSysex() == Bytes({0xF0, 0x43, 0x10, 0x00, 0x41, 0x7F, 0x00, 0xF7}));
  QCOMPARE(list.topLevelItem(0)->text(4), QStringLiteral("8 bytes"));
}

void PageTest::sendAllReachesThePortAndMovesTheMeters() {
  CStoredEvent off = Named(L"Off", NewEventKind::ControllerChange);
  off.SetEnabled(false);
  PageRig rig({Named(L"Volume", NewEventKind::ControllerChange), off,
               Named(L"Hello", NewEventKind::SystemExclusive)});
  rig.ChooseFromButton(kPortButton, {QStringLiteral("Out A")});
  const std::size_t before = rig.host.ports.SendCount();
  rig.Press(kSendAllButton);
  QVERIFY(rig.host.ports.WaitForSends(before + 2, 5000));
  const auto sends = rig.host.ports.Sends();
  QCOMPARE(sends.size(), before + 2);
  QCOMPARE(sends[before].message, 0x0000B0u);
  QVERIFY(sends[before + 1].sysex);
  QVERIFY(sends[before + 1].bytes == Bytes({0xF0, 0xF7}));
  QVERIFY2(user::WaitFor([&] { return rig.Page().Meter(PageMeter::Output).Lit() > 0; }),
           "the output meter lights as the events go out");
  user::SaveScreen(rig.frame, QStringLiteral("page-sending"));
  QVERIFY2(user::WaitFor([&] { return rig.Page().Meter(PageMeter::Output).Lit() == 0; }),
           "and falls back to dark");
}

// Stopped while sending, with every event back within the drain, the test ends on "Finished".
void PageTest::runsTheClosedLoopTestToFinished() {
  PageRig rig;
  rig.ChooseFromButton(kPortButton, {QStringLiteral("Out A")});
  rig.host.ports.LoopBackTo({&rig.host.instance.filter()});
  QStringList faults;
  QString status;
  std::uint32_t sent = 0;
  user::OnNextDialog([&](QDialog& dialog) {
    QLabel* line = user::Find<QLabel>(dialog, kClosedLoopStatus);
    QLineEdit* sentBox = user::Find<QLineEdit>(dialog, kClosedLoopSent);
    PressButton(dialog, kClosedLoopStart);
    user::WaitFor([&] { return sentBox->text().toUInt() >= 100; }, 10000);
    user::SaveScreen(dialog, QStringLiteral("dialog-closed-loop-testing"));
    PressButton(dialog, kClosedLoopStop);
    user::WaitFor([&] { return line->text() == QLatin1String("Finished"); }, 5000);
    status = line->text();
    sent = sentBox->text().toUInt();
    Look(dialog, QStringLiteral("dialog-closed-loop"), faults);
    PressButton(dialog, kClosedLoopClose);
  });
  rig.Press(kTestButton);
  QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
  QCOMPARE(status, QStringLiteral("Finished"));
  QVERIFY(sent >= 100);
}

void PageTest::opensTheAboutBoxFromTheLogo() {
  PageRig rig;
  QString shown;
  QStringList faults;
  user::OnNextDialog([&](QDialog& dialog) {
    auto* html = dialog.findChild<QTextBrowser*>();
    user::WaitFor([&] { return html && html->toPlainText().contains(QLatin1String("build")); });
    shown = html ? html->toPlainText() : QString();
    Look(dialog, QStringLiteral("dialog-about"), faults);
    PressButton(dialog, kDialogOk);
  });
  QTest::mouseClick(&rig.Page(), Qt::LeftButton, {}, QPoint(600, 145));
  QVERIFY2(faults.isEmpty(), qPrintable(faults.join(QLatin1Char('\n'))));
  QVERIFY2(shown.contains(QLatin1String("Version:")), qPrintable(shown));
  QVERIFY2(shown.contains(QLatin1String(TARN_ABOUT_VERSION)), qPrintable(shown));
  QVERIFY2(!shown.contains(QLatin1String("temp")), "the version replaced its placeholder");
}

TARN_UI_TEST(PageTest)
#include "page_test.moc"
