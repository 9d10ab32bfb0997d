// One IUnknown for every class that implements interfaces: the interfaces are listed once, as
// bases of CUnknownImpl, and QueryInterface answers each of them and the interfaces each one
// extends (IFoo2 answers for IFoo too), all with one reference count.
//
//   class CNames final : public CUnknownImpl<IMfxNameList2> { ... };
//
// Each listed interface names its identifier and the interface it extends with
// TARN_INTERFACE_ID, beside its declaration.
#pragma once

#include <atomic>
#include <tuple>
#include <type_traits>

#include "platform/com.h"

// The identifier of an interface type and the interface it extends (IUnknown for a root).
template <class Interface>
struct InterfaceTraits;

template <>
struct InterfaceTraits<IUnknown> {
  using Parent = void;
  static const IID& Id() noexcept { return IID_IUnknown; }
};

// Whether an interface has an identifier. One without (a callback the host hands over directly,
// never asked for) is answered only as IUnknown.
template <class Interface, class = void>
struct HasInterfaceId : std::false_type {};
template <class Interface>
struct HasInterfaceId<Interface, std::void_t<decltype(InterfaceTraits<Interface>::Id())>>
    : std::true_type {};

#define TARN_INTERFACE_ID(Interface, iid, ParentInterface)        \
  template <>                                                     \
  struct InterfaceTraits<Interface> {                             \
    using Parent = ParentInterface;                               \
    static const IID& Id() noexcept { return iid; }               \
  }

template <class... Interfaces>
class CUnknownImpl : public Interfaces... {
 public:
  // [any thread] Each listed interface and those it extends; IUnknown as the first listed one.
  // E_POINTER for a null `object`, else E_NOINTERFACE with *object null.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (!(Find<Interfaces, Interfaces>(iid, object) || ...)) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  // [any thread] The new count.
  ULONG STDMETHODCALLTYPE AddRef() override { return ++m_refs; }
  // [any thread] The new count; at 0 LastReleased runs, and the object may be gone.
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --m_refs;
    if (left == 0) LastReleased();
    return left;
  }

 protected:
  CUnknownImpl() = default;
  virtual ~CUnknownImpl() = default;
  CUnknownImpl(const CUnknownImpl&) = delete;
  CUnknownImpl& operator=(const CUnknownImpl&) = delete;

  // What the last release does: by default the object deletes itself. An object that lives by
  // its scope instead (a test's fake on the stack) does nothing here.
  virtual void LastReleased() { delete this; }
  // References held now.
  ULONG RefCount() const noexcept { return m_refs.load(); }

 private:
  using First = std::tuple_element_t<0, std::tuple<Interfaces...>>;

  // Whether `Face`, reached through the listed interface `Listed`, or an interface it extends
  // answers `iid`; IUnknown answers only through the first listed interface.
  template <class Listed, class Face>
  bool Find(REFIID iid, void** object) {
    if constexpr (std::is_same_v<Face, IUnknown> || !HasInterfaceId<Face>::value) {
      if (!std::is_same_v<Listed, First> || iid != IID_IUnknown) return false;
      *object = static_cast<IUnknown*>(static_cast<Listed*>(this));
      return true;
    } else {
      if (iid == InterfaceTraits<Face>::Id()) {
        *object = static_cast<Face*>(static_cast<Listed*>(this));
        return true;
      }
      return Find<Listed, typename InterfaceTraits<Face>::Parent>(iid, object);
    }
  }

  std::atomic<ULONG> m_refs{0};
};
