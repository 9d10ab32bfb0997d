#include "frame/unknown.h"

std::atomic<std::int32_t> CBaseObject::s_active{0};

CBaseObject::CBaseObject(const wchar_t* name) noexcept : m_name(name) { ++s_active; }
CBaseObject::~CBaseObject() { --s_active; }
std::int32_t CBaseObject::ObjectsActive() noexcept { return s_active.load(); }

CUnknown::CUnknown(const wchar_t* name, IUnknown* outer) noexcept
    : CBaseObject(name), m_owner(outer ? outer : &m_inner) {}

HRESULT CUnknown::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  if (iid == IID_IUnknown) return GetInterface(&m_inner, object);
  *object = nullptr;
  return E_NOINTERFACE;
}

ULONG CUnknown::NonDelegatingAddRef() { return ++m_refs; }

ULONG CUnknown::NonDelegatingRelease() {
  const ULONG left = --m_refs;
  if (left == 0) {
    // A destructor that takes and drops a reference of its own must not delete twice.
    m_refs = 1;
    delete this;
  }
  return left;
}

HRESULT CUnknown::Inner::QueryInterface(REFIID iid, void** object) {
  return m_self.NonDelegatingQueryInterface(iid, object);
}
ULONG CUnknown::Inner::AddRef() { return m_self.NonDelegatingAddRef(); }
ULONG CUnknown::Inner::Release() { return m_self.NonDelegatingRelease(); }

HRESULT GetInterface(IUnknown* face, void** object) noexcept {
  if (!object) return E_POINTER;
  *object = face;
  face->AddRef();
  return S_OK;
}
