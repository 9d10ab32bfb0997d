// The program, controller and wait dialogs as the page uses them on a stored event: what an OK
// writes, what a refusal says, what a Cancel leaves, and the preset tree of the device.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "documents/stored_event.h"
#include "documents/xml.h"
#include "editor/editor_messages.h"
#include "editor/event_dialogs.h"
#include "editor/preset_tree.h"
#include "instruments/instrument.h"
#include "tests/support/view_recorders.h"
#include "tests/support/editor_recorders.h"
#include "tests/support/recorders.h"
#include "tests/support/test_instance.h"

namespace {

namespace pd = program_dialog;
namespace cd = controller_dialog;

ShortMessage M(std::uint8_t status, std::uint8_t data1, std::uint8_t data2 = 0) {
  return ShortMessage::FromBytes(status, data1, data2);
}

CStoredEvent WithMessages(ShortMessageList messages) {
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::MidiData);
  event.SetMessages(std::move(messages));
  return event;
}

// A page around an instance: where the refreshes go and how often the list was refilled.
struct Page {
  TestInstance instance;
  NotifyRecorder window;
  MessageBoxRecorder boxes;
  ViewFactoryRecorder views;
  int fills = 0;
  EventEditHost host{&instance.filter(), nullptr, window.Handle(), [this] { ++fills; }};

  std::size_t Refreshes() const { return window.Messages(RefreshMessage()).size(); }

  // Makes `xml`'s "Instrument" elements the instance's devices and selects the first.
  void UseDevices(const std::string& xml) {
    CInstrument* store = nullptr;
    ASSERT_EQ(instance->GetInstrumentObject(&store), S_OK);
    TiXmlDocument doc;
    doc.Parse(("<Config>" + xml + "</Config>").c_str());
    std::vector<std::wstring> names;
    store->ReadDevices(*doc.RootElement(), names);
    ASSERT_FALSE(names.empty());
    ASSERT_EQ(store->SelectDevice(names[0]), S_OK);
  }
};

// A device with `banks` banks numbered from `first`, each with `patches` names "B<bank>P<n>".
std::string Device(int first, int banks, int patches) {
  std::string xml = "<Instrument><Type>Big</Type>";
  for (int b = first; b < first + banks; ++b) {
    xml += "<Bank Num=\"" + std::to_string(b) + "\" Name=\"T" + std::to_string(b) + "\">";
    for (int p = 0; p < patches; ++p)
      xml += "<Patch Num=\"" + std::to_string(p) + "\">B" + std::to_string(b) + "P" +
             std::to_string(p) + "</Patch>";
    xml += "</Bank>";
  }
  return xml + "</Instrument>";
}

// Script steps of any event dialog: type `texts` into its boxes by control id, press OK.
auto Fill(std::map<int, std::wstring> texts) {
  return [texts](auto& view, auto&) {
    for (const auto& [control, text] : texts) view.SetItemText(control, text);
  };
}
auto PressOk() {
  return [](auto&, auto& events) { events.OnOk(); };
}

TEST(ProgramDialog, ShowsTheEventAndAnOkOfTheLimitsComesBackUnchanged) {
  Page page;
  CStoredEvent event = WithMessages({M(0xBF, 0, 0x7F), M(0xBF, 0x20, 0x7F), M(0xCF, 127)});
  event.SetName(L"Strings");
  page.views.dialogs.NextProgram({[](ProgramDialogRecorder& view, IProgramDialogEvents& events) {
    EXPECT_EQ(view.ItemText(pd::kChannelBox), L"16");
    EXPECT_EQ(view.ItemText(pd::kMsbBox), L"0x7f");
    EXPECT_EQ(view.ItemText(pd::kLsbBox), L"0x7f");
    EXPECT_EQ(view.ItemText(pd::kProgramBox), L"127");
    EXPECT_EQ(view.ItemText(pd::kPresetName), L"");
    EXPECT_EQ(view.ItemText(kEventNameBox), L"Strings");
    events.OnOk();
  }});
  EditProgramEvent(event, page.host);
  EXPECT_EQ(event.GetInfoText(), L"Ch 16 Bnk=16383 Prg=127");
  EXPECT_EQ(page.fills, 1);
  EXPECT_EQ(page.Refreshes(), 1u);
}

TEST(ProgramDialog, TheProgramIsTakenModulo128AndAllThreeMessagesTakeTheChannel) {
  Page page;
  CStoredEvent event = WithMessages({M(0xB3, 0, 1), M(0xB5, 0x20, 2), M(0xC0, 5)});
  page.views.dialogs.NextProgram({Fill({{pd::kProgramBox, L"128"}, {pd::kChannelBox, L"2"}}),
                          PressOk()});
  EditProgramEvent(event, page.host);
  EXPECT_EQ(event.MessagesView(),
            (ShortMessageList{M(0xB1, 0, 1), M(0xB1, 0x20, 2), M(0xC1, 0)}));
  page.views.dialogs.NextProgram({Fill({{pd::kProgramBox, L"300"}}), PressOk()});
  EditProgramEvent(event, page.host);
  EXPECT_EQ(event.MessagesView()[2], M(0xC1, 44));
}

TEST(ProgramDialog, AChannelOutsideOneToSixteenIsRefusedAndTheDialogStays) {
  Page page;
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::BankProgramChange);
  page.views.dialogs.NextProgram({Fill({{pd::kChannelBox, L"0"}}), PressOk(),
                          Fill({{pd::kChannelBox, L"17"}}), PressOk(),
                          [](ProgramDialogRecorder& view, IProgramDialogEvents&) {
                            EXPECT_FALSE(view.Ended());
                            EXPECT_EQ(view.focusedItem, pd::kChannelBox);
                          },
                          Fill({{pd::kChannelBox, L"3"}}), PressOk()});
  EditProgramEvent(event, page.host);
  const auto boxes = page.boxes.Boxes();
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_NE(boxes[0].text.find(L"1 to 16"), std::wstring::npos) << "the limits are named";
  EXPECT_EQ(event.GetInfoText(), L"Ch 3 Bnk=0 Prg=0");
}

TEST(ProgramDialog, CancelAndOtherShapesLeaveTheEvent) {
  Page page;
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::BankProgramChange);
  const CStoredEvent before = event;
  page.views.dialogs.NextProgram({Fill({{pd::kProgramBox, L"9"}}),
                          [](ProgramDialogRecorder&, IProgramDialogEvents& e) { e.OnCancel(); }});
  EditProgramEvent(event, page.host);
  EXPECT_EQ(event, before);
  EXPECT_EQ(page.fills, 0);
  EXPECT_EQ(page.Refreshes(), 1u) << "a refresh on Cancel too";

  // The type text says "Bank/Program Change", but controllers 7 and 10 are not a bank select.
  CStoredEvent loose = WithMessages({M(0xB0, 7, 1), M(0xB0, 0x0A, 2), M(0xC0, 5)});
  CStoredEvent sysex = CStoredEvent::MakeNew(NewEventKind::SystemExclusive);
  EditProgramEvent(loose, page.host);
  EditProgramEvent(sysex, page.host);
  EXPECT_EQ(page.views.dialogs.Made(), 1) << "no dialog for another shape";
  EXPECT_EQ(page.Refreshes(), 1u);
  EXPECT_TRUE(page.boxes.Boxes().empty());
}

TEST(PresetTree, BanksBecomeSubmenusNumberedOnThroughAllBanksWithEmptyLast) {
  Page page;
  page.UseDevices(
      "<Instrument><Type>Synth</Type>"
      "<Bank Num=\"0\" Name=\"A\"><Patch Num=\"0\">Piano</Patch><Patch Num=\"2\">Harp</Patch>"
      "</Bank><Bank Num=\"1\" Name=\"Unnamed\"/>"
      "<Bank Num=\"130\" Name=\"C\"><Patch Num=\"0\">Choir</Patch><Patch Num=\"1\">Pad</Patch>"
      "</Bank></Instrument>");
  CInstrument* store = nullptr;
  page.instance->GetInstrumentObject(&store);
  const CPresetTree tree(store);
  const auto& items = tree.Menu().Items();
  ASSERT_EQ(items.size(), 3u) << "the bank without names is left out";
  EXPECT_EQ(items[0].text, L"Bank 0");
  EXPECT_EQ(items[1].text, L"Bank 130");
  EXPECT_EQ(items[2].text, L"Empty   ");
  EXPECT_EQ(items[2].command, CPresetTree::kEmpty);
  // Two names but keys 0 and 2: read by index below the count, the hole shows empty and Harp
  // is lost.
  const auto& bank0 = items[0].submenu->Items();
  ASSERT_EQ(bank0.size(), 2u);
  EXPECT_EQ(bank0[0].text, L"Piano");
  EXPECT_EQ(bank0[1].text, L"");
  EXPECT_EQ(items[1].submenu->Items()[1].command, 47104u);
  ASSERT_NE(tree.Find(47104), nullptr);
  EXPECT_EQ(tree.Find(47104)->name, L"Pad");
  EXPECT_EQ(tree.Find(47104)->bank, 130);
  EXPECT_EQ(tree.Find(CPresetTree::kEmpty), nullptr);
  EXPECT_EQ(tree.Find(0), nullptr);
  EXPECT_EQ(CPresetTree(nullptr).Menu().Count(), 1u);
}

TEST(PresetTree, PickingAPresetOfBank130GivesMsb1Lsb2AndKeepsTheChannel) {
  Page page;
  PopupMenuRecorder menus;
  page.UseDevices(Device(130, 1, 8));
  CStoredEvent event = WithMessages({M(0xB4, 0, 0), M(0xB4, 0x20, 0), M(0xC4, 0)});
  menus.AnswerNext([](const CPopupMenu& menu) { return menu.Items()[0].submenu->Items()[5].command; });
  page.views.dialogs.NextProgram({[](ProgramDialogRecorder& view, IProgramDialogEvents& events) {
                            events.OnPresetButton();
                            EXPECT_EQ(view.ItemText(pd::kPresetName), L"B130P5");
                            EXPECT_EQ(view.ItemText(pd::kMsbBox), L"0x1");
                            EXPECT_EQ(view.ItemText(pd::kLsbBox), L"0x2");
                            EXPECT_EQ(view.ItemText(pd::kProgramBox), L"5");
                          },
                          PressOk()});
  EditProgramEvent(event, page.host);
  EXPECT_EQ(event.GetInfoText(), L"Ch 5 Bnk=130 Prg=5");
  ASSERT_EQ(menus.Menus().size(), 1u);
  EXPECT_EQ(menus.Menus()[0].x, 120) << "at the button's lower left corner";
  EXPECT_EQ(menus.Menus()[0].y, 240);
}

// 23 banks of 128 names: commands 47101 to 50044, of which those past 49998 cannot be picked.
TEST(PresetTree, PresetsPastCommand49998AreShownButCannotBePicked) {
  Page page;
  PopupMenuRecorder menus;
  page.UseDevices(Device(0, 23, 128));
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::BankProgramChange);
  menus.AnswerNext(49999);
  menus.AnswerNext(49998);
  menus.AnswerNext(CPresetTree::kEmpty);
  page.views.dialogs.NextProgram({[](ProgramDialogRecorder& view, IProgramDialogEvents& events) {
                            events.OnPresetButton();
                            EXPECT_EQ(view.ItemText(pd::kPresetName), L"");
                            events.OnPresetButton();
                            EXPECT_EQ(view.ItemText(pd::kPresetName), L"B22P81");
                            events.OnPresetButton();
                            EXPECT_EQ(view.ItemText(pd::kPresetName), L"B22P81");
                          },
                          PressOk()});
  EditProgramEvent(event, page.host);
  const CPopupMenu& shown = menus.Menus()[0].menu;
  EXPECT_EQ(shown.TextOf(50044), L"B22P127");
  EXPECT_EQ(event.GetInfoText(), L"Ch 1 Bnk=22 Prg=81");
}

TEST(ControllerDialog, AnEditToChannel2Controller7Value100GivesB10764) {
  Page page;
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  page.views.dialogs.NextController(
      {Fill({{cd::kChannelBox, L"2"}, {cd::kControllerBox, L"7"}, {cd::kValueBox, L"100"},
             {kEventNameBox, L"Volume"}}),
       PressOk()});
  EditControllerEvent(event, page.host);
  EXPECT_EQ(event.MessagesView(), (ShortMessageList{M(0xB1, 7, 100)}));
  EXPECT_EQ(event.GetInfoText(), L"Ch 2 CC 7 = 100");
  EXPECT_EQ(event.GetName(), L"Volume");
  EXPECT_EQ(page.fills, 1);
  EXPECT_EQ(page.Refreshes(), 1u);
}

TEST(ControllerDialog, ValueThenControllerThenChannelAreCheckedAndRefused) {
  Page page;
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  const CStoredEvent before = event;
  auto focused = [](int control) {
    return [control](ControllerDialogRecorder& view, IModalEvents&) {
      EXPECT_EQ(view.focusedItem, control);
    };
  };
  page.views.dialogs.NextController(
      {Fill({{cd::kChannelBox, L"17"}, {cd::kControllerBox, L"128"}, {cd::kValueBox, L"128"}}),
       PressOk(), focused(cd::kValueBox), Fill({{cd::kValueBox, L"5"}}), PressOk(),
       focused(cd::kControllerBox), Fill({{cd::kControllerBox, L"5"}}), PressOk(),
       focused(cd::kChannelBox), Fill({{cd::kChannelBox, L"0"}}), PressOk(),
       focused(cd::kChannelBox)});
  EditControllerEvent(event, page.host);
  const auto boxes = page.boxes.Boxes();
  ASSERT_EQ(boxes.size(), 4u);
  EXPECT_NE(boxes[0].text.find(L"0 to 127"), std::wstring::npos);
  EXPECT_NE(boxes[2].text.find(L"1 to 16"), std::wstring::npos);
  EXPECT_EQ(event, before) << "closed in the end: nothing written";
  EXPECT_EQ(page.fills, 0);

  CStoredEvent twoMessages = WithMessages({M(0xB0, 1, 2), M(0xB0, 3, 4)});
  EditControllerEvent(twoMessages, page.host);
  EXPECT_EQ(page.views.dialogs.Made(), 1);
}

TEST(WaitDialog, ZeroAndTooLongAreRefusedSoAPauseKeepsAtLeastOneMillisecond) {
  Page page;
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::Wait);
  event.SetWait(20000);  // possible from a file
  const auto ms = [](const wchar_t* text) { return Fill({{wait_dialog::kMillisecondsBox, text}}); };
  page.views.dialogs.NextWait(
      {PressOk(), ms(L"0"), PressOk(), ms(L""), PressOk(), ms(L"10000"), PressOk()});
  EditWaitEvent(event, page.host);
  const auto boxes = page.boxes.Boxes();
  ASSERT_EQ(boxes.size(), 3u);
  EXPECT_NE(boxes[0].text.find(L"0.001 to 10000"), std::wstring::npos);
  EXPECT_EQ(event.GetWait(), 10000u);
}

TEST(WaitDialog, AnEventThatIsNoPauseTakesTheNameButKeepsItsContents) {
  Page page;
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  page.views.dialogs.NextWait(
      {Fill({{wait_dialog::kMillisecondsBox, L"250"}, {kEventNameBox, L"Hold"}}), PressOk()});
  EditWaitEvent(event, page.host);
  EXPECT_EQ(event.GetName(), L"Hold");
  EXPECT_EQ(event.MessagesView(), (ShortMessageList{M(0xB0, 0, 0)}));
  EXPECT_EQ(event.GetWait(), 0u);
}

TEST(EventDialogs, WithNoViewsEachAnswersCancelAndStillRefreshesThePage) {
  TestInstance instance;
  NotifyRecorder window;
  int fills = 0;
  const EventEditHost host{&instance.filter(), nullptr, window.Handle(), [&] { ++fills; }};
  CStoredEvent program = CStoredEvent::MakeNew(NewEventKind::BankProgramChange);
  CStoredEvent controller = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  CStoredEvent wait = CStoredEvent::MakeNew(NewEventKind::Wait);
  const CStoredEvent before[] = {program, controller, wait};
  EditProgramEvent(program, host);
  EditControllerEvent(controller, host);
  EditWaitEvent(wait, host);
  EXPECT_EQ(program, before[0]);
  EXPECT_EQ(controller, before[1]);
  EXPECT_EQ(wait, before[2]);
  EXPECT_EQ(fills, 0);
  EXPECT_EQ(window.Messages(RefreshMessage()).size(), 3u);
}

}  // namespace
