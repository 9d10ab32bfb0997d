#include "resources/resources.h"

std::optional<std::span<const std::uint8_t>> BuiltInResource(std::string_view type,
                                                             std::string_view name) {
  for (const BuiltInResourceEntry& entry : BuiltInResourceTable())
    if (type == entry.type && name == entry.name)
      return std::span<const std::uint8_t>(entry.bytes, entry.size);
  return std::nullopt;
}
