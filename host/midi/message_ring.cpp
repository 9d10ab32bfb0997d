#include "host/midi/message_ring.h"

#include <algorithm>
#include <bit>
#include <cstring>

CMessageRing::CMessageRing(std::size_t capacityBytes)
    : m_buffer(std::bit_ceil(std::max<std::size_t>(capacityBytes, 64))),
      m_mask(m_buffer.size() - 1) {}

void CMessageRing::Write(std::size_t at, const void* from, std::size_t size) noexcept {
  const std::size_t offset = at & m_mask;
  const std::size_t first = std::min(size, m_buffer.size() - offset);
  if (first) std::memcpy(m_buffer.data() + offset, from, first);
  if (size > first)
    std::memcpy(m_buffer.data(), static_cast<const std::uint8_t*>(from) + first, size - first);
}

void CMessageRing::Read(std::size_t at, void* to, std::size_t size) const noexcept {
  const std::size_t offset = at & m_mask;
  const std::size_t first = std::min(size, m_buffer.size() - offset);
  if (first) std::memcpy(to, m_buffer.data() + offset, first);
  if (size > first)
    std::memcpy(static_cast<std::uint8_t*>(to) + first, m_buffer.data(), size - first);
}

bool CMessageRing::Push(std::span<const std::uint8_t> bytes, std::int64_t timeNs) noexcept {
  const std::size_t written = m_written.load(std::memory_order_relaxed);
  const std::size_t free = m_buffer.size() - (written - m_read.load(std::memory_order_acquire));
  if (bytes.size() > kMaxMessage || kHeader + bytes.size() > free) {
    m_dropped.fetch_add(1, std::memory_order_relaxed);
    return false;
  }
  const auto length = static_cast<std::uint16_t>(bytes.size());
  Write(written, &length, sizeof length);
  Write(written + 2, &timeNs, sizeof timeNs);
  Write(written + kHeader, bytes.data(), bytes.size());
  m_written.store(written + kHeader + bytes.size(), std::memory_order_release);
  return true;
}

bool CMessageRing::Pop(std::vector<std::uint8_t>& bytes, std::int64_t& timeNs) {
  const std::size_t read = m_read.load(std::memory_order_relaxed);
  if (m_written.load(std::memory_order_acquire) == read) return false;
  std::uint16_t length = 0;
  Read(read, &length, sizeof length);
  Read(read + 2, &timeNs, sizeof timeNs);
  bytes.resize(length);
  Read(read + kHeader, bytes.data(), length);
  m_read.store(read + kHeader + length, std::memory_order_release);
  return true;
}
