// The store's XML form, its file beside the module, and import by file extension.
#include <algorithm>
#include <cwctype>
#include <fstream>
#include <optional>

#include "documents/xml.h"
#include "instruments/instrument.h"
#include "platform/codepage.h"
#include "platform/files.h"
#include "platform/module_path.h"

namespace {

std::optional<int> Number(const TiXmlElement& element) {
  int value = 0;
  if (element.QueryIntAttribute("Num", &value) != TIXML_SUCCESS) return std::nullopt;
  return value;
}

// The text of an element whose first child is text.
std::optional<std::wstring> TextOf(const TiXmlElement& element) {
  const TiXmlNode* first = element.FirstChild();
  if (!first || !first->ToText()) return std::nullopt;
  return NarrowToWide(first->Value());
}

// Calls `use` for each element child named `name` that has a readable "Num" and text.
template <class Use>
void ForEachNamedText(const TiXmlNode& parent, const char* name, Use use) {
  for (const TiXmlElement* e = parent.FirstChildElement(name); e; e = e->NextSiblingElement(name)) {
    const auto number = Number(*e);
    const auto text = TextOf(*e);
    if (number && text) use(*number, *text);
  }
}

// Links new nodes rather than inserting clones: a store's file can hold a million lines.
TiXmlElement& AppendElement(TiXmlNode& parent, const char* name) {
  return *parent.LinkEndChild(new TiXmlElement(name))->ToElement();
}

void AppendText(TiXmlNode& parent, const std::wstring& text) {
  parent.LinkEndChild(new TiXmlText(WideToNarrow(text)));
}

void AppendNamed(TiXmlNode& parent, const char* name, std::int32_t number,
                 const std::wstring& text) {
  TiXmlElement& element = AppendElement(parent, name);
  element.SetAttribute("Num", number);
  AppendText(element, text);
}

bool StartsWithDeclaration(const std::wstring& path) {
  std::ifstream file(WideToNarrow(path), std::ios::binary);
  char head[5] = {};
  return file.read(head, sizeof head) && std::string_view(head, sizeof head) == "<?xml";
}

std::wstring LowerExtension(const std::wstring& path) {
  std::wstring tail = path.substr(path.size() - std::min<std::size_t>(path.size(), 3));
  std::transform(tail.begin(), tail.end(), tail.begin(), [](wchar_t c) {
    return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
  });
  return tail;
}

}  // namespace

std::wstring CInstrument::DefaultDevicesFile() {
  const std::wstring module = ModulePath();
  const std::size_t slash = module.find_last_of(L"/\\");
  return (slash == std::wstring::npos ? std::wstring() : module.substr(0, slash + 1)) +
         L"devices.xml";
}

CInstrument::CInstrument(std::wstring devicesFile) : m_devicesFile(std::move(devicesFile)) {
  TiXmlDocument doc;
  const TiXmlNode* instruments =
      doc.LoadFile(WideToNarrow(m_devicesFile)) ? doc.FirstChild("Instruments") : nullptr;
  if (!instruments) {
    m_unreadFile = PathExists(m_devicesFile);
    return;
  }
  std::vector<std::wstring> names;
  ReadDevices(*instruments, names);
}

CInstrument::~CInstrument() {
  if (m_dirty) SaveFile();
}

void CInstrument::SaveFile() {
  TiXmlDocument doc;
  doc.InsertEndChild(TiXmlDeclaration("1.0", "", ""));
  TiXmlNode& instruments = AppendElement(doc, "Instruments");
  const std::wstring generic = NarrowToWide(kGenericDevice);
  for (const auto& entry : m_devices)
    if (entry.first != generic) WriteDevice(instruments, entry.first);
  // Written beside the file and moved over it only when complete: a save that fails (a full
  // disk, a folder that cannot be written) leaves the file as it was, and is not reported.
  const std::wstring temporary = m_devicesFile + L".saving";
  if (!doc.SaveFile(WideToNarrow(temporary))) {
    DeleteFileAt(temporary);
    return;
  }
  // A file that was there but could not be read is kept aside rather than lost.
  if (m_unreadFile) MoveFileOver(m_devicesFile, m_devicesFile + L".unread");
  if (!MoveFileOver(temporary, m_devicesFile)) DeleteFileAt(temporary);
}

void CInstrument::ReadDevices(const TiXmlNode& parent, std::vector<std::wstring>& names) {
  CAutoLock lock(m_lock);
  for (const TiXmlNode* node = parent.IterateChildren("Instrument", nullptr); node;
       node = parent.IterateChildren("Instrument", node)) {
    if (!node->ToElement()) break;
    ReadDevice(*node, names);
  }
}

void CInstrument::ReadDevice(const TiXmlNode& instrument, std::vector<std::wstring>& names) {
  const TiXmlNode* typeNode = instrument.FirstChild("Type");
  const TiXmlElement* type = typeNode ? typeNode->ToElement() : nullptr;
  const auto name = type ? TextOf(*type) : std::nullopt;
  if (!name) return;
  names.push_back(*name);

  DeviceEntry& device = m_devices[*name];
  device.controllerTable = *name;
  NameTable& controllers = m_controllerTables[*name];
  controllers.clear();
  ForEachNamedText(instrument, "CC", [&](std::int32_t number, const std::wstring& text) {
    controllers[number] = text;
  });

  device.banks.clear();
  for (const TiXmlElement* bank = instrument.FirstChildElement("Bank"); bank;
       bank = bank->NextSiblingElement("Bank")) {
    const auto number = Number(*bank);
    if (!number) continue;
    const char* table = bank->Attribute("Name");
    const std::wstring tableName = table ? NarrowToWide(table) : std::wstring();
    device.banks[*number] = tableName;
    NameTable& patches = m_patchTables[tableName];
    ForEachNamedText(*bank, "Patch",
                     [&](std::int32_t patch, const std::wstring& text) { patches[patch] = text; });
  }
}

void CInstrument::WriteCurrentDevice(TiXmlNode& parent) {
  CAutoLock lock(m_lock);
  WriteDevice(parent, NarrowToWide(m_currentName));
}

void CInstrument::WriteDevice(TiXmlNode& parent, const std::wstring& name) {
  CAutoLock lock(m_lock);
  const DeviceEntry& device = m_devices[name];
  TiXmlElement& instrument = AppendElement(parent, "Instrument");
  AppendText(AppendElement(instrument, "Type"), name);
  for (const auto& [number, text] : m_controllerTables[device.controllerTable])
    AppendNamed(instrument, "CC", number, text);
  for (const auto& [number, table] : device.banks) {
    TiXmlElement& bank = AppendElement(instrument, "Bank");
    bank.SetAttribute("Num", number);
    bank.SetAttribute("Name", WideToNarrow(table));
    for (const auto& [patch, text] : m_patchTables[table]) AppendNamed(bank, "Patch", patch, text);
  }
}

HRESULT CInstrument::ImportDefinitions(const std::wstring& path) {
  CAutoLock lock(m_lock);
  const std::wstring extension = LowerExtension(path);
  if (extension == L"xml" && StartsWithDeclaration(path)) {
    TiXmlDocument doc;
    if (doc.LoadFile(WideToNarrow(path)))
      if (const TiXmlNode* instruments = doc.FirstChild("Instruments")) {
        std::vector<std::wstring> names;
        ReadDevices(*instruments, names);
      }
    m_dirty = true;
    return S_OK;
  }
  if (extension == L"ins" && ParseDefinitionFile(path)) {
    m_dirty = true;
    return S_OK;
  }
  return E_FAIL;
}
