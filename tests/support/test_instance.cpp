#include "tests/support/test_instance.h"

TestInstance::TestInstance() {
  CUnknown* unknown = CFilter::CreateInstance(nullptr, &m_constructed);
  unknown->NonDelegatingAddRef();
  m_filter = static_cast<CFilter*>(unknown);
}

TestInstance::~TestInstance() { Destroy(); }

void TestInstance::Destroy() {
  if (m_filter) static_cast<CUnknown*>(std::exchange(m_filter, nullptr))->NonDelegatingRelease();
}

ConnectedRig::ConnectedRig(bool withPorts, bool withTimeConverter) {
  context.tempoMap = &tempoMap;
  context.pinObserver = &pinObserver;
  if (withTimeConverter) context.timeConverter = &timeConverter;
  if (withPorts) context.midiPorts = &ports;
  context.AddRef();  // Connect releases one reference that it was only lent
  instance->Connect(&context);
  instance->SetEditorWindow(&editor);
}

void ConnectedRig::EnableOutput() {
  instance->SelectOutputPort(L"Out A");
  instance->SetOutputEnabled(1);
}

AudioRig::AudioRig(const WaveFormat& format, FakeSource::Options sourceOptions,
                   FakeSink::Options sinkOptions, bool withTimeConverter)
    : host(true, withTimeConverter), source(format, sourceOptions), sink(std::move(sinkOptions)) {}

// The instance stops first: its pins may disconnect only then.
AudioRig::~AudioRig() {
  Stop();
  sink.Disconnect();
  source.Disconnect();
}

HRESULT AudioRig::Connect() {
  const HRESULT hr = source.ConnectTo(Input());
  if (FAILED(hr)) return hr;
  IPin* output = Output();
  return output ? output->Connect(sink.Input(), nullptr) : E_UNEXPECTED;
}

// Downstream first, so that each filter finds its neighbours ready.
void AudioRig::Pause() {
  sink.Pause();
  host.instance->Pause();
  source.Pause();
}

void AudioRig::Stop() {
  source.Stop();
  host.instance->Stop();
  sink.Stop();
}
