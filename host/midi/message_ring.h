// A single-producer, single-consumer ring of whole MIDI messages, each with the time it arrived:
// how a message crosses from a real-time thread (JACK's process callback) to a host thread.
// Pushing never locks, allocates or waits; a message that does not fit whole is dropped and
// counted, never cut, so the consumer sees only complete messages in arrival order.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CMessageRing {
 public:
  // The longest message a ring takes; longer ones are dropped and counted.
  static constexpr std::size_t kMaxMessage = 0xFFFF;

  // [host thread] A ring of at least `capacityBytes` bytes, headers included (each message
  // takes its length plus 10).
  explicit CMessageRing(std::size_t capacityBytes);
  CMessageRing(const CMessageRing&) = delete;
  CMessageRing& operator=(const CMessageRing&) = delete;

  // [producer thread] Appends `bytes` with `timeNs`; false, counting it, when it does not fit.
  bool Push(std::span<const std::uint8_t> bytes, std::int64_t timeNs) noexcept;
  // [consumer thread] Takes the oldest message into `bytes` and its time into `timeNs`; false
  // when the ring is empty.
  bool Pop(std::vector<std::uint8_t>& bytes, std::int64_t& timeNs);
  // [any thread] Messages dropped so far.
  std::uint64_t Dropped() const noexcept { return m_dropped.load(std::memory_order_relaxed); }

 private:
  static constexpr std::size_t kHeader = 2 + 8;  // length, time
  void Write(std::size_t at, const void* from, std::size_t size) noexcept;
  void Read(std::size_t at, void* to, std::size_t size) const noexcept;

  std::vector<std::uint8_t> m_buffer;
  const std::size_t m_mask;
  // Positions that only grow; their difference is what the ring holds.
  alignas(64) std::atomic<std::size_t> m_written{0};
  alignas(64) std::atomic<std::size_t> m_read{0};
  std::atomic<std::uint64_t> m_dropped{0};
};
