// Any text decodes to some bytes of the computed length, the text side stays terminated, and a
// plain coder agrees with one that goes through every virtual step.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "documents/base64_coder.h"

namespace {

// Not a plain CBase64Coder, so each step is called through the table.
class SteppedCoder : public CBase64Coder {};

bool SameResult(const CBase64Coder& a, const CBase64Coder& b) {
  return a.DecodedMessageSize() == b.DecodedMessageSize() &&
         a.EncodedMessageSize() == b.EncodedMessageSize() &&
         (a.DecodedMessageSize() == 0 ||
          std::memcmp(a.DecodedMessage(), b.DecodedMessage(), a.DecodedMessageSize()) == 0) &&
         (a.EncodedMessageSize() == 0 ||
          std::memcmp(a.EncodedMessage(), b.EncodedMessage(), a.EncodedMessageSize()) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // An exact copy, so that a read past the input is caught.
  const std::vector<unsigned char> text(data, data + size);
  const auto length = static_cast<std::uint32_t>(text.size());
  CBase64Coder coder;
  SteppedCoder stepped;
  coder.Decode(text.data(), length);
  stepped.Decode(text.data(), length);
  const std::uint32_t kept = coder.EncodedMessageSize();
  if (coder.DecodedMessageSize() != kept / 4 * 3 + kept % 4) std::abort();
  if (kept && std::strlen(coder.EncodedMessage()) > kept) std::abort();
  if (!SameResult(coder, stepped)) std::abort();

  // Encoding the result back must work on the coder's own buffer too.
  coder.Encode(reinterpret_cast<const unsigned char*>(coder.DecodedMessage()),
               coder.DecodedMessageSize());
  stepped.Encode(text.data(), length);
  CBase64Coder plain;
  plain.Encode(text.data(), length);
  if (!SameResult(plain, stepped)) std::abort();
  return 0;
}
