#include "host/rack/live_rack.h"

#include <cstdio>

#include "platform/codepage.h"
#include "platform/streams.h"

namespace {

// Live messages of one OnInput call; it lives on the caller's stack.
class CHostDataList final : public CUnknownImpl<IHostDataList> {
 public:
  explicit CHostDataList(HostDataRecord record) : m_record(record) {}
  HRESULT STDMETHODCALLTYPE Unused() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetItemCount(std::int32_t* count) override {
    if (!count) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetItem(std::int32_t index, HostDataRecord* record) override {
    if (!record) return E_POINTER;
    if (index != 0) return E_INVALIDARG;
    *record = m_record;
    return S_OK;
  }

 private:
  void LastReleased() override {}
  const HostDataRecord m_record;
};

}  // namespace

std::string ResultText(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(hr));
  return text;
}

CLiveRack::CLiveRack(std::filesystem::path file, const RackSettings& settings,
                     CMidiBackEnd* ports, ErrorSink errors)
    : m_file(std::move(file)),
      m_tempo(std::make_shared<CHostTempo>(
          HostTiming{settings.beatsPerMinute, settings.sampleRate})),
      m_ports(ports),
      m_errors(std::move(errors)) {}

CLiveRack::~CLiveRack() { Release(); }

std::string CLiveRack::Where(std::size_t number, const std::string& name) const {
  return m_file.string() + ": instance " + std::to_string(number) + " \"" + name + "\": ";
}

std::string CLiveRack::Where(const LiveInstance& instance) const {
  return Where(instance.number, instance.entry.name);
}

void CLiveRack::Create(const std::vector<RackInstance>& entries) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    LiveInstance instance{entries[i], i + 1, {}, {}, {}, {}, {}, {}, {}, {}, {}};
    if (!entries[i].problem.empty()) {
      m_errors(Where(instance) + entries[i].problem);
      continue;
    }
    CLSID clsid{};
    if (!GuidFromString(NarrowToWide(entries[i].classId), clsid)) {
      m_errors(Where(instance) + "\"" + entries[i].classId + "\" is not a class identifier");
      continue;
    }
    std::string error;
    instance.object = ComPtr<IUnknown>::Attach(m_catalog.Create(clsid, error));
    if (!instance.object) {
      m_errors(Where(instance) + error);
      continue;
    }
    if (Connect(instance)) m_instances.push_back(std::move(instance));
  }
}

bool CLiveRack::Connect(LiveInstance& instance) {
  IUnknown* object = instance.object.Get();
  if (FAILED(instance.synth.QueryFrom(object, IID_IMfxSoftSynth2)) ||
      FAILED(instance.filter.QueryFrom(object, IID_IBaseFilter)) ||
      FAILED(instance.persist.QueryFrom(object, IID_IPersistStream))) {
    m_errors(Where(instance) + "the object is not a soft synth with a saved state");
    return false;
  }
  instance.myFilter.QueryFrom(object, IID_IMyFilter);
  instance.proxy.QueryFrom(object, IID_IExternalDeviceProxy3);
  instance.params.QueryFrom(object, IID_IMediaParams);
  instance.paramInfo.QueryFrom(object, IID_IMediaParamInfo);
  instance.context = CHostContext::Create(m_tempo, m_ports.Get());
  // Connect releases one reference of what it is lent, so it is lent one of its own.
  instance.context->AddRef();
  const HRESULT hr = instance.synth->Connect(static_cast<IHostTempoMap*>(instance.context.Get()));
  if (FAILED(hr)) {
    m_errors(Where(instance) + "Connect failed (" + ResultText(hr) + ")");
    return false;
  }
  ComPtr<IMfxInputPort> input;
  if (SUCCEEDED(input.QueryFrom(object, IID_IMfxInputPort)))
    input->SetInputSink(instance.context.Get());
  return true;
}

CLiveRack::Bridge CLiveRack::MakeBridge(const WaveFormat& format, std::int32_t bufferBytes) {
  Bridge bridge{std::make_unique<CHostSource>(format, bufferBytes), nullptr};
  CHostSource* next = bridge.source.get();
  bridge.sink = std::make_unique<CHostSink>(
      [next](std::span<const std::uint8_t> bytes, REFERENCE_TIME start, REFERENCE_TIME stop) {
        next->Deliver(bytes, start, stop);
      });
  return bridge;
}

bool CLiveRack::Join(IPin* output, IPin* input, const LiveInstance& instance) {
  const HRESULT hr = output && input ? output->Connect(input, nullptr) : E_NOINTERFACE;
  if (FAILED(hr)) {
    m_errors(Where(instance) + "its audio pins cannot be connected (" + ResultText(hr) + ")");
    return false;
  }
  m_connected.push_back(ComPtr<IPin>(output));
  return true;
}

bool CLiveRack::ConnectAudio(CHostSource& source, CHostSink& sink) {
  const WaveFormat format = source.Format();
  IPin* upstream = source.Output();
  for (std::size_t i = 0; i < m_instances.size(); ++i) {
    LiveInstance& instance = m_instances[i];
    if (!Join(upstream, FirstPin(instance.filter.Get(), PINDIR_INPUT).Get(), instance)) return false;
    const ComPtr<IPin> output = FirstPin(instance.filter.Get(), PINDIR_OUTPUT);
    IPin* downstream = sink.Input();
    if (i + 1 < m_instances.size()) {
      m_bridges.push_back(MakeBridge(format, source.BufferBytes()));
      downstream = m_bridges.back().sink->Input();
      upstream = m_bridges.back().source->Output();
    }
    if (!Join(output.Get(), downstream, instance)) return false;
  }
  if (m_instances.empty()) {
    const HRESULT hr = upstream->Connect(sink.Input(), nullptr);
    if (FAILED(hr)) {
      m_errors(m_file.string() + ": the audio ends cannot be connected (" + ResultText(hr) + ")");
      return false;
    }
    m_connected.push_back(ComPtr<IPin>(upstream));
  }
  return true;
}

void CLiveRack::LoadStates() {
  for (LiveInstance& instance : m_instances) {
    if (instance.entry.state.empty()) {
      instance.stateLoaded = true;
      continue;
    }
    ComPtr<IStream> stream = ComPtr<IStream>::Attach(
        CMemoryStream::Create(instance.entry.state.data(), instance.entry.state.size()));
    const HRESULT hr = instance.persist->Load(stream.Get());
    instance.stateLoaded = SUCCEEDED(hr);
    if (!instance.stateLoaded)
      m_errors(Where(instance) + "the instance refused its saved state (" + ResultText(hr) + ")");
  }
}

void CLiveRack::AddEnvelopes() {
  for (LiveInstance& instance : m_instances) {
    if (instance.entry.envelopes.empty()) continue;
    if (!instance.params) {
      m_errors(Where(instance) + "the instance has envelopes but no parameters to automate");
      continue;
    }
    for (const RackEnvelope& envelope : instance.entry.envelopes) {
      if (envelope.segments.empty()) continue;  // nothing to add, and no array to lend
      const HRESULT hr = instance.params->AddEnvelope(
          envelope.param, static_cast<std::uint32_t>(envelope.segments.size()),
          envelope.segments.data());
      if (FAILED(hr))
        m_errors(Where(instance) + "the instance refused the envelope for parameter " +
                 std::to_string(envelope.param) + " (" + ResultText(hr) + ")");
    }
  }
}

std::vector<IBaseFilter*> CLiveRack::Filters(CHostSource* source, CHostSink* sink) const {
  std::vector<IBaseFilter*> filters;
  if (source) filters.push_back(source->Filter());
  for (std::size_t i = 0; i < m_instances.size(); ++i) {
    filters.push_back(m_instances[i].filter.Get());
    if (i < m_bridges.size()) {
      filters.push_back(m_bridges[i].sink->Filter());
      filters.push_back(m_bridges[i].source->Filter());
    }
  }
  if (sink) filters.push_back(sink->Filter());
  return filters;
}

void CLiveRack::Pause(CHostSource* source, CHostSink* sink) {
  // Downstream first, as a graph changes state.
  const auto filters = Filters(source, sink);
  for (auto it = filters.rbegin(); it != filters.rend(); ++it) (*it)->Pause();
}

void CLiveRack::Run(CHostSource* source, CHostSink* sink) {
  const auto filters = Filters(source, sink);
  for (auto it = filters.rbegin(); it != filters.rend(); ++it) (*it)->Run(0);
}

void CLiveRack::Stop(CHostSource* source, CHostSink* sink) {
  for (IBaseFilter* filter : Filters(source, sink)) filter->Stop();
}

void CLiveRack::Start(std::int32_t tick) {
  for (LiveInstance& instance : m_instances) instance.synth->OnStart(tick);
}

void CLiveRack::Loop(std::int32_t from, std::int32_t to) {
  for (LiveInstance& instance : m_instances) instance.synth->OnLoop(from, to);
}

void CLiveRack::StopTransport() {
  for (LiveInstance& instance : m_instances) instance.synth->OnStop(0);
}

void CLiveRack::DeliverInput(std::int32_t inputId, std::uint32_t message) {
  for (LiveInstance& instance : m_instances) {
    if (instance.context->InputPortId() != inputId) continue;
    CHostDataList list({0, message});
    instance.synth->OnInput(0, &list);
  }
}

bool CLiveRack::Snapshot(std::vector<RackInstance>& entries) {
  bool all = true;
  for (LiveInstance& instance : m_instances) {
    if (instance.number > entries.size()) continue;
    RackInstance& entry = entries[instance.number - 1];
    if (instance.stateLoaded) {
      ComPtr<CMemoryStream> stream = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
      const HRESULT hr = instance.persist->Save(stream.Get(), 1);
      if (FAILED(hr)) {
        m_errors(Where(instance) + "its state cannot be saved (" + ResultText(hr) + ")");
        all = false;
      } else {
        entry.state = stream->Bytes();
      }
    }
  }
  return all;
}

void CLiveRack::Release() {
  Stop(nullptr, nullptr);
  for (ComPtr<IPin>& pin : m_connected) DisconnectBothEnds(pin.Get());
  m_connected.clear();
  m_bridges.clear();
  for (LiveInstance& instance : m_instances) {
    ComPtr<IMfxInputPort> input;
    if (SUCCEEDED(input.QueryFrom(instance.object.Get(), IID_IMfxInputPort)))
      input->SetInputSink(nullptr);
    instance.synth->Disconnect();
  }
  m_instances.clear();
}
