// Any text as a device file or a saved state: after parsing, the store merges whatever
// "Instrument" elements stand there and every other element is read as a stored event; both
// must then write out again.
#include <cstddef>
#include <cstdint>
#include <string>

#include "documents/stored_event.h"
#include "documents/xml.h"
#include "instruments/instrument.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  TiXmlDocument doc;
  doc.Parse(text.c_str());  // a broken document keeps the tree built so far
  const TiXmlElement* root = doc.RootElement();
  if (!root) return 0;

  ComPtr<CInstrument> store(new CInstrument(L"/nonexistent/tarn-fuzz/devices.xml"));
  std::vector<std::wstring> names;
  store->ReadDevices(*root, names);
  TiXmlElement out("Config");
  for (const std::wstring& name : names) {
    store->SelectDevice(name);
    store->WriteCurrentDevice(out);
  }
  for (const TiXmlElement* e = root->FirstChildElement(); e; e = e->NextSiblingElement()) {
    CStoredEvent event;
    event.ReadXml(*e);
    event.WriteXml(out);
  }
  std::string written;
  written << out;
  return 0;
}
