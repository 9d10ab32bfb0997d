// A plug-in instance for tests, held by a reference of the test's own, with a fake host around
// it: ports with one output, a sink, a tempo map, and a notify target for activity.
#pragma once

#include <cstdint>

#include "core/filter.h"
#include "platform/com_ptr.h"
#include "tests/support/fake_host.h"
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
  // Destroys the instance now; later calls see none.
  void Destroy();

 private:
  CFilter* m_filter = nullptr;
  HRESULT m_constructed = S_OK;
};

// An instance connected to a fake host, with its output enabled on the host's first port and
// activity going to a recorder. The host's objects outlive the instance.
struct ConnectedRig {
  FakeTempoMap tempoMap;
  FakeMidiPorts ports;
  FakeInputSink sink;
  FakeHostContext context;
  NotifyRecorder window;
  TestInstance instance;

  // `withPorts` false connects to a host that offers no ports at all.
  explicit ConnectedRig(bool withPorts = true);
  // Chooses the host's first output port, "Out A", and enables output.
  void EnableOutput();
  // Pause from stopped: the worker starts.
  void Start() { instance->Pause(); }
  void Stop() { instance->Stop(); }
  void UseSink() { instance->SetInputSink(&sink); }
};
