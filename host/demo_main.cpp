// tarn-demo: one instance on an in-process host. It sends its stored list (a bank and program
// change, a sysex block under a prefix, a pause, a controller) and forwards live input on a
// forced channel; every message that reaches the virtual port is printed with its time offset
// and its bytes in hex.
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <vector>

#include "core/filter.h"
#include "host/virtual_midi_ports.h"

namespace {

using Clock = std::chrono::steady_clock;

// Prints each arrival and lets the main thread wait for a number of them.
class PrintingListener final : public CMidiPortListener {
 public:
  void OnPortSend(std::int32_t port, std::span<const std::uint8_t> bytes) override {
    std::lock_guard lock(m_mutex);
    const double ms = std::chrono::duration<double, std::milli>(Clock::now() - m_start).count();
    std::printf("%+10.3f ms  port %d ", ms, port + 1);
    for (const std::uint8_t b : bytes) std::printf(" %02X", b);
    std::printf("\n");
    ++m_arrived;
    m_cv.notify_all();
  }
  bool WaitFor(int count, std::chrono::milliseconds timeout) {
    std::unique_lock lock(m_mutex);
    return m_cv.wait_for(lock, timeout, [&] { return m_arrived >= count; });
  }

 private:
  std::mutex m_mutex;
  std::condition_variable m_cv;
  const Clock::time_point m_start = Clock::now();
  int m_arrived = 0;
};

// The host's context, which is also its tempo map: a tempo of 120 beats per minute and the virtual ports.
class DemoHost final : public IHostTempoMap {
 public:
  explicit DemoHost(CVirtualMidiPorts& ports) : m_ports(ports) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IHostTempoMap) *object = static_cast<IHostTempoMap*>(this);
    if (iid == IID_IHostMidiPorts) return m_ports.QueryInterface(iid, object);
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }   // lives on the host's stack
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  std::int32_t STDMETHODCALLTYPE TicksToMsecs(std::int32_t ticks) override { return ticks * 500 / 480; }
  std::int32_t STDMETHODCALLTYPE MsecsToTicks(std::int32_t ms) override { return ms * 480 / 500; }
  std::int32_t STDMETHODCALLTYPE GetTicksPerQuarter() override { return 480; }

 private:
  CVirtualMidiPorts& m_ports;
};

// Live messages as the host hands them over.
class LiveList final : public IHostDataList {
 public:
  explicit LiveList(std::vector<HostDataRecord> records) : m_records(std::move(records)) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    if (object) *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE Unused() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetItemCount(std::int32_t* count) override {
    *count = static_cast<std::int32_t>(m_records.size());
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetItem(std::int32_t index, HostDataRecord* record) override {
    *record = m_records.at(static_cast<std::size_t>(index));
    return S_OK;
  }

 private:
  std::vector<HostDataRecord> m_records;
};

void Store(CFilter& filter, CStoredEvent event) {
  std::uint32_t count = 0;
  filter.GetEventCount(&count);
  filter.InsertEvent(count, &event);
}

void FillStoredList(CFilter& filter) {
  CStoredEvent program = CStoredEvent::MakeNew(NewEventKind::BankProgramChange);
  program.SetMessages({ShortMessage::FromBytes(0xB0, 0x00, 1), ShortMessage::FromBytes(0xB0, 0x20, 2),
                       ShortMessage::FromBytes(0xC0, 17, 0)});
  Store(filter, program);
  CStoredEvent sysex = CStoredEvent::MakeNew(NewEventKind::SystemExclusive);
  sysex.SetSysex({0xF0, 0x7E, 0x7F, 0x09, 0x01, 0x00, 0xF7});
  Store(filter, sysex);
  CStoredEvent pause = CStoredEvent::MakeNew(NewEventKind::Wait);
  pause.SetWait(250);
  Store(filter, pause);
  CStoredEvent controller = CStoredEvent::MakeNew(NewEventKind::ControllerChange);
  controller.SetMessages({ShortMessage::FromBytes(0xB0, 7, 100)});
  Store(filter, controller);
}

HostDataRecord Live(std::uint8_t status, std::uint8_t d1, std::uint8_t d2) {
  return {0, ShortMessage::FromBytes(status, d1, d2).message};
}

}  // namespace

int main() {
  PrintingListener listener;
  CVirtualMidiPorts ports(2, listener);
  DemoHost host(ports);

  HRESULT hr = S_OK;
  CUnknown* unknown = CFilter::CreateInstance(nullptr, &hr);
  if (!unknown || FAILED(hr)) return 1;
  unknown->NonDelegatingAddRef();
  CFilter& filter = *static_cast<CFilter*>(unknown);

  filter.Connect(&host);
  filter.SelectOutputPort(L"Virtual Out 1");
  filter.SetOutputEnabled(1);
  filter.SetOutputRechannel(5);
  const std::uint8_t prefix[] = {0xF0, 0x43, 0x10, 0x4C};
  filter.SetSysexPrefix(prefix, sizeof prefix);
  FillStoredList(filter);

  std::printf("Tarn demo: stored list, then live input forced to channel 5\n");
  filter.Pause();
  filter.SendEnabledEvents();
  LiveList live({Live(0x90, 60, 100), Live(0xB3, 1, 64), Live(0x80, 60, 0), Live(0xF8, 0, 0)});
  filter.OnInput(0, &live);

  const bool all = listener.WaitFor(9, std::chrono::seconds(5));
  filter.Stop();
  filter.Disconnect();
  unknown->NonDelegatingRelease();
  std::printf(all ? "all 9 messages arrived\n" : "messages missing\n");
  return all ? 0 : 1;
}
