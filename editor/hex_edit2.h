// CHexEdit2: a one-line box for a MIDI data byte that takes hexadecimal ("0x40", "1A") or
// decimal ("64"). Its logic filters keys so that a leading "0x" is not broken by accident, caps
// the value at 127 as the text changes, converts between the two forms, and offers the edit
// box's context menu. It drives a text box view and listens to it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "editor/text_box_view.h"
#include "platform/popup_menu.h"

class CHexEdit2 final : private ITextBoxEvents {
 public:
  // The context menu's commands, the edit box's own.
  static constexpr std::uint32_t kUndo = 199, kCut = 768, kCopy = 769, kPaste = 770,
                                 kDelete = 771, kSelectAll = 2816, kConvert = 2817;

  // [editor thread] Listens to `box` from now on until destroyed; the box outlives it.
  explicit CHexEdit2(ITextBoxView& box);
  ~CHexEdit2();
  CHexEdit2(const CHexEdit2&) = delete;
  CHexEdit2& operator=(const CHexEdit2&) = delete;

  // The value of the text: hexadecimal when the text is ("0x" first, or a letter A to F),
  // else decimal; 0 when it does not parse.
  std::uint32_t GetValue() const;
  // Writes "0x%x" (lower case) when `hex`, else "%u".
  void SetValue(std::uint32_t value, bool hex);
  // Writes the value in the other form: decimal from hexadecimal, else "0x%X" (upper case).
  void Convert();
  bool IsHex() const noexcept { return m_isHex; }

  // Whether `clipboard` (the clipboard's 8-bit text) may be pasted over the selection. The
  // text is scanned in 16-bit units, so in effect only a single character passes.
  bool CanPaste(std::string_view clipboard) const;
  // The context menu with its items enabled as the box stands now.
  CPopupMenu ContextMenu() const;

 private:
  // ITextBoxEvents
  std::optional<wchar_t> OnChar(wchar_t c) override;
  bool OnEditKey(EditKey key) override;
  void OnTextChanged() override;
  void OnContextMenu(int x, int y) override;

  // The first two characters of the text (0 where missing) and the selection.
  struct Caret {
    wchar_t c0;
    wchar_t c1;
    TextSelection selection;
    bool HasPrefix() const noexcept { return c1 == L'x' || c1 == L'X'; }
  };
  Caret Look() const;
  bool CanPasteUnits(std::u16string_view text) const;
  bool CutAllowed() const;
  void RunCommand(std::uint32_t command);

  ITextBoxView& m_box;
  bool m_isHex = false;
};
