#include "documents/stored_event.h"

#include <cwchar>
#include <utility>

namespace {

std::wstring Format(const wchar_t* format, auto... values) {
  wchar_t buffer[64];
  const int n = std::swprintf(buffer, std::size(buffer), format, values...);
  return n < 0 ? std::wstring() : std::wstring(buffer, static_cast<std::size_t>(n));
}

int Channel(const ShortMessage& m) { return (m.Status() & 0x0F) + 1; }

const wchar_t* SingleMessageTypeText(std::uint8_t kind) {
  switch (kind) {
    case 0x80: return L"Note Off";
    case 0x90: return L"Note On";
    case 0xA0: return L"Key Aftertouch";
    case 0xB0: return L"Control";
    case 0xC0: return L"Program Change";
    case 0xD0: return L"Channel Aftertouch";
    case 0xE0: return L"Wheel";
    default: return L"MIDI Data";
  }
}

}  // namespace

CStoredEvent CStoredEvent::MakeNew(NewEventKind kind) {
  CStoredEvent e;
  e.m_enabled = true;
  switch (kind) {
    case NewEventKind::SystemExclusive:
      e.m_name = L"System Exclusive";
      e.m_sysex = {0xF0, 0xF7};
      break;
    case NewEventKind::MidiData:
      e.m_name = L"MIDI Data";
      break;
    case NewEventKind::Wait:
      e.m_name = L"Wait";
      e.m_waitMs = 1000;
      break;
    case NewEventKind::BankProgramChange:
      e.m_name = L"Bank/Program Change";
      e.m_messages = {ShortMessage::FromBytes(0xB0, 0x00, 0), ShortMessage::FromBytes(0xB0, 0x20, 0),
                      ShortMessage::FromBytes(0xC0, 0, 0)};
      break;
    case NewEventKind::ControllerChange:
      e.m_name = L"Controller Change";
      e.m_messages = {ShortMessage::FromBytes(0xB0, 0, 0)};
      break;
  }
  return e;
}

CStoredEvent CStoredEvent::FromMessage(ShortMessage message) {
  CStoredEvent e;
  e.m_enabled = true;
  e.m_messages.push_back(message);
  return e;
}

bool CStoredEvent::IsSysex() const noexcept {
  return m_sysex.size() >= 2 && m_sysex.front() == 0xF0 && m_sysex.back() == 0xF7;
}

std::wstring CStoredEvent::GetName() {
  if (m_name.empty()) m_name = GetTypeText();
  return m_name;
}

void CStoredEvent::SetWait(std::uint32_t ms) {
  m_sysex.clear();
  m_messages.clear();
  m_waitMs = ms;
}

void CStoredEvent::SetMessages(ShortMessageList messages) {
  m_sysex.clear();
  m_messages = std::move(messages);
}

std::wstring CStoredEvent::GetTypeText() const {
  if (IsWait()) return L"Wait";
  if (IsSysex()) return L"System Exclusive";
  if (m_messages.empty()) return L"Undefined";
  const ShortMessageList& m = m_messages;
  if (m.size() == 3 && m[0].Kind() == 0xB0 && m[1].Kind() == 0xB0 && m[2].Kind() == 0xC0)
    return L"Bank/Program Change";
  if (m.size() == 1) return SingleMessageTypeText(m[0].Kind());
  return L"MIDI Data";
}

std::wstring CStoredEvent::GetInfoText() const {
  // Shown as a signed number: a saved Wait="-16" reads "-16 ms".
  if (IsWait()) return Format(L"%d ms", static_cast<std::int32_t>(m_waitMs));
  if (IsEmpty()) return L"No Data";
  if (IsSysex()) return Format(L"%zu bytes", m_sysex.size());
  const ShortMessageList& m = m_messages;
  // The type test above is looser on purpose: only a true bank select shows bank and program.
  if (m.size() == 3 && m[0].Kind() == 0xB0 && m[0].Data1() == 0 && m[1].Kind() == 0xB0 &&
      m[1].Data1() == 0x20 && m[2].Kind() == 0xC0) {
    const int bank = m[0].Data2() << 7 | m[1].Data2();
    return Format(L"Ch %d Bnk=%d Prg=%d", Channel(m[0]), bank, int{m[2].Data1()});
  }
  if (m.size() == 1 && m[0].Kind() == 0xC0)
    return Format(L"Ch %d Prg %d", Channel(m[0]), int{m[0].Data1()});
  if (m.size() == 1 && m[0].Kind() == 0xB0)
    return Format(L"Ch %d CC %d = %d", Channel(m[0]), int{m[0].Data1()}, int{m[0].Data2()});
  return Format(L"%u message(s)", m.size());
}
