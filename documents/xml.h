// The XML library in one include: the TiXml classes parse a whole text into a tree of nodes,
// let the caller walk and build trees, and print them pretty for files or compact for strings.
// There is no schema, no namespace handling and no DTD. Text under an element named
// "SharedBlob" is read raw in one block, and TiXmlBase64Text prints without escapes, so that
// large base64 blocks pass through quickly.
#pragma once

#include "documents/xml_attribute.h"
#include "documents/xml_base.h"
#include "documents/xml_document.h"
#include "documents/xml_element.h"
#include "documents/xml_handle.h"
#include "documents/xml_markup.h"
#include "documents/xml_node.h"
#include "documents/xml_text.h"
