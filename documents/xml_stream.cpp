// The stream input family. Nothing in the system reads documents from streams; these copy the
// markup of one node from a stream so that Parse can read it.
#include <istream>
#include <string>
#include <string_view>

#include "documents/xml.h"

namespace {

constexpr int kEnd = std::char_traits<char>::eof();

bool Put(std::string* tag, int c) {
  if (c == kEnd) return false;
  tag->push_back(static_cast<char>(c));
  return true;
}

bool CopyTo(std::istream* in, int character, std::string* tag) {
  for (int c = in->get(); Put(tag, c); c = in->get())
    if (c == character) return true;
  return false;
}

bool CopyToSuffix(std::istream* in, std::string_view suffix, std::string* tag) {
  while (!tag->ends_with(suffix))
    if (!Put(tag, in->get())) return false;
  return true;
}

// Copies the rest of a start tag up to ">", quoted values respected.
bool CopyStartTag(std::istream* in, std::string* tag, bool* selfClosing) {
  char quote = 0;
  char previous = 0;
  for (int c = in->get(); Put(tag, c); c = in->get()) {
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = static_cast<char>(c);
    } else if (c == '>') {
      *selfClosing = previous == '/';
      return true;
    }
    previous = static_cast<char>(c);
  }
  return false;
}

// Copies "<!" markup: a comment up to "-->", anything else up to ">".
bool CopyBang(std::istream* in, std::string* tag) {
  if (in->peek() != '-') return CopyTo(in, '>', tag);
  Put(tag, in->get());
  if (in->peek() != '-') return CopyTo(in, '>', tag);
  Put(tag, in->get());
  return CopyToSuffix(in, "-->", tag);
}

}  // namespace

void TiXmlBase::StreamWhiteSpace(std::istream* in, std::string* tag) {
  while (in->peek() != kEnd && IsWhiteSpace(static_cast<char>(in->peek()))) Put(tag, in->get());
}

bool TiXmlBase::StreamTo(std::istream* in, int character, std::string* tag) {
  return CopyTo(in, character, tag);
}

bool TiXmlBase::StreamElement(std::istream* in, std::string* tag) {
  int depth = 0;
  for (;;) {
    if (!CopyTo(in, '<', tag)) return false;
    const int c = in->get();
    if (!Put(tag, c)) return false;
    bool complete = false;
    if (c == '/') {
      complete = CopyTo(in, '>', tag) && depth > 0 && --depth == 0;
    } else if (c == '!') {
      if (!CopyBang(in, tag)) return false;
    } else if (c == '?') {
      if (!CopyTo(in, '>', tag)) return false;
    } else {
      bool selfClosing = false;
      if (!CopyStartTag(in, tag, &selfClosing)) return false;
      if (!selfClosing) ++depth;
      complete = depth == 0;
    }
    if (complete) return true;
    if (!*in) return false;
  }
}

void TiXmlDocument::StreamIn(std::istream* in, std::string* tag) { StreamElement(in, tag); }

void TiXmlElement::StreamIn(std::istream* in, std::string* tag) { StreamElement(in, tag); }

void TiXmlText::StreamIn(std::istream* in, std::string* tag) {
  while (in->peek() != kEnd && in->peek() != '<') Put(tag, in->get());
}

void TiXmlComment::StreamIn(std::istream* in, std::string* tag) {
  CopyToSuffix(in, "-->", tag);
}

void TiXmlUnknown::StreamIn(std::istream* in, std::string* tag) { StreamTo(in, '>', tag); }

void TiXmlDeclaration::StreamIn(std::istream* in, std::string* tag) { StreamTo(in, '>', tag); }
