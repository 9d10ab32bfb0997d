#include "host/midi/virtual_midi_ports.h"

#include <algorithm>
#include <cwchar>

namespace {

// Handles are index + 1, so that 0 keeps its meaning of "no port".
std::int32_t IndexOf(MidiPortHandle handle) { return static_cast<std::int32_t>(handle) - 1; }

}  // namespace

CVirtualMidiPorts::CVirtualMidiPorts(std::int32_t count, CMidiPortListener& listener)
    : m_count(count), m_listener(listener) {}

std::int32_t CVirtualMidiPorts::GetInputPortCount() { return m_count; }
std::int32_t CVirtualMidiPorts::GetOutputPortCount() { return m_count; }

std::wstring CVirtualMidiPorts::SentPortName(std::int32_t port) {
  return L"Virtual Out " + std::to_wstring(port + 1);
}

std::wstring CVirtualMidiPorts::InputPortName(std::int32_t id) {
  const std::int32_t index = id - InputId(0);
  return ValidIndex(index) ? L"Virtual In " + std::to_wstring(index + 1) : L"?";
}

HRESULT CVirtualMidiPorts::GetInputPortName(std::int32_t index, wchar_t* name,
                                            std::uint32_t capacity) {
  if (!ValidIndex(index)) return E_INVALIDARG;
  return CopyPortName(InputPortName(InputId(index)), name, capacity);
}

HRESULT CVirtualMidiPorts::GetOutputPortName(std::int32_t index, wchar_t* name,
                                             std::uint32_t capacity) {
  if (!ValidIndex(index)) return E_INVALIDARG;
  return CopyPortName(SentPortName(index), name, capacity);
}

HRESULT CVirtualMidiPorts::GetOutputPortHandle(std::int32_t index, MidiPortHandle* handle) {
  if (!handle) return E_POINTER;
  *handle = ValidIndex(index) ? static_cast<MidiPortHandle>(index + 1) : 0;
  return *handle ? S_OK : E_INVALIDARG;
}

HRESULT CVirtualMidiPorts::SendShortMsg(MidiPortHandle handle, std::uint32_t message) {
  if (!ValidIndex(IndexOf(handle))) return E_INVALIDARG;
  const std::uint8_t bytes[3] = {static_cast<std::uint8_t>(message),
                                 static_cast<std::uint8_t>(message >> 8),
                                 static_cast<std::uint8_t>(message >> 16)};
  m_listener.OnPortSend(IndexOf(handle), std::span(bytes, ShortMessageLength(bytes[0])));
  return S_OK;
}

HRESULT CVirtualMidiPorts::SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                        std::uint32_t length) {
  if (!ValidIndex(IndexOf(handle)) || (!bytes && length)) return E_INVALIDARG;
  m_listener.OnPortSend(IndexOf(handle), std::span(bytes, length));
  return S_OK;
}

HRESULT CVirtualMidiPorts::GetInputPortId(std::int32_t index, std::int32_t* id) {
  if (!id) return E_POINTER;
  *id = InputId(index);
  return ValidIndex(index) ? S_OK : E_INVALIDARG;
}

HRESULT CVirtualMidiPorts::GetOutputPortId(std::int32_t index, std::int32_t* id) {
  if (!id) return E_POINTER;
  *id = 2000 + index;
  return ValidIndex(index) ? S_OK : E_INVALIDARG;
}
