#include "tests/support/fake_stream.h"

#include <algorithm>
#include <cstring>

HRESULT FakeStream::Read(void* pv, ULONG cb, ULONG* pcbRead) {
  if (pcbRead) *pcbRead = 0;
  m_largestRead = std::max(m_largestRead, cb);
  if (cb && m_position + cb > m_readFailsAt) return m_failure;
  const std::uint64_t left = m_position < m_bytes.size() ? m_bytes.size() - m_position : 0;
  const auto count = static_cast<ULONG>(std::min<std::uint64_t>(cb, left));
  if (count) std::memcpy(pv, m_bytes.data() + m_position, count);
  m_position += count;
  if (pcbRead) *pcbRead = count;
  return count == cb ? S_OK : S_FALSE;
}

HRESULT FakeStream::Write(const void* pv, ULONG cb, ULONG* pcbWritten) {
  if (pcbWritten) *pcbWritten = 0;
  if (m_bytes.size() + cb > m_writeLimit) return m_failure;
  const auto* bytes = static_cast<const std::uint8_t*>(pv);
  m_bytes.insert(m_bytes.end(), bytes, bytes + cb);
  if (pcbWritten) *pcbWritten = cb;
  return S_OK;
}
