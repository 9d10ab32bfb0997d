// The host's MIDI ports. The host owns and opens them; an instance only names them, asks for a
// handle per batch, and sends through it. Operation order is a binary contract.
#pragma once

#include <cstdint>

#include "platform/com.h"
#include "platform/unknown_impl.h"

// A port handle; 0 means the port cannot be written now.
using MidiPortHandle = std::uintptr_t;

inline constexpr std::uint32_t kPortNameCapacity = 260;

// {A9A8FCF8-0FF7-4ED5-949A-CE7CABD7E4C7}
inline constexpr IID IID_IHostMidiPorts =
    MakeGuid(0xA9A8FCF8, 0x0FF7, 0x4ED5, 0x94, 0x9A, 0xCE, 0x7C, 0xAB, 0xD7, 0xE4, 0xC7);
struct IHostMidiPorts : IUnknown {
  // [any thread]
  virtual std::int32_t STDMETHODCALLTYPE GetInputPortCount() = 0;
  virtual HRESULT STDMETHODCALLTYPE Reserved() = 0;  // never called; keeps its place
  virtual HRESULT STDMETHODCALLTYPE GetInputPortName(std::int32_t index, wchar_t* name,
                                                     std::uint32_t capacity) = 0;
  virtual std::int32_t STDMETHODCALLTYPE GetOutputPortCount() = 0;
  // [output worker, once per batch]
  virtual HRESULT STDMETHODCALLTYPE GetOutputPortHandle(std::int32_t index,
                                                        MidiPortHandle* handle) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetOutputPortName(std::int32_t index, wchar_t* name,
                                                      std::uint32_t capacity) = 0;
  // [output worker, inside the process-wide send lock]
  virtual HRESULT STDMETHODCALLTYPE SendShortMsg(MidiPortHandle handle, std::uint32_t message) = 0;
  virtual HRESULT STDMETHODCALLTYPE SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                                 std::uint32_t length) = 0;
};
TARN_INTERFACE_ID(IHostMidiPorts, IID_IHostMidiPorts, IUnknown);

// {3791D505-9F6B-4364-AC89-AD4EB8339061}
inline constexpr IID IID_IHostMidiPorts2 =
    MakeGuid(0x3791D505, 0x9F6B, 0x4364, 0xAC, 0x89, 0xAD, 0x4E, 0xB8, 0x33, 0x90, 0x61);
// Stable port ids, which saved state prefers to names. A host need not offer it.
struct IHostMidiPorts2 : IHostMidiPorts {
  virtual HRESULT STDMETHODCALLTYPE GetInputPortId(std::int32_t index, std::int32_t* id) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetOutputPortId(std::int32_t index, std::int32_t* id) = 0;
  virtual HRESULT STDMETHODCALLTYPE UseInputPort(std::int32_t id) = 0;
  virtual HRESULT STDMETHODCALLTYPE UseOutputPort(std::int32_t id) = 0;
};
TARN_INTERFACE_ID(IHostMidiPorts2, IID_IHostMidiPorts2, IHostMidiPorts);
