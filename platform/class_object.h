// Class objects: the factory interface through which a module makes its classes, and the
// platform's creation of an object by class identifier, which finds the module that serves the
// class in the class registry, loads it and asks its factory.
#pragma once

#include <cstdint>

#include "platform/com.h"

#ifndef _WIN32

inline constexpr IID IID_IClassFactory =
    MakeGuid(0x00000001, 0x0000, 0x0000, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);

struct IClassFactory : IUnknown {
  // [any thread] A new object of the factory's class, aggregated in `outer` when it is not null,
  // answering `iid` in `*object`.
  virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid,
                                                   void** object) = 0;
  // [any thread] True keeps the module loaded, false undoes one such call.
  virtual HRESULT STDMETHODCALLTYPE LockServer(std::int32_t lock) = 0;
};

inline constexpr HRESULT REGDB_E_CLASSNOTREG = hr::Code(0x80040154u);
inline constexpr HRESULT CO_E_DLLNOTFOUND = hr::Code(0x8004F001u);
inline constexpr HRESULT CO_E_ERRORINDLL = hr::Code(0x800401F9u);

#endif  // _WIN32

// Holds the component runtime open on this thread for the life of a scope: on Windows it is
// started when the thread had not started it, and ended again; elsewhere there is nothing to
// start.
class CComScope {
 public:
  CComScope() noexcept;
  ~CComScope();
  CComScope(const CComScope&) = delete;
  CComScope& operator=(const CComScope&) = delete;

 private:
  bool m_started = false;
};

// [any thread, inside a CComScope] A new object of class `clsid` from the module that the class
// registry names in "CLSID\{...}\InprocServer32", answering `iid` in `*object`. The module
// stays loaded for the life of the process once it served an object. REGDB_E_CLASSNOTREG when
// the class is not registered; CO_E_DLLNOTFOUND when the module cannot be loaded;
// CO_E_ERRORINDLL when it has no class-object export; else the factory's answer. On Windows it
// is the system's creation, which reads HKEY_CLASSES_ROOT whatever root was set.
HRESULT CreateRegisteredObject(REFCLSID clsid, IUnknown* outer, REFIID iid, void** object);
