// Any bytes as instrument definitions: the store takes what it can, and every device it then
// holds can be selected, read by the host and written out.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "documents/xml.h"
#include "instruments/instrument.h"

namespace {

void ReadEveryName(CInstrument& store) {
  std::int32_t* banks = nullptr;
  std::int32_t count = 0;
  if (FAILED(store.GetBanks(&banks, &count))) return;
  char name[260];
  for (std::int32_t i = 0; i < count; ++i) {
    ComPtr<IMfxNameList> list;
    if (FAILED(store.GetPatchNames(banks[i], list.Receive()))) continue;
    for (std::int32_t index = 0; index < 128; ++index) list->GetNameAt(index, name, sizeof name);
  }
  CoTaskMemFree(banks);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ComPtr<CInstrument> store(new CInstrument(L"/nonexistent/tarn-fuzz/devices.xml"));
  store->ParseDefinitionText(std::string_view(reinterpret_cast<const char*>(data), size));
  TiXmlElement out("Instruments");
  for (const std::wstring& device : store->GetDeviceNames()) {
    store->SelectDevice(device);
    ReadEveryName(*store);
    store->WriteDevice(out, device);
  }
  std::string text;
  text << out;
  return 0;
}
