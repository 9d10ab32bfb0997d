// Reference counting and interface lookup for the fakes: each fake lists the interfaces it
// answers, and tests can read its count to check the reference rules.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/com.h"

template <class Self>
class FakeRefCount {
 public:
  ULONG AddRefImpl() { return static_cast<ULONG>(++m_refs); }
  ULONG ReleaseImpl() {
    const auto left = --m_refs;
    if (left == 0 && m_deleteAtZero) delete static_cast<Self*>(this);
    return static_cast<ULONG>(left);
  }
  // References held by others. Fakes on the stack live by scope and are never deleted.
  std::int32_t RefCount() const { return m_refs; }
  // Heap-made fakes delete themselves when released to zero.
  void DeleteAtZero() { m_deleteAtZero = true; }

 private:
  std::atomic<std::int32_t> m_refs{0};
  bool m_deleteAtZero = false;
};

#define TARN_FAKE_IUNKNOWN                                                             \
  ULONG STDMETHODCALLTYPE AddRef() override { return AddRefImpl(); }                   \
  ULONG STDMETHODCALLTYPE Release() override { return ReleaseImpl(); }

// An outer object for aggregation: answers IUnknown only, and counts the references that the
// inner object's delegating faces pass to it.
class FakeOuterUnknown final : public IUnknown, public FakeRefCount<FakeOuterUnknown> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    if (iid != IID_IUnknown) {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    *object = static_cast<IUnknown*>(this);
    AddRef();
    return S_OK;
  }
  TARN_FAKE_IUNKNOWN
};
