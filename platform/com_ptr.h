// An owning reference to an interface: AddRef on copy, Release on reset. The component model's
// reference rules in one place, so no caller counts by hand.
#pragma once

#include <utility>

#include "platform/com.h"

template <class T>
class ComPtr {
 public:
  ComPtr() noexcept = default;
  ComPtr(std::nullptr_t) noexcept {}
  // Takes a new reference to `p`.
  explicit ComPtr(T* p) noexcept : m_p(p) {
    if (m_p) m_p->AddRef();
  }
  ComPtr(const ComPtr& other) noexcept : ComPtr(other.m_p) {}
  ComPtr(ComPtr&& other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
  ~ComPtr() { Reset(); }

  ComPtr& operator=(const ComPtr& other) noexcept {
    ComPtr(other).Swap(*this);
    return *this;
  }
  ComPtr& operator=(ComPtr&& other) noexcept {
    ComPtr(std::move(other)).Swap(*this);
    return *this;
  }

  // Adopts a reference that the caller already owns.
  static ComPtr Attach(T* p) noexcept {
    ComPtr r;
    r.m_p = p;
    return r;
  }
  // Gives up ownership without releasing.
  T* Detach() noexcept { return std::exchange(m_p, nullptr); }

  void Reset() noexcept {
    if (T* p = std::exchange(m_p, nullptr)) p->Release();
  }
  void Swap(ComPtr& other) noexcept { std::swap(m_p, other.m_p); }

  T* Get() const noexcept { return m_p; }
  T* operator->() const noexcept { return m_p; }
  T& operator*() const noexcept { return *m_p; }
  explicit operator bool() const noexcept { return m_p != nullptr; }

  // For out arguments: releases what is held and exposes the slot.
  T** Receive() noexcept {
    Reset();
    return &m_p;
  }

  // Asks `source` for `iid` and holds the answer; returns the query's result.
  template <class U>
  HRESULT QueryFrom(U* source, REFIID iid) noexcept {
    Reset();
    if (!source) return E_POINTER;
    return source->QueryInterface(iid, reinterpret_cast<void**>(&m_p));
  }

 private:
  T* m_p = nullptr;
};
