// In-process virtual MIDI ports: what a host offers an instance when no MIDI server is wanted.
// Each send goes to a listener with the port it was sent on; the host owns the object.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/midi/midi_back_end.h"

class CVirtualMidiPorts final : public CMidiBackEnd {
 public:
  // Outputs named "Virtual Out 1" ... and inputs "Virtual In 1" ..., `count` of each. Sends
  // reach `listener` with the output's index as the port.
  CVirtualMidiPorts(std::int32_t count, CMidiPortListener& listener);

  std::wstring SentPortName(std::int32_t port) override;
  std::wstring InputPortName(std::int32_t id) override;
  // The id of input `index`, which is where output `index` is wired back.
  static std::int32_t InputId(std::int32_t index) { return 1000 + index; }

  std::int32_t STDMETHODCALLTYPE GetInputPortCount() override;
  HRESULT STDMETHODCALLTYPE GetInputPortName(std::int32_t index, wchar_t* name,
                                             std::uint32_t capacity) override;
  std::int32_t STDMETHODCALLTYPE GetOutputPortCount() override;
  HRESULT STDMETHODCALLTYPE GetOutputPortHandle(std::int32_t index, MidiPortHandle* handle) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortName(std::int32_t index, wchar_t* name,
                                              std::uint32_t capacity) override;
  HRESULT STDMETHODCALLTYPE SendShortMsg(MidiPortHandle handle, std::uint32_t message) override;
  HRESULT STDMETHODCALLTYPE SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                         std::uint32_t length) override;
  HRESULT STDMETHODCALLTYPE GetInputPortId(std::int32_t index, std::int32_t* id) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortId(std::int32_t index, std::int32_t* id) override;
  HRESULT STDMETHODCALLTYPE UseInputPort(std::int32_t) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE UseOutputPort(std::int32_t) override { return S_OK; }

 private:
  bool ValidIndex(std::int32_t index) const { return index >= 0 && index < m_count; }

  const std::int32_t m_count;
  CMidiPortListener& m_listener;
};
