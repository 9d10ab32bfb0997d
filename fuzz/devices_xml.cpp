// Any text as "devices.xml": the store merges whatever "Instrument" elements stand under
// "Instruments", as when an instance is made, and every device can be selected and read by the
// host. What it writes, read into a fresh store, must write the same text again.
#include <cctype>
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

// The printer copies a "&#x" unchanged up to the next ";", so that numeric references survive.
// A text holding "&#x" that is no reference (one or two hex digits and ";") is copied raw with
// what follows it, markup characters included, and cannot be expected to come back the same.
bool HoldsLooseReference(const std::string& text) {
  for (std::size_t at = text.find("&#x"); at != std::string::npos; at = text.find("&#x", at + 1)) {
    std::size_t end = at + 3;
    while (end < text.size() && end < at + 5 &&
           std::isxdigit(static_cast<unsigned char>(text[end])))
      ++end;
    if (end == at + 3 || end >= text.size() || text[end] != ';') return true;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const std::string written = DevicesText(*StoreFrom(text.c_str()));
  const std::string again = DevicesText(*StoreFrom(written.c_str()));
  if (HoldsLooseReference(written) || HoldsLooseReference(again)) return 0;
  // Names of nothing but blanks, and empty lines, are lost on the first round by design.
  const std::string third = DevicesText(*StoreFrom(again.c_str()));
  if (again != third) __builtin_trap();
  return 0;
}
