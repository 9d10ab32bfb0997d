// The one conversion between wide text and the narrow text of documents and name lists: UTF-8
// on Linux, the active ANSI code page on Windows. Each direction is used at one boundary only.
#pragma once

#include <string>
#include <string_view>

// Bytes that do not decode become U+FFFD; nothing is dropped silently.
std::wstring NarrowToWide(std::string_view narrow);
// Characters that cannot be encoded become '?'.
std::string WideToNarrow(std::wstring_view wide);
