#include "documents/xml_markup.h"

#include <cstring>
#include <ostream>

#include "documents/xml_attribute.h"
#include "documents/xml_document.h"

namespace {

void Indent(std::FILE* file, int depth) {
  for (int i = 0; i < depth; ++i) std::fputs("    ", file);
}

void Write(std::FILE* file, const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), file);
}

}  // namespace

TiXmlComment::~TiXmlComment() = default;

void TiXmlComment::Print(std::FILE* file, int depth) const {
  Indent(file, depth);
  std::fputs("<!--", file);
  Write(file, value);
  std::fputs("-->", file);
}

void TiXmlComment::StreamOut(std::ostream* out) const { *out << "<!--" << value << "-->"; }

const char* TiXmlComment::Parse(const char* p, TiXmlParsingData* data, TiXmlNode* /*parent*/) {
  value.clear();
  p = SkipWhiteSpace(p);
  Stamp(p, data);
  if (!StringEqual(p, "<!--", false) || !std::strstr(p + 4, "-->")) {
    SetError(GetDocument(), TIXML_ERROR_PARSING_COMMENT, p, data);
    return nullptr;
  }
  return ReadText(p + 4, &value, false, "-->", false);
}

TiXmlNode* TiXmlComment::Clone() const {
  auto* clone = new TiXmlComment;
  CopyToClone(clone);
  return clone;
}

TiXmlUnknown::~TiXmlUnknown() = default;

void TiXmlUnknown::Print(std::FILE* file, int depth) const {
  Indent(file, depth);
  Write(file, value);
}

void TiXmlUnknown::StreamOut(std::ostream* out) const { *out << '<' << value << '>'; }

const char* TiXmlUnknown::Parse(const char* p, TiXmlParsingData* data, TiXmlNode* /*parent*/) {
  value.clear();
  p = SkipWhiteSpace(p);
  Stamp(p, data);
  if (!p || *p != '<') {
    SetError(GetDocument(), TIXML_ERROR_PARSING_UNKNOWN, p, data);
    return nullptr;
  }
  const char* end = p + 1 + std::strcspn(p + 1, ">");
  value.assign(p + 1, end);
  return *end ? end + 1 : end;
}

TiXmlNode* TiXmlUnknown::Clone() const {
  auto* clone = new TiXmlUnknown;
  CopyToClone(clone);
  return clone;
}

TiXmlDeclaration::TiXmlDeclaration(const char* versionText, const char* encodingText,
                                   const char* standaloneText)
    : TiXmlNode(DECLARATION),
      version(versionText),
      encoding(encodingText),
      standalone(standaloneText) {}

TiXmlDeclaration::~TiXmlDeclaration() = default;

std::string TiXmlDeclaration::Markup() const {
  std::string text = "<?xml ";
  const auto add = [&text](const char* name, const std::string& field) {
    if (!field.empty()) text.append(name).append("=\"").append(field).append("\" ");
  };
  add("version", version);
  add("encoding", encoding);
  add("standalone", standalone);
  return text + "?>";
}

void TiXmlDeclaration::Print(std::FILE* file, int /*depth*/) const { Write(file, Markup()); }

void TiXmlDeclaration::StreamOut(std::ostream* out) const {
  const std::string text = Markup();
  out->write(text.data(), static_cast<std::streamsize>(text.size()));
}

const char* TiXmlDeclaration::Parse(const char* p, TiXmlParsingData* data,
                                    TiXmlNode* /*parent*/) {
  version.clear();
  encoding.clear();
  standalone.clear();
  p = SkipWhiteSpace(p);
  Stamp(p, data);
  if (StringEqual(p, "<?xml", true)) {
    p += 5;
    while (*p) {
      if (*p == '>') return p + 1;
      p = SkipWhiteSpace(p);
      const char* after = p;
      if (StringEqual(p, "version", true))
        after = ReadField(p, data, &version);
      else if (StringEqual(p, "encoding", true))
        after = ReadField(p, data, &encoding);
      else if (StringEqual(p, "standalone", true))
        after = ReadField(p, data, &standalone);
      else
        while (*after && *after != '>' && !IsWhiteSpace(*after)) ++after;
      if (!after) break;
      p = after;
    }
  }
  SetError(GetDocument(), TIXML_ERROR_PARSING_DECLARATION, p, data);
  return nullptr;
}

const char* TiXmlDeclaration::ReadField(const char* p, TiXmlParsingData* data,
                                        std::string* field) {
  TiXmlAttribute attribute;
  p = attribute.Parse(p, data, nullptr);
  *field = attribute.ValueStr();
  return p;
}

TiXmlNode* TiXmlDeclaration::Clone() const {
  auto* clone = new TiXmlDeclaration(version, encoding, standalone);
  CopyToClone(clone);
  return clone;
}
