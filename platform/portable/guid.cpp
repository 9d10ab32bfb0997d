#include <cwchar>

#include "platform/com.h"

namespace {

int HexValue(wchar_t c) {
  if (c >= L'0' && c <= L'9') return c - L'0';
  if (c >= L'a' && c <= L'f') return c - L'a' + 10;
  if (c >= L'A' && c <= L'F') return c - L'A' + 10;
  return -1;
}

// Reads `digits` hex digits at `at`; false on any other character.
bool ReadHex(std::wstring_view text, std::size_t at, int digits, std::uint32_t& out) {
  out = 0;
  for (int k = 0; k < digits; ++k) {
    const int v = HexValue(text[at + static_cast<std::size_t>(k)]);
    if (v < 0) return false;
    out = (out << 4) | static_cast<std::uint32_t>(v);
  }
  return true;
}

}  // namespace

bool GuidFromString(std::wstring_view text, GUID& out) noexcept {
  // {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}
  if (text.size() != 38 || text[0] != L'{' || text[37] != L'}' || text[9] != L'-' ||
      text[14] != L'-' || text[19] != L'-' || text[24] != L'-')
    return false;
  std::uint32_t d1 = 0, d2 = 0, d3 = 0, b = 0;
  if (!ReadHex(text, 1, 8, d1) || !ReadHex(text, 10, 4, d2) || !ReadHex(text, 15, 4, d3))
    return false;
  GUID g{d1, static_cast<std::uint16_t>(d2), static_cast<std::uint16_t>(d3), {}};
  static constexpr std::size_t kByteAt[8] = {20, 22, 25, 27, 29, 31, 33, 35};
  for (int k = 0; k < 8; ++k) {
    if (!ReadHex(text, kByteAt[k], 2, b)) return false;
    g.Data4[k] = static_cast<std::uint8_t>(b);
  }
  out = g;
  return true;
}

std::wstring GuidToString(const GUID& g) {
  wchar_t buffer[39];
  std::swprintf(buffer, 39, L"{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                static_cast<unsigned>(g.Data1), static_cast<unsigned>(g.Data2),
                static_cast<unsigned>(g.Data3), g.Data4[0], g.Data4[1], g.Data4[2], g.Data4[3],
                g.Data4[4], g.Data4[5], g.Data4[6], g.Data4[7]);
  return buffer;
}
