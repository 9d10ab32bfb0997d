// The node kinds that hold markup other than elements and text: comments, unknown tags and the
// XML declaration.
#pragma once

#include <cstdio>
#include <iosfwd>
#include <string>

#include "documents/xml_node.h"

// "<!--" value "-->".
class TARN_EXPORT TiXmlComment : public TiXmlNode {
 public:
  TiXmlComment() : TiXmlNode(COMMENT) {}
  ~TiXmlComment() override;

  // Pretty form indented; both forms write the value as it stands.
  void Print(std::FILE* file, int depth) const override;
  void StreamOut(std::ostream* out) const override;
  // Reads from "<!--" to "-->", entities resolved, whitespace kept. Error 11 when either is
  // missing.
  const char* Parse(const char* p, TiXmlParsingData* data, TiXmlNode* parent) override;
  TiXmlNode* Clone() const override;
  void StreamIn(std::istream* in, std::string* tag) override;
};

// Any tag the parser does not know, such as "<!DOCTYPE ...>"; the value is what stands between
// "<" and ">".
class TARN_EXPORT TiXmlUnknown : public TiXmlNode {
 public:
  TiXmlUnknown() : TiXmlNode(UNKNOWN) {}
  ~TiXmlUnknown() override;

  // Pretty: the indent and the value alone, without its angle brackets (wanted as it is).
  // Compact: "<" value ">".
  void Print(std::FILE* file, int depth) const override;
  void StreamOut(std::ostream* out) const override;
  // Reads up to the next ">" or the end of the text, which is allowed. Error 10 when not at
  // "<".
  const char* Parse(const char* p, TiXmlParsingData* data, TiXmlNode* parent) override;
  TiXmlNode* Clone() const override;
  void StreamIn(std::istream* in, std::string* tag) override;
};

// "<?xml version=... encoding=... standalone=...?>".
class TARN_EXPORT TiXmlDeclaration : public TiXmlNode {
 public:
  TiXmlDeclaration() : TiXmlNode(DECLARATION) {}
  TiXmlDeclaration(const char* versionText, const char* encodingText, const char* standaloneText);
  TiXmlDeclaration(const std::string& versionText, const std::string& encodingText,
                   const std::string& standaloneText)
      : TiXmlDeclaration(versionText.c_str(), encodingText.c_str(), standaloneText.c_str()) {}
  ~TiXmlDeclaration() override;

  const char* Version() const { return version.c_str(); }
  const char* Encoding() const { return encoding.c_str(); }
  const char* Standalone() const { return standalone.c_str(); }

  // "<?xml ", each non-empty field as name="value" and a blank, then "?>"; both forms.
  void Print(std::FILE* file, int depth) const override;
  void StreamOut(std::ostream* out) const override;
  // Requires "<?xml" in exact case, then reads version, encoding and standalone up to ">",
  // stepping over any other word. Error 12, where reading stopped, when it does not start so
  // or never reaches ">".
  const char* Parse(const char* p, TiXmlParsingData* data, TiXmlNode* parent) override;
  TiXmlNode* Clone() const override;
  void StreamIn(std::istream* in, std::string* tag) override;

 private:
  std::string Markup() const;
  // Reads one `name="value"` at `p` into `field`; null when it cannot be read.
  static const char* ReadField(const char* p, TiXmlParsingData* data, std::string* field);

  std::string version;
  std::string encoding;
  std::string standalone;
};
