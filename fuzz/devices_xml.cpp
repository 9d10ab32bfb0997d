// Any text as "devices.xml": the store merges whatever "Instrument" elements stand under
// "Instruments", as when an instance is made, and every device can be selected and read by the
// host. What it writes, read into a fresh store, must write the same text again.
#include <cstddef>
#include <cstdint>
#include <string>

#include "documents/xml.h"
#include "instruments/instrument.h"

namespace {

constexpr const wchar_t* kNoFile = L"/nonexistent/tarn-fuzz/devices.xml";

// The store's devices as the file holds them, "Generic Device" left out as on saving.
std::string DevicesText(CInstrument& store) {
  TiXmlElement instruments("Instruments");
  for (const std::wstring& name : store.GetDeviceNames()) {
    if (name == L"Generic Device") continue;
    store.SelectDevice(name);
    ComPtr<IMfxNameList> controllers;
    store.GetControllerNames(controllers.Receive());
    store.WriteDevice(instruments, name);
  }
  std::string text;
  text << instruments;
  return text;
}

// A fresh store that read the "Instruments" element of `text`.
ComPtr<CInstrument> StoreFrom(const char* text) {
  ComPtr<CInstrument> store(new CInstrument(kNoFile));
  TiXmlDocument doc;
  doc.Parse(text);  // a broken document keeps the tree built so far
  if (const TiXmlNode* instruments = doc.FirstChild("Instruments")) {
    std::vector<std::wstring> names;
    store->ReadDevices(*instruments, names);
  }
  return store;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string written = DevicesText(*StoreFrom(text.c_str()));
  const std::string again = DevicesText(*StoreFrom(written.c_str()));
  // Names of nothing but blanks, and empty lines, are lost on the first round by design.
  const std::string third = DevicesText(*StoreFrom(again.c_str()));
  if (again != third) __builtin_trap();
  return 0;
}
