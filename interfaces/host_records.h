// Records that cross the boundary to the host, packed, with their layout checked at compile time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#pragma pack(push, 1)

// One timed event of the host's sequenced line, 40 bytes. The host fills the first 20 bytes; the
// instance fills the rest before it keeps the record. A kind-16 record carries a whole packed
// message in the four bytes from offset 10, across key, velocity, byte 12 and the first byte of
// the duration.
struct HostEventRecord {
  std::int32_t time;          // ticks
  std::uint8_t port;          // kind 11: the mute bits to set
  std::uint8_t channel;       // kind 11: the mute bits to clear
  std::uint32_t kind;         // 0 note, 11 mute mask, 16 short MIDI message
  std::uint8_t key;
  std::uint8_t velocity;
  std::uint8_t unread12;
  std::uint32_t duration;     // 0 a note-off, 0xFFFFFFFF an open note
  std::uint8_t unread17[3];
  std::int32_t channelKey;    // the channel key the list came with
  std::int64_t sampleTime;    // relative to the stream
  std::uint32_t flagsLow;
  std::uint32_t flagsHigh;

  static constexpr std::uint32_t kNote = 0;
  static constexpr std::uint32_t kMuteMask = 11;
  static constexpr std::uint32_t kShortMessage = 16;
  static constexpr std::size_t kMessageOffset = 10;

  std::uint32_t Message() const noexcept {
    std::uint32_t m;
    std::memcpy(&m, reinterpret_cast<const unsigned char*>(this) + kMessageOffset, sizeof m);
    return m;
  }
  void SetMessage(std::uint32_t m) noexcept {
    std::memcpy(reinterpret_cast<unsigned char*>(this) + kMessageOffset, &m, sizeof m);
  }
};

// One message of the live line, 8 bytes.
struct HostDataRecord {
  std::int32_t time;      // ticks
  std::uint32_t message;  // packed: status lowest, then data 1, data 2
};

// A time that the host converts in place between formats.
struct HostTimeValue {
  std::uint32_t format;   // kSamples or kTicks
  std::uint32_t reserved;
  std::int64_t value;     // samples; for ticks only the low 32 bits are written and read

  static constexpr std::uint32_t kSamples = 2;
  static constexpr std::uint32_t kTicks = 3;
};

// A change of the per-key mixing state, handed to OnNotify, 10 bytes. Kind 0 sets the channel,
// 1 the mute bits (through `mask`), 2 to 5 the two velocity and the two key offsets; higher
// kinds carry nothing for this instance.
struct ChannelStateMessage {
  std::uint32_t kind;
  std::int32_t channelKey;
  std::uint8_t value;
  std::uint8_t mask;  // kind 1: the mute bits that `value` replaces

  static constexpr std::uint32_t kChannel = 0;
  static constexpr std::uint32_t kMuteBits = 1;
  static constexpr std::uint32_t kVelocityOffset1 = 2;
  static constexpr std::uint32_t kVelocityOffset2 = 3;
  static constexpr std::uint32_t kKeyOffset1 = 4;
  static constexpr std::uint32_t kKeyOffset2 = 5;
};

#pragma pack(pop)

static_assert(sizeof(HostEventRecord) == 40);
static_assert(offsetof(HostEventRecord, port) == 4);
static_assert(offsetof(HostEventRecord, channel) == 5);
static_assert(offsetof(HostEventRecord, kind) == 6);
static_assert(offsetof(HostEventRecord, key) == 10);
static_assert(offsetof(HostEventRecord, velocity) == 11);
static_assert(offsetof(HostEventRecord, duration) == 13);
static_assert(offsetof(HostEventRecord, channelKey) == 20);
static_assert(offsetof(HostEventRecord, sampleTime) == 24);
static_assert(offsetof(HostEventRecord, flagsLow) == 32);
static_assert(offsetof(HostEventRecord, flagsHigh) == 36);
static_assert(sizeof(ChannelStateMessage) == 10);
static_assert(offsetof(ChannelStateMessage, channelKey) == 4);
static_assert(offsetof(ChannelStateMessage, value) == 8);
static_assert(offsetof(ChannelStateMessage, mask) == 9);
static_assert(sizeof(HostDataRecord) == 8);
static_assert(offsetof(HostDataRecord, message) == 4);
static_assert(sizeof(HostTimeValue) == 16);
static_assert(offsetof(HostTimeValue, value) == 8);
