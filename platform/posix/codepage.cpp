#include <cstdint>

#include "platform/codepage.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsContinuation(unsigned char c) { return (c & 0xC0) == 0x80; }

// Decodes one UTF-8 sequence at `i`, advancing it; overlong forms, surrogates and values past
// U+10FFFF decode as the replacement character, one byte consumed.
char32_t DecodeOne(std::string_view s, std::size_t& i) {
  const auto lead = static_cast<unsigned char>(s[i]);
  if (lead < 0x80) {
    ++i;
    return lead;
  }
  int length = 0;
  char32_t value = 0;
  char32_t minimum = 0;
  if ((lead & 0xE0) == 0xC0) { length = 2; value = lead & 0x1Fu; minimum = 0x80; }
  else if ((lead & 0xF0) == 0xE0) { length = 3; value = lead & 0x0Fu; minimum = 0x800; }
  else if ((lead & 0xF8) == 0xF0) { length = 4; value = lead & 0x07u; minimum = 0x10000; }
  if (length == 0 || i + static_cast<std::size_t>(length) > s.size()) {
    ++i;
    return kReplacement;
  }
  for (int k = 1; k < length; ++k) {
    const auto c = static_cast<unsigned char>(s[i + static_cast<std::size_t>(k)]);
    if (!IsContinuation(c)) {
      ++i;
      return kReplacement;
    }
    value = (value << 6) | (c & 0x3Fu);
  }
  if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    ++i;
    return kReplacement;
  }
  i += static_cast<std::size_t>(length);
  return value;
}

void EncodeOne(char32_t c, std::string& out) {
  if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
    out.push_back('?');
  } else if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

}  // namespace

std::wstring NarrowToWide(std::string_view narrow) {
  std::wstring wide;
  wide.reserve(narrow.size());
  for (std::size_t i = 0; i < narrow.size();) wide.push_back(static_cast<wchar_t>(DecodeOne(narrow, i)));
  return wide;
}

std::string WideToNarrow(std::wstring_view wide) {
  std::string narrow;
  narrow.reserve(wide.size());
  for (const wchar_t c : wide) EncodeOne(static_cast<char32_t>(c), narrow);
  return narrow;
}

std::uint32_t NarrowCodePage() { return kUtf8CodePage; }
