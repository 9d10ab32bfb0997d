#include "documents/xml_text.h"

#include <cstring>
#include <ostream>

TiXmlText::~TiXmlText() = default;

void TiXmlText::Print(std::FILE* file, int /*depth*/) const { PutString(value, file); }

void TiXmlText::StreamOut(std::ostream* out) const { PutString(value, out); }

const char* TiXmlText::Parse(const char* p, TiXmlParsingData* data, TiXmlNode* owner) {
  value.clear();
  if (!p) return nullptr;
  Stamp(p, data);
  const bool raw = owner && std::strcmp(owner->Value(), "SharedBlob") == 0;
  const char* end = raw ? ReadBase64Block(p, &value, "<") : ReadText(p, &value, true, "<", false);
  // Leave the caller on the "<" that ended the text.
  return (end > p && end[-1] == '<') ? end - 1 : end;
}

TiXmlNode* TiXmlText::Clone() const {
  auto* clone = new TiXmlText(value);
  CopyToClone(clone);
  return clone;
}

bool TiXmlText::Blank() const {
  for (const char c : value)
    if (!IsWhiteSpace(c)) return false;
  return true;
}

TiXmlBase64Text::~TiXmlBase64Text() = default;

void TiXmlBase64Text::Print(std::FILE* file, int /*depth*/) const {
  std::fwrite(value.data(), 1, value.size(), file);
}

TiXmlNode* TiXmlBase64Text::Clone() const {
  auto* clone = new TiXmlBase64Text(value);
  CopyToClone(clone);
  return clone;
}
