#include "platform/class_object.h"
#include "platform/windows/system.h"

CComScope::CComScope() noexcept {
  // A free-threaded apartment needs no window; where the thread has an apartment already, the
  // call fails and that one serves.
  const HRESULT hr = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  m_started = SUCCEEDED(hr);  // S_FALSE too: the call is counted and must be matched
}

CComScope::~CComScope() {
  if (m_started) CoUninitialize();
}

HRESULT CreateRegisteredObject(REFCLSID clsid, IUnknown* outer, REFIID iid, void** object) {
  return CoCreateInstance(clsid, outer, CLSCTX_INPROC_SERVER, iid, object);
}
