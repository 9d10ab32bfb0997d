// The skinned controls' numbers and state machines: the meter's segments, the fader's mapping
// and detents, the value box, the overlay edit box and DSPButton.
#include <gtest/gtest.h>

#include "editor/dsp_button.h"
#include "editor/ui_edit.h"
#include "editor/ui_fader.h"
#include "editor/ui_meter.h"
#include "editor/ui_state_button.h"
#include "tests/support/editor_recorders.h"
#include "tests/support/view_recorders.h"

namespace {

// --- meter --------------------------------------------------------------------------------------

// As the page sets it up: 118 pixels, segments of 7, 0 to 127.
CUIMeter& PageMeter(CUIMeter& meter, ControlHostRecorder& host) {
  meter.Create({520, 297, 520 + 118, 297 + 11}, nullptr, &host, {245, 118, 11}, {248, 118, 11});
  return meter;
}

TEST(Meter, LightsWholeSegmentsLinearlyCapsAtTheStripAndDecaysClampsAndRaises) {
  ControlHostRecorder host;
  CUIMeter meter;
  PageMeter(meter, host);
  EXPECT_EQ(meter.StripLength(), 118);
  EXPECT_EQ(meter.LitLength(0), 0);
  EXPECT_EQ(meter.LitLength(1), 0);
  EXPECT_EQ(meter.LitLength(2), 7);
  EXPECT_EQ(meter.LitLength(10), 14) << "the weakest activity";
  EXPECT_EQ(meter.LitLength(127), 118) << "119 capped at the strip";
  EXPECT_EQ(meter.LitLength(-5), 0);

  meter.SetValues(200, 50, 0);
  EXPECT_FLOAT_EQ(meter.Left(), 127);
  EXPECT_FLOAT_EQ(meter.Right(), 50);
  meter.SetValues(0, 60, 10);
  EXPECT_FLOAT_EQ(meter.Left(), 117);
  EXPECT_FLOAT_EQ(meter.Right(), 60);
}

// --- fader --------------------------------------------------------------------------------------

// Vertical, -96 to 6 on a track from 0 to 102, so each pixel is one unit; thumb 10 by 10.
class Fader : public ::testing::Test {
 protected:
  Fader() { Make({}); }
  void Make(std::vector<float> detents) {
    fader.Create({20, 0, 30, 102}, true, nullptr, &host, false, -96, 6, 0, std::move(detents),
                 {1, 11, 103}, {2, 10, 10});
  }
  // Presses the thumb at its centre, then drags to `y`.
  void DragTo(int y) {
    const UIRect thumb = fader.ThumbRect();
    const int x = thumb.left + 5, centre = thumb.top + 5;
    fader.HandleMessage(kMouseMoveMessage, 0, Pack(x, centre));
    fader.HandleMessage(kLButtonDownMessage, 0, 0);
    fader.HandleMessage(kMouseMoveMessage, 0, Pack(x, y));
  }
  static LPARAM_T Pack(int x, int y) {
    return static_cast<LPARAM_T>(static_cast<std::uint16_t>(x) |
                                 static_cast<std::uint32_t>(static_cast<std::uint16_t>(y)) << 16);
  }

  ControlHostRecorder host;
  CUIFader fader;
};

TEST_F(Fader, DraggedAboveTheTopGivesTheMaximumAndBelowTheBottomTheMinimum) {
  DragTo(-50);
  EXPECT_FLOAT_EQ(fader.Value(), 6.0f);
  EXPECT_EQ(host.capture, &fader);
  EXPECT_TRUE(fader.Changed());
  fader.HandleMessage(kMouseMoveMessage, 0, Pack(25, 500));
  EXPECT_FLOAT_EQ(fader.Value(), -96.0f);
  fader.HandleMessage(kLButtonUpMessage, 0, 0);
  EXPECT_EQ(host.capture, nullptr);
  EXPECT_FALSE(fader.Dragging());
}

TEST_F(Fader, TheFirstOfTwoEquallyNearDetentsWins) {
  Make({-6, 0});
  DragTo(9);  // -3 on the track: as near to -6 as to 0
  EXPECT_FLOAT_EQ(fader.Value(), -6.0f);
  fader.HandleMessage(kMouseMoveMessage, 0, Pack(25, 5));  // 1
  EXPECT_FLOAT_EQ(fader.Value(), 0.0f);
  fader.HandleMessage(kMouseMoveMessage, 0, Pack(25, -50));
  EXPECT_FLOAT_EQ(fader.Value(), 0.0f) << "the top snaps to the nearest detent too";
}

TEST_F(Fader, ThumbStandsLinearlyWithTheMaximumAtTheTop) {
  EXPECT_EQ(fader.ThumbRect().top, 2) << "0 dB, six units below the top";
  fader.SetValue(6);
  EXPECT_EQ(fader.ThumbRect().top, -5);
  fader.SetValue(-1000);
  EXPECT_FLOAT_EQ(fader.Value(), -96.0f);
}

TEST_F(Fader, ADoubleClickOnTheThumbResetsToTheDefault) {
  DragTo(60);
  fader.HandleMessage(kLButtonUpMessage, 0, 0);
  ASSERT_NE(fader.Value(), 0.0f);
  fader.SetChanged(false);
  const UIRect thumb = fader.ThumbRect();
  fader.HandleMessage(kMouseMoveMessage, 0, Pack(thumb.left, thumb.top));
  fader.HandleMessage(kLButtonDblClkMessage, 0, 0);
  EXPECT_FLOAT_EQ(fader.Value(), 0.0f);
  EXPECT_TRUE(fader.Changed());
}

TEST_F(Fader, APressBesideTheThumbDoesNotGrabIt) {
  fader.HandleMessage(kMouseMoveMessage, 0, Pack(25, 90));
  fader.HandleMessage(kLButtonDownMessage, 0, 0);
  fader.HandleMessage(kMouseMoveMessage, 0, Pack(25, 0));
  EXPECT_FLOAT_EQ(fader.Value(), 0.0f);
  EXPECT_EQ(host.capture, nullptr);
}

TEST_F(Fader, DrawingRepaintsOnlyWhatTheThumbLeft) {
  const UIRect before = fader.ThumbRect();
  fader.SetValue(-4);  // four pixels down
  fader.Draw();
  ASSERT_EQ(host.faderUncovered.size(), 1u);
  EXPECT_EQ(host.faderUncovered[0], (UIRect{before.left, before.top, before.right, before.top + 3}));
  fader.SetValue(-60);
  fader.Draw();
  EXPECT_EQ(host.faderUncovered.size(), 1u) << "no overlap: the whole old thumb";
}

// --- the control base and its list --------------------------------------------------------------

TEST(UIControl, HitTestIncludesTheEdgesAndMessagesNeedAParent) {
  CUIStateButton orphan;
  orphan.Create({0, 0, 10, 10}, true, nullptr, nullptr);
  EXPECT_TRUE(orphan.HitTest(10, 10));
  EXPECT_FALSE(orphan.HitTest(11, 10));
  EXPECT_EQ(orphan.Rect().Width(), 11);
  orphan.SetChanged(true);
  orphan.HandleMessage(kMouseMoveMessage, 0, 0x00050005);
  EXPECT_FALSE(orphan.Changed()) << "cleared before anything else";
  orphan.HandleMessage(kMouseMoveMessage, 0, 0x00140014);
  EXPECT_TRUE(orphan.IsMouseOver()) << "without a parent the move to 20, 20 is not taken";
}

TEST(UIControl, TheListKeepsOrderAndLetsAControlThatGoesLeave) {
  ControlHostRecorder host;
  CUIControlList list;
  CUIMeter first;
  PageMeter(first, host);
  {
    CUIMeter second;
    PageMeter(second, host);
    list.Append(first);
    list.Append(second);
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Last(), &second);
    EXPECT_EQ(CUIControlList::Next(first), &second);
    list.DrawAll();
    EXPECT_EQ(host.meterDraws.size(), 2u);
  }
  EXPECT_EQ(list.Count(), 1);
  EXPECT_EQ(list.Last(), &first);
}

// --- state button and value box -----------------------------------------------------------------

TEST(StateButton, APressStepsThroughItsStatesAndWrapsToTheFirst) {
  ControlHostRecorder host;
  CUIStateButton button;
  button.Create({0, 0, 9, 9}, true, nullptr, &host);
  button.SetFaces({{1, 10, 10}, {2, 10, 10}, {3, 10, 10}, {4, 10, 10}}, 1, 3);
  button.HandleMessage(kMouseMoveMessage, 0, 0x00020002);
  for (int expected : {2, 3, 1}) {
    button.HandleMessage(kLButtonDownMessage, 0, 0);
    button.HandleMessage(kLButtonUpMessage, 0, 0);
    EXPECT_EQ(button.State(), expected);
  }
  button.Hide();
  button.HandleMessage(kLButtonDownMessage, 0, 0);
  EXPECT_EQ(button.State(), 1) << "a hidden button does not step";
}

TEST(StateButton, ItsPopupOpensAtTheLowerLeftCornerAndSendsItsCommand) {
  ControlHostRecorder host;
  PopupMenuRecorder menus;
  CUIStateButton button;
  button.Create({10, 20, 29, 39}, true, nullptr, &host);
  button.SetFaces({{1, 20, 20}, {2, 20, 20}}, 0, 2);
  auto menu = std::make_shared<CPopupMenu>();
  menu->Append(7, L"Seven");
  button.SetMenu(menu);
  menus.AnswerNext(7);
  button.HandleMessage(kMouseMoveMessage, 0, 0x00180018);
  button.HandleMessage(kLButtonDownMessage, 0, 0);
  ASSERT_EQ(menus.Menus().size(), 1u);
  EXPECT_EQ(menus.Menus()[0].x, 1010);
  EXPECT_EQ(menus.Menus()[0].y, 539);
  ASSERT_EQ(host.sent.size(), 1u);
  EXPECT_EQ(host.sent[0].message, kCommandMessage);
  EXPECT_EQ(host.sent[0].wParam, 7u);
  EXPECT_EQ(host.capture, nullptr) << "the popup ends the press";
}

TEST(ValueBox, TypedTextIsParsedAsANumberAndClampedAndAClickOutsideCloses) {
  ControlHostRecorder host;
  CUIValueBox box;
  box.Create({0, 0, 39, 15}, true, nullptr, &host);
  box.SetFormat(1, 10, L"%.1f ms", L"off", L"max");
  box.SetValue(4.3f);
  EXPECT_EQ(box.DisplayText(), L"4.3 ms");
  box.HandleMessage(kMouseMoveMessage, 0, 0x00050005);
  box.HandleMessage(kLButtonDownMessage, 0, 0);
  EXPECT_EQ(host.textBox, L"  4.3") << "written %5.1f";
  box.OnEditTextChanged(L"abc");
  EXPECT_FLOAT_EQ(box.Value(), 1.0f) << "no number reads as 0, then clamped";
  box.OnEditTextChanged(L"7.5xyz");
  EXPECT_FLOAT_EQ(box.Value(), 7.5f);
  box.OnEditTextChanged(L"99");
  EXPECT_FLOAT_EQ(box.Value(), 10.0f);
  EXPECT_TRUE(box.OnEditKey(kEscapeKey));
  EXPECT_TRUE(box.Editing()) << "Escape is claimed but closes nothing";
  EXPECT_TRUE(box.OnEditKey(kDownKey));
  EXPECT_FALSE(box.Editing());
  box.SetValue(0.5f);
  EXPECT_EQ(box.DisplayText(), L"off");
  box.SetValue(11);
  EXPECT_EQ(box.DisplayText(), L"max");
  box.HandleMessage(kLButtonDownMessage, 0, 0);
  ASSERT_TRUE(host.textBox);
  box.HandleMessage(kMouseMoveMessage, 0, 0x00500050);
  box.HandleMessage(kLButtonDownMessage, 0, 0);
  EXPECT_FALSE(host.textBox) << "a click outside closes the text box";
}

TEST(StateButton, TheParentsMenuAndThePluginPageAreAskedFor) {
  ControlHostRecorder host;
  PopupMenuRecorder menus;
  CUIStateButton button;
  button.Create({0, 0, 9, 9}, true, nullptr, &host);
  CPopupMenu menu;
  menu.Append(3, L"Three");
  host.answer = reinterpret_cast<std::intptr_t>(&menu);
  menus.AnswerNext(3);
  button.HandleMessage(kMouseMoveMessage, 0, 0x00040002);
  button.HandleMessage(kRButtonDownMessage, 0, 0);
  ASSERT_EQ(menus.Menus().size(), 1u);
  EXPECT_EQ(menus.Menus()[0].x, 1002);
  EXPECT_EQ(host.sent.back().wParam, 3u);
  button.HandleMessage(kLButtonDblClkMessage, 0, 0);
  ASSERT_EQ(host.posted.size(), 1u);
  EXPECT_EQ(host.posted[0].wParam, 0u);
  EXPECT_EQ(host.posted[0].lParam, -1);
}

// --- edit overlay -------------------------------------------------------------------------------

TEST(UIEdit, ClaimsEveryKeyAndHandsEnterTabAndEscapeToItsParent) {
  ControlHostRecorder host;
  CUIEdit edit(host);
  EXPECT_TRUE(edit.PreTranslateKey(0x41));
  EXPECT_TRUE(edit.OnChar(L'a'));
  EXPECT_TRUE(host.sent.empty());
  for (wchar_t key : {L'\r', L'\t', wchar_t{0x1B}}) EXPECT_FALSE(edit.OnChar(key));
  ASSERT_EQ(host.sent.size(), 3u);
  EXPECT_EQ(host.sent[1].message, kCharMessage);
  EXPECT_EQ(host.sent[1].wParam, static_cast<WPARAM_T>(L'\t'));
  edit.OnKillFocus();
  EXPECT_EQ(host.sent.back().message, 33268u);
}

// --- DSPButton ----------------------------------------------------------------------------------

class ButtonParent : public IDspButtonParent {
 public:
  void OnButtonCommand(std::uint32_t command) override { commands.push_back(command); }
  void OnButtonMessage(std::uint32_t message, std::int32_t lParam) override {
    messages.emplace_back(message, lParam);
  }
  void ClearRadioGroup(const CDspButton& set) override {
    for (CDspButton* button : group)
      if (button != &set) button->SetChecked(false);
  }
  std::vector<std::uint32_t> commands;
  std::vector<std::pair<std::uint32_t, std::int32_t>> messages;
  std::vector<CDspButton*> group;
};

TEST(DspButton, AMenuOpensAtThePressAndItsChoiceGoesToTheParentUnlessDisabled) {
  ButtonParent parent;
  PopupMenuRecorder menus;
  CDspButton button(1023, parent);
  auto menu = std::make_shared<CPopupMenu>();
  menu->Append(2016, L"16");
  button.SetMenu(menu);
  menus.AnswerNext(2016);
  button.OnLButtonDown(300, 400);
  ASSERT_EQ(menus.Menus().size(), 1u);
  EXPECT_EQ(menus.Menus()[0].x, 300);
  EXPECT_EQ(menus.Menus()[0].y, 400);
  EXPECT_EQ(parent.commands, std::vector<std::uint32_t>{2016});
  EXPECT_FALSE(button.IsMenuOpen());
  button.OnLButtonDown(300, 400);  // dismissed: nothing goes out
  EXPECT_EQ(parent.commands.size(), 1u);

  button.Enable(false);
  button.OnLButtonDown(0, 0);
  button.OnLButtonUp(true);
  EXPECT_EQ(menus.Menus().size(), 2u) << "a disabled button opens no menu";
  CDspButton push(1007, parent);
  push.Enable(false);
  push.OnLButtonDown(0, 0);
  push.OnLButtonUp(true);
  push.OnSpace();
  EXPECT_EQ(parent.commands.size(), 1u) << "nor sends its command";
}

TEST(DspButton, TheCommandGoesAtReleaseOverTheButtonOrAtPressWhenAsked) {
  ButtonParent parent;
  CDspButton button(1013, parent);
  button.OnLButtonDown(0, 0);
  EXPECT_TRUE(parent.commands.empty());
  button.OnMouseMove(false);
  EXPECT_EQ(button.FaceSlot(), DspFace::Normal) << "the pushed look follows the cursor";
  button.OnMouseMove(true);
  EXPECT_EQ(button.FaceSlot(), DspFace::Pressed);
  button.OnLButtonUp(false);
  EXPECT_TRUE(parent.commands.empty()) << "released elsewhere";
  button.OnLButtonDown(0, 0);
  button.OnLButtonUp(true);
  EXPECT_EQ(parent.commands, std::vector<std::uint32_t>{1013});

  CDspButton fast(7, parent);
  fast.SetPressFires(true);
  fast.OnLButtonDown(0, 0);
  fast.OnLButtonUp(true);
  EXPECT_EQ(parent.commands, (std::vector<std::uint32_t>{1013, 7}));
}

TEST(DspButton, CheckTogglesRadioSetsAndClearsItsGroup) {
  ButtonParent parent;
  CDspButton check(1, parent, DspButtonKindFromStyle(0x50010003));
  ASSERT_EQ(check.Kind(), DspButtonKind::Check);
  check.OnSpace();
  EXPECT_TRUE(check.IsChecked());
  check.OnLButtonDown(0, 0);
  check.OnLButtonUp(true);
  EXPECT_FALSE(check.IsChecked());

  CDspButton a(2, parent, DspButtonKindFromStyle(9)), b(3, parent, DspButtonKindFromStyle(9));
  parent.group = {&a, &b};
  a.OnSpace();
  b.OnLButtonDown(0, 0);
  b.OnLButtonUp(true);
  EXPECT_FALSE(a.IsChecked());
  EXPECT_TRUE(b.IsChecked());
  EXPECT_EQ(b.FaceSlot(), DspFace::Pressed) << "a checked button shows pressed";
}

TEST(DspButton, FacesByStateDisabledFirstThenHoverWhereThereIsOne) {
  ButtonParent parent;
  CDspButton button(1, parent);
  button.SetFaces(238, 239, 240);
  EXPECT_EQ(button.Face(), 238u);
  button.OnMouseEnter();
  EXPECT_EQ(button.Face(), 240u);
  button.Enable(false);
  EXPECT_EQ(button.FaceSlot(), DspFace::Disabled);
  EXPECT_EQ(button.Face(), 238u) << "the normal face fills the disabled slot";
  button.Enable(true);
  button.SetFace(DspFace::Hover, 0);
  EXPECT_EQ(button.FaceSlot(), DspFace::Normal);
  button.SetFace(DspFace::Focus, 9);
  button.SetFocus(true);
  EXPECT_EQ(button.Face(), 9u);
}

TEST(DspButton, WithoutAMenuItsMenuMessageCarriesTheCorner) {
  ButtonParent parent;
  CDspButton button(1, parent);
  button.SetMenuMessage(0xC123);
  button.OnLButtonDown(300, 400);
  ASSERT_EQ(parent.messages.size(), 1u);
  EXPECT_EQ(parent.messages[0].first, 0xC123u);
  EXPECT_EQ(parent.messages[0].second, 300 | 400 << 16);
}

}  // namespace
