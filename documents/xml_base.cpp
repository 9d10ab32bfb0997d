#include "documents/xml_base.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ostream>

#include "documents/xml_document.h"

namespace {

bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
char ToLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }
char ToUpper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

int HexValue(char c) {
  if (IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Whether any of the eight bytes is below 14: a zero, tab, line break or other control.
bool HasControl(std::uint64_t word) {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  return ((word - kOnes * 14) & ~word & (kOnes * 128)) != 0;
}

bool IsNameChar(char c) {
  return IsAsciiLetter(c) || IsDigit(c) || c == '_' || c == '-' || c == '.' || c == ':';
}

// Bytes that PutString copies as they are, by table: it runs over whole base64 blocks.
// Ones and zeros rather than bools, so that four lookups combine without branches.
constexpr auto kPlain = [] {
  std::array<std::uint8_t, 256> plain{};
  for (int c = 32; c <= 126; ++c) plain[static_cast<std::size_t>(c)] = 1;
  for (const char c : {'&', '<', '>', '"', '\''}) plain[static_cast<unsigned char>(c)] = 0;
  return plain;
}();

std::uint8_t IsPlain(char c) { return kPlain[static_cast<unsigned char>(c)]; }

// Hands `str` to `sink` made safe for markup, in runs as long as the text allows.
template <class Entities, class Sink>
void Escape(const std::string& str, const Entities& entities, Sink sink) {
  const std::size_t length = str.size();
  std::size_t i = 0;
  while (i < length) {
    std::size_t run = i;
    // Four at a time: one branch for four lookups.
    while (length - run >= 4 &&
           (IsPlain(str[run]) & IsPlain(str[run + 1]) & IsPlain(str[run + 2]) & IsPlain(str[run + 3])))
      run += 4;
    while (run < length && IsPlain(str[run])) ++run;
    if (run > i) sink(str.data() + i, run - i);
    if (run == length) return;
    i = run;
    const char c = str[i];
    if (c == '&' && i + 2 < length && str[i + 1] == '#' && str[i + 2] == 'x') {
      // An existing numeric reference survives as it is.
      const std::size_t semicolon = str.find(';', i);
      const std::size_t end = semicolon == std::string::npos ? length : semicolon + 1;
      sink(str.data() + i, end - i);
      i = end;
      continue;
    }
    const auto named = std::find_if(std::begin(entities), std::end(entities),
                                    [c](const auto& e) { return e.chr == c; });
    if (named != std::end(entities)) {
      sink(named->str, named->strLength);
    } else {
      static constexpr char kHex[] = "0123456789ABCDEF";
      const auto byte = static_cast<unsigned char>(c);
      const char reference[] = {'&', '#', 'x', kHex[byte >> 4], kHex[byte & 15], ';'};
      sink(reference, sizeof reference);
    }
    ++i;
  }
}

}  // namespace

bool TiXmlBase::condenseWhiteSpace = false;

const TiXmlBase::Entity TiXmlBase::entity[NUM_ENTITY] = {
    {"&amp;", 5, '&'}, {"&lt;", 4, '<'}, {"&gt;", 4, '>'}, {"&quot;", 6, '"'}, {"&apos;", 6, '\''},
};

const char* const TiXmlBase::errorString[TIXML_ERROR_STRING_COUNT] = {
    "No error",
    "Error",
    "Failed to open file",
    "Memory allocation failed.",
    "Error parsing Element.",
    "Failed to read Element name",
    "Error reading Element value.",
    "Error reading Attributes.",
    "Error: empty tag.",
    "Error reading end tag.",
    "Error parsing Unknown.",
    "Error parsing Comment.",
    "Error parsing Declaration.",
    "Error document empty.",
};

TiXmlParsingData::TiXmlParsingData(const char* start, int tabSize, std::int32_t row,
                                   std::int32_t col)
    : cursor{row, col}, stamp(start), tabsize(tabSize) {}

// Counts in locals and hands the cursor back by value: a stamp per node reads it straight
// after writing it, and through memory that read waits for the writes.
TiXmlCursor TiXmlParsingData::Stamp(const char* now) {
  if (tabsize < 1 || !now || now <= stamp) return cursor;
  std::int32_t row = cursor.row;
  std::int32_t col = cursor.col;
  const char* p = stamp;
  while (p < now && *p) {
    // Eight bytes at a time while none of them is a control character.
    std::uint64_t word = 0;
    while (now - p >= 8 && (std::memcpy(&word, p, 8), !HasControl(word))) {
      col += 8;
      p += 8;
    }
    // Ordinary bytes short of a word in one count.
    const char* const ordinary = p;
    while (p < now && static_cast<unsigned char>(*p) >= 14) ++p;
    col += static_cast<std::int32_t>(p - ordinary);
    if (p == now || !*p) break;
    const char c = *p++;
    if (c == '\n' || c == '\r') {
      // CR LF and LF CR are one break, however the stamps fall.
      const char pair = c == '\n' ? '\r' : '\n';
      if (p < now && *p == pair) ++p;
      ++row;
      col = 0;
    } else if (c == '\t') {
      col += tabsize - col % tabsize;
    } else {
      ++col;
    }
  }
  stamp = p;
  cursor.row = row;
  cursor.col = col;
  return TiXmlCursor{row, col};
}

TiXmlBase::~TiXmlBase() = default;

const char* TiXmlBase::SkipWhiteSpace(const char* p) {
  while (p && IsWhiteSpace(*p)) ++p;
  return p;
}

const char* TiXmlBase::ReadName(const char* p, std::string* name) {
  name->clear();
  if (!p || !(IsAsciiLetter(*p) || *p == '_')) return nullptr;
  const char* end = p + 1;
  while (IsNameChar(*end)) ++end;
  name->assign(p, end);
  return end;
}

const char* TiXmlBase::ReadText(const char* p, std::string* text, bool trim, const char* endTag,
                                bool exact) {
  text->clear();
  if (!p || !*endTag) return p;
  const std::size_t tagLength = std::strlen(endTag);
  if (trim && condenseWhiteSpace) {
    p = SkipWhiteSpace(p);
    bool blankPending = false;
    while (*p && !StringEqual(p, endTag, exact)) {
      if (IsWhiteSpace(*p)) {
        blankPending = true;
        ++p;
        continue;
      }
      if (blankPending && !text->empty()) text->push_back(' ');
      blankPending = false;
      char c = 0;
      p = GetChar(p, &c);
      text->push_back(c);
    }
    return *p ? p + tagLength : p;
  }
  // Runs between the interesting characters go across as blocks.
  const char first = endTag[0];
  const char stops[] = {'&', first, exact ? first : ToLower(first), exact ? first : ToUpper(first),
                        '\0'};
  for (;;) {
    // Most texts are short, where a plain scan beats setting up the library's; a long one is
    // handed over to it after a while.
    const char* end = p;
    const auto isStop = [&stops](char c) {
      return !c || c == stops[0] || c == stops[1] || c == stops[2] || c == stops[3];
    };
    for (int n = 0; n < 64 && !isStop(*end); ++n) ++end;
    if (!isStop(*end)) end += std::strcspn(end, stops);
    const auto run = static_cast<std::size_t>(end - p);
    text->append(p, run);
    p += run;
    if (!*p) return p;
    if (StringEqual(p, endTag, exact)) return p + tagLength;
    char c = *p;
    p = (c == '&') ? GetEntity(p, &c) : p + 1;
    text->push_back(c);
  }
}

const char* TiXmlBase::ReadBase64Block(const char* p, std::string* text, const char* endTag) {
  text->clear();
  if (!endTag[0] || endTag[1]) return p;
  const char* end = p + std::strcspn(p, endTag);
  text->assign(p, end);
  return *end ? end + 1 : end;
}

const char* TiXmlBase::GetEntity(const char* p, char* value) {
  if (p[1] == '#' && p[2] == 'x') {
    const int high = HexValue(p[3]);
    const int low = high < 0 ? -1 : HexValue(p[4]);
    if (high >= 0 && low < 0 && p[4] == ';') {
      *value = static_cast<char>(high);
      return p + 5;
    }
    if (low >= 0 && p[5] == ';') {
      *value = static_cast<char>(high * 16 + low);
      return p + 6;
    }
  }
  for (const Entity& e : entity) {
    if (std::strncmp(p, e.str, e.strLength) == 0) {
      *value = e.chr;
      return p + e.strLength;
    }
  }
  *value = *p;
  return p + 1;
}

const char* TiXmlBase::GetChar(const char* p, char* value) {
  if (*p == '&') return GetEntity(p, value);
  *value = *p;
  return p + 1;
}

bool TiXmlBase::StringEqual(const char* p, const char* tag, bool exact) {
  if (!p) return false;
  for (; *tag; ++p, ++tag) {
    if (!*p) return false;
    if (exact ? *p != *tag : ToLower(*p) != ToLower(*tag)) return false;
  }
  return true;
}

void TiXmlBase::PutString(const std::string& str, std::string* out) {
  Escape(str, entity, [out](const char* text, std::size_t size) { out->append(text, size); });
}

void TiXmlBase::PutString(const std::string& str, std::ostream* out) {
  Escape(str, entity, [out](const char* text, std::size_t size) {
    out->write(text, static_cast<std::streamsize>(size));
  });
}

void TiXmlBase::PutString(const std::string& str, std::FILE* file) {
  Escape(str, entity,
         [file](const char* text, std::size_t size) { std::fwrite(text, 1, size, file); });
}

void TiXmlBase::SetError(TiXmlDocument* document, int id, const char* p, TiXmlParsingData* data) {
  if (document) document->SetError(id, p, data);
}

void TiXmlBase::Stamp(const char* p, TiXmlParsingData* data) {
  if (!data) return;
  location = data->Stamp(p);
}
