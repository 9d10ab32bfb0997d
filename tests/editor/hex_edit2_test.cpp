// CHexEdit2 as a user meets it: typing, the cap at 127, hexadecimal and decimal, Convert, the
// guarded "0x" and the context menu.
#include <gtest/gtest.h>

#include <string>

#include "editor/hex_edit2.h"
#include "platform/clipboard.h"
#include "tests/support/dialog_recorders.h"
#include "tests/support/editor_recorders.h"

namespace {

struct Box {
  TextBoxRecorder view;
  CHexEdit2 edit{view};

  explicit Box(const std::wstring& text = L"") {
    if (!text.empty()) view.SetText(text);
  }
};

// The clipboard is the process's own in tests; each test starts it afresh.
class ClipboardText {
 public:
  explicit ClipboardText(const std::string& text) { Clipboard().SetText(text); }
  ~ClipboardText() { Clipboard().SetText(""); }
};

bool Enabled(const CPopupMenu& menu, std::uint32_t command) {
  for (const CPopupMenu::Item& item : menu.Items())
    if (!item.separator && item.command == command) return item.enabled;
  ADD_FAILURE() << "no item " << command;
  return false;
}

TEST(HexEdit2, TypingPastOneHundredTwentySevenCapsTheValueInItsOwnForm) {
  Box decimal, hex;
  decimal.view.Type(L"200");
  EXPECT_EQ(decimal.view.Text(), L"127");
  EXPECT_FALSE(decimal.edit.IsHex());
  hex.view.Type(L"0xFF");
  EXPECT_EQ(hex.view.Text(), L"0x7f") << "SetValue writes lower case";
  EXPECT_EQ(hex.edit.GetValue(), 127u);
}

TEST(HexEdit2, OnlyAZeroFirstTakesAnXAndLettersGoToUpperCase) {
  Box box;
  box.view.Type(L"x");
  EXPECT_EQ(box.view.Text(), L"") << "a lone x is refused";
  box.view.Type(L"0X");
  EXPECT_EQ(box.view.Text(), L"0x");
  box.view.Type(L"1agz");
  EXPECT_EQ(box.view.Text(), L"0x1A") << "g and z are swallowed";
  EXPECT_EQ(box.edit.GetValue(), 26u);
  box.view.Type(L"\b\b");
  EXPECT_EQ(box.view.Text(), L"0x");
}

TEST(HexEdit2, ALetterOrTheZeroXMakesTheTextHexadecimal) {
  Box letter(L"1A"), digits(L"10"), prefixed(L"0x40"), junk(L"zz");
  EXPECT_TRUE(letter.edit.IsHex());
  EXPECT_EQ(letter.edit.GetValue(), 26u);
  EXPECT_FALSE(digits.edit.IsHex());
  EXPECT_EQ(digits.edit.GetValue(), 10u);
  EXPECT_TRUE(prefixed.edit.IsHex());
  EXPECT_EQ(prefixed.edit.GetValue(), 64u);
  EXPECT_EQ(junk.edit.GetValue(), 0u);
  digits.edit.SetValue(5, true);
  EXPECT_EQ(digits.view.Text(), L"0x5");
  digits.edit.SetValue(5, false);
  EXPECT_EQ(digits.view.Text(), L"5");
}

TEST(HexEdit2, ConvertSwitchesFormsWithCapitalDigits) {
  Box box(L"0x40");
  box.edit.Convert();
  EXPECT_EQ(box.view.Text(), L"64");
  box.edit.Convert();
  EXPECT_EQ(box.view.Text(), L"0x40");
  Box letters(L"26");
  letters.edit.Convert();
  EXPECT_EQ(letters.view.Text(), L"0x1A") << "unlike SetValue's lower case";
}

TEST(HexEdit2, TheZeroXCannotBeBrokenByAccidentButGoesAsAWholeSelection) {
  Box box(L"0x12");
  box.view.Select(1, 1);
  box.view.Type(L"5\b");
  EXPECT_EQ(box.view.Text(), L"0x12") << "nothing typed inside the prefix, no backspace over 0";
  box.view.Select(0, 1);
  EXPECT_FALSE(box.view.Press(EditKey::Delete));
  EXPECT_FALSE(box.view.Press(EditKey::Cut));
  box.view.Select(0, 0);
  EXPECT_FALSE(box.view.Press(EditKey::Delete));
  box.view.Select(2, 3);
  EXPECT_TRUE(box.view.Press(EditKey::Delete));
  EXPECT_EQ(box.view.Text(), L"0x2");
  box.view.Select(0, 3);
  box.view.Type(L"7");
  EXPECT_EQ(box.view.Text(), L"7") << "a selection of the whole prefix may be typed over";
  EXPECT_FALSE(box.edit.IsHex());
}

TEST(HexEdit2, PasteScansTheClipboardInSixteenBitUnitsSoOnlyOneCharacterPasses) {
  Box box(L"1");
  box.view.Select(1, 1);
  EXPECT_TRUE(box.edit.CanPaste("7"));
  EXPECT_TRUE(box.edit.CanPaste("a"));
  EXPECT_FALSE(box.edit.CanPaste("77")) << "\"77\" reads as one unit, no digit";
  EXPECT_FALSE(box.edit.CanPaste("0x"));
  EXPECT_FALSE(box.edit.CanPaste("G"));
  Box prefixed(L"0x1");
  prefixed.view.Select(1, 1);
  EXPECT_FALSE(prefixed.edit.CanPaste("5")) << "inside the prefix";
  prefixed.view.Select(3, 3);
  EXPECT_TRUE(prefixed.edit.CanPaste("5"));
  ClipboardText clipboard("3");
  EXPECT_TRUE(prefixed.view.Press(EditKey::Paste));
  EXPECT_EQ(prefixed.view.Text(), L"0x13");
  Clipboard().SetText("33");
  EXPECT_FALSE(prefixed.view.Press(EditKey::Paste));
}

TEST(HexEdit2, TheContextMenuEnablesByTheTextTheSelectionAndTheClipboard) {
  ClipboardText clipboard("5");
  Box empty;
  CPopupMenu menu = empty.edit.ContextMenu();
  ASSERT_EQ(menu.Count(), 10u);
  EXPECT_EQ(menu.TextAt(0), L"&Undo");
  EXPECT_EQ(menu.TextAt(2), L"Cu&t");
  EXPECT_EQ(menu.TextAt(7), L"Select &All");
  EXPECT_EQ(menu.TextOf(CHexEdit2::kConvert), L"Con&vert");
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kUndo));
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kCopy));
  EXPECT_TRUE(Enabled(menu, CHexEdit2::kPaste));
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kSelectAll));
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kConvert));

  Box prefix(L"0x");
  EXPECT_FALSE(Enabled(prefix.edit.ContextMenu(), CHexEdit2::kConvert));
  prefix.view.Select(0, 1);
  menu = prefix.edit.ContextMenu();
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kCut)) << "just the 0 of the prefix";
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kDelete));
  EXPECT_TRUE(Enabled(menu, CHexEdit2::kCopy));
  EXPECT_TRUE(Enabled(menu, CHexEdit2::kSelectAll));
  prefix.view.Select(0, 2);
  EXPECT_FALSE(Enabled(prefix.edit.ContextMenu(), CHexEdit2::kSelectAll)) << "all selected";

  Box typed;
  typed.view.Type(L"12");
  typed.view.Select(0, 1);
  EXPECT_TRUE(Enabled(typed.edit.ContextMenu(), CHexEdit2::kUndo));
  typed.view.readOnly = true;
  menu = typed.edit.ContextMenu();
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kUndo));
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kCut));
  EXPECT_FALSE(Enabled(menu, CHexEdit2::kPaste));
  EXPECT_TRUE(Enabled(menu, CHexEdit2::kCopy));
}

TEST(HexEdit2, ARightClickFocusesRunsTheChoiceAndNormalisesTheClipboardFirst) {
  PopupMenuRecorder menus;
  ClipboardText clipboard("0Xab");
  Box box(L"0x40");
  menus.AnswerNext(CHexEdit2::kConvert);
  box.view.RightClick(30, 40);
  EXPECT_TRUE(box.view.focused);
  ASSERT_EQ(menus.Menus().size(), 1u);
  EXPECT_EQ(menus.Menus()[0].x, 30);
  EXPECT_EQ(box.view.Text(), L"64");
  EXPECT_EQ(Clipboard().Text(), "0Xab") << "Convert leaves the clipboard alone";
  menus.AnswerNext(CHexEdit2::kSelectAll);
  menus.AnswerNext(CHexEdit2::kCopy);
  box.view.RightClick();
  EXPECT_EQ(box.view.Selection().end, 2);
  EXPECT_EQ(Clipboard().Text(), "0Xab");
  box.view.RightClick();
  EXPECT_EQ(Clipboard().Text(), "64") << "normalised to \"0xAB\", then the copy replaced it";
  Clipboard().SetText("0Xab");
  menus.AnswerNext(CHexEdit2::kUndo);
  box.view.RightClick();
  EXPECT_EQ(Clipboard().Text(), "0xAB");
}

}  // namespace
