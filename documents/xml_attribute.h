// TiXmlAttribute, one name="value" pair of an element, and TiXmlAttributeSet, an element's
// attributes in insertion order.
#pragma once

#include <cstdio>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

#include "documents/xml_base.h"

class TARN_EXPORT TiXmlAttribute : public TiXmlBase {
  friend class TiXmlAttributeSet;
  friend class TiXmlElement;

 public:
  TiXmlAttribute() = default;
  TiXmlAttribute(const char* attributeName, const char* attributeValue)
      : name(attributeName), value(attributeValue) {}
  TiXmlAttribute(const std::string& attributeName, const std::string& attributeValue)
      : name(attributeName), value(attributeValue) {}

  // `name="value"`, both made safe by PutString; single quotes when the value holds a double
  // quote. The same in both forms.
  void Print(std::FILE* file, int depth) const override;
  void StreamOut(std::ostream* out) const override;
  // Reads `name = value`: the value in single or double quotes with entities resolved and
  // whitespace kept, or unquoted up to whitespace, "/" or ">". A bad name or a missing "=" is
  // error 7 on the document set by SetDocument; an unclosed quote returns null without one.
  const char* Parse(const char* p, TiXmlParsingData* data, TiXmlNode* parent) override;

  const char* Name() const { return name.c_str(); }
  const char* Value() const { return value.c_str(); }
  const std::string& NameStr() const { return name; }
  const std::string& ValueStr() const { return value; }
  void SetName(const char* text) { name = text; }
  void SetName(const std::string& text) { SetName(text.c_str()); }
  void SetValue(const char* text) { value = text; }
  void SetValue(const std::string& text) { SetValue(text.c_str()); }

  // atoi and atof of the value.
  int IntValue() const;
  double DoubleValue() const;
  // TIXML_SUCCESS and the number, or TIXML_WRONG_TYPE and `out` untouched: leading blanks, a
  // sign and digits, the rest ignored; an integer outside 32 bits does not read.
  int QueryIntValue(int* out) const;
  int QueryDoubleValue(double* out) const;
  // Store the number as text ("%d", "%lf").
  void SetIntValue(int number);
  void SetDoubleValue(double number);

  // The neighbours in the element's set; null at either end.
  const TiXmlAttribute* Next() const;
  TiXmlAttribute* Next() { return const_cast<TiXmlAttribute*>(std::as_const(*this).Next()); }
  const TiXmlAttribute* Previous() const;
  TiXmlAttribute* Previous() {
    return const_cast<TiXmlAttribute*>(std::as_const(*this).Previous());
  }

  // The document that receives this attribute's parse errors.
  void SetDocument(TiXmlDocument* owner) { document = owner; }

  // Attributes compare by name.
  bool operator==(const TiXmlAttribute& rhs) const { return rhs.name == name; }
  bool operator<(const TiXmlAttribute& rhs) const { return name < rhs.name; }
  bool operator>(const TiXmlAttribute& rhs) const { return name > rhs.name; }

 private:
  // The printed form, shared by Print and StreamOut.
  std::string Markup() const;
  void AppendMarkup(std::string* text) const;
  // The set's sentinel is the one attribute with neither name nor value.
  bool IsSentinel() const { return name.empty() && value.empty(); }

  TiXmlDocument* document = nullptr;
  std::string name;
  std::string value;
  TiXmlAttribute* prev = nullptr;
  TiXmlAttribute* next = nullptr;
};

// A circular list around a sentinel. It links and unlinks; the element owns the attributes.
// Attributes need a name: one with neither name nor value would be taken for the sentinel.
class TARN_EXPORT TiXmlAttributeSet {
 public:
  TiXmlAttributeSet();
  TiXmlAttributeSet(const TiXmlAttributeSet&) = delete;
  TiXmlAttributeSet& operator=(const TiXmlAttributeSet&) = delete;

  // Appends `attribute`, which must not be in a set.
  void Add(TiXmlAttribute* attribute);
  // Unlinks `attribute`, which must be in this set, without destroying it.
  void Remove(TiXmlAttribute* attribute);

  // Null when the set is empty.
  const TiXmlAttribute* First() const { return sentinel.next == &sentinel ? nullptr : sentinel.next; }
  TiXmlAttribute* First() { return sentinel.next == &sentinel ? nullptr : sentinel.next; }
  const TiXmlAttribute* Last() const { return sentinel.prev == &sentinel ? nullptr : sentinel.prev; }
  TiXmlAttribute* Last() { return sentinel.prev == &sentinel ? nullptr : sentinel.prev; }

  // The attribute with exactly this name, or null.
  const TiXmlAttribute* Find(const char* name) const { return FindName(name); }
  TiXmlAttribute* Find(const char* name) { return const_cast<TiXmlAttribute*>(FindName(name)); }
  const TiXmlAttribute* Find(const std::string& name) const { return FindName(name); }
  TiXmlAttribute* Find(const std::string& name) {
    return const_cast<TiXmlAttribute*>(FindName(name));
  }

 private:
  const TiXmlAttribute* FindName(std::string_view name) const;

  TiXmlAttribute sentinel;
};
