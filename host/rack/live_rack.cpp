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
                     IHostMidiPorts2* ports, ErrorSink errors)
    : m_file(std::move(file)),
      m_timing{settings.beatsPerMinute, settings.sampleRate},
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
    LiveInstance instance{entries[i], i + 1, {}, {}, {}, {}, {}, {}, {}};
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
  instance.context = CHostContext::Create(m_timing, m_ports.Get());
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

bool CLiveRack::ConnectAudio(CHostSource& source, CHostSink& sink) {
  ComPtr<IPin> upstream(source.Output());
  for (LiveInstance& instance : m_instances) {
    ComPtr<IPin> in = FirstPin(instance.filter.Get(), PINDIR_INPUT);
    const HRESULT hr = in ? upstream->Connect(in.Get(), nullptr) : E_NOINTERFACE;
    if (FAILED(hr)) {
      m_errors(Where(instance) + "its input pin refused the audio (" + ResultText(hr) + ")");
      return false;
    }
    m_connected.push_back(upstream);
    upstream = FirstPin(instance.filter.Get(), PINDIR_OUTPUT);
    if (!upstream) {
      m_errors(Where(instance) + "it has no output pin");
      return false;
    }
  }
  const HRESULT hr = upstream->Connect(sink.Input(), nullptr);
  if (FAILED(hr)) {
    m_errors(m_file.string() + ": the last output refused the sink (" + ResultText(hr) + ")");
    return false;
  }
  m_connected.push_back(upstream);
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

void CLiveRack::Pause(CHostSource* source, CHostSink* sink) {
  // Downstream first, as a graph changes state.
  if (sink) sink->Filter()->Pause();
  for (auto it = m_instances.rbegin(); it != m_instances.rend(); ++it) it->filter->Pause();
  if (source) source->Filter()->Pause();
}

void CLiveRack::Run(CHostSource* source, CHostSink* sink) {
  if (sink) sink->Filter()->Run(0);
  for (auto it = m_instances.rbegin(); it != m_instances.rend(); ++it) it->filter->Run(0);
  if (source) source->Filter()->Run(0);
}

void CLiveRack::Stop(CHostSource* source, CHostSink* sink) {
  if (source) source->Filter()->Stop();
  for (LiveInstance& instance : m_instances) instance.filter->Stop();
  if (sink) sink->Filter()->Stop();
}

void CLiveRack::Start(std::int32_t tick) {
  for (LiveInstance& instance : m_instances) instance.synth->OnStart(tick);
}

void CLiveRack::StopTransport() {
  for (LiveInstance& instance : m_instances) instance.synth->OnStop(0);
}

void CLiveRack::DeliverInput(std::int32_t port, std::uint32_t message) {
  for (LiveInstance& instance : m_instances) {
    std::int32_t chosen = -1;
    if (!instance.myFilter || FAILED(instance.myFilter->GetInputPortIndex(&chosen)) ||
        chosen != port)
      continue;
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
  for (LiveInstance& instance : m_instances) instance.filter->Stop();
  for (ComPtr<IPin>& pin : m_connected) DisconnectBothEnds(pin.Get());
  m_connected.clear();
  for (LiveInstance& instance : m_instances) {
    ComPtr<IMfxInputPort> input;
    if (SUCCEEDED(input.QueryFrom(instance.object.Get(), IID_IMfxInputPort)))
      input->SetInputSink(nullptr);
    instance.synth->Disconnect();
  }
  m_instances.clear();
}
