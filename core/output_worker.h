// The output worker: producers copy an event onto the queue and signal; one thread per running
// instance does all the sending, in strict queue order, to the host's sink and the chosen port.
// It owns what only sending needs: the queue, the threads, the forced channel, the sysex
// prefix, the traffic counters and the window that activity is posted to.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "core/host_connection.h"
#include "documents/stored_event.h"
#include "interfaces/mfx_interfaces.h"
#include "platform/notify.h"
#include "ports/port_choice.h"

struct WorkerRun;
class WorkerThread;

class COutputWorker {
 public:
  // `connection` and `ports` outlive the worker; `sender` is handed to the sink with each message.
  COutputWorker(const CHostConnection& connection, const CPortChoice& ports,
                IMfxInputPort* sender);
  // Ends every worker thread still alive, cutting a pause short.
  ~COutputWorker();
  COutputWorker(const COutputWorker&) = delete;
  COutputWorker& operator=(const COutputWorker&) = delete;

  // [any thread] Queues a deep copy and wakes the worker. E_FAIL, and the event is lost, while
  // the worker does not run.
  HRESULT Post(const CStoredEvent& event);
  // [any thread] The same for an event made for the queue alone, which is moved there.
  HRESULT Post(CStoredEvent&& event);
  // [graph thread, instance lock] Empties the queue and starts a worker at the highest
  // priority, posting activity to `window`.
  void Start(NotifyHandle window);
  // [graph thread, instance lock] Drops what is queued and asks the worker to end. Returns at
  // once: a worker inside a batch finishes that batch, pauses included, then ends. A worker
  // started after it sends its first batch only once that batch is done, so the order of
  // posts holds across a stop and a start.
  void Stop();
  // [destruction] Stops the worker and waits for every worker thread, cutting pauses short.
  void EndAll();
  // [any thread] True from Start to Stop.
  bool IsRunning() const;

  // [editor thread] Where activity goes from now on; 0 for nowhere.
  void SetNotifyWindow(NotifyHandle window) noexcept { m_notifyWindow = window; }
  NotifyHandle NotifyWindow() const noexcept { return m_notifyWindow; }
  // [any thread] The forced channel: 1 to 16 force it, anything else leaves messages alone.
  void SetRechannel(std::uint32_t channel) noexcept { m_rechannel = channel; }
  std::uint32_t Rechannel() const noexcept { return m_rechannel; }
  // [any thread] The bytes laid over the start of every system exclusive block sent. Readers
  // get an immutable snapshot, so a new prefix never changes a block being sent.
  void SetPrefix(std::vector<std::uint8_t> bytes);
  std::shared_ptr<const std::vector<std::uint8_t>> Prefix() const;
  // [host thread] One more message came in.
  void CountInput();
  // [any thread] Messages in and out since the last clear; `clear` zeroes both.
  void Counters(std::uint32_t& received, std::uint32_t& sent, bool clear);

 private:
  friend class WorkerThread;
  template <class Event>
  HRESULT Enqueue(Event&& event);
  void WorkerLoop(WorkerRun& run);
  void PrefetchForBatch() const noexcept;
  void RunBatch(WorkerRun& run);
  void SendSysexEvent(WorkerRun& run, const CStoredEvent& event, IHostMidiPorts* ports,
                      MidiPortHandle handle);
  void SendShortMessages(const CStoredEvent& event, IHostInputSink* sink, IHostMidiPorts* ports,
                         MidiPortHandle handle);
  void CountAndShowOutput(std::uint32_t level);
  void Count(bool input);

  const CHostConnection& m_connection;
  const CPortChoice& m_ports;
  IMfxInputPort* const m_sender;

  std::mutex m_sendTurn;  // held by a worker through each batch; taken before m_queueLock
  mutable std::mutex m_queueLock;  // guards the queue and the current run
  std::vector<CStoredEvent> m_outputQueue;  // a FIFO drained whole by the worker
  std::shared_ptr<WorkerRun> m_run;         // non-null while the worker runs
  std::vector<std::unique_ptr<WorkerThread>> m_threads;  // every worker not yet joined

  std::atomic<NotifyHandle> m_notifyWindow{0};
  std::atomic<std::uint32_t> m_rechannel{0};
  mutable std::mutex m_prefixLock;  // guards the pointer; the bytes behind it never change
  std::shared_ptr<const std::vector<std::uint8_t>> m_sysexPrefix;

  // The count of messages in (high half) and out (low half) in one word: a read that clears
  // takes both at once, as under one lock, and counting takes no lock at all.
  std::atomic<std::uint64_t> m_counts{0};
};
