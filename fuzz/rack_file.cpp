// Any text as a rack file: it is refused with a reason or read, entries with faults kept and
// marked; a rack that was read writes out as text that reads back to the same text.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/rack/rack_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string fault;
  const auto rack = ParseRack(std::string_view(reinterpret_cast<const char*>(data), size), fault);
  if (!rack) {
    if (fault.empty()) __builtin_trap();
    return 0;
  }
  const std::string written = RackText(*rack);
  const auto again = ParseRack(written, fault);
  if (!again || RackText(*again) != written) __builtin_trap();
  if (again->instances.size() != rack->instances.size()) __builtin_trap();
  return 0;
}
