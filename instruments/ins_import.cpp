// Instrument definition files (.ins): the subset that fills the store.
#include <fstream>
#include <limits>
#include <optional>

#include "instruments/instrument.h"
#include "platform/codepage.h"

namespace {

enum class Section { Ignored, Definitions, PatchNames, ControllerNames };

// The next line as fgets with a 260-byte buffer gives it: up to and including a line feed, or
// 259 bytes. Nothing once the end of the text is reached inside a line, so a last line without
// an ending is lost, as it is for the C runtime whose end-of-file flag is then set.
std::optional<std::string_view> NextLine(std::string_view text, std::size_t& at) {
  constexpr std::size_t kMaxLine = 259;
  const std::string_view window = text.substr(at, kMaxLine);
  const std::size_t feed = window.find('\n');
  std::size_t length = 0;
  if (feed != std::string_view::npos)
    length = feed + 1;
  else if (window.size() == kMaxLine)
    length = kMaxLine;
  else
    return std::nullopt;
  const std::string_view line = text.substr(at, length);
  at += length;
  return line.substr(0, line.find('\0'));  // a C string ends at its first zero
}

std::wstring_view Trim(std::wstring_view s) {
  constexpr std::wstring_view kBlank = L" \t\r\n\v\f";
  const std::size_t first = s.find_first_not_of(kBlank);
  if (first == std::wstring_view::npos) return {};
  return s.substr(first, s.find_last_not_of(kBlank) - first + 1);
}

// A number as sscanf's "%d" reads it: blanks, a sign, then at least one digit, with anything
// after the digits ignored. Numbers outside 32 bits do not read.
std::optional<std::int32_t> LeadingInt(std::wstring_view s) {
  std::size_t i = s.find_first_not_of(L" \t\r\n\v\f");
  if (i == std::wstring_view::npos) return std::nullopt;
  const bool negative = s[i] == L'-';
  if (s[i] == L'-' || s[i] == L'+') ++i;
  std::int64_t value = 0;
  const std::size_t digits = i;
  for (; i < s.size() && s[i] >= L'0' && s[i] <= L'9'; ++i) {
    value = value * 10 + (s[i] - L'0');
    if (value > std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1) return std::nullopt;
  }
  if (i == digits) return std::nullopt;
  value = negative ? -value : value;
  if (value > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

Section SectionOf(std::wstring_view header) {
  if (header == L".Instrument Definitions") return Section::Definitions;
  if (header == L".Patch Names") return Section::PatchNames;
  if (header == L".Controller Names") return Section::ControllerNames;
  return Section::Ignored;
}

std::wstring_view SubsectionName(std::wstring_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(L'['), line.size()));
  const std::size_t last = line.find_last_not_of(L']');
  return line.substr(0, last == std::wstring_view::npos ? 0 : last + 1);
}

}  // namespace

struct CInstrument::DefinitionParse {
  Section section = Section::Ignored;
  std::wstring current;  // the last name in square brackets
};

bool CInstrument::ParseDefinitionFile(const std::wstring& path) {
  std::ifstream file(WideToNarrow(path));  // text mode, as the definitions are lines of text
  std::string text;
  char block[16384];
  while (file.read(block, sizeof block) || file.gcount() > 0)
    text.append(block, static_cast<std::size_t>(file.gcount()));
  return ParseDefinitionText(text);
}

bool CInstrument::ParseDefinitionText(std::string_view text) {
  CAutoLock lock(m_lock);
  DefinitionParse parse;
  std::size_t at = 0;
  while (const auto line = NextLine(text, at)) ParseLine(parse, Trim(NarrowToWide(*line)));
  return !m_devices.empty();
}

void CInstrument::ParseLine(DefinitionParse& parse, std::wstring_view line) {
  if (line.empty() || line.front() == L';') return;
  if (line.front() == L'.') {
    parse.section = SectionOf(line);
    parse.current.clear();
    return;
  }
  if (line.front() == L'[') {
    parse.current = SubsectionName(line);
    return;
  }
  const std::size_t equals = line.find(L'=');
  const std::wstring_view key =
      equals == std::wstring_view::npos ? std::wstring_view() : line.substr(0, equals);
  const std::wstring_view value = line.substr(equals == std::wstring_view::npos ? 1 : equals + 1);
  switch (parse.section) {
    case Section::ControllerNames:
      if (const auto number = LeadingInt(key)) m_controllerTables[parse.current][*number] = value;
      break;
    case Section::PatchNames:
      if (const auto number = LeadingInt(key)) m_patchTables[parse.current][*number] = value;
      break;
    case Section::Definitions:
      ParseDefinitionLine(parse.current, key, value);
      break;
    case Section::Ignored:
      break;
  }
}

void CInstrument::ParseDefinitionLine(const std::wstring& device, std::wstring_view key,
                                      std::wstring_view value) {
  constexpr std::wstring_view kPatch = L"Patch[";
  if (key.starts_with(kPatch)) {
    if (const auto n = LeadingInt(key.substr(kPatch.size()))) {
      DeviceEntry& entry = m_devices[device];
      // Method 1 counts banks by their select MSB.
      const std::int32_t bank = entry.bankSelMethod == 1 ? (*n & 0xFF) << 7 : *n;
      entry.banks[bank] = value;
      return;
    }
  }
  if (key == L"Control") {
    m_devices[device].controllerTable = value;
  } else if (key == L"BankSelMethod") {
    if (const auto method = LeadingInt(value)) m_devices[device].bankSelMethod = *method;
  }
}
