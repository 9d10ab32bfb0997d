#include "module/class_table.h"

#include "core/filter.h"
#include "editor/property_page.h"

namespace {

// {73647561-0000-0010-8000-00AA00389B71}
constexpr GUID kAudioMajorType =
    MakeGuid(0x73647561, 0x0000, 0x0010, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71);
constexpr GUID kAnySubtype{};

FilterPinSetup Pin(const wchar_t* name, bool output, const wchar_t* connectsTo) {
  FilterPinSetup pin;
  pin.name = name;
  pin.output = output;
  pin.connectsToPin = connectsTo;
  pin.mediaTypes = {{kAudioMajorType, kAnySubtype}};
  return pin;
}

}  // namespace

const FilterSetup& TarnFilterSetup() {
  static const FilterSetup setup{CLSID_TarnFilter,
                                 L"marrowgate Tarn MIDI Output",
                                 0x200000,
                                 {Pin(L"Input", false, L"Output"), Pin(L"Output", true, L"Input")}};
  return setup;
}

std::span<const CFactoryTemplate> ClassTable() {
  static const CFactoryTemplate table[] = {
      {L"marrowgate Tarn MIDI Output", &CLSID_TarnFilter, &CFilter::CreateInstance, nullptr,
       &TarnFilterSetup()},
      {L"marrowgate Tarn Property Page", &CLSID_TarnPropertyPage,
       &CExternalHardwareProxyDXiPropPage::CreateInstance, nullptr, nullptr},
  };
  return table;
}
