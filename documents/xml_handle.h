// TiXmlHandle: a null-safe walker. Each step from a handle on nothing gives a handle on
// nothing, so a chain of lookups needs one test at its end.
#pragma once

#include <string>

#include "documents/xml_node.h"

class TARN_EXPORT TiXmlHandle {
 public:
  explicit TiXmlHandle(TiXmlNode* target) : node(target) {}

  TiXmlHandle FirstChild() const;
  TiXmlHandle FirstChild(const char* name) const;
  TiXmlHandle FirstChild(const std::string& name) const { return FirstChild(name.c_str()); }
  TiXmlHandle FirstChildElement() const;
  TiXmlHandle FirstChildElement(const char* name) const;
  TiXmlHandle FirstChildElement(const std::string& name) const {
    return FirstChildElement(name.c_str());
  }
  // The child at zero-based `index`, counting all children, or those of the name.
  TiXmlHandle Child(int index) const;
  TiXmlHandle Child(const char* name, int index) const;
  TiXmlHandle Child(const std::string& name, int index) const { return Child(name.c_str(), index); }
  // The same, counting only elements.
  TiXmlHandle ChildElement(int index) const;
  TiXmlHandle ChildElement(const char* name, int index) const;
  TiXmlHandle ChildElement(const std::string& name, int index) const {
    return ChildElement(name.c_str(), index);
  }

  // What the handle stands on, or null; Element and Text also when it is of another kind.
  TiXmlNode* Node() const { return node; }
  TiXmlElement* Element() const;
  TiXmlText* Text() const;

 private:
  TiXmlNode* node;
};
