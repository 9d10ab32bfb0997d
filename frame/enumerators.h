// Enumerators over a filter's pins and over a pin's preferred media types. Each holds a
// reference on what it walks, so it may outlive the caller's; use one from one thread at a time.
#pragma once

#include <cstdint>

#include "interfaces/graph_interfaces.h"
#include "frame/unknown.h"

class CBaseFilter;
class CBasePin;

// Walks GetPin(0..GetPinCount()) and falls out of step when the filter's pin version changes.
class CEnumPins final : public CUnknown, public IEnumPins {
 public:
  DECLARE_IUNKNOWN

  // [any thread] A new enumerator at the first pin, with one reference in `out`.
  static HRESULT Create(CBaseFilter& filter, IEnumPins** out);
  ~CEnumPins() override;

  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;

  HRESULT STDMETHODCALLTYPE Next(std::uint32_t count, IPin** pins, std::uint32_t* fetched) override;
  HRESULT STDMETHODCALLTYPE Skip(std::uint32_t count) override;
  HRESULT STDMETHODCALLTYPE Reset() override;
  HRESULT STDMETHODCALLTYPE Clone(IEnumPins** clone) override;

 private:
  CEnumPins(CBaseFilter& filter, std::int32_t position, std::int32_t version);
  bool InStep() const noexcept;

  CBaseFilter& m_filter;
  std::int32_t m_position;
  std::int32_t m_version;
};

// Walks the pin's GetMediaType(0...) until it stops answering S_OK.
class CEnumMediaTypes final : public CUnknown, public IEnumMediaTypes {
 public:
  DECLARE_IUNKNOWN

  // [any thread] A new enumerator at the first type, with one reference in `out`.
  static HRESULT Create(CBasePin& pin, IEnumMediaTypes** out);
  ~CEnumMediaTypes() override;

  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;

  HRESULT STDMETHODCALLTYPE Next(std::uint32_t count, CMediaType* types,
                                 std::uint32_t* fetched) override;
  HRESULT STDMETHODCALLTYPE Skip(std::uint32_t count) override;
  HRESULT STDMETHODCALLTYPE Reset() override;
  HRESULT STDMETHODCALLTYPE Clone(IEnumMediaTypes** clone) override;

 private:
  CEnumMediaTypes(CBasePin& pin, std::int32_t position);

  CBasePin& m_pin;
  std::int32_t m_position;
};
