#include "platform/filter_mapper.h"
#include "platform/windows/system.h"

#include <strmif.h>
#include <uuids.h>

#include <vector>

namespace {

// Owns one interface reference.
template <class T>
class Held {
 public:
  ~Held() {
    if (m_p) m_p->Release();
  }
  void** Receive() noexcept { return reinterpret_cast<void**>(&m_p); }
  T* operator->() const noexcept { return m_p; }
  explicit operator bool() const noexcept { return m_p != nullptr; }

 private:
  T* m_p = nullptr;
};

template <class T>
bool Make(REFCLSID clsid, REFIID iid, Held<T>& out) {
  return SUCCEEDED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, out.Receive()));
}

// The mapper answers a missing listing with "file not found"; that is no failure to remove it.
HRESULT AbsentIsFine(HRESULT hr) {
  return hr == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) ? S_OK : hr;
}

HRESULT RegisterWithOlderMapper(const FilterSetup& setup) {
  Held<IFilterMapper> mapper;
  if (!Make(CLSID_FilterMapper, IID_IFilterMapper, mapper)) return E_FAIL;
  AbsentIsFine(mapper->UnregisterFilter(setup.clsid));
  HRESULT hr = mapper->RegisterFilter(setup.clsid, setup.name.c_str(), setup.merit);
  for (const FilterPinSetup& pin : setup.pins) {
    if (FAILED(hr)) break;
    hr = mapper->RegisterPin(setup.clsid, pin.name.c_str(), pin.rendered, pin.output,
                             pin.zeroInstancesAllowed, pin.manyAllowed, pin.connectsToFilter,
                             pin.connectsToPin.c_str());
    for (const PinMediaType& type : pin.mediaTypes) {
      if (FAILED(hr)) break;
      hr = mapper->RegisterPinType(setup.clsid, pin.name.c_str(), type.major, type.minor);
    }
  }
  return hr;
}

}  // namespace

HRESULT RegisterFilterSetup(const FilterSetup& setup) {
  Held<IFilterMapper2> mapper;
  if (!Make(CLSID_FilterMapper2, IID_IFilterMapper2, mapper))
    return RegisterWithOlderMapper(setup);

  // The mapper's records point into these; they live until the call returns.
  std::vector<std::vector<REGPINTYPES>> types(setup.pins.size());
  std::vector<REGFILTERPINS> pins(setup.pins.size());
  for (std::size_t p = 0; p < setup.pins.size(); ++p) {
    const FilterPinSetup& pin = setup.pins[p];
    for (const PinMediaType& type : pin.mediaTypes) types[p].push_back({&type.major, &type.minor});
    pins[p].strName = const_cast<LPWSTR>(pin.name.c_str());
    pins[p].bRendered = pin.rendered;
    pins[p].bOutput = pin.output;
    pins[p].bZero = pin.zeroInstancesAllowed;
    pins[p].bMany = pin.manyAllowed;
    pins[p].clsConnectsToFilter = &pin.connectsToFilter;
    pins[p].strConnectsToPin = pin.connectsToPin.c_str();
    pins[p].nMediaTypes = static_cast<UINT>(types[p].size());
    pins[p].lpMediaType = types[p].data();
  }
  REGFILTER2 filter{};
  filter.dwVersion = 1;
  filter.dwMerit = setup.merit;
  filter.cPins = static_cast<ULONG>(pins.size());
  filter.rgPins = pins.data();
  return mapper->RegisterFilter(setup.clsid, setup.name.c_str(), nullptr,
                                &CLSID_LegacyAmFilterCategory, nullptr, &filter);
}

HRESULT UnregisterFilterSetup(REFCLSID clsid) {
  Held<IFilterMapper2> mapper;
  if (Make(CLSID_FilterMapper2, IID_IFilterMapper2, mapper))
    return AbsentIsFine(mapper->UnregisterFilter(&CLSID_LegacyAmFilterCategory, nullptr, clsid));
  Held<IFilterMapper> older;
  if (!Make(CLSID_FilterMapper, IID_IFilterMapper, older)) return E_FAIL;
  return AbsentIsFine(older->UnregisterFilter(clsid));
}
