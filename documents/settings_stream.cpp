#include "documents/settings_stream.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <limits>
#include <memory>
#include <optional>

#include "documents/base64_coder.h"
#include "documents/xml.h"
#include "platform/codepage.h"
#include "platform/message_box.h"

namespace {

constexpr std::uint32_t kVersionCharacters = 12;

TiXmlElement& AppendElement(TiXmlNode& parent, const char* name) {
  return *parent.InsertEndChild(TiXmlElement(name))->ToElement();
}

std::optional<int> IntAttribute(const TiXmlElement& element, const char* name) {
  int value = 0;
  if (element.QueryIntAttribute(name, &value) != TIXML_SUCCESS) return std::nullopt;
  return value;
}

ComPtr<IHostMidiPorts2> PortsWithIds(IHostMidiPorts* ports) {
  ComPtr<IHostMidiPorts2> ports2;
  if (ports && FAILED(ports2.QueryFrom(ports, IID_IHostMidiPorts2))) ports2.Reset();
  return ports2;
}

// --- writing -----------------------------------------------------------------------------------

void WritePort(ISettingsSubject& subject, TiXmlNode& config, PortDirection direction,
               IHostMidiPorts2* ports2, bool includeNames) {
  const ISettingsSubject::PortChoice port = subject.SavedPort(direction);
  if (port.name.empty()) return;
  TiXmlElement element(direction == PortDirection::Input ? "MIDIInputPort" : "MIDIOutputPort");
  bool any = false;
  if (includeNames) {
    element.SetAttribute("Name", WideToNarrow(port.name));
    any = true;
  }
  std::int32_t id = 0;
  if (ports2 && SUCCEEDED(direction == PortDirection::Input
                              ? ports2->GetInputPortId(port.index, &id)
                              : ports2->GetOutputPortId(port.index, &id))) {
    element.SetAttribute("ID", id);
    any = true;
  }
  if (any) config.InsertEndChild(element);
}

// --- reading -----------------------------------------------------------------------------------

// What the text asks for, gathered before anything is applied.
struct PortRequest {
  bool byId = false;       // the host offers IDs and the text has one that parses
  std::int32_t id = 0;
  std::wstring name;       // the "Name" attribute, for a request without an ID
};

struct ConfigPlan {
  const TiXmlElement* config = nullptr;
  std::optional<PortRequest> input;
  std::optional<PortRequest> output;
  std::optional<std::uint32_t> rechannel;
  std::vector<std::uint8_t> prefix;
  std::optional<bool> midiSync;
  std::vector<CStoredEvent> events;
};

std::optional<PortRequest> ReadPortRequest(const TiXmlElement& config, const char* element,
                                           bool hostHasIds) {
  const TiXmlElement* port = config.FirstChildElement(element);
  if (!port) return std::nullopt;
  PortRequest request;
  if (const auto id = IntAttribute(*port, "ID"); id && hostHasIds) {
    request.byId = true;
    request.id = *id;
  } else if (const char* name = port->Attribute("Name")) {
    request.name = NarrowToWide(name);
  }
  return request;
}

// All decoded bytes, padding zeros included: no frame scan applies to the prefix.
std::vector<std::uint8_t> ReadPrefix(const TiXmlElement& config) {
  const TiXmlElement* element = config.FirstChildElement("SysexPrefix");
  if (!element) return {};
  const TiXmlNode* first = element->FirstChild();
  if (!first || !first->ToText()) return {};
  CBase64Coder coder;
  coder.Decode(first->Value());
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(coder.DecodedMessage());
  if (!bytes) return {};
  return std::vector<std::uint8_t>(bytes, bytes + coder.DecodedMessageSize());
}

std::vector<CStoredEvent> ReadEvents(const TiXmlElement& config) {
  std::vector<CStoredEvent> events;
  for (const TiXmlNode* node = config.IterateChildren("MIDIMsg", nullptr); node;
       node = config.IterateChildren("MIDIMsg", node)) {
    const TiXmlElement* element = node->ToElement();
    if (!element) break;
    CStoredEvent& event = events.emplace_back();
    event.ReadXml(*element);
  }
  return events;
}

ConfigPlan Plan(const TiXmlElement& config, bool hostHasIds) {
  ConfigPlan plan;
  plan.config = &config;
  plan.input = ReadPortRequest(config, "MIDIInputPort", hostHasIds);
  plan.output = ReadPortRequest(config, "MIDIOutputPort", hostHasIds);
  if (const TiXmlElement* rechannel = config.FirstChildElement("MIDIOutputRechannel"))
    plan.rechannel = static_cast<std::uint32_t>(IntAttribute(*rechannel, "Channel").value_or(0));
  plan.prefix = ReadPrefix(config);
  if (const TiXmlElement* sync = config.FirstChildElement("MIDISync"))
    plan.midiSync = IntAttribute(*sync, "Enabled").value_or(0) != 0;
  plan.events = ReadEvents(config);
  return plan;
}

// The name of the first port whose host ID is `id`; nothing when none has it. A port whose ID
// query fails has no ID.
std::optional<std::wstring> PortNameById(IHostMidiPorts2& ports, PortDirection direction,
                                         std::int32_t id) {
  const bool input = direction == PortDirection::Input;
  const std::int32_t count = input ? ports.GetInputPortCount() : ports.GetOutputPortCount();
  for (std::int32_t i = 0; i < count; ++i) {
    std::int32_t portId = 0;
    if (FAILED(input ? ports.GetInputPortId(i, &portId) : ports.GetOutputPortId(i, &portId)) ||
        portId != id)
      continue;
    wchar_t name[kPortNameCapacity] = {};
    if (input)
      ports.GetInputPortName(i, name, kPortNameCapacity);
    else
      ports.GetOutputPortName(i, name, kPortNameCapacity);
    name[kPortNameCapacity - 1] = L'\0';
    return std::wstring(name);
  }
  return std::nullopt;
}

void RestorePort(ISettingsSubject& subject, IHostMidiPorts2* ports2, PortDirection direction,
                 const PortRequest& request) {
  std::wstring name = request.name;
  if (request.byId) {
    // The ID alone decides while the host offers IDs: an unknown one leaves the port as it was.
    auto found = PortNameById(*ports2, direction, request.id);
    if (!found) return;
    name = std::move(*found);
  }
  const HRESULT hr = subject.RestorePort(direction, name);
  if (direction == PortDirection::Input) return;  // the selection warned already
  subject.RestoreOutputEnabled(SUCCEEDED(hr));
  // The selection showed this text once already; users have always seen it twice.
  if (FAILED(hr) && !name.empty())
    ShowMessageBox(L"Warning:  Tarn configured to use unavailable MIDI output port \"" + name +
                       L"\".  Disabling output.",
                   L"Tarn", MB_ICONWARNING_FLAG);
}

HRESULT Apply(ISettingsSubject& subject, ConfigPlan plan, IHostMidiPorts2* ports2) {
  std::vector<std::wstring> names;
  subject.ReadDevices(*plan.config, names);
  if (names.size() == 1) subject.SelectDevice(names.front());
  if (plan.input) RestorePort(subject, ports2, PortDirection::Input, *plan.input);
  if (plan.output) RestorePort(subject, ports2, PortDirection::Output, *plan.output);
  if (plan.rechannel) subject.RestoreRechannel(*plan.rechannel);
  subject.RestoreSysexPrefix(std::move(plan.prefix));
  if (plan.midiSync) subject.RestoreMidiSync(*plan.midiSync);
  subject.RestoreEvents(std::move(plan.events));
  subject.ReloadEditorLists();
  return subject.SendEventsAfterLoad();
}

// --- the frame ---------------------------------------------------------------------------------

// Reads one UTF-16LE character; false on a failed or short read, with the failure in `hr`.
bool ReadCharacter(IStream& stream, char16_t& character, HRESULT& hr) {
  std::uint8_t bytes[2] = {};
  ULONG read = 0;
  hr = stream.Read(bytes, sizeof bytes, &read);
  if (FAILED(hr)) return false;
  if (read != sizeof bytes) {
    hr = VFW_E_INVALID_FILE_FORMAT;
    return false;
  }
  character = static_cast<char16_t>(bytes[0] | bytes[1] << 8);
  return true;
}

// Reads the version field: digits up to a blank, tab, CR, LF or zero.
HRESULT ReadVersion(IStream& stream) {
  HRESULT hr = S_OK;
  char16_t c = 0;
  while (ReadCharacter(stream, c, hr)) {
    if (c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\0') return S_OK;
    if (c < u'0' || c > u'9') return VFW_E_INVALID_FILE_FORMAT;
  }
  return hr;
}

HRESULT WriteAll(IStream& stream, const void* bytes, std::uint32_t size) {
  ULONG written = 0;
  const HRESULT hr = stream.Write(bytes, size, &written);
  if (FAILED(hr)) return hr;
  return written == size ? S_OK : STG_E_MEDIUMFULL;
}

// How many bytes the stream holds after its position, when it can say.
std::optional<std::uint64_t> BytesLeft(IStream& stream) {
  STATSTG stat{};
  if (FAILED(stream.Stat(&stat, STATFLAG_NONAME))) return std::nullopt;
  LARGE_INTEGER none{};
  ULARGE_INTEGER position{};
  if (FAILED(stream.Seek(none, STREAM_SEEK_CUR, &position))) return std::nullopt;
  if (position.QuadPart > stat.cbSize.QuadPart) return 0;
  return stat.cbSize.QuadPart - position.QuadPart;
}

// Up to `length` bytes of text, zero-terminated, into `text`. A stream that tells its size gets
// one buffer of what it holds; others are read in blocks that grow with what has arrived. Either
// way a length field larger than the stream costs no more than the stream's bytes. A short read
// ends the text where it stands, and no byte past what arrived is ever read; a failed read is
// the answer, so that a stream that breaks is not taken for a shorter state.
HRESULT ReadText(IStream& stream, std::uint32_t length, std::unique_ptr<char[]>& result) {
  constexpr std::size_t kFirstBlock = 64 * 1024;
  std::size_t capacity = kFirstBlock;
  if (const auto left = BytesLeft(stream)) capacity = static_cast<std::size_t>(*left);
  capacity = std::min<std::size_t>(capacity, length);
  auto text = std::make_unique_for_overwrite<char[]>(capacity + 1);
  std::size_t filled = 0;
  while (filled < length) {
    if (filled == capacity) {
      const std::size_t grown = std::min<std::size_t>(length, capacity * 2 + kFirstBlock);
      auto bigger = std::make_unique_for_overwrite<char[]>(grown + 1);
      std::memcpy(bigger.get(), text.get(), filled);
      text = std::move(bigger);
      capacity = grown;
    }
    const auto want = static_cast<ULONG>(capacity - filled);
    ULONG read = 0;
    const HRESULT hr = stream.Read(text.get() + filled, want, &read);
    if (FAILED(hr)) return hr;
    filled += std::min<ULONG>(read, want);
    if (read < want) break;
  }
  text[filled] = '\0';  // the parser stops here, or at an earlier zero byte of the text
  result = std::move(text);
  return S_OK;
}

}  // namespace

HRESULT WriteConfig(ISettingsSubject& subject, std::string& out, bool includePorts,
                    bool asDocument, bool includeNames) {
  CAutoLock lock(subject.SettingsLock());
  TiXmlDocument document;
  document.InsertEndChild(TiXmlDeclaration("1.0", "", ""));
  // Linked, not inserted: inserting would copy a large sysex text once more.
  TiXmlElement& config = *document.LinkEndChild(new TiXmlElement("Config"))->ToElement();
  config.SetAttribute("Schema", 1);
  const ComPtr<IHostMidiPorts> ports = subject.SettingsPorts();
  const ComPtr<IHostMidiPorts2> ports2 = PortsWithIds(ports.Get());
  if (includePorts) {
    subject.WriteCurrentDevice(config);
    WritePort(subject, config, PortDirection::Input, ports2.Get(), includeNames);
    WritePort(subject, config, PortDirection::Output, ports2.Get(), includeNames);
    if (const auto prefix = subject.SavedSysexPrefix(); !prefix.empty()) {
      CBase64Coder coder;
      coder.Encode(prefix.data(), static_cast<std::uint32_t>(prefix.size()));
      AppendElement(config, "SysexPrefix").LinkEndChild(new TiXmlBase64Text(coder.EncodedMessage()));
    }
  }
  AppendElement(config, "MIDIOutputRechannel")
      .SetAttribute("Channel", static_cast<int>(subject.SavedRechannel()));
  AppendElement(config, "MIDISync").SetAttribute("Enabled", subject.SavedMidiSync() ? 1 : 0);
  // Room for the whole text at once: a large sysex would otherwise be copied at each doubling.
  std::size_t estimate = 4096;
  subject.ForEachSavedEvent([&](const CStoredEvent& event) {
    event.WriteXml(config);
    estimate += event.GetSysexSize() / 3 * 4 + 256;
  });
  out.reserve(out.size() + estimate);
  if (asDocument)
    out << document;
  else
    out << config;
  return S_OK;
}

HRESULT ReadConfig(ISettingsSubject& subject, const char* text) {
  if (!text) return E_FAIL;
  TiXmlDocument document;
  document.Parse(text);  // errors stand: whatever was built before one is still read
  const TiXmlElement* config = document.FirstChildElement("Config");
  if (!config) return E_FAIL;
  const ComPtr<IHostMidiPorts> ports = subject.SettingsPorts();
  const ComPtr<IHostMidiPorts2> ports2 = PortsWithIds(ports.Get());
  return Apply(subject, Plan(*config, static_cast<bool>(ports2)), ports2.Get());
}

HRESULT SetConfigXml(ISettingsSubject& subject, const wchar_t* text) {
  if (!text) return E_POINTER;
  return ReadConfig(subject, WideToNarrow(text).c_str());
}

namespace {

std::wstring ConfigText(ISettingsSubject& subject, bool includePorts) {
  std::string narrow;
  WriteConfig(subject, narrow, includePorts, false, false);
  return NarrowToWide(narrow);
}

}  // namespace

HRESULT GetConfigXmlSize(ISettingsSubject& subject, std::uint32_t* size, bool includePorts) {
  if (!size) return E_POINTER;
  *size = static_cast<std::uint32_t>(ConfigText(subject, includePorts).size() + 2);
  return S_OK;
}

HRESULT GetConfigXml(ISettingsSubject& subject, wchar_t* buffer, std::uint32_t capacity,
                     bool includePorts) {
  if (!buffer) return E_POINTER;
  const std::wstring text = ConfigText(subject, includePorts);
  if (text.size() >= capacity) return E_FAIL;
  std::wmemcpy(buffer, text.data(), text.size());
  buffer[text.size()] = L'\0';
  return S_OK;
}

// --- CSettingsStream -------------------------------------------------------------------------

HRESULT CSettingsStream::Load(IStream* stream) {
  if (!stream) return E_POINTER;
  const HRESULT hr = ReadVersion(*stream);
  if (FAILED(hr)) return hr;
  return ReadFromStream(stream);
}

HRESULT CSettingsStream::Save(IStream* stream, bool clearDirty) {
  if (!stream) return E_POINTER;
  // "%011d " of the version, as UTF-16LE.
  std::uint8_t version[kVersionCharacters * 2] = {};
  for (std::uint32_t i = 0; i < kVersionCharacters; ++i) version[2 * i] = '0';
  version[2 * (kVersionCharacters - 1)] = ' ';
  static_assert(GetSoftwareVersion() == 0, "the field above spells the version 0");
  HRESULT hr = WriteAll(*stream, version, sizeof version);
  if (FAILED(hr)) return hr;
  hr = WriteToStream(stream);
  if (FAILED(hr)) return hr;
  m_dirty = !clearDirty;
  return hr;
}

HRESULT CSettingsStream::GetSizeMax(ULARGE_INTEGER* size) {
  if (!size) return E_POINTER;
  size->QuadPart = std::uint64_t{SizeMax()} + kVersionCharacters * 2;
  return S_OK;
}

std::uint32_t CSettingsStream::SizeMax() {
  std::string text;
  WriteConfig(m_subject, text, true, true, true);
  return static_cast<std::uint32_t>(
      std::min<std::size_t>(text.size(), std::numeric_limits<std::uint32_t>::max()));
}

HRESULT CSettingsStream::WriteToStream(IStream* stream) {
  if (!stream) return E_POINTER;
  std::string text;
  WriteConfig(m_subject, text, true, true, true);
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) return STG_E_MEDIUMFULL;
  const auto length = static_cast<std::uint32_t>(text.size());
  const std::uint8_t field[4] = {static_cast<std::uint8_t>(length),
                                 static_cast<std::uint8_t>(length >> 8),
                                 static_cast<std::uint8_t>(length >> 16),
                                 static_cast<std::uint8_t>(length >> 24)};
  const HRESULT hr = WriteAll(*stream, field, sizeof field);
  if (FAILED(hr)) return hr;
  return WriteAll(*stream, text.data(), length);
}

HRESULT CSettingsStream::ReadFromStream(IStream* stream) {
  if (!stream) return E_POINTER;
  CAutoLock lock(m_subject.SettingsLock());
  std::uint8_t field[4] = {};
  ULONG read = 0;
  const HRESULT hr = stream->Read(field, sizeof field, &read);
  if (FAILED(hr)) return hr;
  if (read != sizeof field) return E_FAIL;  // cut inside the length: no text to read
  const std::uint32_t length = std::uint32_t{field[0]} | std::uint32_t{field[1]} << 8 |
                               std::uint32_t{field[2]} << 16 | std::uint32_t{field[3]} << 24;
  std::unique_ptr<char[]> text;
  const HRESULT textRead = ReadText(*stream, length, text);
  return FAILED(textRead) ? textRead : ReadConfig(m_subject, text.get());
}
