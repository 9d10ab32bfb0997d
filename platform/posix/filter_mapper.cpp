#include <cstdio>
#include <cwchar>

#include "platform/class_registry.h"
#include "platform/filter_mapper.h"

namespace {

std::wstring ListingKey(REFCLSID clsid) {
  return L"CLSID\\" + GuidToString(kLegacyFilterCategory) + L"\\Instance\\" + GuidToString(clsid);
}

// Two digits keep the listing's order under the registry's sorted subkeys.
std::wstring Index(std::size_t n) {
  wchar_t text[8];
  std::swprintf(text, 8, L"%02zu", n);
  return text;
}

std::wstring Flag(bool on) { return on ? L"1" : L"0"; }

bool ReadFlag(const std::wstring& key, std::wstring_view name) {
  return ReadRegistryValue(key, name).value_or(L"0") == L"1";
}

GUID ReadGuid(const std::wstring& key, std::wstring_view name) {
  GUID guid{};
  if (const auto text = ReadRegistryValue(key, name)) GuidFromString(*text, guid);
  return guid;
}

}  // namespace

HRESULT RegisterFilterSetup(const FilterSetup& setup) {
  const std::wstring key = ListingKey(setup.clsid);
  if (!DeleteRegistryTree(key)) return E_FAIL;
  wchar_t merit[16];
  std::swprintf(merit, 16, L"%08X", static_cast<unsigned>(setup.merit));
  const RegistryValue filter[] = {
      {L"FriendlyName", setup.name}, {L"CLSID", GuidToString(setup.clsid)}, {L"Merit", merit}};
  if (!CreateRegistryKey(key, filter)) return E_FAIL;
  for (std::size_t p = 0; p < setup.pins.size(); ++p) {
    const FilterPinSetup& pin = setup.pins[p];
    const std::wstring pinKey = key + L"\\Pins\\" + Index(p);
    const RegistryValue values[] = {{L"Name", pin.name},
                                    {L"Rendered", Flag(pin.rendered)},
                                    {L"Output", Flag(pin.output)},
                                    {L"ZeroInstancesAllowed", Flag(pin.zeroInstancesAllowed)},
                                    {L"ManyAllowed", Flag(pin.manyAllowed)},
                                    {L"ConnectsToFilter", GuidToString(pin.connectsToFilter)},
                                    {L"ConnectsToPin", pin.connectsToPin}};
    if (!CreateRegistryKey(pinKey, values)) return E_FAIL;
    for (std::size_t t = 0; t < pin.mediaTypes.size(); ++t) {
      const RegistryValue type[] = {{L"MajorType", GuidToString(pin.mediaTypes[t].major)},
                                    {L"SubType", GuidToString(pin.mediaTypes[t].minor)}};
      if (!CreateRegistryKey(pinKey + L"\\Types\\" + Index(t), type)) return E_FAIL;
    }
  }
  return S_OK;
}

HRESULT UnregisterFilterSetup(REFCLSID clsid) {
  return DeleteRegistryTree(ListingKey(clsid)) ? S_OK : E_FAIL;
}

std::optional<FilterSetup> ReadFilterSetup(REFCLSID clsid) {
  const std::wstring key = ListingKey(clsid);
  const auto name = ReadRegistryValue(key, L"FriendlyName");
  if (!name) return std::nullopt;
  FilterSetup setup;
  setup.clsid = ReadGuid(key, L"CLSID");
  setup.name = *name;
  setup.merit = static_cast<std::uint32_t>(
      std::wcstoul(ReadRegistryValue(key, L"Merit").value_or(L"0").c_str(), nullptr, 16));
  for (const std::wstring& index : RegistrySubkeys(key + L"\\Pins")) {
    const std::wstring pinKey = key + L"\\Pins\\" + index;
    FilterPinSetup pin;
    pin.name = ReadRegistryValue(pinKey, L"Name").value_or(L"");
    pin.rendered = ReadFlag(pinKey, L"Rendered");
    pin.output = ReadFlag(pinKey, L"Output");
    pin.zeroInstancesAllowed = ReadFlag(pinKey, L"ZeroInstancesAllowed");
    pin.manyAllowed = ReadFlag(pinKey, L"ManyAllowed");
    pin.connectsToFilter = ReadGuid(pinKey, L"ConnectsToFilter");
    pin.connectsToPin = ReadRegistryValue(pinKey, L"ConnectsToPin").value_or(L"");
    for (const std::wstring& type : RegistrySubkeys(pinKey + L"\\Types")) {
      const std::wstring typeKey = pinKey + L"\\Types\\" + type;
      pin.mediaTypes.push_back({ReadGuid(typeKey, L"MajorType"), ReadGuid(typeKey, L"SubType")});
    }
    setup.pins.push_back(std::move(pin));
  }
  return setup;
}
