// The live road: what the host delivers from the chosen input goes, unchanged and unfiltered, to
// the worker, which rechannels and sends it. Counting and activity happen even when nothing can
// go out.
#include "core/activity.h"
#include "core/soft_synth.h"

HRESULT CSoftSynth::OnInput(std::uint32_t, IHostDataList* list) {
  if (!list) return E_POINTER;
  CAutoLock lock(InstanceLock());
  if (!m_connection.TempoMap()) return E_UNEXPECTED;
  std::int32_t count = 0;
  HRESULT hr = list->GetItemCount(&count);
  if (FAILED(hr) || count == 0) return hr;
  bool queued = false;
  for (std::int32_t i = 0; i < count; ++i) {
    HostDataRecord record{};
    hr = list->GetItem(i, &record);
    if (FAILED(hr)) break;
    const ShortMessage message{static_cast<std::uint32_t>(record.time), record.message};
    PostNotify(m_worker.NotifyWindow(), InputActivityMessage(), ActivityLevel(message), 0);
    // While the closed-loop test runs, what comes back is counted but must not go out again.
    if (m_ports.OutputEnabled() && !m_closedLoopTest)
      queued = m_worker.Queue(CStoredEvent::FromMessage(message)) == S_OK || queued;
    m_worker.CountInput();
  }
  // The worker is woken once for the whole list, after its last message. The worker runs at a
  // higher priority than the host's thread: woken for each message it would take the processor
  // from this loop again and again, to send one message at a time.
  if (queued) m_worker.Wake();
  return hr;
}
