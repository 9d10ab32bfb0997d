// The property page over a real instance: what it shows on opening, each command's effect on the
// instance and on the screen, and the meters' ballistics.
#include <gtest/gtest.h>

#include "core/activity.h"
#include "documents/stored_event.h"
#include "documents/xml.h"
#include "instruments/instrument.h"
#include "tests/editor/page_rig.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr const wchar_t* kNoneWarning =
    L"Warning:  Tarn configured to use unavailable MIDI output port \"none\".  Disabling output.";

bool SendingEnabled(PageViewRecorder& view) {
  return view.Enabled(kSendButton) && view.Enabled(kSendAllButton) && view.Enabled(kTestButton);
}
bool SendingDark(PageViewRecorder& view) {
  return !view.Enabled(kSendButton) && !view.Enabled(kSendAllButton) &&
         !view.Enabled(kTestButton);
}

std::vector<std::pair<std::uint32_t, std::wstring>> Items(const CPopupMenu& menu) {
  std::vector<std::pair<std::uint32_t, std::wstring>> items;
  for (const CPopupMenu::Item& item : menu.Items()) items.emplace_back(item.command, item.text);
  return items;
}

// Devices put into the instance's store as a saved state brings them: in memory only.
void ReadDevices(IMyFilter& filter, const char* xml) {
  CInstrument* store = nullptr;
  filter.GetInstrumentObject(&store);
  TiXmlDocument doc;
  doc.Parse(xml);
  std::vector<std::wstring> names;
  store->ReadDevices(*doc.RootElement(), names);
}

CStoredEvent Named(const wchar_t* name, NewEventKind kind, bool enabled = true) {
  CStoredEvent event = CStoredEvent::MakeNew(kind);
  event.SetName(name);
  event.SetEnabled(enabled);
  return event;
}

// --- opening ------------------------------------------------------------------------------------

TEST(PageOpening, WithNoPortTheSendingButtonsAreDarkNoneIsShownAndOutputIsOff) {
  PageRig rig(false);
  rig.host.instance->SetOutputEnabled(1);  // enabled, but no port chosen
  ASSERT_EQ(rig.Activate(), S_OK);
  PageViewRecorder& view = rig.view();
  EXPECT_EQ(view.Parent(), rig.Parent()) << "the page opens inside the host's window";
  EXPECT_EQ(view.Text(kPortText), L"none");
  EXPECT_EQ(view.Text(kPrefixText), L"") << "an empty prefix shows an empty line";
  EXPECT_EQ(view.Text(kChannelText), L"Bypass");
  EXPECT_TRUE(SendingDark(view));
  rig.host.Start();
  std::uint8_t active = 1;
  rig.filter().IsOutputActive(&active);
  EXPECT_EQ(active, 0) << "refresh turns output off when no port is set";
  rig.host.Stop();
  EXPECT_TRUE(rig.boxes.Boxes().empty()) << "no message for a missing port at opening";
}

TEST(PageOpening, ShowsTheWholeModelAndSetsUpItsControls) {
  PageRig rig(false);
  rig.host.instance->SetOutputRechannel(5);
  const std::uint8_t prefix[] = {0xF0, 0x43};
  rig.host.instance->SetSysexPrefix(prefix, 2);
  rig.host.instance->SetMIDISync(1);
  rig.AddEvent(Named(L"Reset", NewEventKind::SystemExclusive, false));
  ASSERT_EQ(rig.Activate(), S_OK);
  PageViewRecorder& view = rig.view();
  EXPECT_EQ(view.Text(kDeviceText), L"Generic Device");
  EXPECT_EQ(view.Text(kChannelText), L"5");
  EXPECT_EQ(view.Text(kPrefixText), L"F0 43 ") << "a blank behind every byte, the last too";
  EXPECT_TRUE(view.IsChecked(kSyncCheck));
  ASSERT_EQ(view.Rows().size(), 1u);
  EXPECT_FALSE(view.Rows()[0].checked);
  EXPECT_EQ(view.Rows()[0].texts.type, L"System Exclusive");
  EXPECT_FALSE(view.Enabled(kSpareButton));
  EXPECT_FALSE(view.Shown(kSpareButton));
  EXPECT_EQ(rig.timers.RunningCount(), 1u) << "the meters' timer";
}

TEST(PageOpening, WithoutADrawingThePageCannotActivate) {
  PageRig rig(false);
  rig.views.page.make = nullptr;
  EXPECT_EQ(rig.Activate(), E_FAIL);
  EXPECT_EQ(rig.timers.RunningCount(), 0u);
}

// --- the port ----------------------------------------------------------------------------------

TEST(PagePort, PickingNoneWarnsAndDarkensTheButtonsAndAPortBringsThemBack) {
  PageRig rig(false);
  rig.host.EnableOutput();
  rig.Activate();
  PageViewRecorder& view = rig.view();
  ASSERT_TRUE(SendingEnabled(view));

  rig.menus.AnswerNext(45000);
  view.Click(kPortButton);
  ASSERT_EQ(rig.boxes.Boxes().size(), 1u);
  EXPECT_EQ(rig.boxes.Boxes()[0].text, kNoneWarning);
  EXPECT_TRUE(SendingDark(view));
  EXPECT_EQ(view.Text(kPortText), L"none");
  std::int32_t index = 0;
  EXPECT_EQ(rig.filter().GetOutputPortIndex(&index), E_FAIL);

  rig.menus.AnswerNext(45001);
  view.Click(kPortButton);
  EXPECT_TRUE(SendingEnabled(view));
  EXPECT_EQ(view.Text(kPortText), L"Out A");
  EXPECT_EQ(rig.filter().GetOutputPortIndex(&index), S_OK);
  EXPECT_EQ(index, 0);
  rig.host.Start();
  std::uint8_t active = 0;
  rig.filter().IsOutputActive(&active);
  EXPECT_EQ(active, 1);
  rig.host.Stop();
  EXPECT_EQ(rig.boxes.Boxes().size(), 1u);
}

// --- the device ---------------------------------------------------------------------------------

TEST(PageDevice, GenericDeviceLeadsAndTheOthersKeepTheIdOfTheirPlace) {
  PageRig rig(false);
  ReadDevices(rig.filter(), R"(<Config><Instrument><Type>Alpha</Type></Instrument>
      <Instrument><Type>Beta</Type></Instrument><Instrument><Type>Generic Device</Type>
      </Instrument><Instrument><Type>Omega</Type></Instrument></Config>)");
  rig.Activate();
  PageViewRecorder& view = rig.view();
  EXPECT_EQ(Items(*view.Menu(kDeviceButton)),
            (std::vector<std::pair<std::uint32_t, std::wstring>>{
                {46000, L"Import Patch Names..."},
                {46001, L"Clear this List..."},
                {46002, L"Generic Device"},
                {46003, L"Alpha"},
                {46004, L"Beta"},
                {46006, L"Omega"}}))
      << "46005 stays a gap where Generic Device stood third";

  rig.menus.AnswerNext(46006);
  view.Click(kDeviceButton);
  EXPECT_EQ(view.Text(kDeviceText), L"Omega");
  char name[260] = {};
  CInstrument* store = nullptr;
  rig.filter().GetInstrumentObject(&store);
  store->GetInstrumentName(name, sizeof name);
  EXPECT_STREQ(name, "Omega");
}

// Importing marks the store for its file; the test clears it again, so the file beside the
// test program only ever holds an empty store.
TEST(PageDevice, ImportSelectsTheFirstDeviceAndClearOnOkKeepsTheDeviceText) {
  TempFolder folder;
  const std::wstring ins = folder.Write("gs.ins",
                                        ".Patch Names\r\n[GS]\r\n0=Piano\r\n"
                                        ".Instrument Definitions\r\n[GS Synth]\r\nPatch[0]=GS\r\n"
                                        "[Another]\r\nPatch[0]=GS\r\n");
  PageRig rig;
  PageViewRecorder& view = rig.view();
  rig.files.AnswerNext(ins);
  rig.menus.AnswerNext(46000);
  view.Click(kDeviceButton);
  ASSERT_EQ(rig.files.Requests().size(), 1u);
  EXPECT_EQ(rig.files.Requests()[0].defaultExtension, L"INS");
  EXPECT_EQ(rig.files.Requests()[0].filter, L"Instrument Definition Files (*.INS)|*.INS||");
  EXPECT_EQ(view.Text(kDeviceText), L"Another") << "the first name in the store's order";
  EXPECT_EQ(view.Menu(kDeviceButton)->TextOf(46003), L"Another");

  rig.boxes.AnswerNext(ID_CANCEL_ANSWER);
  rig.menus.AnswerNext(46001);
  view.Click(kDeviceButton);
  EXPECT_EQ(view.Menu(kDeviceButton)->Count(), 5u) << "Cancel keeps the devices";

  rig.menus.AnswerNext(46001);
  view.Click(kDeviceButton);
  ASSERT_EQ(rig.boxes.Boxes().size(), 2u);
  EXPECT_EQ(rig.boxes.Boxes()[1].text, L"Are you sure you want to remove all device definitions?");
  EXPECT_EQ(rig.boxes.Boxes()[1].flags & MB_BUTTONS_MASK, MB_OKCANCEL_FLAG);
  // Resetting to the built-in device puts it into the empty store, so it stays on offer.
  EXPECT_EQ(Items(*view.Menu(kDeviceButton)),
            (std::vector<std::pair<std::uint32_t, std::wstring>>{
                {46000, L"Import Patch Names..."},
                {46001, L"Clear this List..."},
                {46002, L"Generic Device"}}));
  EXPECT_EQ(view.Text(kDeviceText), L"Another") << "the text is not rewritten by a clear";
}

TEST(PageDevice, AFailedImportChangesNothingAndSaysNothing) {
  TempFolder folder;
  const std::wstring bad = folder.Write("empty.ins", "no definitions here\r\n");
  PageRig rig;
  rig.files.AnswerNext(bad);
  rig.menus.AnswerNext(46000);
  rig.view().Click(kDeviceButton);
  EXPECT_EQ(rig.view().Text(kDeviceText), L"Generic Device");
  EXPECT_EQ(rig.view().Menu(kDeviceButton)->Count(), 2u);
  EXPECT_TRUE(rig.boxes.Boxes().empty());
}

// --- the prefix ----------------------------------------------------------------------------------

TEST(PagePrefix, TheEditorsBytesBecomeThePrefixOnOkAndCancelChangesNothing) {
  PageRig rig;
  rig.views.dialogs.NextPrefixEditor(
      {{},
       {[](PrefixEditorRecorder& view, IByteDialogEvents& events) {
         const std::uint8_t bytes[] = {0xF0, 0x41, 0x10};
         view.Grid().Insert(0, bytes);
         events.OnOk();
       }}});
  rig.view().Click(kPrefixButton);
  EXPECT_EQ(rig.view().Text(kPrefixText), L"F0 41 10 ");
  std::uint32_t length = 0;
  rig.filter().GetSysexPrefixLength(&length);
  EXPECT_EQ(length, 3u);

  rig.views.dialogs.NextPrefixEditor(
      {{},
       {[](PrefixEditorRecorder& view, IByteDialogEvents& events) {
         EXPECT_EQ(view.Grid().Size(), 3u) << "the editor opens with the prefix";
         view.Grid().Erase(0, 3);
         events.OnClose();
       }}});
  rig.view().Click(kPrefixButton);
  rig.filter().GetSysexPrefixLength(&length);
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(rig.views.prefixEditor.parents.back(), rig.view().Window());
}

// --- the logo -----------------------------------------------------------------------------------

TEST(PageLogo, APressInsideTheLogoEdgesIncludedOpensTheAboutBox) {
  PageRig rig;
  rig.view().PressAt(557, 129);
  rig.view().PressAt(558, 163);
  EXPECT_TRUE(rig.views.about.parents.empty());
  rig.view().PressAt(558, 129);
  rig.view().PressAt(647, 162);
  EXPECT_EQ(rig.views.about.parents.size(), 2u);
}

// --- send and send all --------------------------------------------------------------------------

CStoredEvent WithMessage(const wchar_t* name, ShortMessage message, bool enabled) {
  CStoredEvent event = Named(name, NewEventKind::MidiData, enabled);
  event.SetMessages({message});
  return event;
}

const ShortMessage kOn = ShortMessage::FromBytes(0xB0, 7, 100);
const ShortMessage kOff = ShortMessage::FromBytes(0xC5, 3, 0);

// Row 0 is checked, row 1 is not. The worker sends in queue order, so what was sent before a
// marker event has arrived once the marker has.
class PageSending : public ::testing::Test {
 protected:
  PageSending() : rig(false) {
    rig.host.ports.SetOutputs({L"Out A", L"Out B"});
    rig.host.instance->SelectOutputPort(L"Out B");
    rig.host.instance->SetOutputEnabled(1);
    rig.host.Start();
    rig.AddEvent(WithMessage(L"On", kOn, true));
    rig.AddEvent(WithMessage(L"Off", kOff, false));
    rig.Activate();
  }
  ~PageSending() override { rig.host.Stop(); }

  std::vector<std::uint32_t> Sent(std::size_t count) {
    EXPECT_TRUE(rig.host.ports.WaitForSends(count, 2000));
    std::vector<std::uint32_t> messages;
    for (const auto& sent : rig.host.ports.Sends()) messages.push_back(sent.message);
    return messages;
  }

  PageRig rig;
};

TEST_F(PageSending, SendGoesOutForEverySelectedRowCheckedOrNot) {
  rig.view().Select({0, 1});
  rig.view().Click(kSendButton);
  EXPECT_EQ(Sent(2), (std::vector<std::uint32_t>{kOn.message, kOff.message}));
}

TEST_F(PageSending, NothingGoesOutWhenThePortHasNoHandle) {
  rig.host.ports.SetOutputs({L"Out A"});  // the chosen port went away
  rig.view().Select({0});
  rig.view().Click(kSendButton);
  rig.view().Click(kSendAllButton);
  rig.host.ports.SetOutputs({L"Out A", L"Out B"});
  rig.view().Click(kSendButton);  // the marker
  EXPECT_EQ(Sent(1), (std::vector<std::uint32_t>{kOn.message}));
}

// --- meters -------------------------------------------------------------------------------------

TEST(PageMeters, WeakMessagesPullATallReadingDownByTenEach) {
  PageRig rig;
  const NotifyHandle page = rig.dialog().WindowHandle();
  ASSERT_NE(page, 0u);
  PostNotify(page, InputActivityMessage(), 127, 0);
  for (int i = 0; i < 10; ++i) PostNotify(page, InputActivityMessage(), 10, 0);
  PageRig::Deliver();
  EXPECT_FLOAT_EQ(rig.dialog().InputMeter().Left(), 27.0f);
  EXPECT_FLOAT_EQ(rig.dialog().InputMeter().Right(), 27.0f);
  EXPECT_FLOAT_EQ(rig.dialog().OutputMeter().Left(), 0.0f);
  PostNotify(page, OutputActivityMessage(), 500, 0);
  PageRig::Deliver();
  EXPECT_FLOAT_EQ(rig.dialog().OutputMeter().Left(), 127.0f) << "clamped to the range";
}

TEST(PageMeters, EachTickLowersEachMeterByOneToZeroAndDrawsBothAtTheirLitLength) {
  PageRig rig;
  PostNotify(rig.dialog().WindowHandle(), InputActivityMessage(), 11, 0);
  PostNotify(rig.dialog().WindowHandle(), OutputActivityMessage(), 5, 0);
  PageRig::Deliver();
  rig.timers.Advance(10);
  EXPECT_EQ(rig.view().MeterLit(PageMeter::Input), 14) << "10 lights two segments";
  EXPECT_EQ(rig.view().MeterDraws(), 2);
  rig.view().Paint();
  EXPECT_EQ(rig.view().MeterDraws(), 4);
  rig.timers.Advance(20);
  EXPECT_FLOAT_EQ(rig.dialog().OutputMeter().Left(), 2.0f);
  rig.timers.Advance(20);
  EXPECT_FLOAT_EQ(rig.dialog().OutputMeter().Left(), 0.0f);
  rig.timers.Advance(50);
  EXPECT_FLOAT_EQ(rig.dialog().OutputMeter().Left(), 0.0f);
  EXPECT_EQ(rig.view().MeterLit(PageMeter::Output), 0);
}

TEST(PageMeters, LiveInputReachesTheInputMeter) {
  PageRig rig;
  rig.host.Start();
  FakeDataList list({{0, ShortMessage::FromBytes(0x90, 60, 90).message}});
  rig.host.instance->OnInput(0, &list);
  PageRig::Deliver();
  EXPECT_FLOAT_EQ(rig.dialog().InputMeter().Left(), 90.0f);
  rig.host.Stop();
}

// --- life --------------------------------------------------------------------------------------

TEST(PageLife, ThePageCountsItselfAndTheInstanceForgetsItWhenItGoes) {
  const std::int32_t before = CExternalHardwareProxyDXiPropPage::PageCount();
  {
    PageRig rig;
    EXPECT_EQ(CExternalHardwareProxyDXiPropPage::PageCount(), before + 1);
    rig.Close();
    EXPECT_EQ(CExternalHardwareProxyDXiPropPage::PageCount(), before);
    EXPECT_EQ(rig.timers.RunningCount(), 0u) << "the meters' timer goes with the window";
    rig.host.Start();
    FakeDataList list({{0, ShortMessage::FromBytes(0x90, 60, 90).message}});
    rig.host.instance->OnInput(0, &list);
    PageRig::Deliver();  // nothing may reach the page that has gone
    rig.host.Stop();
  }
}

TEST(PageLife, ALoadBehindThePagesBackIsNotShownUntilItOpensAgain) {
  PageRig rig;
  rig.filter().SetOutputRechannel(3);
  rig.host.instance->SetConfigXml(L"<Config><MIDIOutputRechannel Channel=\"7\"/></Config>");
  PageRig::Deliver();
  EXPECT_EQ(rig.view().Text(kChannelText), L"Bypass");
  rig.page->Deactivate();
  rig.Activate();
  EXPECT_EQ(rig.view().Text(kChannelText), L"7");
}

}  // namespace
