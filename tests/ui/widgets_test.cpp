// The editor's own widgets and Qt presenters on their own: the byte grid under keys and clicks,
// the meter that paints only itself, the skinned button's faces and commands, the number box
// with its logic, and the presenters' translations of menus, file filters, pages and timers.
#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include "editor/hex_edit2.h"
#include "platform/clipboard.h"
#include "platform/message_box.h"
#include "platform/popup_menu.h"
#include "platform/timer.h"
#include "tests/ui/ui_tests.h"
#include "tests/ui/user.h"
#include "ui/file_dialog_presenter.h"
#include "ui/hex_grid_widget.h"
#include "ui/html_view.h"
#include "ui/meter_widget.h"
#include "ui/skin.h"
#include "ui/skin_button.h"
#include "ui/text_box.h"

namespace {

std::vector<std::uint8_t> Bytes(std::initializer_list<int> values) {
  std::vector<std::uint8_t> bytes;
  for (int value : values) bytes.push_back(static_cast<std::uint8_t>(value));
  return bytes;
}

// `grid` over `bytes` in sixteen bare columns, as the dialogs set it up, shown in a widget.
std::unique_ptr<CHexGridWidget> ShowGrid(CHexGrid& grid, std::vector<std::uint8_t>& bytes) {
  grid.SetColumns(16);
  grid.SetShowAddress(false);
  grid.SetShowText(false);
  grid.SetData(&bytes);
  auto widget = std::make_unique<CHexGridWidget>(grid);
  widget->resize(420, 120);
  widget->show();
  return widget;
}

// Counts the paints a widget receives.
class PaintCounter final : public QObject {
 public:
  explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }
  int count = 0;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count;
    return false;
  }
};

class ButtonParent final : public IDspButtonParent {
 public:
  void OnButtonCommand(std::uint32_t command) override { commands.push_back(command); }
  void OnButtonMessage(std::uint32_t, std::int32_t) override {}
  void ClearRadioGroup(const CDspButton&) override {}
  std::vector<std::uint32_t> commands;
};

class Ticks final : public ITimerClient {
 public:
  void OnTimer(std::uint32_t id) override {
    ++count;
    if (stopOnTick) StopTimer(*this, id);
  }
  int count = 0;
  bool stopOnTick = false;
};

}  // namespace

class WidgetsTest final : public QObject {
  Q_OBJECT

 private slots:
  void hexGridOverwritesInsertsAndDeletesByKeys();
  void hexGridPlacesTheCaretWhereClicked();
  void meterPaintsOnlyItsOwnRectangle();
  void skinButtonShowsItsFacesAndADisabledOneStaysSilent();
  void numberBoxCapsAtAMidiDataByte();
  void popupMenusNestAndAnswerTheCommandChosen();
  void fileFiltersBecomeQtFiltersInBothCases();
  void htmlElementIsReplacedWholeAndAppLinksStay();
  void timersTickUntilStoppedEvenFromTheirOwnTick();
  void messageBoxAnswersTheButtonPressed();
};

void WidgetsTest::hexGridOverwritesInsertsAndDeletesByKeys() {
  std::vector<std::uint8_t> bytes = Bytes({0x00, 0x11});
  CHexGrid grid;
  const auto shown = ShowGrid(grid, bytes);
  CHexGridWidget& widget = *shown;
  widget.setFocus();
  QTest::keyClicks(&widget, QStringLiteral("a"));
  QVERIFY(bytes == Bytes({0xA0, 0x11}));
  QVERIFY2(widget.CaretOnSecondDigit(), "a digit moves the caret to the byte's second digit");
  QVERIFY(grid.Modified());
  QTest::keyClicks(&widget, QStringLiteral("b"));
  QVERIFY(bytes == Bytes({0xAB, 0x11}));
  QCOMPARE(widget.CaretByte(), std::size_t{1});
  QTest::keyClick(&widget, Qt::Key_Insert);
  QTest::keyClicks(&widget, QStringLiteral("2"));
  QVERIFY2(bytes == Bytes({0xAB, 0x20, 0x11}), "in insert mode a first digit makes a byte");
  QTest::keyClick(&widget, Qt::Key_Insert);
  QTest::keyClick(&widget, Qt::Key_End, Qt::ControlModifier);
  QTest::keyClicks(&widget, QStringLiteral("f7"));
  QVERIFY2(bytes == Bytes({0xAB, 0x20, 0x11, 0xF7}), "typing at the end appends");
  QTest::keyClick(&widget, Qt::Key_Home);
  QTest::keyClick(&widget, Qt::Key_Delete);
  QVERIFY(bytes == Bytes({0x20, 0x11, 0xF7}));
  QTest::keyClick(&widget, Qt::Key_End, Qt::ControlModifier);
  QTest::keyClick(&widget, Qt::Key_Backspace);
  QVERIFY(bytes == Bytes({0x20, 0x11}));
  QTest::keyClicks(&widget, QStringLiteral("xyz"));
  QVERIFY2(bytes == Bytes({0x20, 0x11}), "letters past F change nothing");
  for (int i = 0; i < 20; ++i) QTest::keyClicks(&widget, QStringLiteral("55"));
  QCOMPARE(bytes.size(), std::size_t{22});
  QCOMPARE(widget.DigitRect(16, false).top(),
           widget.DigitRect(0, false).top() + widget.DigitRect(0, false).height());
  user::SaveScreen(widget, QStringLiteral("hex-grid"));
}

void WidgetsTest::hexGridPlacesTheCaretWhereClicked() {
  std::vector<std::uint8_t> bytes(40, 0x00);
  CHexGrid grid;
  const auto shown = ShowGrid(grid, bytes);
  CHexGridWidget& widget = *shown;
  QTest::mouseClick(widget.viewport(), Qt::LeftButton, {}, widget.DigitRect(18, true).center());
  QCOMPARE(widget.CaretByte(), std::size_t{18});
  QVERIFY(widget.CaretOnSecondDigit());
  QTest::keyClicks(&widget, QStringLiteral("9"));
  QCOMPARE(bytes[18], std::uint8_t{0x09});
  QTest::mouseClick(
      widget.viewport(), Qt::LeftButton, {},
      widget.DigitRect(47, false).center() + QPoint(0, 2 * widget.DigitRect(0, false).height()));
  QCOMPARE(widget.CaretByte(), bytes.size());
}

void WidgetsTest::meterPaintsOnlyItsOwnRectangle() {
  QWidget page;
  page.resize(200, 60);
  CMeterWidget meter(SkinPicture(245), SkinPicture(248), &page);
  meter.move(20, 20);
  page.show();
  QVERIFY(QTest::qWaitForWindowExposed(&page));
  PaintCounter pagePaints(page);
  PaintCounter meterPaints(meter);
  for (int lit : {7, 14, 118, 200}) {
    meter.SetLit(lit);
    QTest::qWait(20);
  }
  QCOMPARE(meter.Lit(), 118);
  QVERIFY(meterPaints.count >= 1);
  QCOMPARE(pagePaints.count, 0);
  meter.SetLit(118);
  const int before = meterPaints.count;
  QTest::qWait(20);
  QCOMPARE(meterPaints.count, before);  // the same reading paints nothing
}

void WidgetsTest::skinButtonShowsItsFacesAndADisabledOneStaysSilent() {
  ButtonParent parent;
  QWidget window;
  window.resize(120, 60);
  CSkinButton button(1013, parent, &window);
  button.setGeometry(10, 10, 93, 27);
  button.State().SetFaces(238, 239, 240);
  window.show();
  QCOMPARE(button.State().Face(), 238u);
  QTest::mousePress(&button, Qt::LeftButton, {}, QPoint(40, 12));
  QCOMPARE(button.State().Face(), 239u);
  QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(40, 12));
  QCOMPARE(parent.commands, std::vector<std::uint32_t>{1013});
  button.SetEnabled(false);
  QTest::mouseClick(&button, Qt::LeftButton, {}, QPoint(40, 12));
  QCOMPARE(parent.commands.size(), std::size_t{1});
  QCOMPARE(button.State().Face(), 238u);
}

// The program dialog's bank boxes: the logic filters the keys, the box takes what it lets pass;
// the logic's own cases are tested with it.
void WidgetsTest::numberBoxCapsAtAMidiDataByte() {
  CTextBox box;
  box.show();
  CHexEdit2 logic(box);
  user::Type(box, QStringLiteral("0xFF"));
  QCOMPARE(box.text(), QStringLiteral("0x7f"));
}

void WidgetsTest::popupMenusNestAndAnswerTheCommandChosen() {
  CPopupMenu menu;
  menu.Append(1, L"First");
  auto bank = std::make_shared<CPopupMenu>();
  bank->Append(47101, L"Grand Piano");
  menu.AppendSubmenu(L"Bank 0", bank);
  menu.AppendSeparator();
  menu.Append(47100, L"Empty   ");
  user::OnNextMenu([](QMenu& shown) {
    QCOMPARE(shown.actions().size(), 4);
    user::SaveScreen(shown, QStringLiteral("menu-nested"));
    user::Choose(shown, {QStringLiteral("Bank 0"), QStringLiteral("Grand Piano")});
  });
  QCOMPARE(TrackPopupMenu(menu, 100, 100), 47101u);
  user::OnNextMenu([](QMenu& shown) { shown.close(); });
  QCOMPARE(TrackPopupMenu(menu, 100, 100), 0u);
}

void WidgetsTest::fileFiltersBecomeQtFiltersInBothCases() {
  QCOMPARE(QtNameFilters(L"Instrument Definition Files (*.INS)|*.INS||"),
           QStringLiteral("Instrument Definition Files (*.INS *.ins)"));
  QCOMPARE(QtNameFilters(L"SysEx MIDI File  (*.syx)|*.syx||"),
           QStringLiteral("SysEx MIDI File (*.syx *.SYX)"));
  QCOMPARE(QtNameFilters(L"A|*.a;*.b|B|*.c||"), QStringLiteral("A (*.a *.A *.b *.B);;B (*.c *.C)"));
}

void WidgetsTest::htmlElementIsReplacedWholeAndAppLinksStay() {
  const QString page = QStringLiteral(
      "<table><tr><td>Version:</td><td><span id=\"version\">te<span>m</span>p</span></td></tr>"
      "</table>");
  QCOMPARE(ReplaceHtmlElement(page, QStringLiteral("version"), QStringLiteral("1.2 build 3")),
           std::optional<QString>(
               QStringLiteral("<table><tr><td>Version:</td><td>1.2 build 3</td></tr></table>")));
  QCOMPARE(ReplaceHtmlElement(QStringLiteral("<b id=version>x</b>!"), QStringLiteral("version"),
                              QStringLiteral("<&>")),
           std::optional<QString>(QStringLiteral("&lt;&amp;&gt;!")));
  QVERIFY(!ReplaceHtmlElement(page, QStringLiteral("missing"), QString()));

  struct Events final : IHtmlViewEvents {
    void OnDocumentComplete() override { ++complete; }
    void OnAppCommand(const std::wstring& command) override { commands.push_back(command); }
    int complete = 0;
    std::vector<std::wstring> commands;
  } events;
  CQtHtmlView view;
  view.SetEvents(&events);
  view.LoadHtml("<p><a href=\"app:close\">Close</a></p>", L"/nowhere");
  QVERIFY(user::WaitFor([&] { return events.complete == 1; }));
  emit view.anchorClicked(QUrl(QStringLiteral("app:close")));
  QCOMPARE(events.commands, std::vector<std::wstring>{L"close"});
  QVERIFY(view.Source().contains(QLatin1String("app:close")));
}

void WidgetsTest::timersTickUntilStoppedEvenFromTheirOwnTick() {
  Ticks ticks;
  StartTimer(ticks, 7, 5);
  QVERIFY(user::WaitFor([&] { return ticks.count >= 3; }));
  ticks.stopOnTick = true;
  QVERIFY(user::WaitFor([&] { return ticks.count >= 4; }));
  const int stoppedAt = ticks.count;
  QTest::qWait(40);
  QCOMPARE(ticks.count, stoppedAt);
}

void WidgetsTest::messageBoxAnswersTheButtonPressed() {
  user::OnNextDialog([](QDialog& dialog) {
    auto* box = qobject_cast<QMessageBox*>(&dialog);
    user::SaveScreen(dialog, QStringLiteral("message-box"));
    if (box) user::Click(*box->button(QMessageBox::No));
  });
  QCOMPARE(ShowMessageBox(L"Do you want to save changes?", L"Tarn",
                          MB_YESNO_FLAG | MB_ICONQUESTION_FLAG),
           ID_NO_ANSWER);
}

TARN_UI_TEST(WidgetsTest)
#include "widgets_test.moc"
