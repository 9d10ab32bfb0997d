// A rack brought to life: each instance created through its registered module, given a host
// context over the MIDI back end's ports, chained between the audio driver's two ends, loaded
// with its saved state and driven through the graph's states and the host's transport. Faults of
// one instance are reported and leave the others running.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/audio/graph_ends.h"
#include "host/context/host_context.h"
#include "host/plugin/synth_catalog.h"
#include "host/rack/rack_file.h"
#include "interfaces/media_params.h"
#include "interfaces/mfx_interfaces.h"
#include "interfaces/my_filter.h"
#include "interfaces/ole_interfaces.h"

struct LiveInstance {
  RackInstance entry;  // as the rack held it
  std::size_t number;  // 1-based place in the rack
  ComPtr<IUnknown> object;
  ComPtr<IMfxSoftSynth2> synth;
  ComPtr<IBaseFilter> filter;
  ComPtr<IPersistStream> persist;
  ComPtr<IMyFilter> myFilter;
  ComPtr<IExternalDeviceProxy3> proxy;
  ComPtr<CHostContext> context;
  ComPtr<IMediaParams> params;  // null when the instance offers no parameters
  ComPtr<IMediaParamInfo> paramInfo;
  bool stateLoaded = false;  // false keeps the rack's bytes on saving
};

class CLiveRack {
 public:
  // [host thread] What the rack reports: one line naming the file and the instance.
  using ErrorSink = std::function<void(const std::string&)>;

  CLiveRack(std::filesystem::path file, const RackSettings& settings, CMidiBackEnd* ports,
            ErrorSink errors);
  // Stops, disconnects and releases every instance before their modules go.
  ~CLiveRack();
  CLiveRack(const CLiveRack&) = delete;
  CLiveRack& operator=(const CLiveRack&) = delete;

  // [host thread] Creates and connects every usable instance of `rack`, in order.
  void Create(const std::vector<RackInstance>& entries);
  // [graph thread] Chains source -> instances -> sink through their first pins. Between two
  // instances the host puts a bridge of its own (a sink handing each sample to a source), as a
  // host routes audio through its buffers: no instance's pin ever meets another's, so no
  // instance's lock is taken under another's.
  bool ConnectAudio(CHostSource& source, CHostSink& sink);
  // [host thread] Loads each instance's saved state; a fresh entry keeps its defaults.
  void LoadStates();
  // [host thread] Adds each instance's envelopes from the rack, after its state is loaded and
  // before the graph runs, so that they apply from the stream's first sample.
  void AddEnvelopes();
  // [graph thread] Pause from stopped starts each instance's worker; Run; Stop.
  void Pause(CHostSource* source, CHostSink* sink);
  void Run(CHostSource* source, CHostSink* sink);
  void Stop(CHostSource* source, CHostSink* sink);
  // [host thread] Transport to every instance.
  void Start(std::int32_t tick);
  void Loop(std::int32_t from, std::int32_t to);
  void StopTransport();

  // [any thread] A live message at the input port with id `inputId`, to each instance that said
  // it uses that port.
  void DeliverInput(std::int32_t inputId, std::uint32_t message);
  // [any thread] The run's tempo, which every instance's context reads.
  CHostTempo& Tempo() { return *m_tempo; }

  // [host thread] Replaces the state of each live instance's entry in `entries` (the rack's list,
  // in order) by the bytes its Save writes now; entries that never came to life keep theirs.
  // False when a state cannot be saved (reported).
  bool Snapshot(std::vector<RackInstance>& entries);

  std::vector<LiveInstance>& Instances() { return m_instances; }
  // [host thread] The modules the instances came from, to make more of their objects (pages).
  CSynthCatalog& Catalog() { return m_catalog; }
  // [host thread] "<file>: instance N "name": "
  std::string Where(const LiveInstance& instance) const;
  std::string Where(std::size_t number, const std::string& name) const;

 private:
  struct Bridge {
    std::unique_ptr<CHostSource> source;
    std::unique_ptr<CHostSink> sink;
  };

  bool Connect(LiveInstance& instance);
  Bridge MakeBridge(const WaveFormat& format, std::int32_t bufferBytes);
  bool Join(IPin* output, IPin* input, const LiveInstance& instance);
  // The chain's filters from upstream to downstream, bridges included.
  std::vector<IBaseFilter*> Filters(CHostSource* source, CHostSink* sink) const;
  void Release();

  const std::filesystem::path m_file;
  const std::shared_ptr<CHostTempo> m_tempo;
  const ComPtr<CMidiBackEnd> m_ports;
  const ErrorSink m_errors;
  CSynthCatalog m_catalog;  // before the instances, so that modules outlive them
  std::vector<LiveInstance> m_instances;
  std::vector<ComPtr<IPin>> m_connected;  // output pins joined by ConnectAudio
  std::vector<Bridge> m_bridges;  // after the pins, so that they are disconnected first
};

// The failure code of a call in the form users report: "0x80004005".
std::string ResultText(HRESULT hr);
