// MIDI ports on a real server through RtMidi: JACK, or the ALSA sequencer, chosen at run time.
//
// The host's output list is first its own outlets ("<name>-out-N:out"), which the user wires
// anywhere (jack_connect, a patchbay), then the MIDI inputs of every other client; its input
// list is its own inlets ("<name>-in-N:in"), then the other clients' MIDI outputs. Sending to
// another client's port opens a connection to it the first time; listening to another client's
// output opens one when an instance announces it (UseInputPort). The lists are read afresh each
// time an instance asks for a count, so ports that come and go are seen. A port's id is a hash
// of its name, the same in every run and after a server restart, so a saved rack finds its
// ports by id.
//
// RtMidi gives each port a client of its own. What arrives on an input is copied on the
// server's real-time thread into a ring of whole messages, one per input, and handed on by a
// host thread; nothing on the real-time thread locks, allocates or reaches an instance. What does
// not fit, sends to a port that has gone (refused, so the instance does not count them), and
// ports that went away are reported at the end of the run.
#pragma once

#include <semaphore.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/midi/midi_back_end.h"

enum class MidiServer { Jack, Alsa };

struct RtMidiPortsOptions {
  MidiServer server = MidiServer::Jack;
  std::string clientName = "tarn-host";  // the prefix of every client the host makes
  std::int32_t ownPorts = 2;             // outlets and inlets of the host's own
  std::size_t ringBytes = 1 << 16;       // per input
};

class CRtMidiPorts final : public CMidiBackEnd {
 public:
  // [input thread] One short message that reached an input.
  using ArrivalHandler = std::function<void(const MidiArrival&)>;

  // [host thread] Connects to the server and opens the host's own ports; null with `error`
  // saying why not (no server or sequencer, a host of that name already there). Sends are
  // reported to `sends`, arrivals to `arrivals`.
  static std::unique_ptr<CRtMidiPorts> Open(const RtMidiPortsOptions& options,
                                            CMidiPortListener& sends, ArrivalHandler arrivals,
                                            std::string& error);
  ~CRtMidiPorts() override;

  std::wstring SentPortName(std::int32_t port) override;
  std::wstring InputPortName(std::int32_t id) override;
  std::vector<std::string> Faults() override;
  HRESULT OutputHandle(std::int32_t index, std::optional<std::int32_t> id,
                       MidiPortHandle* handle) override;

  // [any thread] The stable id of the port named `name` on `server`.
  static std::int32_t PortId(const std::string& name, MidiServer server);

  std::int32_t STDMETHODCALLTYPE GetInputPortCount() override;
  HRESULT STDMETHODCALLTYPE GetInputPortName(std::int32_t index, wchar_t* name,
                                             std::uint32_t capacity) override;
  std::int32_t STDMETHODCALLTYPE GetOutputPortCount() override;
  HRESULT STDMETHODCALLTYPE GetOutputPortHandle(std::int32_t index,
                                                MidiPortHandle* handle) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortName(std::int32_t index, wchar_t* name,
                                              std::uint32_t capacity) override;
  HRESULT STDMETHODCALLTYPE SendShortMsg(MidiPortHandle handle, std::uint32_t message) override;
  HRESULT STDMETHODCALLTYPE SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                         std::uint32_t length) override;
  HRESULT STDMETHODCALLTYPE GetInputPortId(std::int32_t index, std::int32_t* id) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortId(std::int32_t index, std::int32_t* id) override;
  HRESULT STDMETHODCALLTYPE UseInputPort(std::int32_t id) override;
  HRESULT STDMETHODCALLTYPE UseOutputPort(std::int32_t id) override;

 private:
  struct Output;
  struct Input;
  struct Listers;
  // One entry of a list as the instances see it.
  struct Entry {
    std::string name;
    std::int32_t id;
    std::int32_t own;  // the own port's number from 0, or -1 for another client's port
  };
  static constexpr std::size_t kMaxInputs = 256;

  CRtMidiPorts(const RtMidiPortsOptions& options, CMidiPortListener& sends,
               ArrivalHandler arrivals);
  bool OpenOwnPorts(std::string& error);
  // The lists read afresh; m_mutex held.
  std::vector<Entry> ReadOutputs();
  std::vector<Entry> ReadInputs();
  bool Present(const std::string& outputTarget);  // m_mutex held
  bool IsOwnClient(const std::string& portName) const;
  // The output slot for `entry`, opened if need be; null when it cannot be. m_mutex held.
  Output* OutputFor(const Entry& entry);
  Input* InputFor(const Entry& entry);  // likewise
  HRESULT Send(MidiPortHandle handle, std::span<const std::uint8_t> bytes);
  void DeliverArrivals();
  std::string ClientName(const char* role, std::size_t number) const;

  const RtMidiPortsOptions m_options;
  CMidiPortListener& m_sends;
  const ArrivalHandler m_arrivals;
  void* m_anchor = nullptr;  // the JACK client that holds the host's name on the server
  std::mutex m_mutex;        // lists, slots and sends; never taken on a real-time thread
  std::unique_ptr<Listers> m_listers;
  std::vector<Entry> m_outputList;  // as the last count read them
  std::vector<Entry> m_inputList;
  std::vector<std::unique_ptr<Output>> m_outputs;  // handle N is m_outputs[N - 1]
  std::array<std::unique_ptr<Input>, kMaxInputs> m_inputs;
  std::atomic<std::size_t> m_inputCount{0};  // published to the delivering thread
  std::size_t m_clients = 0;                 // clients made for other clients' ports
  sem_t m_wake;                              // posted on each arrival
  std::atomic<bool> m_stopping{false};
  std::thread m_delivery;
};
