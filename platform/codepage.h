// The one conversion between wide text and the narrow text of documents and name lists: UTF-8
// on Linux, the active ANSI code page on Windows. Each direction is used at one boundary only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

inline constexpr std::uint32_t kUtf8CodePage = 65001;

// [any thread] The code page of narrow text: kUtf8CodePage on Linux, the active ANSI code page
// (1252 in Western Europe and the Americas) on Windows.
std::uint32_t NarrowCodePage();

// Bytes that do not decode become a replacement character (U+FFFD in UTF-8); nothing is
// dropped silently.
std::wstring NarrowToWide(std::string_view narrow);
// Characters that the code page cannot hold become '?', one for each; never a look-alike.
std::string WideToNarrow(std::wstring_view wide);
