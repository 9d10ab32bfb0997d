// The output worker: producers copy an event onto the queue and signal; one thread per running
// instance does all the sending, in strict queue order.
#include <algorithm>

#include "core/activity.h"
#include "core/output_worker.h"

namespace {

constexpr std::size_t kInitialQueueCapacity = 256;

ShortMessage Rechannel(ShortMessage m, std::uint32_t rechannel) {
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

HostEventRecord SinkRecord(std::uint32_t message) {
  HostEventRecord r{};
  r.kind = HostEventRecord::kShortMessage;
  r.SetMessage(message);
  return r;
}

}  // namespace

HRESULT CSoftSynth::PostToWorker(const CStoredEvent& event) {
  std::shared_ptr<WorkerRun> run;
  {
    CAutoLock lock(m_queueLock);
    if (!m_worker.run) return E_FAIL;
    m_outputQueue.push_back(event);
    run = m_worker.run;
  }
  run->wakeEvent.Set();
  return S_OK;
}

HRESULT CSoftSynth::StartWorker() {
  CAutoLock lock(InstanceLock());
  std::erase_if(m_workerThreads, [](const auto& t) {
    if (!t->Finished()) return false;
    t->End();
    return true;
  });
  auto run = std::make_shared<WorkerRun>();
  run->batch.reserve(kInitialQueueCapacity);
  {
    CAutoLock queueLock(m_queueLock);
    m_outputQueue.clear();
    m_outputQueue.reserve(kInitialQueueCapacity);
    m_worker.run = run;
  }
  m_worker.m_notifyWindow = m_editorWindow.load();
  m_workerThreads.push_back(std::make_unique<WorkerThread>(*this, std::move(run)));
  return S_OK;
}

// Does not wait for the thread: a worker asleep in a pause finishes its batch on its own time.
// The instance joins it at the next start or at destruction.
HRESULT CSoftSynth::StopWorker() {
  CAutoLock lock(InstanceLock());
  std::shared_ptr<WorkerRun> run;
  {
    CAutoLock queueLock(m_queueLock);
    if (!m_worker.run) return S_OK;
    m_outputQueue.clear();
    run = std::exchange(m_worker.run, nullptr);
  }
  run->stopEvent.Set();
  m_worker.m_notifyWindow = 0;
  return S_OK;
}

void CSoftSynth::EndAllWorkers() {
  StopWorker();
  for (auto& t : m_workerThreads) t->End();
  m_workerThreads.clear();
}

HRESULT CSoftSynth::SendEnabledEvents() {
  for (std::size_t i = 0; i < m_events.size(); ++i)
    if (m_events[i].IsEnabled()) PostToWorker(m_events[i]);
  return S_OK;
}

void CSoftSynth::WorkerLoop(WorkerRun& run) {
  for (;;) {
    const int woken = WaitForEither(run.stopEvent, run.wakeEvent);
    if (woken == 0) break;
    if (woken != 1) continue;
    RunBatch(run);
    run.drainedEvent.Set();
  }
  run.finished = true;
}

void CSoftSynth::RunBatch(WorkerRun& run) {
  {
    CAutoLock lock(m_queueLock);
    std::swap(m_outputQueue, run.batch);
  }
  CHostRefReader<IHostMidiPorts> ports(m_midiPorts);
  CHostRefReader<IHostInputSink> sink(m_inputSink);
  MidiPortHandle handle = 0;
  if (IHostMidiPorts* p = ports.Current()) p->GetOutputPortHandle(m_outputPortIndex, &handle);

  const bool portUsable = m_outputEnabled && handle != 0;
  if (sink.Current() || portUsable) {
    for (const CStoredEvent& event : run.batch) {
      if (event.IsWait()) {
        if (run.abortEvent.Wait(event.GetWait()) || run.aborted) break;
      } else if (event.IsSysex()) {
        if (m_outputEnabled && handle != 0) SendSysexEvent(run, event, ports.Current(), handle);
      } else if (event.HasMessages()) {
        SendShortMessages(event, sink.Current(), ports.Current(), handle);
      }
    }
  }
  run.batch.clear();
}

void CSoftSynth::SendSysexEvent(WorkerRun& run, const CStoredEvent& event, IHostMidiPorts* ports,
                                MidiPortHandle handle) {
  const auto bytes = event.SysexView();
  run.sysexScratch.assign(bytes.begin(), bytes.end());
  if (const auto prefix = SysexPrefixSnapshot()) OverlayPrefix(run.sysexScratch, *prefix);
  if (ports) {
    CAutoLock lock(SendLock());
    ports->SendSysexMsg(handle, run.sysexScratch.data(),
                        static_cast<std::uint32_t>(run.sysexScratch.size()));
  }
  // Counted and shown whatever the port answered.
  CountAndShowOutput(10);
}

void CSoftSynth::SendShortMessages(const CStoredEvent& event, IHostInputSink* sink,
                                   IHostMidiPorts* ports, MidiPortHandle handle) {
  for (const ShortMessage& stored : event.MessagesView()) {
    const ShortMessage m = Rechannel(stored, m_rechannel);
    HRESULT hr = E_FAIL;
    if (sink) {
      const HostEventRecord record = SinkRecord(m.message);
      hr = sink->OnSinkEvent(InputPortFacet(), &record);
    }
    if (ports && m_outputEnabled && handle != 0) {
      CAutoLock lock(SendLock());
      hr = ports->SendShortMsg(handle, m.message);  // the port's answer replaces the sink's
    }
    if (SUCCEEDED(hr)) CountAndShowOutput(ActivityLevel(m));
  }
}

void CSoftSynth::CountAndShowOutput(std::uint32_t level) {
  {
    CAutoLock lock(CounterLock);
    ++m_outputCount;
  }
  PostNotify(m_worker.m_notifyWindow, OutputActivityMessage(), level, 0);
}

std::shared_ptr<const std::vector<std::uint8_t>> CSoftSynth::SysexPrefixSnapshot() const {
  std::lock_guard lock(m_prefixLock);
  return m_sysexPrefix;
}

void CSoftSynth::ReplaceSysexPrefix(std::vector<std::uint8_t> bytes) {
  auto snapshot = std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
  std::lock_guard lock(m_prefixLock);
  m_sysexPrefix = std::move(snapshot);
}
