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
  for (std::int32_t i = 0; i < count; ++i) {
    HostDataRecord record{};
    hr = list->GetItem(i, &record);
    if (FAILED(hr)) break;
    const ShortMessage message{static_cast<std::uint32_t>(record.time), record.message};
    PostNotify(m_worker.NotifyWindow(), InputActivityMessage(), ActivityLevel(message), 0);
    // While the closed-loop test runs, what comes back is counted but must not go out again.
    // The first message of a list wakes the worker, which sends while the rest is queued.
    if (m_ports.OutputEnabled() && !m_closedLoopTest)
      m_worker.Post(CStoredEvent::FromMessage(message));
    m_worker.CountInput();
  }
  return hr;
}
