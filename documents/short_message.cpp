#include "documents/short_message.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

ShortMessageList::ShortMessageList(std::initializer_list<ShortMessage> messages) {
  Assign(messages.begin(), static_cast<std::uint32_t>(messages.size()));
}

ShortMessageList::ShortMessageList(const ShortMessageList& other) {
  Assign(other.Data(), other.m_size);
}

ShortMessageList::ShortMessageList(ShortMessageList&& other) noexcept { *this = std::move(other); }

ShortMessageList& ShortMessageList::operator=(const ShortMessageList& other) {
  if (this != &other) Assign(other.Data(), other.m_size);
  return *this;
}

ShortMessageList& ShortMessageList::operator=(ShortMessageList&& other) noexcept {
  if (this == &other) return *this;
  ReleaseHeap();
  if (other.m_heap) {
    m_heap = std::exchange(other.m_heap, nullptr);
    m_capacity = std::exchange(other.m_capacity, kInline);
  } else {
    std::copy(other.m_inline, other.m_inline + other.m_size, m_inline);
  }
  m_size = std::exchange(other.m_size, 0u);
  return *this;
}

ShortMessageList::~ShortMessageList() { ReleaseHeap(); }

void ShortMessageList::push_back(const ShortMessage& message) {
  if (m_size == m_capacity) {
    if (m_capacity > std::numeric_limits<std::uint32_t>::max() / 2) throw std::bad_alloc();
    Reserve(m_capacity * 2);
  }
  Data()[m_size++] = message;
}

void ShortMessageList::Reserve(std::uint32_t capacity) {
  if (capacity <= m_capacity) return;
  auto* grown = new ShortMessage[capacity];
  std::copy(Data(), Data() + m_size, grown);
  ReleaseHeap();
  m_heap = grown;
  m_capacity = capacity;
}

void ShortMessageList::Assign(const ShortMessage* from, std::uint32_t count) {
  m_size = 0;
  Reserve(count);
  std::copy(from, from + count, Data());
  m_size = count;
}

void ShortMessageList::ReleaseHeap() noexcept {
  delete[] std::exchange(m_heap, nullptr);
  m_capacity = kInline;
}

bool operator==(const ShortMessageList& a, const ShortMessageList& b) noexcept {
  return std::equal(a.begin(), a.end(), b.begin(), b.end());
}
