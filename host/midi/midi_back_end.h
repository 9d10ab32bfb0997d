// What every MIDI back end of the host offers besides the port interface the instances use:
// names for the ports it reports traffic on, and the faults of a run. The host owns the back
// end; the instances' references never delete it.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "interfaces/host_midi_ports.h"

class CMidiPortListener {
 public:
  // [the sender's thread] One message or one whole sysex block goes out at `port`, a number the
  // back end names through SentPortName; told before it can come back anywhere.
  virtual void OnPortSend(std::int32_t port, std::span<const std::uint8_t> bytes) = 0;

 protected:
  ~CMidiPortListener() = default;
};

// One short message that reached an input port of the host.
struct MidiArrival {
  std::int32_t inputId;  // the stable id of the input port
  std::uint32_t packed;  // status in the low byte, then data 1 and data 2
  std::chrono::steady_clock::time_point time;  // when the host received it
};

class CMidiBackEnd : public CUnknownImpl<IHostMidiPorts2> {
 public:
  // [any thread] The name of `port` as the listener was given it.
  virtual std::wstring SentPortName(std::int32_t port) = 0;
  // [any thread] The name of the input port with id `id`, or "?" when it has none.
  virtual std::wstring InputPortName(std::int32_t id) = 0;
  // [host thread, after the run] What failed during the run, one line each: sends refused by a
  // port that had gone, input that did not fit, ports that went away. Empty when nothing did.
  virtual std::vector<std::string> Faults() { return {}; }
  // [output worker] The handle for an instance's output: the port it announced with
  // UseOutputPort(`id`) where the back end finds it by id, so that ports coming and going in
  // the list do not move it; else the port at `index`, as GetOutputPortHandle.
  virtual HRESULT OutputHandle(std::int32_t index, std::optional<std::int32_t> /*id*/,
                               MidiPortHandle* handle) {
    return GetOutputPortHandle(index, handle);
  }

  HRESULT STDMETHODCALLTYPE Reserved() override { return E_NOTIMPL; }

 protected:
  void LastReleased() override {}  // owned by the host, not by its references
};

// [any thread] Copies `text` into `name` with room for `capacity` characters, cutting it short
// and always ending it; E_POINTER for no buffer.
HRESULT CopyPortName(const std::wstring& text, wchar_t* name, std::uint32_t capacity);

// The number of data bytes that follow a status byte in a packed short message.
std::size_t ShortMessageLength(std::uint8_t status);
