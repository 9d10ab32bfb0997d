#include "platform/popup_menu.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/editor_recorders.h"

TEST(PopupMenu, TextOfFindsCommandsInSubmenusAndPositionsCountSeparators) {
  auto bank = std::make_shared<CPopupMenu>();
  bank->Append(47101, L"Piano");
  CPopupMenu menu;
  menu.Append(46000, L"Import Patch Names...");
  menu.AppendSeparator();
  menu.AppendSubmenu(L"Bank 0", bank);
  menu.Append(47100, L"Empty   ");

  EXPECT_EQ(menu.TextOf(47101), L"Piano");
  EXPECT_EQ(menu.TextOf(47100), L"Empty   ");
  EXPECT_FALSE(menu.TextOf(0).has_value());  // neither the separator nor the submenu's label
  EXPECT_EQ(menu.TextAt(2), L"Bank 0");
  EXPECT_FALSE(menu.TextAt(4).has_value());
}

TEST(PopupMenu, HeadlessDismissesAndTheRecorderAnswersInOrder) {
  CPopupMenu menu;
  menu.Append(2000, L"Bypass");
  EXPECT_EQ(TrackPopupMenu(menu, 0, 0), 0u);
  {
    PopupMenuRecorder recorder;
    recorder.AnswerNext(2000);
    EXPECT_EQ(TrackPopupMenu(menu, 3, 4), 2000u);
    EXPECT_EQ(TrackPopupMenu(menu, 0, 0), 0u);
    ASSERT_EQ(recorder.Menus().size(), 2u);
    EXPECT_EQ(recorder.Menus()[0].x, 3);
  }
  EXPECT_EQ(TrackPopupMenu(menu, 0, 0), 0u);
}
