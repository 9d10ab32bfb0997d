// TiXmlText, the text inside an element, and TiXmlBase64Text, text that carries a base64 block
// and is printed without escapes.
#pragma once

#include <cstdio>
#include <iosfwd>
#include <string>

#include "documents/xml_node.h"

class TARN_EXPORT TiXmlText : public TiXmlNode {
  friend class TiXmlElement;

 public:
  explicit TiXmlText(const char* text) : TiXmlNode(TEXT) { value = text; }
  explicit TiXmlText(const std::string& text) : TiXmlText(text.c_str()) {}
  ~TiXmlText() override;

  // The value through PutString, in both forms.
  void Print(std::FILE* file, int depth) const override;
  void StreamOut(std::ostream* out) const override;
  // Reads up to the next "<" or the end of the text and returns the position of that "<" (or
  // of the end). Entities are resolved and whitespace kept, except under an element named
  // exactly "SharedBlob", whose text is taken raw in one block by ReadBase64Block.
  const char* Parse(const char* p, TiXmlParsingData* data, TiXmlNode* parent) override;
  TiXmlNode* Clone() const override;
  void StreamIn(std::istream* in, std::string* tag) override;

 protected:
  // True for an empty value or one of nothing but whitespace.
  bool Blank() const;
};

class TARN_EXPORT TiXmlBase64Text : public TiXmlText {
 public:
  explicit TiXmlBase64Text(const char* text) : TiXmlText(text) {}
  explicit TiXmlBase64Text(const std::string& text) : TiXmlText(text) {}
  ~TiXmlBase64Text() override;

  // The value as it stands, with no escapes: base64 needs none, and blocks are large.
  void Print(std::FILE* file, int depth) const override;
  // A TiXmlBase64Text, so that the kind survives InsertEndChild.
  TiXmlNode* Clone() const override;
};
