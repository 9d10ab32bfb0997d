// An instance reduced to what the closed-loop test calls on it: each test message it is asked
// to send is counted as sent at once and as received by every instance wired to hear it, as a
// wire would carry it; or, when made not counting, its counters stay at zero so that a run never
// ends by itself. It is not registered anywhere; its owner walks it, or a subclass registers it.
#pragma once

#include <cstdint>
#include <vector>

#include "interfaces/my_filter.h"
#include "tests/support/fake_unknown.h"

class FakeLoopInstance : public FakeUnknown<IMyFilter> {
 public:
  explicit FakeLoopInstance(bool outputActive = true, bool counting = true)
      : m_active(outputActive), m_counting(counting) {}

  // What this instance sends is heard by `listener` from now on (itself included).
  void WireTo(FakeLoopInstance& listener) { m_listeners.push_back(&listener); }

  std::vector<std::uint32_t> messages;  // every test message asked for, in order
  std::vector<std::uint8_t> flags;      // every SetClosedLoopTest value, in order

  HRESULT STDMETHODCALLTYPE OpenClosedLoopTest(NotifyHandle) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE IsOutputActive(std::uint8_t* active) override;
  HRESULT STDMETHODCALLTYPE GetEventCounters(std::uint32_t* received, std::uint32_t* sent,
                                             std::uint8_t clear) override;
  HRESULT STDMETHODCALLTYPE SendTestMessage(std::uint32_t message) override;
  HRESULT STDMETHODCALLTYPE SetClosedLoopTest(std::uint8_t running) override;

  // Nothing else is called by the test.
  HRESULT STDMETHODCALLTYPE SetEditorWindow(IEditorWindow*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPorts(IHostMidiPorts**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SelectInputPort(std::wstring) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SelectOutputPort(std::wstring) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetOutputRechannel(std::uint32_t) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetInputPortIndex(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetOutputPortIndex(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetOutputRechannel(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetOutputEnabled(std::int32_t) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetMIDISync(std::int32_t) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMIDISync(std::int32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetEventCount(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetEvent(std::uint32_t, CStoredEvent**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE InsertEvent(std::uint32_t, const CStoredEvent*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE RemoveEvent(std::uint32_t) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetInstrumentObject(CInstrument**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SendEvent(const CStoredEvent*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetSysexPrefixByte(std::uint8_t*, std::int32_t) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetSysexPrefixLength(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE AssignSysexPrefix(std::vector<std::uint8_t>) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetSysexPrefix(const std::uint8_t*, std::uint32_t) override {
    return E_NOTIMPL;
  }

 private:
  bool m_active;
  bool m_counting;
  std::vector<FakeLoopInstance*> m_listeners;
  std::uint32_t m_sent = 0;
  std::uint32_t m_received = 0;
};
