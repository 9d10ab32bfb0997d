// TiXmlNode: the tree. A node owns its children; destroying or clearing a node destroys them.
#pragma once

#include <iosfwd>
#include <string>
#include <utility>

#include "documents/xml_base.h"

class TiXmlElement;
class TiXmlComment;
class TiXmlUnknown;
class TiXmlText;
class TiXmlDeclaration;

class TARN_EXPORT TiXmlNode : public TiXmlBase {
 public:
  // The value of the type field of each kind. Text and base64 text share TEXT.
  enum NodeType : int { DOCUMENT = 0, ELEMENT, COMMENT, UNKNOWN, TEXT, DECLARATION, TYPECOUNT };

  ~TiXmlNode() override;

  // The type field.
  virtual int Type() const;
  // A deep copy of this node and its children, with no parent.
  virtual TiXmlNode* Clone() const = 0;
  // Copies the text of this node's kind from `in` onto `tag`, ready for Parse. Documents and
  // elements read up to the end of the first complete element.
  virtual void StreamIn(std::istream* in, std::string* tag) = 0;

  // The element's name, the text, the comment's text, the unknown tag's contents, or the
  // document's file name.
  const char* Value() const { return value.c_str(); }
  void SetValue(const char* text) { value = text; }
  void SetValue(const std::string& text) { SetValue(text.c_str()); }

  // Destroys all children.
  void Clear();

  TiXmlNode* Parent() { return parent; }
  const TiXmlNode* Parent() const { return parent; }

  // Children and siblings, optionally the first with an exact name, walking in order. Null
  // when there is none.
  TiXmlNode* FirstChild() { return firstChild; }
  const TiXmlNode* FirstChild() const { return firstChild; }
  const TiXmlNode* FirstChild(const char* name) const;
  TiXmlNode* FirstChild(const char* name) { return Mutable(std::as_const(*this).FirstChild(name)); }
  TiXmlNode* FirstChild(const std::string& name) { return FirstChild(name.c_str()); }
  const TiXmlNode* FirstChild(const std::string& name) const { return FirstChild(name.c_str()); }

  TiXmlNode* LastChild() { return lastChild; }
  const TiXmlNode* LastChild() const { return lastChild; }
  const TiXmlNode* LastChild(const char* name) const;
  TiXmlNode* LastChild(const char* name) { return Mutable(std::as_const(*this).LastChild(name)); }
  TiXmlNode* LastChild(const std::string& name) { return LastChild(name.c_str()); }
  const TiXmlNode* LastChild(const std::string& name) const { return LastChild(name.c_str()); }

  // The first child when `previous` is null, otherwise the sibling after `previous`; with a
  // name, the first such node that has it.
  const TiXmlNode* IterateChildren(const TiXmlNode* previous) const;
  TiXmlNode* IterateChildren(const TiXmlNode* previous) {
    return Mutable(std::as_const(*this).IterateChildren(previous));
  }
  const TiXmlNode* IterateChildren(const char* name, const TiXmlNode* previous) const;
  TiXmlNode* IterateChildren(const char* name, const TiXmlNode* previous) {
    return Mutable(std::as_const(*this).IterateChildren(name, previous));
  }
  TiXmlNode* IterateChildren(const std::string& name, const TiXmlNode* previous) {
    return IterateChildren(name.c_str(), previous);
  }
  const TiXmlNode* IterateChildren(const std::string& name, const TiXmlNode* previous) const {
    return IterateChildren(name.c_str(), previous);
  }

  // Link a Clone of `addThis`; return the linked copy, or null when the reference child is not
  // a child of this node.
  TiXmlNode* InsertEndChild(const TiXmlNode& addThis);
  TiXmlNode* InsertBeforeChild(TiXmlNode* beforeThis, const TiXmlNode& addThis);
  TiXmlNode* InsertAfterChild(TiXmlNode* afterThis, const TiXmlNode& addThis);
  // Takes ownership of `node` and links it as the last child; returns it.
  TiXmlNode* LinkEndChild(TiXmlNode* node);
  // Destroys `replaceThis` and links a Clone of `withThis` in its place; returns the copy, or
  // null when `replaceThis` is not a child of this node.
  TiXmlNode* ReplaceChild(TiXmlNode* replaceThis, const TiXmlNode& withThis);
  // Unlinks and destroys `removeThis`; false when it is not a child of this node.
  bool RemoveChild(TiXmlNode* removeThis);

  TiXmlNode* PreviousSibling() { return prev; }
  const TiXmlNode* PreviousSibling() const { return prev; }
  const TiXmlNode* PreviousSibling(const char* name) const;
  TiXmlNode* PreviousSibling(const char* name) {
    return Mutable(std::as_const(*this).PreviousSibling(name));
  }
  TiXmlNode* PreviousSibling(const std::string& name) { return PreviousSibling(name.c_str()); }
  const TiXmlNode* PreviousSibling(const std::string& name) const {
    return PreviousSibling(name.c_str());
  }

  TiXmlNode* NextSibling() { return next; }
  const TiXmlNode* NextSibling() const { return next; }
  const TiXmlNode* NextSibling(const char* name) const;
  TiXmlNode* NextSibling(const char* name) { return Mutable(std::as_const(*this).NextSibling(name)); }
  TiXmlNode* NextSibling(const std::string& name) { return NextSibling(name.c_str()); }
  const TiXmlNode* NextSibling(const std::string& name) const { return NextSibling(name.c_str()); }

  // The next sibling that is an element, optionally with the name.
  const TiXmlElement* NextSiblingElement() const;
  TiXmlElement* NextSiblingElement();
  const TiXmlElement* NextSiblingElement(const char* name) const;
  TiXmlElement* NextSiblingElement(const char* name);
  TiXmlElement* NextSiblingElement(const std::string& name) {
    return NextSiblingElement(name.c_str());
  }
  const TiXmlElement* NextSiblingElement(const std::string& name) const {
    return NextSiblingElement(name.c_str());
  }

  // The first child that is an element, optionally with the name.
  const TiXmlElement* FirstChildElement() const;
  TiXmlElement* FirstChildElement();
  const TiXmlElement* FirstChildElement(const char* name) const;
  TiXmlElement* FirstChildElement(const char* name);
  TiXmlElement* FirstChildElement(const std::string& name) {
    return FirstChildElement(name.c_str());
  }
  const TiXmlElement* FirstChildElement(const std::string& name) const {
    return FirstChildElement(name.c_str());
  }

  // The document this node belongs to, found through the parents; null when unattached.
  const TiXmlDocument* GetDocument() const;
  TiXmlDocument* GetDocument() { return Mutable(std::as_const(*this).GetDocument()); }

  bool NoChildren() const { return !firstChild; }

  // This node as its kind, or null when it is of another.
  const TiXmlDocument* ToDocument() const;
  const TiXmlElement* ToElement() const;
  const TiXmlComment* ToComment() const;
  const TiXmlUnknown* ToUnknown() const;
  const TiXmlText* ToText() const;
  const TiXmlDeclaration* ToDeclaration() const;
  TiXmlDocument* ToDocument() { return Mutable(std::as_const(*this).ToDocument()); }
  TiXmlElement* ToElement() { return Mutable(std::as_const(*this).ToElement()); }
  TiXmlComment* ToComment() { return Mutable(std::as_const(*this).ToComment()); }
  TiXmlUnknown* ToUnknown() { return Mutable(std::as_const(*this).ToUnknown()); }
  TiXmlText* ToText() { return Mutable(std::as_const(*this).ToText()); }
  TiXmlDeclaration* ToDeclaration() { return Mutable(std::as_const(*this).ToDeclaration()); }

  // An opaque pointer for the caller, copied by Clone and never dereferenced here.
  void SetUserData(void* user) { userData = user; }
  void* GetUserData() const { return userData; }

 protected:
  explicit TiXmlNode(NodeType nodeType) : type(nodeType) {}

  const std::string& SValue() const { return value; }
  // Copies the value and the user data to `target`; each kind adds its own fields.
  void CopyToClone(TiXmlNode* target) const;
  // Makes an empty node of the kind whose markup starts at `p` (after whitespace), parented to
  // this node so that it reaches the document while it parses. Null when `p` is not at "<".
  TiXmlNode* Identify(const char* p);

  template <class T>
  static T* Mutable(const T* node) {
    return const_cast<T*>(node);
  }

  TiXmlNode* parent = nullptr;
  NodeType type;
  TiXmlNode* firstChild = nullptr;
  TiXmlNode* lastChild = nullptr;
  std::string value;
  TiXmlNode* prev = nullptr;
  TiXmlNode* next = nullptr;
  void* userData = nullptr;

 private:
  // Links an unattached `node` into the children between `before` and `after`.
  TiXmlNode* LinkBetween(TiXmlNode* node, TiXmlNode* before, TiXmlNode* after);
};

// Appends the compact form of `node` to `out`.
TARN_EXPORT std::ostream& operator<<(std::ostream& out, const TiXmlNode& node);
TARN_EXPORT std::string& operator<<(std::string& out, const TiXmlNode& node);
// Reads the node's markup from `in` with StreamIn and parses it into `node`.
TARN_EXPORT std::istream& operator>>(std::istream& in, TiXmlNode& node);
