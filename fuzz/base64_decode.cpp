// Any text decodes to some bytes of the computed length, and the text side stays terminated.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "documents/base64_coder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // An exact copy, so that a read past the input is caught.
  const std::vector<unsigned char> text(data, data + size);
  CBase64Coder coder;
  coder.Decode(text.data(), static_cast<std::uint32_t>(text.size()));
  const std::uint32_t kept = coder.EncodedMessageSize();
  const std::uint32_t expected = kept / 4 * 3 + kept % 4;
  if (coder.DecodedMessageSize() != expected) std::abort();
  if (kept && std::strlen(coder.EncodedMessage()) > kept) std::abort();
  // Encoding the result back must work on the coder's own buffer too.
  coder.Encode(reinterpret_cast<const unsigned char*>(coder.DecodedMessage()),
               coder.DecodedMessageSize());
  return 0;
}
