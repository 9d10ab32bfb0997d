#include "documents/xml_element.h"

#include <cstdlib>
#include <memory>
#include <ostream>
#include <typeinfo>

#include "documents/xml_arena.h"
#include "documents/xml_document.h"
#include "documents/xml_text.h"

namespace {

void Write(std::FILE* file, const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), file);
}

void AppendIndent(std::string* text, int depth) {
  if (depth > 0) text->append(4 * static_cast<std::size_t>(depth), ' ');
}

// Where tags are composed, one per thread and reused: a printed element would otherwise make a
// string of its own. Each use writes it out before handing over to a child.
std::string& Scratch() {
  thread_local std::string text;
  text.clear();
  return text;
}

// A short child that is plain text prints as PutString of its value in both forms, so it can
// join its parent's tags in one write. A kind derived from it prints its own way, and a long
// text is better written where it stands than copied first.
constexpr std::size_t kJoinedText = 256;

const TiXmlText* OnlyPlainText(const TiXmlNode* first, const TiXmlNode* last) {
  if (first != last || !first->ToText()) return nullptr;
  const TiXmlText* text = first->ToText();
  return typeid(*text) == typeid(TiXmlText) ? text : nullptr;
}

}  // namespace

TiXmlElement::TiXmlElement(const char* name) : TiXmlNode(ELEMENT) { value = name; }

TiXmlElement::~TiXmlElement() {
  // The set goes with the element, so its links need no mending on the way.
  const TiXmlAttribute* const last = attributeSet.Last();
  TiXmlAttribute* attribute = attributeSet.First();
  while (attribute) {
    TiXmlAttribute* const following = attribute == last ? nullptr : attribute->next;
    delete attribute;
    attribute = following;
  }
}

// Each tag is composed first and written in one call: a call per piece costs more than the text.
void TiXmlElement::Print(std::FILE* file, int depth) const {
  std::string& text = Scratch();
  AppendIndent(&text, depth);
  AppendStartTag(&text);
  if (!firstChild) {
    Write(file, text);
    return;
  }
  if (const TiXmlText* only = OnlyPlainText(firstChild, lastChild);
      only && only->SValue().size() <= kJoinedText) {
    PutString(only->SValue(), &text);
    AppendEndTag(&text);
    Write(file, text);
    return;
  }
  Write(file, text);
  if (firstChild == lastChild && firstChild->ToText()) {
    firstChild->Print(file, depth + 1);
    Write(file, AppendEndTag(&Scratch()));
    return;
  }
  for (const TiXmlNode* node = firstChild; node; node = node->NextSibling()) {
    if (!node->ToText()) std::fputc('\n', file);
    node->Print(file, depth + 1);
  }
  std::string& end = Scratch();
  end += '\n';
  AppendIndent(&end, depth);
  Write(file, AppendEndTag(&end));
}

void TiXmlElement::StreamOut(std::ostream* out) const {
  std::string& text = Scratch();
  AppendStartTag(&text);
  if (firstChild) {
    if (const TiXmlText* only = OnlyPlainText(firstChild, lastChild);
        only && only->SValue().size() <= kJoinedText) {
      PutString(only->SValue(), &text);
    } else {
      out->write(text.data(), static_cast<std::streamsize>(text.size()));
      for (const TiXmlNode* node = firstChild; node; node = node->NextSibling())
        node->StreamOut(out);
      Scratch();
    }
    AppendEndTag(&text);
  }
  out->write(text.data(), static_cast<std::streamsize>(text.size()));
}

void TiXmlElement::AppendStartTag(std::string* tag) const {
  *tag += '<';
  *tag += value;
  for (const TiXmlAttribute* a = attributeSet.First(); a; a = a->Next()) {
    *tag += ' ';
    a->AppendMarkup(tag);
  }
  *tag += firstChild ? ">" : " />";
}

const std::string& TiXmlElement::AppendEndTag(std::string* tag) const {
  *tag += "</";
  *tag += value;
  *tag += '>';
  return *tag;
}

const char* TiXmlElement::Parse(const char* p, TiXmlParsingData* data, TiXmlNode* /*parent*/) {
  TiXmlDocument* document = GetDocument();
  p = SkipWhiteSpace(p);
  if (!p || *p != '<') {
    SetError(document, TIXML_ERROR_PARSING_ELEMENT, p, data);
    return nullptr;
  }
  Stamp(p, data);
  if (IsTooDeep()) {
    SetError(document, TIXML_ERROR_PARSING_ELEMENT, p, data);
    return nullptr;
  }
  const char* start = p;
  p = ReadName(p + 1, &value);
  if (!p || !*p) {
    SetError(document, TIXML_ERROR_FAILED_TO_READ_ELEMENT_NAME, start, data);
    return nullptr;
  }
  return ParseRest(p, data);
}

const char* TiXmlElement::ParseRest(const char* p, TiXmlParsingData* data) {
  TiXmlDocument* document = GetDocument();
  TiXmlArena* arena = document ? document->Arena() : nullptr;
  for (;;) {
    p = SkipWhiteSpace(p);
    if (!*p) {
      SetError(document, TIXML_ERROR_READING_ATTRIBUTES, p, data);
      return nullptr;
    }
    if (*p == '/') {
      if (p[1] == '>') return p + 2;
      SetError(document, TIXML_ERROR_PARSING_EMPTY, p, data);
      return nullptr;
    }
    if (*p == '>') {
      p = ReadValue(p + 1, data);
      if (!p) return nullptr;
      if (const char* behind = BehindEndTag(p)) return behind;
      SetError(document, TIXML_ERROR_READING_END_TAG, p, data);
      return nullptr;
    }
    std::unique_ptr<TiXmlAttribute> attribute(NewInArena<TiXmlAttribute>(arena));
    attribute->SetDocument(document);
    const char* start = p;
    p = attribute->Parse(p, data, this);
    if (!p) {
      SetError(document, TIXML_ERROR_PARSING_ELEMENT, start, data);
      return nullptr;
    }
    if (TiXmlAttribute* existing = attributeSet.Find(attribute->NameStr())) {
      // Marked as odd and wanted: the later value wins and the element ends here.
      existing->SetValue(attribute->ValueStr());
      return nullptr;
    }
    attributeSet.Add(attribute.release());
  }
}

// StringEqual(p, "</" + name + ">", false), without making the string.
const char* TiXmlElement::BehindEndTag(const char* p) const {
  if (p[0] != '<' || p[1] != '/') return nullptr;
  p += 2;
  if (!StringEqual(p, value.c_str(), false)) return nullptr;
  p += value.size();
  return *p == '>' ? p + 1 : nullptr;
}

const char* TiXmlElement::ReadValue(const char* p, TiXmlParsingData* data) {
  TiXmlDocument* document = GetDocument();
  TiXmlArena* arena = document ? document->Arena() : nullptr;
  p = SkipWhiteSpace(p);
  const char* start = p;
  while (p && *p) {
    start = p;
    if (*p != '<') {
      std::unique_ptr<TiXmlText> text(NewInArena<TiXmlText>(arena, ""));
      p = text->Parse(p, data, this);
      if (!text->Blank()) LinkEndChild(text.release());
    } else if (StringEqual(p, "</", false)) {
      return p;
    } else {
      TiXmlNode* node = Identify(p);
      p = node->Parse(p, data, this);
      LinkEndChild(node);
    }
    p = SkipWhiteSpace(p);
  }
  if (!p) SetError(document, TIXML_ERROR_READING_ELEMENT_VALUE, start, data);
  return p;
}

bool TiXmlElement::IsTooDeep() const {
  int depth = 0;
  for (const TiXmlNode* node = parent; node; node = node->Parent())
    if (node->ToElement() && ++depth >= kMaxDepth) return true;
  return false;
}

TiXmlNode* TiXmlElement::Clone() const {
  auto* clone = new TiXmlElement(value);
  CopyToClone(clone);
  for (const TiXmlAttribute* a = attributeSet.First(); a; a = a->Next())
    clone->SetAttribute(a->Name(), a->Value());
  for (const TiXmlNode* node = firstChild; node; node = node->NextSibling())
    clone->LinkEndChild(node->Clone());
  return clone;
}

const char* TiXmlElement::Attribute(const char* name) const {
  const TiXmlAttribute* attribute = attributeSet.Find(name);
  return attribute ? attribute->Value() : nullptr;
}

const char* TiXmlElement::Attribute(const char* name, int* out) const {
  const char* text = Attribute(name);
  if (out) *out = text ? std::atoi(text) : 0;
  return text;
}

const char* TiXmlElement::Attribute(const char* name, double* out) const {
  const char* text = Attribute(name);
  if (out) *out = text ? std::atof(text) : 0.0;
  return text;
}

int TiXmlElement::QueryIntAttribute(const char* name, int* out) const {
  const TiXmlAttribute* attribute = attributeSet.Find(name);
  return attribute ? attribute->QueryIntValue(out) : TIXML_NO_ATTRIBUTE;
}

int TiXmlElement::QueryDoubleAttribute(const char* name, double* out) const {
  const TiXmlAttribute* attribute = attributeSet.Find(name);
  return attribute ? attribute->QueryDoubleValue(out) : TIXML_NO_ATTRIBUTE;
}

void TiXmlElement::SetAttribute(const char* name, const char* text) {
  if (!*name) return;
  if (TiXmlAttribute* existing = attributeSet.Find(name)) {
    existing->SetValue(text);
    return;
  }
  auto* attribute = new TiXmlAttribute(name, text);
  attribute->SetDocument(GetDocument());
  attributeSet.Add(attribute);
}

void TiXmlElement::SetAttribute(const char* name, int number) {
  char text[16];
  std::snprintf(text, sizeof text, "%d", number);
  SetAttribute(name, text);
}

void TiXmlElement::RemoveAttribute(const char* name) {
  if (TiXmlAttribute* attribute = attributeSet.Find(name)) {
    attributeSet.Remove(attribute);
    delete attribute;
  }
}
