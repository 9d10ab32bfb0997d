#include "editor/hex_edit2.h"

#include <cstdio>
#include <limits>

#include "platform/clipboard.h"

namespace {

bool IsDecimalDigit(char32_t c) { return c >= U'0' && c <= U'9'; }
bool IsUpperHexDigit(char32_t c) { return IsDecimalDigit(c) || (c >= U'A' && c <= U'F'); }
bool IsHexDigit(char32_t c) { return IsUpperHexDigit(c) || (c >= U'a' && c <= U'f'); }
bool IsX(wchar_t c) { return c == L'x' || c == L'X'; }

int DigitValue(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  return 99;
}

// Reads a number as scanf's "%u" or "%x" does (leading blanks skipped, "%x" taking an optional
// "0x"), stopping at the first other character; 0 when no digit comes. Values beyond 32 bits
// stay at the largest, where the C library would leave them undefined.
std::uint32_t ParseNumber(std::wstring_view text, unsigned base) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == L' ' || text[i] == L'\t')) ++i;
  if (base == 16 && text.size() > i + 2 && text[i] == L'0' && IsX(text[i + 1]) &&
      DigitValue(text[i + 2]) < 16)
    i += 2;
  std::uint64_t value = 0;
  for (; i < text.size() && DigitValue(text[i]) < static_cast<int>(base); ++i) {
    value = value * base + static_cast<std::uint64_t>(DigitValue(text[i]));
    if (value > std::numeric_limits<std::uint32_t>::max())
      return std::numeric_limits<std::uint32_t>::max();
  }
  return static_cast<std::uint32_t>(value);
}

std::wstring Format(const wchar_t* format, std::uint32_t value) {
  wchar_t text[16];
  std::swprintf(text, 16, format, static_cast<unsigned>(value));
  return text;
}

bool StartsWith0x(std::wstring_view text) { return text.substr(0, 2) == L"0x"; }

// The clipboard's 8-bit text read as 16-bit units, up to the first zero unit.
std::u16string AsSixteenBitUnits(std::string_view bytes) {
  std::u16string units;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i]);
    const auto high = i + 1 < bytes.size() ? static_cast<unsigned char>(bytes[i + 1]) : 0u;
    const auto unit = static_cast<char16_t>(low | high << 8);
    if (unit == 0) break;
    units.push_back(unit);
  }
  return units;
}

// Upper case throughout but for the "x" of a prefix, which goes to lower case.
void NormaliseClipboard() {
  CClipboardPresenter& clipboard = Clipboard();
  std::optional<std::string> text = clipboard.Text();
  if (!text) return;
  for (char& c : *text) {
    if (c == 'X' || c == 'x')
      c = 'x';
    else if (c >= 'a' && c <= 'z')
      c = static_cast<char>(c - 'a' + 'A');
  }
  clipboard.SetText(*text);
}

}  // namespace

CHexEdit2::CHexEdit2(ITextBoxView& box) : m_box(box) { m_box.SetEvents(this); }

CHexEdit2::~CHexEdit2() { m_box.SetEvents(nullptr); }

std::uint32_t CHexEdit2::GetValue() const {
  const std::wstring text = m_box.Text();
  if (!m_isHex) return ParseNumber(text, 10);
  return ParseNumber(StartsWith0x(text) ? std::wstring_view(text).substr(2) : text, 16);
}

void CHexEdit2::SetValue(std::uint32_t value, bool hex) {
  m_box.SetText(Format(hex ? L"0x%x" : L"%u", value));
}

void CHexEdit2::Convert() {
  if (m_isHex)
    m_box.SetText(Format(L"%u", GetValue()));
  else
    m_box.SetText(Format(L"0x%X", ParseNumber(m_box.Text(), 10)));
}

CHexEdit2::Caret CHexEdit2::Look() const {
  const std::wstring text = m_box.Text();
  return {text.size() > 0 ? text[0] : L'\0', text.size() > 1 ? text[1] : L'\0',
          m_box.Selection()};
}

std::optional<wchar_t> CHexEdit2::OnChar(wchar_t c) {
  const Caret k = Look();
  const int start = k.selection.start, end = k.selection.end;
  if (c < 32 && c != L'\b') return c;
  if (c == L'\b') {
    if (k.HasPrefix() && k.c0 == L'0' && end == 1) return std::nullopt;
    return c;
  }
  if (IsX(c) && start == 1 && k.c0 == L'0' && !k.HasPrefix()) return L'x';
  if (k.HasPrefix() && start < 2) {
    if (end < 2) return std::nullopt;
    if (IsX(c) && start == 1 && k.c0 == L'0') return L'x';
  }
  if (IsUpperHexDigit(static_cast<char32_t>(c))) return c;
  if (c >= L'a' && c <= L'f') return static_cast<wchar_t>(c - L'a' + L'A');
  return std::nullopt;
}

bool CHexEdit2::OnEditKey(EditKey key) {
  const Caret k = Look();
  switch (key) {
    case EditKey::Delete:
      return !(k.HasPrefix() && k.selection.start == 0 && k.selection.end < 2);
    case EditKey::Cut:
      return !(k.HasPrefix() && k.selection.start == 0 && k.selection.end == 1);
    case EditKey::Paste: {
      const std::optional<std::string> text = Clipboard().Text();
      return text && CanPaste(*text);
    }
  }
  return true;
}

void CHexEdit2::OnTextChanged() {
  const std::wstring text = m_box.Text();
  m_isHex = StartsWith0x(text) || text.find_first_of(L"ABCDEF") != std::wstring::npos;
  if (GetValue() > 127) SetValue(127, m_isHex);
  m_box.Redraw();
}

bool CHexEdit2::CanPaste(std::string_view clipboard) const {
  return CanPasteUnits(AsSixteenBitUnits(clipboard));
}

bool CHexEdit2::CanPasteUnits(std::u16string_view text) const {
  const Caret k = Look();
  const int start = k.selection.start, end = k.selection.end;
  if (k.HasPrefix() && end < 2) return false;
  if (text.size() >= 2 && text[0] == u'0' && (text[1] == u'x' || text[1] == u'X')) {
    if (k.HasPrefix() ? !(start == 0 && end >= 2) : start > 0) return false;
    text.remove_prefix(2);
  }
  if (!text.empty() && (text[0] == u'x' || text[0] == u'X')) {
    if (!(k.c0 == L'0' && start == 1 && end >= 1)) return false;
    text.remove_prefix(1);
  }
  for (char16_t c : text)
    if (!IsHexDigit(c)) return false;
  return true;
}

// The selection is not just the "0" of a prefix, which would break it.
bool CHexEdit2::CutAllowed() const {
  const Caret k = Look();
  return k.selection.start != k.selection.end && !m_box.IsReadOnly() &&
         !(k.HasPrefix() && k.selection.start == 0 && k.selection.end == 1);
}

CPopupMenu CHexEdit2::ContextMenu() const {
  const std::wstring text = m_box.Text();
  const TextSelection selection = m_box.Selection();
  const bool readOnly = m_box.IsReadOnly();
  const std::optional<std::string> clipboard = Clipboard().Text();
  const bool allSelected =
      selection.start == 0 && selection.end == static_cast<int>(text.size());
  CPopupMenu menu;
  menu.Append(kUndo, L"&Undo", m_box.CanUndo() && !readOnly);
  menu.AppendSeparator();
  menu.Append(kCut, L"Cu&t", CutAllowed());
  menu.Append(kCopy, L"&Copy", selection.start != selection.end);
  menu.Append(kPaste, L"&Paste", clipboard && !readOnly && CanPaste(*clipboard));
  menu.Append(kDelete, L"&Delete", CutAllowed());
  menu.AppendSeparator();
  menu.Append(kSelectAll, L"Select &All", !text.empty() && !allSelected);
  menu.AppendSeparator();
  menu.Append(kConvert, L"Con&vert", !text.empty() && text != L"0x");
  return menu;
}

void CHexEdit2::OnContextMenu(int x, int y) {
  m_box.TakeFocus();
  RunCommand(TrackPopupMenu(ContextMenu(), x, y));
}

void CHexEdit2::RunCommand(std::uint32_t command) {
  if (command == kUndo || (command >= kCut && command <= kDelete)) NormaliseClipboard();
  switch (command) {
    case kUndo:
      return m_box.Undo();
    case kCut:
      return m_box.Cut();
    case kCopy:
      return m_box.Copy();
    case kPaste:
      return m_box.Paste();
    case kDelete:
      return m_box.DeleteSelection();
    case kSelectAll:
      return m_box.SetSelection({0, static_cast<int>(m_box.Text().size())});
    case kConvert:
      return Convert();
    default:
      return;
  }
}
