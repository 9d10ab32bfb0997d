#include "documents/xml_node.h"

#include <cstring>
#include <istream>
#include <ostream>
#include <streambuf>

#include "documents/xml.h"
#include "documents/xml_arena.h"

namespace {

bool HasName(const TiXmlNode* node, const char* name) {
  return std::strcmp(node->Value(), name) == 0;
}

bool IsLetterOrUnderscore(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// A stream buffer that appends straight to a string, saving a buffer and a copy of the text.
class StringAppender : public std::streambuf {
 public:
  explicit StringAppender(std::string* target) : out(target) {}

 protected:
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    out->append(text, static_cast<std::size_t>(count));
    return count;
  }
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) out->push_back(traits_type::to_char_type(c));
    return traits_type::not_eof(c);
  }

 private:
  std::string* out;
};

}  // namespace

TiXmlNode::~TiXmlNode() { Clear(); }

int TiXmlNode::Type() const { return type; }

void TiXmlNode::Clear() {
  TiXmlNode* node = firstChild;
  while (node) {
    TiXmlNode* following = node->next;
    delete node;
    node = following;
  }
  firstChild = lastChild = nullptr;
}

const TiXmlNode* TiXmlNode::FirstChild(const char* name) const {
  for (const TiXmlNode* node = firstChild; node; node = node->next)
    if (HasName(node, name)) return node;
  return nullptr;
}

const TiXmlNode* TiXmlNode::LastChild(const char* name) const {
  for (const TiXmlNode* node = lastChild; node; node = node->prev)
    if (HasName(node, name)) return node;
  return nullptr;
}

const TiXmlNode* TiXmlNode::IterateChildren(const TiXmlNode* previous) const {
  return previous ? previous->next : firstChild;
}

const TiXmlNode* TiXmlNode::IterateChildren(const char* name, const TiXmlNode* previous) const {
  return previous ? previous->NextSibling(name) : FirstChild(name);
}

TiXmlNode* TiXmlNode::LinkBetween(TiXmlNode* node, TiXmlNode* before, TiXmlNode* after) {
  node->parent = this;
  node->prev = before;
  node->next = after;
  (before ? before->next : firstChild) = node;
  (after ? after->prev : lastChild) = node;
  return node;
}

TiXmlNode* TiXmlNode::LinkEndChild(TiXmlNode* node) { return LinkBetween(node, lastChild, nullptr); }

TiXmlNode* TiXmlNode::InsertEndChild(const TiXmlNode& addThis) {
  return LinkEndChild(addThis.Clone());
}

TiXmlNode* TiXmlNode::InsertBeforeChild(TiXmlNode* beforeThis, const TiXmlNode& addThis) {
  if (!beforeThis || beforeThis->parent != this) return nullptr;
  return LinkBetween(addThis.Clone(), beforeThis->prev, beforeThis);
}

TiXmlNode* TiXmlNode::InsertAfterChild(TiXmlNode* afterThis, const TiXmlNode& addThis) {
  if (!afterThis || afterThis->parent != this) return nullptr;
  return LinkBetween(addThis.Clone(), afterThis, afterThis->next);
}

TiXmlNode* TiXmlNode::ReplaceChild(TiXmlNode* replaceThis, const TiXmlNode& withThis) {
  if (!replaceThis || replaceThis->parent != this) return nullptr;
  TiXmlNode* node = LinkBetween(withThis.Clone(), replaceThis->prev, replaceThis->next);
  delete replaceThis;
  return node;
}

bool TiXmlNode::RemoveChild(TiXmlNode* removeThis) {
  if (!removeThis || removeThis->parent != this) return false;
  (removeThis->prev ? removeThis->prev->next : firstChild) = removeThis->next;
  (removeThis->next ? removeThis->next->prev : lastChild) = removeThis->prev;
  delete removeThis;
  return true;
}

const TiXmlNode* TiXmlNode::PreviousSibling(const char* name) const {
  for (const TiXmlNode* node = prev; node; node = node->prev)
    if (HasName(node, name)) return node;
  return nullptr;
}

const TiXmlNode* TiXmlNode::NextSibling(const char* name) const {
  for (const TiXmlNode* node = next; node; node = node->next)
    if (HasName(node, name)) return node;
  return nullptr;
}

const TiXmlElement* TiXmlNode::NextSiblingElement() const {
  for (const TiXmlNode* node = next; node; node = node->next)
    if (const TiXmlElement* element = node->ToElement()) return element;
  return nullptr;
}

TiXmlElement* TiXmlNode::NextSiblingElement() {
  return Mutable(std::as_const(*this).NextSiblingElement());
}

const TiXmlElement* TiXmlNode::NextSiblingElement(const char* name) const {
  for (const TiXmlNode* node = NextSibling(name); node; node = node->NextSibling(name))
    if (const TiXmlElement* element = node->ToElement()) return element;
  return nullptr;
}

TiXmlElement* TiXmlNode::NextSiblingElement(const char* name) {
  return Mutable(std::as_const(*this).NextSiblingElement(name));
}

const TiXmlElement* TiXmlNode::FirstChildElement() const {
  for (const TiXmlNode* node = firstChild; node; node = node->next)
    if (const TiXmlElement* element = node->ToElement()) return element;
  return nullptr;
}

TiXmlElement* TiXmlNode::FirstChildElement() {
  return Mutable(std::as_const(*this).FirstChildElement());
}

const TiXmlElement* TiXmlNode::FirstChildElement(const char* name) const {
  for (const TiXmlNode* node = FirstChild(name); node; node = node->NextSibling(name))
    if (const TiXmlElement* element = node->ToElement()) return element;
  return nullptr;
}

TiXmlElement* TiXmlNode::FirstChildElement(const char* name) {
  return Mutable(std::as_const(*this).FirstChildElement(name));
}

const TiXmlDocument* TiXmlNode::GetDocument() const {
  for (const TiXmlNode* node = this; node; node = node->parent)
    if (const TiXmlDocument* document = node->ToDocument()) return document;
  return nullptr;
}

const TiXmlDocument* TiXmlNode::ToDocument() const {
  return type == DOCUMENT ? static_cast<const TiXmlDocument*>(this) : nullptr;
}
const TiXmlElement* TiXmlNode::ToElement() const {
  return type == ELEMENT ? static_cast<const TiXmlElement*>(this) : nullptr;
}
const TiXmlComment* TiXmlNode::ToComment() const {
  return type == COMMENT ? static_cast<const TiXmlComment*>(this) : nullptr;
}
const TiXmlUnknown* TiXmlNode::ToUnknown() const {
  return type == UNKNOWN ? static_cast<const TiXmlUnknown*>(this) : nullptr;
}
const TiXmlText* TiXmlNode::ToText() const {
  return type == TEXT ? static_cast<const TiXmlText*>(this) : nullptr;
}
const TiXmlDeclaration* TiXmlNode::ToDeclaration() const {
  return type == DECLARATION ? static_cast<const TiXmlDeclaration*>(this) : nullptr;
}

void TiXmlNode::CopyToClone(TiXmlNode* target) const {
  target->SetValue(value);
  target->userData = userData;
}

TiXmlNode* TiXmlNode::Identify(const char* p) {
  p = SkipWhiteSpace(p);
  if (!p || *p != '<') return nullptr;
  TiXmlDocument* document = GetDocument();
  TiXmlArena* arena = document ? document->Arena() : nullptr;
  TiXmlNode* node = nullptr;
  if (StringEqual(p, "<?xml", true))
    node = NewInArena<TiXmlDeclaration>(arena);
  else if (IsLetterOrUnderscore(p[1]))
    node = NewInArena<TiXmlElement>(arena, "");
  else if (StringEqual(p, "<!--", false))
    node = NewInArena<TiXmlComment>(arena);
  else
    node = NewInArena<TiXmlUnknown>(arena);
  node->parent = this;
  return node;
}

std::ostream& operator<<(std::ostream& out, const TiXmlNode& node) {
  node.StreamOut(&out);
  return out;
}

std::string& operator<<(std::string& out, const TiXmlNode& node) {
  StringAppender appender(&out);
  std::ostream stream(&appender);
  node.StreamOut(&stream);
  return out;
}

std::istream& operator>>(std::istream& in, TiXmlNode& node) {
  std::string tag;
  node.StreamIn(&in, &tag);
  node.Parse(tag.c_str(), nullptr, nullptr);
  return in;
}
