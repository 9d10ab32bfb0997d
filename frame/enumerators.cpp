#include "frame/enumerators.h"

#include "frame/base_filter.h"
#include "frame/base_pin.h"

namespace {

// Next may leave `fetched` out only when asking for one.
HRESULT CheckNextArguments(const void* items, std::uint32_t count, const std::uint32_t* fetched) {
  if (!items || (count != 1 && !fetched)) return E_POINTER;
  return S_OK;
}

}  // namespace

CEnumPins::CEnumPins(CBaseFilter& filter, std::int32_t position, std::int32_t version)
    : CUnknown(L"Pin enumerator", nullptr),
      m_filter(filter),
      m_position(position),
      m_version(version) {
  m_filter.AddRef();
}

CEnumPins::~CEnumPins() { m_filter.Release(); }

HRESULT CEnumPins::Create(CBaseFilter& filter, IEnumPins** out) {
  if (!out) return E_POINTER;
  auto* pins = new CEnumPins(filter, 0, filter.GetPinVersion());
  return GetInterface(static_cast<IEnumPins*>(pins), reinterpret_cast<void**>(out));
}

HRESULT CEnumPins::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (object && iid == IID_IEnumPins) return GetInterface(static_cast<IEnumPins*>(this), object);
  return CUnknown::NonDelegatingQueryInterface(iid, object);
}

bool CEnumPins::InStep() const noexcept { return m_version == m_filter.GetPinVersion(); }

HRESULT CEnumPins::Next(std::uint32_t count, IPin** pins, std::uint32_t* fetched) {
  const HRESULT checked = CheckNextArguments(pins, count, fetched);
  if (FAILED(checked)) return checked;
  if (fetched) *fetched = 0;
  if (!InStep()) return VFW_E_ENUM_OUT_OF_SYNC;
  CAutoLock lock(*m_filter.GetLock());
  const std::int32_t total = m_filter.GetPinCount();
  std::uint32_t got = 0;
  while (got < count && m_position < total) {
    if (CBasePin* pin = m_filter.GetPin(m_position++)) {
      pin->AddRef();
      pins[got++] = pin;
    }
  }
  if (fetched) *fetched = got;
  return got == count ? S_OK : S_FALSE;
}

HRESULT CEnumPins::Skip(std::uint32_t count) {
  if (!InStep()) return VFW_E_ENUM_OUT_OF_SYNC;
  CAutoLock lock(*m_filter.GetLock());
  const std::int64_t total = m_filter.GetPinCount();
  const std::int64_t wanted = std::int64_t{m_position} + count;
  m_position = static_cast<std::int32_t>(wanted < total ? wanted : total);
  return wanted <= total ? S_OK : S_FALSE;
}

HRESULT CEnumPins::Reset() {
  m_position = 0;
  m_version = m_filter.GetPinVersion();
  return S_OK;
}

HRESULT CEnumPins::Clone(IEnumPins** clone) {
  if (!clone) return E_POINTER;
  *clone = nullptr;
  if (!InStep()) return VFW_E_ENUM_OUT_OF_SYNC;
  auto* copy = new CEnumPins(m_filter, m_position, m_version);
  return GetInterface(static_cast<IEnumPins*>(copy), reinterpret_cast<void**>(clone));
}

CEnumMediaTypes::CEnumMediaTypes(CBasePin& pin, std::int32_t position)
    : CUnknown(L"Media type enumerator", nullptr), m_pin(pin), m_position(position) {
  m_pin.AddRef();
}

CEnumMediaTypes::~CEnumMediaTypes() { m_pin.Release(); }

HRESULT CEnumMediaTypes::Create(CBasePin& pin, IEnumMediaTypes** out) {
  if (!out) return E_POINTER;
  auto* types = new CEnumMediaTypes(pin, 0);
  return GetInterface(static_cast<IEnumMediaTypes*>(types), reinterpret_cast<void**>(out));
}

HRESULT CEnumMediaTypes::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (object && iid == IID_IEnumMediaTypes)
    return GetInterface(static_cast<IEnumMediaTypes*>(this), object);
  return CUnknown::NonDelegatingQueryInterface(iid, object);
}

HRESULT CEnumMediaTypes::Next(std::uint32_t count, CMediaType* types, std::uint32_t* fetched) {
  const HRESULT checked = CheckNextArguments(types, count, fetched);
  if (FAILED(checked)) return checked;
  std::uint32_t got = 0;
  while (got < count && m_pin.GetMediaType(m_position, &types[got]) == S_OK) {
    ++got;
    ++m_position;
  }
  if (fetched) *fetched = got;
  return got == count ? S_OK : S_FALSE;
}

HRESULT CEnumMediaTypes::Skip(std::uint32_t count) {
  CMediaType scratch;
  for (std::uint32_t i = 0; i < count; ++i, ++m_position)
    if (m_pin.GetMediaType(m_position, &scratch) != S_OK) return S_FALSE;
  return S_OK;
}

HRESULT CEnumMediaTypes::Reset() {
  m_position = 0;
  return S_OK;
}

HRESULT CEnumMediaTypes::Clone(IEnumMediaTypes** clone) {
  if (!clone) return E_POINTER;
  auto* copy = new CEnumMediaTypes(m_pin, m_position);
  return GetInterface(static_cast<IEnumMediaTypes*>(copy), reinterpret_cast<void**>(clone));
}
