#include "core/output_worker.h"

#include <algorithm>

#include "core/activity.h"
#include "platform/event.h"
#include "platform/thread.h"

// What one run of the worker owns. Shared between the instance and the thread, so a worker that
// outlives Stop still touches nothing freed.
struct WorkerRun {
  CAutoResetEvent stopEvent;
  CAutoResetEvent wakeEvent;
  CAutoResetEvent drainedEvent;  // set after each batch, for waiters that want to know
  CAutoResetEvent abortEvent;    // set only when the instance goes: cuts a pause short
  std::atomic<bool> aborted{false};
  std::atomic<bool> finished{false};
  std::vector<CStoredEvent> batch;         // reused, so a batch allocates nothing
  std::vector<std::uint8_t> sysexScratch;  // the overlaid copy of a sysex block, reused
};

class WorkerThread {
 public:
  WorkerThread(COutputWorker& owner, std::shared_ptr<WorkerRun> run) : m_run(std::move(run)) {
    m_thread.Start([&owner, r = m_run] { owner.WorkerLoop(*r); }, ThreadPriority::Highest);
  }
  // Ends the worker at its next wake and cuts any pause short, then waits for it.
  void End() {
    m_run->aborted = true;
    m_run->abortEvent.Set();
    m_run->stopEvent.Set();
    m_thread.Join();
  }
  bool Finished() const { return m_run->finished.load(); }

 private:
  std::shared_ptr<WorkerRun> m_run;
  CThread m_thread;
};

namespace {

constexpr std::size_t kInitialQueueCapacity = 256;

ShortMessage ForceChannel(ShortMessage m, std::uint32_t rechannel) {
  const std::uint8_t status = m.Status();
  if ((status & 0xF0) == 0xF0 || rechannel < 1 || rechannel > 16) return m;
  const auto forced = static_cast<std::uint8_t>((status & 0xF0) | (rechannel - 1));
  m.message = (m.message & ~0xFFu) | forced;
  return m;
}

// Lays the prefix over the start of the block: the length never changes and the final F7 stays.
void OverlayPrefix(std::vector<std::uint8_t>& block, const std::vector<std::uint8_t>& prefix) {
  if (prefix.empty() || prefix.front() != 0xF0 || block.empty() || block.back() != 0xF7) return;
  const std::size_t n = std::min(block.size() - 1, prefix.size());
  std::copy_n(prefix.begin(), n, block.begin());
}

// Asks for the line that holds `object` without waiting for it.
template <class T>
void Prefetch(const T& object) noexcept {
#if defined(__GNUC__)
  __builtin_prefetch(&object);
#endif
}

HostEventRecord SinkRecord(std::uint32_t message) {
  HostEventRecord r{};
  r.kind = HostEventRecord::kShortMessage;
  r.SetMessage(message);
  return r;
}

}  // namespace

COutputWorker::COutputWorker(const CHostConnection& connection, const CPortChoice& ports,
                             IMfxInputPort* sender)
    : m_connection(connection), m_ports(ports), m_sender(sender) {}

COutputWorker::~COutputWorker() { EndAll(); }

HRESULT COutputWorker::Post(const CStoredEvent& event) { return Enqueue(event); }

HRESULT COutputWorker::Post(CStoredEvent&& event) { return Enqueue(std::move(event)); }

template <class Event>
HRESULT COutputWorker::Enqueue(Event&& event) {
  std::shared_ptr<WorkerRun> toWake;
  {
    std::lock_guard lock(m_queueLock);
    if (!m_run) return E_FAIL;
    m_outputQueue.push_back(std::forward<Event>(event));
    // A wake still pending carries this event along: the worker takes the wake before the
    // queue. So a burst of posts sets the event once, and a worker that is busy with a batch
    // finds the next one waiting.
    if (!m_run->wakeEvent.IsSet()) toWake = m_run;
  }
  if (toWake) toWake->wakeEvent.Set();
  return S_OK;
}

void COutputWorker::Start(NotifyHandle window) {
  std::erase_if(m_threads, [](const auto& t) {
    if (!t->Finished()) return false;
    t->End();
    return true;
  });
  auto run = std::make_shared<WorkerRun>();
  run->batch.reserve(kInitialQueueCapacity);
  {
    std::lock_guard queueLock(m_queueLock);
    m_outputQueue.clear();
    m_outputQueue.reserve(kInitialQueueCapacity);
    m_run = run;
  }
  m_notifyWindow = window;
  m_threads.push_back(std::make_unique<WorkerThread>(*this, std::move(run)));
}

// Does not wait for the thread: a worker asleep in a pause finishes its batch on its own time.
// It is joined at the next start or at destruction.
void COutputWorker::Stop() {
  std::shared_ptr<WorkerRun> run;
  {
    std::lock_guard queueLock(m_queueLock);
    if (!m_run) return;
    m_outputQueue.clear();
    run = std::exchange(m_run, nullptr);
  }
  run->stopEvent.Set();
  m_notifyWindow = 0;
}

void COutputWorker::EndAll() {
  Stop();
  for (auto& t : m_threads) t->End();
  m_threads.clear();
}

bool COutputWorker::IsRunning() const {
  std::lock_guard lock(m_queueLock);
  return m_run != nullptr;
}

void COutputWorker::WorkerLoop(WorkerRun& run) {
  for (;;) {
    const int woken = WaitForEither(run.stopEvent, run.wakeEvent);
    if (woken == 0) break;
    if (woken != 1) continue;
    PrefetchForBatch();
    RunBatch(run);
    run.drainedEvent.Set();
  }
  run.finished = true;
}

// Woken from a sleep, the worker finds cold all it reads on the way to the port. Asked for at
// once, those lines arrive together instead of one miss after another.
void COutputWorker::PrefetchForBatch() const noexcept {
  Prefetch(m_queueLock);
  Prefetch(m_connection.SharedPorts());
  Prefetch(m_connection.SharedSink());
  Prefetch(m_ports);
  Prefetch(m_rechannel);
  Prefetch(SendLock());
}

void COutputWorker::RunBatch(WorkerRun& run) {
  // A worker left over from before a Stop may still be in its last batch: this one takes its
  // turn after that batch, so what was posted later goes out later.
  std::lock_guard turn(m_sendTurn);
  if (run.aborted) return;
  {
    std::lock_guard lock(m_queueLock);
    std::swap(m_outputQueue, run.batch);
  }
  CHostRefReader<IHostMidiPorts> ports(m_connection.SharedPorts());
  CHostRefReader<IHostInputSink> sink(m_connection.SharedSink());
  MidiPortHandle handle = 0;
  if (IHostMidiPorts* p = ports.Current()) p->GetOutputPortHandle(m_ports.OutputIndex(), &handle);

  const bool portUsable = m_ports.OutputEnabled() && handle != 0;
  if (sink.Current() || portUsable) {
    for (const CStoredEvent& event : run.batch) {
      if (event.IsWait()) {
        // Nothing of the host is held while asleep: a Disconnect meanwhile lets it all go.
        ports.Release();
        sink.Release();
        if (run.abortEvent.Wait(event.GetWait()) || run.aborted) break;
      } else if (event.IsSysex()) {
        if (m_ports.OutputEnabled() && handle != 0)
          SendSysexEvent(run, event, ports.Current(), handle);
      } else if (event.HasMessages()) {
        SendShortMessages(event, sink.Current(), ports.Current(), handle);
      }
    }
  }
  run.batch.clear();
}

void COutputWorker::SendSysexEvent(WorkerRun& run, const CStoredEvent& event,
                                   IHostMidiPorts* ports, MidiPortHandle handle) {
  const auto bytes = event.SysexView();
  run.sysexScratch.assign(bytes.begin(), bytes.end());
  if (const auto prefix = Prefix()) OverlayPrefix(run.sysexScratch, *prefix);
  if (ports) {
    CAutoLock lock(SendLock());
    ports->SendSysexMsg(handle, run.sysexScratch.data(),
                        static_cast<std::uint32_t>(run.sysexScratch.size()));
  }
  // Counted and shown whatever the port answered.
  CountAndShowOutput(10);
}

void COutputWorker::SendShortMessages(const CStoredEvent& event, IHostInputSink* sink,
                                      IHostMidiPorts* ports, MidiPortHandle handle) {
  for (const ShortMessage& stored : event.MessagesView()) {
    const ShortMessage m = ForceChannel(stored, m_rechannel);
    HRESULT hr = E_FAIL;
    if (sink) {
      const HostEventRecord record = SinkRecord(m.message);
      hr = sink->OnSinkEvent(m_sender, &record);
    }
    if (ports && m_ports.OutputEnabled() && handle != 0) {
      CAutoLock lock(SendLock());
      hr = ports->SendShortMsg(handle, m.message);  // the port's answer replaces the sink's
    }
    if (SUCCEEDED(hr)) CountAndShowOutput(ActivityLevel(m));
  }
}

void COutputWorker::CountAndShowOutput(std::uint32_t level) {
  Count(false);
  PostNotify(m_notifyWindow, OutputActivityMessage(), level, 0);
}

void COutputWorker::CountInput() { Count(true); }

// Each half wraps on its own, as an unsigned 32-bit count does.
void COutputWorker::Count(bool input) {
  std::uint64_t old = m_counts.load(std::memory_order_relaxed);
  for (;;) {
    const auto in = static_cast<std::uint32_t>(old >> 32) + (input ? 1u : 0u);
    const auto out = static_cast<std::uint32_t>(old) + (input ? 0u : 1u);
    if (m_counts.compare_exchange_weak(old, std::uint64_t{in} << 32 | out)) return;
  }
}

void COutputWorker::Counters(std::uint32_t& received, std::uint32_t& sent, bool clear) {
  const std::uint64_t counts = clear ? m_counts.exchange(0) : m_counts.load();
  received = static_cast<std::uint32_t>(counts >> 32);
  sent = static_cast<std::uint32_t>(counts);
}

std::shared_ptr<const std::vector<std::uint8_t>> COutputWorker::Prefix() const {
  std::lock_guard lock(m_prefixLock);
  return m_sysexPrefix;
}

void COutputWorker::SetPrefix(std::vector<std::uint8_t> bytes) {
  auto snapshot = std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
  std::lock_guard lock(m_prefixLock);
  m_sysexPrefix = std::move(snapshot);
}
