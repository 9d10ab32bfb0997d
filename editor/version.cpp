#include "editor/version.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "platform/module_version.h"

namespace audio {

namespace {

std::vector<std::wstring_view> Split(std::wstring_view text, wchar_t separator) {
  std::vector<std::wstring_view> parts;
  for (std::size_t at = 0;;) {
    const std::size_t next = text.find(separator, at);
    parts.push_back(text.substr(at, next == std::wstring_view::npos ? next : next - at));
    if (next == std::wstring_view::npos) return parts;
    at = next + 1;
  }
}

// Leading blanks, then digits up to the first other character ("2, 4, 0, 400" has blanks);
// 0 without digits, the largest value past 32 bits.
std::uint32_t ReadNumber(std::wstring_view part) {
  std::size_t i = part.find_first_not_of(L" \t");
  std::uint64_t value = 0;
  for (; i < part.size() && part[i] >= L'0' && part[i] <= L'9'; ++i)
    value = std::min<std::uint64_t>(value * 10 + static_cast<std::uint64_t>(part[i] - L'0'),
                                    std::numeric_limits<std::uint32_t>::max());
  return static_cast<std::uint32_t>(value);
}

}  // namespace

HRESULT CVersion::GetDLLVersion(const std::wstring& path, std::uint32_t& a, std::uint32_t& b,
                                std::uint32_t& c, std::uint32_t& d) {
  if (const auto text = ReadModuleFileVersion(path)) {
    Parse(*text);
  } else {
    m_text.clear();
    std::fill(std::begin(m_numbers), std::end(m_numbers), 0u);
    m_result = E_FAIL;
  }
  a = m_numbers[0];
  b = m_numbers[1];
  c = m_numbers[2];
  d = m_numbers[3];
  return m_result;
}

HRESULT CVersion::Parse(std::wstring_view text) {
  m_text = text;
  std::fill(std::begin(m_numbers), std::end(m_numbers), 0u);
  m_result = E_FAIL;
  for (const wchar_t separator : {L'.', L','}) {
    const std::vector<std::wstring_view> parts = Split(text, separator);
    if (parts.size() != 4) continue;
    for (std::size_t i = 0; i < 4; ++i) m_numbers[i] = ReadNumber(parts[i]);
    m_result = S_OK;
    break;
  }
  return m_result;
}

}  // namespace audio
