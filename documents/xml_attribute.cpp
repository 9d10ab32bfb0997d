#include "documents/xml_attribute.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ostream>
#include <string_view>

#include "documents/xml_document.h"

void TiXmlAttribute::Print(std::FILE* file, int /*depth*/) const {
  const std::string text = Markup();
  std::fwrite(text.data(), 1, text.size(), file);
}

void TiXmlAttribute::StreamOut(std::ostream* out) const {
  const std::string text = Markup();
  out->write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string TiXmlAttribute::Markup() const {
  std::string text;
  AppendMarkup(&text);
  return text;
}

void TiXmlAttribute::AppendMarkup(std::string* text) const {
  const char quote = std::find(value.begin(), value.end(), '"') == value.end() ? '"' : '\'';
  PutString(name, text);
  *text += '=';
  *text += quote;
  PutString(value, text);
  *text += quote;
}

const char* TiXmlAttribute::Parse(const char* p, TiXmlParsingData* data, TiXmlNode* /*parent*/) {
  p = SkipWhiteSpace(p);
  if (!p || !*p) return nullptr;
  Stamp(p, data);
  const char* start = p;
  p = ReadName(p, &name);
  if (!p) {
    SetError(document, TIXML_ERROR_READING_ATTRIBUTES, start, data);
    return nullptr;
  }
  p = SkipWhiteSpace(p);
  if (*p != '=') {
    SetError(document, TIXML_ERROR_READING_ATTRIBUTES, p, data);
    return nullptr;
  }
  p = SkipWhiteSpace(p + 1);
  if (*p == '\'' || *p == '"') {
    const char* end = std::strchr(p + 1, *p);
    if (!end) return nullptr;
    const auto length = static_cast<std::size_t>(end - (p + 1));
    if (std::memchr(p + 1, '&', length)) {
      const char quote[] = {*p, '\0'};
      return ReadText(p + 1, &value, false, quote, false);
    }
    value.assign(p + 1, length);
    return end + 1;
  }
  const char* end = p;
  while (*end && !IsWhiteSpace(*end) && *end != '/' && *end != '>') ++end;
  value.assign(p, end);
  return end;
}

int TiXmlAttribute::IntValue() const { return std::atoi(value.c_str()); }

double TiXmlAttribute::DoubleValue() const { return std::atof(value.c_str()); }

// Reads as "%d" does (blanks, a sign, digits, anything after ignored), but a number outside 32
// bits, which a saved file may hold, is refused instead of being undefined.
int TiXmlAttribute::QueryIntValue(int* out) const {
  const char* p = value.c_str();
  while (*p == ' ' || (*p >= '\t' && *p <= '\r')) ++p;
  const bool negative = *p == '-';
  if (*p == '-' || *p == '+') ++p;
  const char* digits = p;
  std::int64_t number = 0;
  for (; *p >= '0' && *p <= '9'; ++p) {
    number = number * 10 + (*p - '0');
    if (number > std::int64_t{INT32_MAX} + 1) return TIXML_WRONG_TYPE;
  }
  if (p == digits) return TIXML_WRONG_TYPE;
  number = negative ? -number : number;
  if (number > INT32_MAX) return TIXML_WRONG_TYPE;
  *out = static_cast<int>(number);
  return TIXML_SUCCESS;
}

// strtod where "%lf" would be: a number out of range gives infinity, not undefined behaviour.
int TiXmlAttribute::QueryDoubleValue(double* out) const {
  char* end = nullptr;
  const double number = std::strtod(value.c_str(), &end);
  if (end == value.c_str()) return TIXML_WRONG_TYPE;
  *out = number;
  return TIXML_SUCCESS;
}

void TiXmlAttribute::SetIntValue(int number) {
  char text[16];
  std::snprintf(text, sizeof text, "%d", number);
  value = text;
}

void TiXmlAttribute::SetDoubleValue(double number) {
  char text[512];
  std::snprintf(text, sizeof text, "%lf", number);
  value = text;
}

const TiXmlAttribute* TiXmlAttribute::Next() const {
  return (!next || next->IsSentinel()) ? nullptr : next;
}

const TiXmlAttribute* TiXmlAttribute::Previous() const {
  return (!prev || prev->IsSentinel()) ? nullptr : prev;
}

TiXmlAttributeSet::TiXmlAttributeSet() { sentinel.next = sentinel.prev = &sentinel; }

void TiXmlAttributeSet::Add(TiXmlAttribute* attribute) {
  attribute->next = &sentinel;
  attribute->prev = sentinel.prev;
  sentinel.prev->next = attribute;
  sentinel.prev = attribute;
}

void TiXmlAttributeSet::Remove(TiXmlAttribute* attribute) {
  attribute->prev->next = attribute->next;
  attribute->next->prev = attribute->prev;
  attribute->next = attribute->prev = nullptr;
}

const TiXmlAttribute* TiXmlAttributeSet::FindName(std::string_view name) const {
  for (const TiXmlAttribute* node = sentinel.next; node != &sentinel; node = node->next)
    if (node->name == name) return node;
  return nullptr;
}
