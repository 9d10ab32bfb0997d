#include "documents/xml_handle.h"

#include "documents/xml.h"

TiXmlHandle TiXmlHandle::FirstChild() const {
  return TiXmlHandle(node ? node->FirstChild() : nullptr);
}

TiXmlHandle TiXmlHandle::FirstChild(const char* name) const {
  return TiXmlHandle(node ? node->FirstChild(name) : nullptr);
}

TiXmlHandle TiXmlHandle::FirstChildElement() const {
  return TiXmlHandle(node ? node->FirstChildElement() : nullptr);
}

TiXmlHandle TiXmlHandle::FirstChildElement(const char* name) const {
  return TiXmlHandle(node ? node->FirstChildElement(name) : nullptr);
}

TiXmlHandle TiXmlHandle::Child(int index) const {
  TiXmlNode* child = node ? node->FirstChild() : nullptr;
  for (; child && index > 0; --index) child = child->NextSibling();
  return TiXmlHandle(index == 0 ? child : nullptr);
}

TiXmlHandle TiXmlHandle::Child(const char* name, int index) const {
  TiXmlNode* child = node ? node->FirstChild(name) : nullptr;
  for (; child && index > 0; --index) child = child->NextSibling(name);
  return TiXmlHandle(index == 0 ? child : nullptr);
}

TiXmlHandle TiXmlHandle::ChildElement(int index) const {
  TiXmlElement* child = node ? node->FirstChildElement() : nullptr;
  for (; child && index > 0; --index) child = child->NextSiblingElement();
  return TiXmlHandle(index == 0 ? child : nullptr);
}

TiXmlHandle TiXmlHandle::ChildElement(const char* name, int index) const {
  TiXmlElement* child = node ? node->FirstChildElement(name) : nullptr;
  for (; child && index > 0; --index) child = child->NextSiblingElement(name);
  return TiXmlHandle(index == 0 ? child : nullptr);
}

TiXmlElement* TiXmlHandle::Element() const { return node ? node->ToElement() : nullptr; }

TiXmlText* TiXmlHandle::Text() const { return node ? node->ToText() : nullptr; }
