// The module's exports as a host finds them by name ("DllGetClassObject", ...) after loading
// the module: their types, so that a host calls them through pointers of the right shape.
#pragma once

#include "platform/com.h"

// [any thread] A new class object of `clsid` answering `iid` (IUnknown or IClassFactory).
using DllGetClassObjectEntry = HRESULT(STDMETHODCALLTYPE*)(REFCLSID clsid, REFIID iid,
                                                           void** object);
// [any thread] S_OK when the module may be unloaded: no object alive and no server lock held.
using DllCanUnloadNowEntry = HRESULT(STDMETHODCALLTYPE*)();
// [host thread] Writes the module's classes into the class registry; unregistering takes them
// out again.
using DllRegisterServerEntry = HRESULT(STDMETHODCALLTYPE*)();
using DllUnregisterServerEntry = HRESULT(STDMETHODCALLTYPE*)();
// [host thread] Moves the class registry's root of this module, as SetClassRegistryRoot does:
// for hosts and tests that register the module somewhere other than the user's registry. Null
// or empty restores the default root.
using DllSetClassRegistryRootEntry = void(STDMETHODCALLTYPE*)(const wchar_t* root);
