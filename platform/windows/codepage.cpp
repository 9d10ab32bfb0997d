#include <climits>

#include "platform/codepage.h"
#include "platform/windows/system.h"

namespace {

// The conversion functions count in int; longer texts are cut rather than overflowed.
int ClampedLength(std::size_t length) {
  return length > INT_MAX ? INT_MAX : static_cast<int>(length);
}

}  // namespace

std::uint32_t NarrowCodePage() { return GetACP(); }

std::wstring NarrowToWide(std::string_view narrow) {
  if (narrow.empty()) return {};
  const int length = ClampedLength(narrow.size());
  const int needed = MultiByteToWideChar(CP_ACP, 0, narrow.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_ACP, 0, narrow.data(), length, wide.data(), needed);
  return wide;
}

// No best fit: a character the code page lacks becomes '?', never a look-alike that would read
// back as a different text. A UTF-8 code page takes neither the flag nor a default character.
std::string WideToNarrow(std::wstring_view wide) {
  if (wide.empty()) return {};
  const bool utf8 = GetACP() == CP_UTF8;
  const DWORD flags = utf8 ? 0 : WC_NO_BEST_FIT_CHARS;
  const char* fallback = utf8 ? nullptr : "?";
  const int length = ClampedLength(wide.size());
  const int needed =
      WideCharToMultiByte(CP_ACP, flags, wide.data(), length, nullptr, 0, fallback, nullptr);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, flags, wide.data(), length, narrow.data(), needed, fallback,
                      nullptr);
  return narrow;
}
