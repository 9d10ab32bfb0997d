#include "documents/xml_arena.h"

#include <algorithm>

#include "documents/xml_base.h"

// Under AddressSanitizer the room of a gone object is poisoned, so a use after delete is still
// caught although the memory stays in the arena.
#if defined(__SANITIZE_ADDRESS__)
#define TARN_ARENA_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARN_ARENA_ASAN 1
#endif
#endif

#ifdef TARN_ARENA_ASAN
#include <sanitizer/asan_interface.h>
#define ARENA_POISON(p, n) ASAN_POISON_MEMORY_REGION(p, n)
#define ARENA_UNPOISON(p, n) ASAN_UNPOISON_MEMORY_REGION(p, n)
#else
#define ARENA_POISON(p, n) static_cast<void>(0)
#define ARENA_UNPOISON(p, n) static_cast<void>(0)
#endif

namespace {

constexpr std::size_t kHeader = sizeof(TiXmlAllocationHeader);
constexpr std::size_t kAlign = alignof(TiXmlAllocationHeader);
// Chunks double up to this, which stays below the size where the C library maps memory from the
// system for each allocation.
constexpr std::size_t kLargestChunk = 64 * 1024;

std::size_t Rounded(std::size_t size) { return (size + kAlign - 1) / kAlign * kAlign; }

// Chunks of the largest size that gone arenas leave are kept for the next parse on the same
// thread, up to a bound: giving megabytes back after each parse makes the C library return them
// to the system, and the next parse pays a page fault for every page it touches again.
constexpr std::size_t kKeptChunks = 64;  // 4 MB

// Set when the thread's cache has gone, for documents that die after it (statics at exit).
thread_local bool t_chunksGone = false;

class ChunkCache {
 public:
  ~ChunkCache() {
    t_chunksGone = true;
    for (std::size_t i = 0; i < m_count; ++i) ::operator delete(m_chunks[i]);
  }
  void* Take() { return m_count ? m_chunks[--m_count] : nullptr; }
  bool Keep(void* chunk) {
    if (m_count == kKeptChunks) return false;
    m_chunks[m_count++] = chunk;
    return true;
  }

 private:
  void* m_chunks[kKeptChunks];
  std::size_t m_count = 0;
};

thread_local ChunkCache t_chunks;

void* NewChunk(std::size_t bytes) {
  if (bytes == kAlign + kLargestChunk && !t_chunksGone)
    if (void* kept = t_chunks.Take()) return kept;
  return ::operator new(bytes);
}

void FreeChunk(void* chunk, std::size_t bytes) {
  if (bytes == kAlign + kLargestChunk && !t_chunksGone && t_chunks.Keep(chunk)) return;
  ::operator delete(chunk);
}

}  // namespace

TiXmlArena::~TiXmlArena() {
  while (Chunk* chunk = m_chunks) {
    m_chunks = chunk->next;
    ARENA_UNPOISON(reinterpret_cast<char*>(chunk) + kAlign, chunk->size);
    FreeChunk(chunk, kAlign + chunk->size);
  }
}

void* TiXmlArena::Allocate(std::size_t size) {
  const std::size_t need = kHeader + Rounded(size);
  if (static_cast<std::size_t>(m_end - m_cursor) < need || !m_cursor) {
    const std::size_t room = std::max(need, m_nextChunk);
    // The record is padded to the alignment, so what follows it is aligned.
    static_assert(sizeof(Chunk) <= kAlign);
    auto* chunk = static_cast<Chunk*>(NewChunk(kAlign + room));
    chunk->next = m_chunks;
    chunk->size = room;
    m_chunks = chunk;
    m_cursor = reinterpret_cast<char*>(chunk) + kAlign;
    m_end = m_cursor + room;
    ARENA_POISON(m_cursor, room);
    m_nextChunk = std::min(m_nextChunk * 2, kLargestChunk);
  }
  char* const at = m_cursor;
  m_cursor += need;
  ARENA_UNPOISON(at, need);
  ::new (at) TiXmlAllocationHeader{this};
  ++m_live;
  return at + kHeader;
}

void TiXmlArena::Release(void* object, std::size_t size) noexcept {
  ARENA_POISON(static_cast<char*>(object) - kHeader, kHeader + Rounded(size));
  static_cast<void>(object);
  static_cast<void>(size);
  if (--m_live != 0) return;
  if (m_abandoned) {
    delete this;
  } else {
    StartOver();
  }
}

void TiXmlArena::Abandon() noexcept {
  m_abandoned = true;
  if (m_live == 0) delete this;
}

void TiXmlArena::StartOver() noexcept {
  if (!m_chunks) return;
  while (Chunk* older = m_chunks->next) {
    m_chunks->next = older->next;
    ARENA_UNPOISON(reinterpret_cast<char*>(older) + kAlign, older->size);
    FreeChunk(older, kAlign + older->size);
  }
  m_cursor = reinterpret_cast<char*>(m_chunks) + kAlign;
  m_end = m_cursor + m_chunks->size;
}

void* TiXmlBase::operator new(std::size_t size) {
  void* const block = ::operator new(kHeader + size);
  ::new (block) TiXmlAllocationHeader{nullptr};
  return static_cast<char*>(block) + kHeader;
}

void* TiXmlBase::operator new(std::size_t size, TiXmlArena& arena) { return arena.Allocate(size); }

void TiXmlBase::operator delete(void* object, std::size_t size) noexcept {
  if (!object) return;
  char* const block = static_cast<char*>(object) - kHeader;
  if (TiXmlArena* arena = static_cast<TiXmlAllocationHeader*>(static_cast<void*>(block))->arena) {
    arena->Release(object, size);
  } else {
    ::operator delete(block);
  }
}

void TiXmlBase::operator delete(void* object, TiXmlArena& arena) noexcept {
  arena.Release(object, 0);
}
