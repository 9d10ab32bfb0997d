// The fakes' IUnknown: CUnknownImpl, with a count that tests read to check the reference rules.
// Fakes live by their scope, never deleted by a release.
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

 protected:
  void LastReleased() override {}
};

// An outer object for aggregation: answers IUnknown only, and counts the references that the
// inner object's delegating faces pass to it.
class FakeOuterUnknown final : public FakeUnknown<IUnknown> {};
