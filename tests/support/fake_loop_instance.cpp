#include "tests/support/fake_loop_instance.h"

HRESULT FakeLoopInstance::IsOutputActive(std::uint8_t* active) {
  *active = m_active ? 1 : 0;
  return S_OK;
}

HRESULT FakeLoopInstance::GetEventCounters(std::uint32_t* received, std::uint32_t* sent,
                                           std::uint8_t clear) {
  *received = m_received;
  *sent = m_sent;
  if (clear) m_received = m_sent = 0;
  return S_OK;
}

HRESULT FakeLoopInstance::SendTestMessage(std::uint32_t message) {
  messages.push_back(message);
  if (!m_counting) return S_OK;
  ++m_sent;
  for (FakeLoopInstance* listener : m_listeners) ++listener->m_received;
  return S_OK;
}

HRESULT FakeLoopInstance::SetClosedLoopTest(std::uint8_t running) {
  flags.push_back(running);
  return S_OK;
}
