// In-process virtual MIDI ports: what a host offers an instance when no MIDI server is wanted.
// Each send goes to a listener with the port it was sent on; the host owns the object.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "interfaces/host_midi_ports.h"

class CMidiPortListener {
 public:
  // [the sender's thread] One message or one whole sysex block arrived at output `port`.
  virtual void OnPortSend(std::int32_t port, std::span<const std::uint8_t> bytes) = 0;

 protected:
  ~CMidiPortListener() = default;
};

class CVirtualMidiPorts final : public CUnknownImpl<IHostMidiPorts2> {
 public:
  // Outputs named "Virtual Out 1" ... and inputs "Virtual In 1" ..., `count` of each.
  CVirtualMidiPorts(std::int32_t count, CMidiPortListener& listener);


  std::int32_t STDMETHODCALLTYPE GetInputPortCount() override;
  HRESULT STDMETHODCALLTYPE Reserved() override { return E_NOTIMPL; }
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
  void LastReleased() override {}  // owned by the host, not by its references
  static HRESULT CopyName(const std::wstring& text, wchar_t* name, std::uint32_t capacity);
  bool ValidIndex(std::int32_t index) const { return index >= 0 && index < m_count; }

  const std::int32_t m_count;
  CMidiPortListener& m_listener;
};

// The number of data bytes that follow a status byte in a packed short message.
std::size_t ShortMessageLength(std::uint8_t status);
