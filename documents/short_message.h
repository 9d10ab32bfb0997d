// A short MIDI message as stored events and the output queue carry it, and a list of them that
// keeps up to three messages inline: a live message, or a bank and program change, is copied
// onto the output queue without touching the heap.
#pragma once

#include <cstdint>
#include <initializer_list>

// Two 32-bit words. The first is spare: no path reads it (a live message keeps its host time
// there, a clock message its interval). The second is the packed message: status in the lowest
// byte, then data 1, data 2 and a byte without meaning.
struct ShortMessage {
  std::uint32_t spare = 0;
  std::uint32_t message = 0;

  static constexpr ShortMessage FromBytes(std::uint8_t status, std::uint8_t data1,
                                          std::uint8_t data2) noexcept {
    return {0, static_cast<std::uint32_t>(status) | static_cast<std::uint32_t>(data1) << 8 |
                   static_cast<std::uint32_t>(data2) << 16};
  }
  constexpr std::uint8_t Status() const noexcept { return static_cast<std::uint8_t>(message); }
  constexpr std::uint8_t Data1() const noexcept { return static_cast<std::uint8_t>(message >> 8); }
  constexpr std::uint8_t Data2() const noexcept { return static_cast<std::uint8_t>(message >> 16); }
  // The high nibble of the status byte: 0x80 note-off ... 0xF0 system.
  constexpr std::uint8_t Kind() const noexcept { return Status() & 0xF0; }

  friend constexpr bool operator==(const ShortMessage&, const ShortMessage&) = default;
};
static_assert(sizeof(ShortMessage) == 8);

class ShortMessageList {
 public:
  static constexpr std::uint32_t kInline = 3;

  ShortMessageList() noexcept = default;
  ShortMessageList(std::initializer_list<ShortMessage> messages);
  ShortMessageList(const ShortMessageList& other);
  ShortMessageList(ShortMessageList&& other) noexcept;
  ShortMessageList& operator=(const ShortMessageList& other);
  ShortMessageList& operator=(ShortMessageList&& other) noexcept;
  ~ShortMessageList();

  std::uint32_t size() const noexcept { return m_size; }
  bool empty() const noexcept { return m_size == 0; }
  const ShortMessage* begin() const noexcept { return Data(); }
  const ShortMessage* end() const noexcept { return Data() + m_size; }
  ShortMessage* begin() noexcept { return Data(); }
  ShortMessage* end() noexcept { return Data() + m_size; }
  const ShortMessage& operator[](std::uint32_t i) const noexcept { return Data()[i]; }
  ShortMessage& operator[](std::uint32_t i) noexcept { return Data()[i]; }

  void push_back(const ShortMessage& message);
  void clear() noexcept { m_size = 0; }

  friend bool operator==(const ShortMessageList& a, const ShortMessageList& b) noexcept;

 private:
  const ShortMessage* Data() const noexcept { return m_heap ? m_heap : m_inline; }
  ShortMessage* Data() noexcept { return m_heap ? m_heap : m_inline; }
  void Reserve(std::uint32_t capacity);
  void Assign(const ShortMessage* from, std::uint32_t count);
  void ReleaseHeap() noexcept;

  ShortMessage m_inline[kInline];
  ShortMessage* m_heap = nullptr;
  std::uint32_t m_size = 0;
  std::uint32_t m_capacity = kInline;
};
