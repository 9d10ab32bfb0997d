// The event list over a real instance: adding the five kinds, which dialog an edit opens,
// removing, the check box, drag and drop; and the hex editor's bytes made into an event again.
#include <gtest/gtest.h>

#include "documents/stored_event.h"
#include "editor/event_bytes.h"
#include "tests/editor/page_rig.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

CStoredEvent FromBytes(const Bytes& bytes) {
  CStoredEvent event;
  BytesToEvent(bytes, event);
  return event;
}

// --- bytes to event ---------------------------------------------------------------------------

TEST(BytesToEvent, ShortMessagesWithAndWithoutTheirLastByte) {
  const CStoredEvent notes = FromBytes({0x90, 0x3C, 0x64, 0x80, 0x3C, 0x00});
  EXPECT_FALSE(notes.IsSysex());
  EXPECT_EQ(notes.GetTypeText(), L"MIDI Data");
  EXPECT_EQ(notes.GetInfoText(), L"2 message(s)");
  const CStoredEvent program = FromBytes({0xC0, 0x05});
  ASSERT_EQ(program.MessagesView().size(), 1u);
  EXPECT_EQ(program.MessagesView()[0], ShortMessage::FromBytes(0xC0, 5, 0));
  EXPECT_EQ(program.GetTypeText(), L"Program Change");
  EXPECT_EQ(program.GetInfoText(), L"Ch 1 Prg 5");
}

TEST(BytesToEvent, BytesThatFitNothingVanish) {
  const CStoredEvent noStatus = FromBytes({0x3C, 0x64});
  EXPECT_TRUE(noStatus.IsEmpty());
  EXPECT_EQ(noStatus.GetTypeText(), L"Undefined");
  EXPECT_EQ(noStatus.GetInfoText(), L"No Data");
  const CStoredEvent surplus = FromBytes({0x90, 1, 2, 3, 4, 0xF8, 0xFE});
  ASSERT_EQ(surplus.MessagesView().size(), 1u);
  EXPECT_EQ(surplus.MessagesView()[0], ShortMessage::FromBytes(0x90, 1, 2));
}

// An open block is closed for the user, a status inside one is lost, everything after the
// first F0 joins one block, and a block wins over the messages already there.
TEST(BytesToEvent, SysexIsClosedJoinedAndWinsOverMessages) {
  EXPECT_EQ(FromBytes({0xF0, 0x01, 0x02}).GetSysex(), (Bytes{0xF0, 0x01, 0x02, 0xF7}));
  EXPECT_EQ(FromBytes({0xF0, 0x7E, 0x90, 0x01, 0xF7}).GetSysex(), (Bytes{0xF0, 0x7E, 0x01, 0xF7}));
  EXPECT_EQ(FromBytes({0xF0, 0x01, 0xF7, 0x55, 0xF0, 0x02, 0xF7}).GetSysex(),
            (Bytes{0xF0, 0x01, 0xF7, 0x55, 0xF0, 0x02, 0xF7}));
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  BytesToEvent({0x90, 0x3C, 0x64, 0xF0, 0x01, 0xF7}, event);
  EXPECT_TRUE(event.IsSysex());
  EXPECT_EQ(event.GetSysex(), (Bytes{0xF0, 0x01, 0xF7}));
  EXPECT_EQ(event.MessagesView().size(), 1u) << "the old messages stay but lose to the sysex";
}

TEST(BytesToEvent, EventsOpenWithTheirBytesAndComeBackTheSame) {
  CStoredEvent empty;
  EXPECT_EQ(EventToBytes(empty), Bytes{0x00});
  BytesToEvent(EventToBytes(empty), empty);
  EXPECT_TRUE(empty.IsEmpty()) << "00 is a data byte without a status";

  CStoredEvent note;
  note.SetMessages({ShortMessage::FromBytes(0x90, 60, 100)});
  EXPECT_EQ(EventToBytes(note), (Bytes{0x90, 60, 100}));

  CStoredEvent program;
  program.SetMessages({ShortMessage::FromBytes(0xC3, 7, 0)});
  const Bytes bytes = EventToBytes(program);
  EXPECT_EQ(bytes, (Bytes{0xC3, 7, 0})) << "three bytes, also for a two-byte message";
  CStoredEvent back = program;
  BytesToEvent(bytes, back);
  EXPECT_EQ(back, program);

  CStoredEvent sysex = CStoredEvent::MakeNew(NewEventKind::SystemExclusive);
  EXPECT_EQ(EventToBytes(sysex), (Bytes{0xF0, 0xF7}));
}

// --- the list on the page ----------------------------------------------------------------------

CStoredEvent Named(const wchar_t* name, bool enabled = true) {
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  event.SetName(name);
  event.SetEnabled(enabled);
  return event;
}


std::vector<std::wstring> RowNames(const PageViewRecorder& view) {
  std::vector<std::wstring> names;
  for (const auto& row : view.Rows()) names.push_back(row.texts.name);
  return names;
}

CStoredEvent& EventAt(IMyFilter& filter, std::uint32_t index) {
  CStoredEvent* event = nullptr;
  filter.GetEvent(index, &event);
  return *event;
}

bool Enabled(IMyFilter& filter, std::uint32_t index) { return EventAt(filter, index).IsEnabled(); }

std::vector<std::wstring> EventNames(IMyFilter& filter) {
  std::uint32_t count = 0;
  filter.GetEventCount(&count);
  std::vector<std::wstring> names;
  for (std::uint32_t i = 0; i < count; ++i) names.push_back(EventAt(filter, i).GetName());
  return names;
}

// The dialogs have no drawing here, so each ends at once with Cancel; which one was asked for
// shows which dialog an edit chose.
struct DialogsAsked {
  std::size_t hex, program, controller, wait;
  friend bool operator==(const DialogsAsked&, const DialogsAsked&) = default;
};
DialogsAsked Asked(const PageRig& rig) {
  return {rig.views.hexEdit.parents.size(), rig.views.program.parents.size(),
          rig.views.controller.parents.size(), rig.views.wait.parents.size()};
}

// A page whose list holds the events named, A B C D unless given.
class EventList : public ::testing::Test {
 protected:
  void Open(std::vector<CStoredEvent> events) {
    rig = std::make_unique<PageRig>(false);
    for (const auto& event : events) rig->AddEvent(event);
    rig->Activate();
  }
  void OpenABCD() { Open({Named(L"A"), Named(L"B"), Named(L"C"), Named(L"D")}); }
  PageViewRecorder& view() { return rig->view(); }
  IMyFilter& filter() { return rig->filter(); }

  std::unique_ptr<PageRig> rig;
};

TEST_F(EventList, AddPutsEachKindAtTheEndWithItsDefaultsAndOpensItsDialog) {
  Open({Named(L"First")});
  view().Select({0});
  struct Case {
    std::uint32_t command;
    const wchar_t* name;
    const wchar_t* info;
    DialogsAsked asked;
  };
  const Case cases[] = {
      {47003, L"Controller Change", L"Ch 1 CC 0 = 0", {0, 0, 1, 0}},
      {47004, L"MIDI Data", L"No Data", {1, 0, 1, 0}},
      {47002, L"Bank/Program Change", L"Ch 1 Bnk=0 Prg=0", {1, 1, 1, 0}},
      {47000, L"System Exclusive", L"2 bytes", {2, 1, 1, 0}},
      {47001, L"Wait", L"1000 ms", {2, 1, 1, 1}},
  };
  int rows = 1;
  for (const Case& c : cases) {
    rig->menus.AnswerNext(c.command);
    view().Click(kAddButton);
    ++rows;
    ASSERT_EQ(view().RowCount(), rows);
    EXPECT_EQ(view().Rows().back().texts.name, c.name);
    EXPECT_EQ(view().Rows().back().texts.info, c.info);
    EXPECT_TRUE(view().Rows().back().checked);
    EXPECT_EQ(Asked(*rig), c.asked) << c.name;
  }
  EXPECT_EQ(EventNames(filter()).back(), L"Wait");
  EXPECT_EQ(view().SelectedRows(), std::vector<int>{0}) << "the selection does not move";
  EXPECT_EQ(rig->views.hexEdit.parents[0], view().Window()) << "dialogs open over the page";
  const CPopupMenu& menu = *view().Menu(kAddButton);
  EXPECT_EQ(menu.TextAt(0), L"Controller");
  EXPECT_EQ(menu.TextAt(4), L"Wait");
  rig->menus.AnswerNext(47005);
  view().Click(kAddButton);
  EXPECT_EQ(view().RowCount(), rows) << "an id outside the five adds nothing";
}

TEST_F(EventList, EditChoosesTheDialogByTheEventsShapeInOrder) {
  CStoredEvent pause = CStoredEvent::MakeNew(NewEventKind::Wait);
  CStoredEvent looseBank;  // of the type, but its controllers are not 0 and 32
  looseBank.SetMessages({ShortMessage::FromBytes(0xB0, 7, 1), ShortMessage::FromBytes(0xB0, 10, 2),
                         ShortMessage::FromBytes(0xC0, 3, 0)});
  CStoredEvent note;
  note.SetMessages({ShortMessage::FromBytes(0x90, 60, 100)});
  Open({pause, looseBank, Named(L"Control"), note, CStoredEvent()});
  const DialogsAsked expected[] = {
      {0, 0, 0, 1}, {0, 0, 0, 1}, {0, 0, 1, 1}, {1, 0, 1, 1}, {2, 0, 1, 1}};
  for (int row = 0; row < 5; ++row) {
    view().DoubleClick(row);
    EXPECT_EQ(Asked(*rig), expected[row]) << "row " << row;
  }
  EXPECT_EQ(view().Rows()[1].texts.type, L"Bank/Program Change");
}

TEST_F(EventList, EditTakesTheFirstSelectedRowAndNothingWithoutOne) {
  CStoredEvent pause = CStoredEvent::MakeNew(NewEventKind::Wait);
  Open({Named(L"A"), pause, Named(L"C")});
  view().Click(kEditButton);
  view().DoubleClick(-1);
  EXPECT_EQ(Asked(*rig), (DialogsAsked{0, 0, 0, 0}));
  view().Select({1, 2});
  view().Click(kEditButton);
  EXPECT_EQ(Asked(*rig), (DialogsAsked{0, 0, 0, 1}));
}

TEST_F(EventList, RemoveTakesTheSelectedRowsFromTheLast) {
  Open({Named(L"0"), Named(L"1"), Named(L"2"), Named(L"3"), Named(L"4")});
  view().Select({1, 3});
  view().Click(kRemoveButton);
  EXPECT_EQ(EventNames(filter()), (std::vector<std::wstring>{L"0", L"2", L"4"}));
  EXPECT_EQ(RowNames(view()), EventNames(filter()));
  EXPECT_TRUE(rig->boxes.Boxes().empty()) << "no question asked";
}

TEST_F(EventList, UncheckingARowDisablesItsEventAtOnce) {
  OpenABCD();
  view().ToggleRowCheck(2);
  EXPECT_FALSE(Enabled(filter(), 2));
  EXPECT_TRUE(Enabled(filter(), 1));
  view().ToggleRowCheck(2);
  EXPECT_TRUE(Enabled(filter(), 2));
}

TEST_F(EventList, DraggingDownLandsBehindTheTargetUpInFrontOfItAndUnderTheRowsAtTheEnd) {
  OpenABCD();
  view().Drag(0, 2);
  EXPECT_EQ(EventNames(filter()), (std::vector<std::wstring>{L"B", L"C", L"A", L"D"}));
  EXPECT_EQ(RowNames(view()), EventNames(filter()));
  EXPECT_EQ(view().SelectedRows(), std::vector<int>{2});
  EXPECT_FALSE(view().Dragging());
  EXPECT_TRUE(view().DropHighlights().empty());
  view().Drag(3, 0);
  view().Drag(3, 1);
  EXPECT_EQ(EventNames(filter()), (std::vector<std::wstring>{L"D", L"A", L"B", L"C"}));
  view().Drag(1, -1);  // under the last row: to the end
  EXPECT_EQ(EventNames(filter()), (std::vector<std::wstring>{L"D", L"B", L"C", L"A"}));
}

TEST_F(EventList, DroppedOutsideOrWithSeveralRowsSelectedNothingMoves) {
  OpenABCD();
  view().DragOutside(1);
  view().Select({0, 1});
  view().Drag(0, 3, true);
  EXPECT_FALSE(view().Dragging());
  EXPECT_EQ(EventNames(filter()), (std::vector<std::wstring>{L"A", L"B", L"C", L"D"}));
}

TEST_F(EventList, AMovedRowKeepsItsCheckAndTheOthersKeepTheirs) {
  Open({Named(L"A", true), Named(L"B", false), Named(L"C", false), Named(L"D", false)});
  view().Drag(0, 2);  // A lands where D's index stood while the rows were moving
  EXPECT_EQ(EventNames(filter()), (std::vector<std::wstring>{L"B", L"C", L"A", L"D"}));
  EXPECT_TRUE(Enabled(filter(), 2));
  EXPECT_FALSE(Enabled(filter(), 3)) << "the row's insertion must not touch another event";
  EXPECT_TRUE(view().Rows()[2].checked);
}

// --- the hex dialog from the list ---------------------------------------------------------------

using HexAction = HexEditDialogRecorder::Action;

HexAction ReplaceBytes(Bytes bytes, const wchar_t* name) {
  return [bytes, name](HexEditDialogRecorder& view, IHexEditDialogEvents& events) {
    CHexGrid& grid = view.Grid();
    grid.Erase(0, grid.Size());
    grid.Insert(0, bytes);
    view.name = name;
    events.OnOk();
  };
}

TEST_F(EventList, OkInTheHexDialogMakesTheBytesTheEventAndRefillsTheList) {
  CStoredEvent note;
  note.SetMessages({ShortMessage::FromBytes(0x90, 60, 100)});
  note.SetName(L"Note");
  note.SetDescription(L"middle C");
  Open({note});
  Bytes opened;
  rig->views.dialogs.NextHexEdit(
      {{},
       {[&](HexEditDialogRecorder& view, IHexEditDialogEvents&) {
          opened.assign(view.Grid().Bytes().begin(), view.Grid().Bytes().end());
          EXPECT_EQ(view.name, L"Note");
          EXPECT_EQ(view.description, L"middle C");
        },
        ReplaceBytes({0xF0, 0x01, 0x02}, L"Dump")}});
  view().DoubleClick(0);
  EXPECT_EQ(opened, (Bytes{0x90, 60, 100}));
  CStoredEvent& event = EventAt(filter(), 0);
  EXPECT_EQ(event.GetSysex(), (Bytes{0xF0, 0x01, 0x02, 0xF7}));
  EXPECT_EQ(event.GetName(), L"Dump");
  EXPECT_EQ(event.GetDescription(), L"middle C");
  EXPECT_EQ(view().Rows()[0].texts.type, L"System Exclusive") << "refilled, type column too";
  EXPECT_EQ(view().Rows()[0].texts.info, L"4 bytes");
}

TEST_F(EventList, AWaitEditedInItsDialogIsShownInItsRow) {
  Open({CStoredEvent::MakeNew(NewEventKind::Wait)});
  rig->views.dialogs.NextWait({[](WaitDialogRecorder& view, IModalEvents& events) {
    view.SetItemText(wait_dialog::kMillisecondsBox, L"250");
    view.SetItemText(kEventNameBox, L"Hold");
    events.OnOk();
  }});
  view().DoubleClick(0);
  EXPECT_EQ(view().Rows()[0].texts.name, L"Hold");
  EXPECT_EQ(view().Rows()[0].texts.info, L"250 ms");
}

}  // namespace
