// The component object base: a live-object count for the module's unload rule, and an IUnknown
// that can stand alone or inside an outer object (aggregation). Every frame object derives from
// CUnknown and answers its interfaces through NonDelegatingQueryInterface.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/com.h"

// The three IUnknown operations under their own names, so that an aggregated object can tell the
// calls of its outer object (which delegate) from its own (which do not). Same order as IUnknown.
struct INonDelegatingUnknown {
  // [any thread] Answers the object's own interfaces, never the outer object's.
  virtual HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) = 0;
  // [any thread] Returns the new count.
  virtual ULONG STDMETHODCALLTYPE NonDelegatingAddRef() = 0;
  // [any thread] Returns the new count; the object may be gone when it is 0.
  virtual ULONG STDMETHODCALLTYPE NonDelegatingRelease() = 0;

 protected:
  ~INonDelegatingUnknown() = default;
};

// Counts the frame's live objects process-wide; the module may unload only when none is left.
class CBaseObject {
 public:
  explicit CBaseObject(const wchar_t* name) noexcept;
  virtual ~CBaseObject();
  CBaseObject(const CBaseObject&) = delete;
  CBaseObject& operator=(const CBaseObject&) = delete;

  // [any thread] Objects constructed and not yet destroyed, in the whole process.
  static std::int32_t ObjectsActive() noexcept;
  // A name for debugging; may be null.
  const wchar_t* ObjectName() const noexcept { return m_name; }

 private:
  const wchar_t* m_name;
  static std::atomic<std::int32_t> s_active;
};

// A reference-counted object. The count starts at 0: whoever creates the object takes the first
// reference. When a Release brings it back to 0 the object deletes itself through its virtual
// destructor. With an outer object, QueryInterface/AddRef/Release of every face go to the outer
// one (see DECLARE_IUNKNOWN), and only the outer object holds the non-delegating face.
class CUnknown : public INonDelegatingUnknown, public CBaseObject {
 public:
  // `outer` is the aggregating object, or null when this object stands alone.
  CUnknown(const wchar_t* name, IUnknown* outer) noexcept;
  ~CUnknown() override = default;

  // Answers IID_IUnknown with the non-delegating face; E_NOINTERFACE for anything else, with
  // *object set to null; E_POINTER when `object` is null. Derived classes answer their own
  // interfaces first and fall back to this.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE NonDelegatingAddRef() override;
  ULONG STDMETHODCALLTYPE NonDelegatingRelease() override;

  // The IUnknown that delegating calls go to: the outer object, or this object's own
  // non-delegating face when it stands alone. Never null.
  IUnknown* GetOwner() const noexcept { return m_owner; }
  // This object's own IUnknown, which does not delegate: what an aggregating outer object holds,
  // and what a class factory hands out for a new object.
  IUnknown* NonDelegatingUnknown() noexcept { return &m_inner; }

 private:
  // The non-delegating face as a real IUnknown, forwarding to the Non* operations.
  class Inner final : public IUnknown {
   public:
    explicit Inner(CUnknown& self) noexcept : m_self(self) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

   private:
    CUnknown& m_self;
  };

  Inner m_inner{*this};
  IUnknown* m_owner;
  std::atomic<ULONG> m_refs{0};
};

// [any thread] Hands out `face` through an out argument: adds a reference and stores it.
// E_POINTER when `object` is null; S_OK otherwise.
HRESULT GetInterface(IUnknown* face, void** object) noexcept;

// Implements IUnknown for a class derived from CUnknown by forwarding to GetOwner(). Put it in
// the public part of every class that adds interfaces, so all of them share one identity.
#define DECLARE_IUNKNOWN                                                         \
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override { \
    return GetOwner()->QueryInterface(iid, object);                              \
  }                                                                              \
  ULONG STDMETHODCALLTYPE AddRef() override { return GetOwner()->AddRef(); }     \
  ULONG STDMETHODCALLTYPE Release() override { return GetOwner()->Release(); }
