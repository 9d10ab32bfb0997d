// TiXmlElement: a named node with attributes and children.
#pragma once

#include <cstdio>
#include <iosfwd>
#include <string>

#include "documents/xml_attribute.h"
#include "documents/xml_node.h"

class TARN_EXPORT TiXmlElement : public TiXmlNode {
 public:
  explicit TiXmlElement(const char* name);
  explicit TiXmlElement(const std::string& name) : TiXmlElement(name.c_str()) {}
  ~TiXmlElement() override;

  // Pretty: indented start tag and attributes; " />" without children; a single text child on
  // the same line; otherwise each child one level deeper, non-text children on lines of their
  // own, and the end tag on its own indented line.
  void Print(std::FILE* file, int depth) const override;
  // Compact: the same markup with no line breaks or indent.
  void StreamOut(std::ostream* out) const override;
  // Reads the element, its attributes and its content up to its end tag, whose name compares
  // without case. Errors: 4 not at "<" or an attribute that cannot be read, 5 no name, 7 end of
  // text among the attributes, 8 "/" not followed by ">", 9 a wrong or missing end tag, 4 also
  // when elements nest deeper than kMaxDepth. A name that the element already has takes the
  // new value and ends the parse with null and no error of its own.
  const char* Parse(const char* p, TiXmlParsingData* data, TiXmlNode* parent) override;
  TiXmlNode* Clone() const override;
  void StreamIn(std::istream* in, std::string* tag) override;

  // The value of the attribute, or null when it is absent. With `out`, also stores its atoi or
  // atof there, 0 when absent.
  const char* Attribute(const char* name) const;
  const char* Attribute(const char* name, int* out) const;
  const char* Attribute(const char* name, double* out) const;
  const char* Attribute(const std::string& name) const { return Attribute(name.c_str()); }
  const char* Attribute(const std::string& name, int* out) const {
    return Attribute(name.c_str(), out);
  }
  const char* Attribute(const std::string& name, double* out) const {
    return Attribute(name.c_str(), out);
  }

  // TIXML_SUCCESS and the number, TIXML_NO_ATTRIBUTE, or TIXML_WRONG_TYPE when the value does not
  // read one; `out` is untouched unless the result is TIXML_SUCCESS.
  int QueryIntAttribute(const char* name, int* out) const;
  int QueryDoubleAttribute(const char* name, double* out) const;
  int QueryIntAttribute(const std::string& name, int* out) const {
    return QueryIntAttribute(name.c_str(), out);
  }
  int QueryDoubleAttribute(const std::string& name, double* out) const {
    return QueryDoubleAttribute(name.c_str(), out);
  }

  // Replaces the value of the attribute of that name, or appends a new one. A number is stored
  // as text with "%d". An empty name is ignored.
  void SetAttribute(const char* name, const char* text);
  void SetAttribute(const char* name, int number);
  void SetAttribute(const std::string& name, const std::string& text) {
    SetAttribute(name.c_str(), text.c_str());
  }
  void SetAttribute(const std::string& name, int number) { SetAttribute(name.c_str(), number); }

  // Removes and destroys the attribute of that name, if there is one.
  void RemoveAttribute(const char* name);
  void RemoveAttribute(const std::string& name) { RemoveAttribute(name.c_str()); }

  // In insertion order; null when there are none.
  const TiXmlAttribute* FirstAttribute() const { return attributeSet.First(); }
  TiXmlAttribute* FirstAttribute() { return attributeSet.First(); }
  const TiXmlAttribute* LastAttribute() const { return attributeSet.Last(); }
  TiXmlAttribute* LastAttribute() { return attributeSet.Last(); }

  // Elements nest at most this deep in a parse, so that bad input cannot exhaust the stack.
  static constexpr int kMaxDepth = 1000;

 protected:
  // Reads the content after ">": text (blank text makes no node), and child nodes, up to "</".
  // Returns the position of "</", or null after a child failed (error 6 unless the child
  // recorded its own).
  const char* ReadValue(const char* p, TiXmlParsingData* data);

 private:
  // Parses attributes from `p` up to ">" or "/>", and what follows; see Parse.
  const char* ParseRest(const char* p, TiXmlParsingData* data);
  bool IsTooDeep() const;
  // Behind this element's end tag at `p`, its name compared without case; null when not there.
  const char* BehindEndTag(const char* p) const;
  // "<name", the attributes, and ">" or " />" when there are no children.
  void AppendStartTag(std::string* tag) const;
  // "</name>"; returns `tag`.
  const std::string& AppendEndTag(std::string* tag) const;

  TiXmlAttributeSet attributeSet;
};
