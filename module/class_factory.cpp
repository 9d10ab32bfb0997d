#include "module/class_factory.h"

#include <new>

namespace {

// Relaxed: the count decides nothing but the answer of CanUnloadModule.
std::atomic<std::int32_t> g_lockCount{0};

}  // namespace

CClassFactory::CClassFactory(const CFactoryTemplate* row) noexcept
    : CBaseObject(L"Class factory"), m_row(row) {}

HRESULT CClassFactory::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  if (iid == IID_IUnknown || iid == IID_IClassFactory) {
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

ULONG CClassFactory::AddRef() { return ++m_refs; }

ULONG CClassFactory::Release() {
  const ULONG left = --m_refs;
  if (left == 0) delete this;
  return left;
}

HRESULT CClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (outer && iid != IID_IUnknown) return E_NOINTERFACE;

  HRESULT status = S_OK;
  CUnknown* made = m_row->m_create(outer, &status);
  if (!made) return FAILED(status) ? status : E_OUTOFMEMORY;
  if (FAILED(status)) {
    delete made;  // nobody holds a reference yet
    *object = nullptr;
    return status;
  }
  made->NonDelegatingAddRef();
  const HRESULT hr = made->NonDelegatingQueryInterface(iid, object);
  made->NonDelegatingRelease();
  return hr;
}

HRESULT CClassFactory::LockServer(std::int32_t lock) {
  if (lock)
    g_lockCount.fetch_add(1, std::memory_order_relaxed);
  else
    g_lockCount.fetch_sub(1, std::memory_order_relaxed);
  return S_OK;
}

HRESULT GetClassObject(std::span<const CFactoryTemplate> table, REFCLSID clsid, REFIID iid,
                       void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
  for (const CFactoryTemplate& row : table) {
    if (!row.IsClassId(clsid)) continue;
    auto* factory = new (std::nothrow) CClassFactory(&row);
    if (!factory) return E_OUTOFMEMORY;
    factory->AddRef();
    *object = static_cast<IClassFactory*>(factory);
    return S_OK;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

std::int32_t ModuleObjectCount() noexcept { return CBaseObject::ObjectsActive(); }

std::int32_t ModuleLockCount() noexcept { return g_lockCount.load(std::memory_order_relaxed); }

HRESULT CanUnloadModule() noexcept {
  return ModuleLockCount() <= 0 && ModuleObjectCount() == 0 ? S_OK : S_FALSE;
}
