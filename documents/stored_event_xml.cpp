#include <cstring>
#include <optional>

#include "documents/base64_coder.h"
#include "documents/stored_event.h"
#include "documents/xml.h"
#include "platform/codepage.h"

namespace {

std::optional<int> IntAttribute(const TiXmlElement& element, const char* name) {
  int value = 0;
  if (element.QueryIntAttribute(name, &value) != TIXML_SUCCESS) return std::nullopt;
  return value;
}

// Status, Data1 and Data2 of `element`, each cut to its low byte; nothing unless all three read.
std::optional<ShortMessage> MessageAttributes(const TiXmlElement& element) {
  const auto status = IntAttribute(element, "Status");
  const auto data1 = IntAttribute(element, "Data1");
  const auto data2 = IntAttribute(element, "Data2");
  if (!status || !data1 || !data2) return std::nullopt;
  return ShortMessage::FromBytes(static_cast<std::uint8_t>(*status),
                                 static_cast<std::uint8_t>(*data1),
                                 static_cast<std::uint8_t>(*data2));
}

// The "Msg" children in order, up to the first that lacks a number.
ShortMessageList MessageChildren(const TiXmlElement& element) {
  ShortMessageList messages;
  for (const TiXmlNode* node = element.IterateChildren("Msg", nullptr); node;
       node = element.IterateChildren("Msg", node)) {
    const TiXmlElement* child = node->ToElement();
    if (!child) break;
    const auto message = MessageAttributes(*child);
    if (!message) break;
    messages.push_back(*message);
  }
  return messages;
}

// Keeps sysex frames and drops what lies between them, such as the zero bytes that the
// decoder makes of padding. A stray F7 outside a frame is kept. Inside a frame everything up to
// its F7 is kept, so a frame is copied in one run rather than byte by byte.
std::vector<std::uint8_t> SysexFrames(const std::uint8_t* bytes, std::uint32_t size) {
  std::vector<std::uint8_t> kept;
  kept.reserve(size);
  const std::uint8_t* p = bytes;
  const std::uint8_t* const end = bytes + size;
  bool inside = true;
  while (p < end) {
    if (inside) {
      const auto* f7 = static_cast<const std::uint8_t*>(
          std::memchr(p, 0xF7, static_cast<std::size_t>(end - p)));
      const std::uint8_t* stop = f7 ? f7 + 1 : end;
      kept.insert(kept.end(), p, stop);
      p = stop;
      inside = !f7;
    } else {
      const std::uint8_t b = *p++;
      if (b == 0xF7 || b == 0xF0) kept.push_back(b);
      if (b == 0xF0) inside = true;
    }
  }
  return kept;
}

std::vector<std::uint8_t> SysexFromText(const TiXmlText& text) {
  CBase64Coder coder;
  coder.Decode(text.Value());
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(coder.DecodedMessage());
  const std::uint32_t size = coder.DecodedMessageSize();
  if (!bytes || size == 0 || bytes[0] != 0xF0) return {};
  return SysexFrames(bytes, size);
}

TiXmlElement& AppendElement(TiXmlNode& parent, const char* name) {
  return *parent.InsertEndChild(TiXmlElement(name))->ToElement();
}

}  // namespace

HRESULT CStoredEvent::WriteXml(TiXmlNode& parent) const {
  TiXmlElement& element = AppendElement(parent, "MIDIMsg");
  element.SetAttribute("Name", WideToNarrow(m_name));
  element.SetAttribute("Description", WideToNarrow(m_description));
  element.SetAttribute("Enabled", m_enabled ? 1 : 0);
  if (IsWait()) {
    element.SetAttribute("Wait", static_cast<int>(m_waitMs));
  } else if (HasMessages()) {
    for (const ShortMessage& m : m_messages) {
      TiXmlElement& msg = AppendElement(element, "Msg");
      msg.SetAttribute("Status", m.Status());
      msg.SetAttribute("Data1", m.Data1());
      msg.SetAttribute("Data2", m.Data2());
    }
  } else if (IsSysex()) {
    CBase64Coder coder;
    coder.Encode(m_sysex.data(), static_cast<std::uint32_t>(m_sysex.size()));
    element.LinkEndChild(new TiXmlBase64Text(coder.EncodedMessage()));
  }
  return S_OK;
}

void CStoredEvent::ReadXml(const TiXmlElement& element) {
  const char* name = element.Attribute("Name");
  const char* description = element.Attribute("Description");
  m_name = name ? NarrowToWide(name) : std::wstring();
  m_description = description ? NarrowToWide(description) : std::wstring();
  m_sysex.clear();
  m_messages.clear();
  m_enabled = IntAttribute(element, "Enabled").value_or(0) != 0;
  if (const auto wait = IntAttribute(element, "Wait")) {
    m_waitMs = static_cast<std::uint32_t>(*wait);
    return;
  }
  if (const auto message = MessageAttributes(element)) {
    m_messages.push_back(*message);
    return;
  }
  m_messages = MessageChildren(element);
  if (!m_messages.empty()) return;
  if (const TiXmlNode* first = element.FirstChild(); first && first->ToText())
    m_sysex = SysexFromText(*first->ToText());
}
