// The module's built-in files, compiled into it as byte arrays so that every system carries
// them alike: pages by the type "HTML" and their file name, pictures by the type "IMAGE" and
// their number. The list lives in resources/CMakeLists.txt.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

struct BuiltInResourceEntry {
  const char* type;
  const char* name;
  const std::uint8_t* bytes;
  std::size_t size;
};

// [any thread] The bytes of the resource, or nothing when the module has none of that type and
// name. Names compare exactly.
std::optional<std::span<const std::uint8_t>> BuiltInResource(std::string_view type,
                                                             std::string_view name);

// The table the build generates from the list.
std::span<const BuiltInResourceEntry> BuiltInResourceTable();
