// The fakes' IUnknown: CUnknownImpl, with a count that tests read to check the reference rules.
// Fakes on the stack live by their scope; heap-made ones may delete themselves at zero.
#pragma once

#include <cstdint>

#include "platform/unknown_impl.h"

template <class... Interfaces>
class FakeUnknown : public CUnknownImpl<Interfaces...> {
 public:
  // References held by others.
  std::int32_t RefCount() const {
    return static_cast<std::int32_t>(CUnknownImpl<Interfaces...>::RefCount());
  }
  // A heap-made fake deletes itself when released to zero.
  void DeleteAtZero() { m_deleteAtZero = true; }

 protected:
  void LastReleased() override {
    if (m_deleteAtZero) delete this;
  }

 private:
  bool m_deleteAtZero = false;
};

// An outer object for aggregation: answers IUnknown only, and counts the references that the
// inner object's delegating faces pass to it.
class FakeOuterUnknown final : public FakeUnknown<IUnknown> {};
