// The filter mapper: the system's list of filters, with the merit, pins and media types by which
// a graph or a host chooses one. On Windows it is the system's own mapper (the newer interface
// when it can be made, else the older); on Linux a tree in the class registry:
//
//   CLSID\{083863F1-70DE-11D0-BD40-00A0C911CE86}\Instance\{filter}
//       "FriendlyName", "CLSID", "Merit" (eight hex digits)
//       Pins\00, Pins\01, ...: "Name", "Rendered", "Output", "ZeroInstancesAllowed",
//           "ManyAllowed" ("0" or "1"), "ConnectsToFilter", "ConnectsToPin"
//       Pins\NN\Types\00, ...: "MajorType", "SubType" (braced identifiers)
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/com.h"

// The category under which filters are listed.
// {083863F1-70DE-11D0-BD40-00A0C911CE86}
inline constexpr CLSID kLegacyFilterCategory =
    MakeGuid(0x083863F1, 0x70DE, 0x11D0, 0xBD, 0x40, 0x00, 0xA0, 0xC9, 0x11, 0xCE, 0x86);

// A null subtype stands for any subtype.
struct PinMediaType {
  GUID major;
  GUID minor;
};

struct FilterPinSetup {
  std::wstring name;
  bool rendered = false;
  bool output = false;
  bool zeroInstancesAllowed = false;
  bool manyAllowed = false;
  CLSID connectsToFilter{};
  std::wstring connectsToPin;
  std::vector<PinMediaType> mediaTypes;
};

struct FilterSetup {
  CLSID clsid{};
  std::wstring name;
  std::uint32_t merit = 0;
  std::vector<FilterPinSetup> pins;
};

// [host thread, inside a CComScope] Lists the filter, replacing an older listing of the same
// class. 0, or the mapper's failure.
HRESULT RegisterFilterSetup(const FilterSetup& setup);
// [host thread, inside a CComScope] Removes the filter's listing. 0 also when it was not listed.
HRESULT UnregisterFilterSetup(REFCLSID clsid);

#ifndef _WIN32
// [any thread] The listing of `clsid` as a host reads it back; nothing when it is not listed.
std::optional<FilterSetup> ReadFilterSetup(REFCLSID clsid);
#endif
