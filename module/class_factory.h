// The module's class objects, its two counts and its unload rule.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>

#include "frame/unknown.h"
#include "module/class_table.h"
#include "platform/class_object.h"

// Makes the objects of one table row. Each factory counts as a live object of the module; its
// reference count starts at 0.
class CClassFactory final : public IClassFactory, public CBaseObject {
 public:
  explicit CClassFactory(const CFactoryTemplate* row) noexcept;

  // [any thread] IUnknown and IClassFactory answer this object; E_POINTER for a null result;
  // anything else E_NOINTERFACE, with the result cleared.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  // [any thread] The new count.
  ULONG STDMETHODCALLTYPE AddRef() override;
  // [any thread] The new count; at 0 the factory is deleted.
  ULONG STDMETHODCALLTYPE Release() override;
  // [any thread] E_POINTER for a null result. With an outer object only IUnknown may be asked
  // (else E_NOINTERFACE, nothing made). A failure of the row's creation entry is the answer,
  // E_OUTOFMEMORY when nothing was made without one; an object made with a failed status is
  // destroyed. Otherwise the object's answer for `iid`.
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  // [any thread] True adds one to the module's lock count, false takes one away. Always 0.
  HRESULT STDMETHODCALLTYPE LockServer(std::int32_t lock) override;

 private:
  const CFactoryTemplate* m_row;
  std::atomic<ULONG> m_refs{0};
};

// [any thread] A new factory for the row of `clsid` in `table`, with one reference, in
// `*object`. E_POINTER for a null result; E_NOINTERFACE when `iid` is neither IUnknown nor
// IClassFactory, before the table is read; CLASS_E_CLASSNOTAVAILABLE for a class the table does
// not have; E_OUTOFMEMORY. The result is null on every failure.
HRESULT GetClassObject(std::span<const CFactoryTemplate> table, REFCLSID clsid, REFIID iid,
                       void** object);

// [any thread] Module-wide objects alive: factories, filters, pages and the frame objects they
// own.
std::int32_t ModuleObjectCount() noexcept;
// [any thread] The balance of LockServer calls.
std::int32_t ModuleLockCount() noexcept;
// [any thread] S_OK when the lock count is not above zero and no object is alive; else S_FALSE.
HRESULT CanUnloadModule() noexcept;
