// Any text gives a tree or an error; both printing forms must then work on whatever was built.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "documents/xml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Exactly the input and its terminator, so that any read past the text is caught.
  const std::string text(reinterpret_cast<const char*>(data), size);
  TiXmlDocument doc;
  doc.Parse(text.c_str());
  std::string compact;
  compact << doc;
  if (std::FILE* sink = std::fopen("/dev/null", "w")) {
    doc.Print(sink, 0);
    std::fclose(sink);
  }
  return 0;
}
