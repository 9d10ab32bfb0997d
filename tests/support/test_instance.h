// A plug-in instance for tests, held by a reference of the test's own, with a fake host around
// it: ports with one output, a sink, a tempo map, and a notify target for activity.
#pragma once

#include <atomic>
#include <cstdint>

#include "core/filter.h"
#include "platform/com_ptr.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_pins.h"
#include "tests/support/recorders.h"

// Owns one instance; releasing the last reference destroys it.
class TestInstance {
 public:
  TestInstance();
  ~TestInstance();
  TestInstance(const TestInstance&) = delete;
  TestInstance& operator=(const TestInstance&) = delete;

  CFilter& filter() { return *m_filter; }
  CFilter* operator->() { return m_filter; }
  HRESULT construction() const { return m_constructed; }
  // False once destroyed.
  bool Alive() const { return m_filter != nullptr; }
  // Destroys the instance now; later calls see none.
  void Destroy();

 private:
  CFilter* m_filter = nullptr;
  HRESULT m_constructed = S_OK;
};

// The property page as the instance sees it: a window handle, and a count of the times a load
// asked it to reload its lists.
class FakeEditorWindow final : public IEditorWindow {
 public:
  explicit FakeEditorWindow(NotifyHandle handle) : m_handle(handle) {}
  NotifyHandle WindowHandle() const override { return m_handle; }
  void ReloadLists() override { ++m_reloads; }
  int Reloads() const { return m_reloads; }

 private:
  NotifyHandle m_handle;
  std::atomic<int> m_reloads{0};
};

// An instance connected to a fake host that observes pin changes, with activity going to a
// recorder; EnableOutput() chooses the host's first port. The host's objects outlive the
// instance.
struct ConnectedRig {
  FakeTempoMap tempoMap;
  FakeTimeConverter timeConverter{kSamplesPerTick};
  FakePinObserver pinObserver;
  FakeMidiPorts ports;
  FakeInputSink sink;
  FakeHostContext context;
  NotifyRecorder window;
  FakeEditorWindow editor{window.Handle()};
  TestInstance instance;

  // With the time converter, a tick is exactly this many samples.
  static constexpr std::int64_t kSamplesPerTick = 100;

  // `withPorts` false connects to a host that offers no ports at all; `withTimeConverter` to one
  // that converts time itself, at kSamplesPerTick, rather than through its tempo map.
  explicit ConnectedRig(bool withPorts = true, bool withTimeConverter = false);
  // Chooses the host's first output port, "Out A", and enables output.
  void EnableOutput();
  // Pause from stopped: the worker starts.
  void Start() { instance->Pause(); }
  void Stop() { instance->Stop(); }
  void UseSink() { instance->SetInputSink(&sink); }
};

// A connected instance in an audio graph: a source pushing `format` into the input pin, and the
// first output pin connected to a sink. Pause and Stop drive all three filters.
struct AudioRig {
  ConnectedRig host;
  FakeSource source;
  FakeSink sink;

  AudioRig(const WaveFormat& format, FakeSource::Options sourceOptions = {},
           FakeSink::Options sinkOptions = {}, bool withTimeConverter = false);
  ~AudioRig();
  AudioRig(const AudioRig&) = delete;
  AudioRig& operator=(const AudioRig&) = delete;

  // The source into the input, then the first output into the sink; the first failure.
  HRESULT Connect();
  IPin* Input() { return host.instance->GetPin(0); }
  IPin* Output() { return host.instance->GetPin(1); }
  void Pause();
  void Stop();
};
