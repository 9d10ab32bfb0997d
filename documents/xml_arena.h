// TiXmlArena: the memory of the nodes and attributes that one document's parses make, taken in
// a few large chunks instead of one allocation per object.
//
// Every TiXmlBase object allocated with new carries a small header in front that names its
// arena, or none for an object on the heap. So each object can still be deleted on its own, by
// whoever owns it, in any order: delete gives arena memory back to the arena's count, and heap
// memory to the heap. An arena is freed when its document has let go of it and its last object
// has gone; when its objects have all gone while the document keeps it, it starts over in the
// memory it has. Like its document, an arena is used by one thread at a time.
#pragma once

#include <cstddef>
#include <new>
#include <utility>

class TiXmlArena {
 public:
  TiXmlArena() = default;
  TiXmlArena(const TiXmlArena&) = delete;
  TiXmlArena& operator=(const TiXmlArena&) = delete;

  // Room for one object of `size` bytes behind a header that names this arena.
  void* Allocate(std::size_t size);
  // The object at `object`, of `size` bytes, has gone.
  void Release(void* object, std::size_t size) noexcept;
  // The document lets go: the arena is freed now if it holds nothing, else with its last object.
  void Abandon() noexcept;

 private:
  struct Chunk {
    Chunk* next;
    std::size_t size;  // bytes of room behind this record
  };
  ~TiXmlArena();
  // Frees every chunk but the newest, the largest, and starts over at its beginning.
  void StartOver() noexcept;

  Chunk* m_chunks = nullptr;  // newest first
  char* m_cursor = nullptr;
  char* m_end = nullptr;
  std::size_t m_nextChunk = 4096;
  std::size_t m_live = 0;
  bool m_abandoned = false;
};

// What stands in front of every TiXmlBase object that new made: its arena, or null for the heap.
// As large as the strictest alignment, so the object behind it stays aligned.
struct alignas(alignof(std::max_align_t)) TiXmlAllocationHeader {
  TiXmlArena* arena;
};

// Makes a T in `arena`, or on the heap when there is none.
template <class T, class... Args>
T* NewInArena(TiXmlArena* arena, Args&&... args) {
  return arena ? new (*arena) T(std::forward<Args>(args)...) : new T(std::forward<Args>(args)...);
}
