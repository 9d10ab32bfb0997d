// Any text as a "MIDIMsg" element: every child element of the root is read as a stored event in
// each accepted form, and what it writes must read back as the same event.
#include <cstddef>
#include <cstdint>
#include <string>

#include "documents/stored_event.h"
#include "documents/xml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  TiXmlDocument doc;
  doc.Parse(text.c_str());  // a broken document keeps the tree built so far
  const TiXmlElement* root = doc.RootElement();
  if (!root) return 0;
  for (const TiXmlElement* e = root; e; e = e == root ? root->FirstChildElement()
                                                      : e->NextSiblingElement()) {
    CStoredEvent read;
    read.ReadXml(*e);
    TiXmlElement out("Config");
    read.WriteXml(out);
    CStoredEvent again;
    again.ReadXml(*out.FirstChildElement());
    TiXmlElement outAgain("Config");
    again.WriteXml(outAgain);
    std::string first, second;
    first << out;
    second << outAgain;
    if (first != second) __builtin_trap();
    if (read.IsSysex() != again.IsSysex() || read.HasMessages() != again.HasMessages() ||
        read.IsWait() != again.IsWait())
      __builtin_trap();
  }
  return 0;
}
