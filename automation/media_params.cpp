#include "automation/media_params.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace {

constexpr std::int64_t kUnitsPerSecond = 10'000'000;
// Keeps seconds times 10^7 inside 64 bits: 29,000 years of stream.
constexpr std::int64_t kLongestSeconds = std::int64_t{1} << 33;
constexpr std::int64_t kLongestRange = std::numeric_limits<std::int32_t>::max();

bool AddressesEnabled(std::uint32_t index) noexcept { return index == 0 || index == kAllParams; }

// Length of a fixed text field, which may fill its array without a terminator.
template <std::size_t N>
std::size_t FieldLength(const ParamChar (&field)[N]) noexcept {
  std::size_t n = 0;
  while (n < N && field[n] != 0) ++n;
  return n;
}

std::size_t TextLength(const ParamChar* text) noexcept {
  std::size_t n = 0;
  if (text)
    while (text[n] != 0) ++n;
  return n;
}

// The media time of sample `position` at `rate`: position * 10^7 / rate, without overflow.
std::int64_t TimeOfSample(std::int64_t position, std::int32_t rate) noexcept {
  const std::int64_t seconds = std::clamp(position / rate, -kLongestSeconds, kLongestSeconds);
  return seconds * kUnitsPerSecond + position % rate * kUnitsPerSecond / rate;
}

}  // namespace

HRESULT CMediaParams::Create(IUnknown* owner, CMediaParams** created) {
  if (!owner || !created) return E_POINTER;
  *created = new (std::nothrow) CMediaParams(owner);
  if (!*created) return E_OUTOFMEMORY;
  ++(*created)->m_refs;
  return S_OK;
}

CMediaParams::CMediaParams(IUnknown* owner) noexcept
    : m_owner(owner), m_envelopes{CParamEnvelope(ParamTableRow(0)), CParamEnvelope(ParamTableRow(1))} {}

CMediaParams::~CMediaParams() {
  if (m_callback) m_callback->Release();
}

void CMediaParams::ReleaseOwnerReference() noexcept {
  if (--m_refs == 0) delete this;
}

bool CMediaParams::IsFacet(REFIID iid) noexcept {
  return iid == IID_IMediaParams || iid == IID_IMediaParamInfo ||
         iid == IID_IMediaParamsSetUICallback || iid == IID_IMediaParamsUICallback;
}

HRESULT CMediaParams::QueryFacet(REFIID iid, void** object) noexcept {
  if (!object) return E_POINTER;
  IUnknown* face = nullptr;
  if (iid == IID_IMediaParams)
    face = static_cast<IMediaParams*>(this);
  else if (iid == IID_IMediaParamInfo)
    face = static_cast<IMediaParamInfo*>(this);
  else if (iid == IID_IMediaParamsSetUICallback)
    face = static_cast<IMediaParamsSetUICallback*>(this);
  else if (iid == IID_IMediaParamsUICallback)
    face = static_cast<IMediaParamsUICallback*>(this);
  *object = face;
  if (!face) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

// --- IUnknown ---------------------------------------------------------------------------------------

HRESULT CMediaParams::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  if (iid == IID_IUnknown) {
    *object = static_cast<IMediaParams*>(this);
    AddRef();
    return S_OK;
  }
  return m_owner->QueryInterface(iid, object);
}

ULONG CMediaParams::AddRef() {
  m_owner->AddRef();
  return ++m_refs;
}

// The owner's release may destroy the owner and, through it, this object: nothing of this object
// is touched after it.
ULONG CMediaParams::Release() {
  const ULONG left = --m_refs;
  if (left == 0) {
    delete this;
    return 0;
  }
  m_owner->Release();
  return left;
}

// --- IMediaParams ----------------------------------------------------------------------------------

HRESULT CMediaParams::GetParam(std::uint32_t index, MP_DATA* value) {
  if (index >= kParamRows) return E_INVALIDARG;
  if (!value) return E_POINTER;
  *value = m_envelopes[index].GetExternal();
  return S_OK;
}

HRESULT CMediaParams::SetParam(std::uint32_t index, MP_DATA value) {
  if (index >= kParamRows) return E_INVALIDARG;
  m_envelopes[index].SetExternal(value);
  return S_OK;
}

HRESULT CMediaParams::AddEnvelope(std::uint32_t index, std::uint32_t count,
                                  const MP_ENVELOPE_SEGMENT* segments) {
  if (!AddressesEnabled(index)) return E_INVALIDARG;
  if (count == 0) return S_OK;
  if (!segments) return E_POINTER;
  m_envelopes[0].AddSegments(segments, count, SampleRate());
  return S_OK;
}

HRESULT CMediaParams::FlushEnvelope(std::uint32_t index, std::int64_t start, std::int64_t end) {
  if (!AddressesEnabled(index)) return E_INVALIDARG;
  if (start > end) return E_INVALIDARG;
  m_envelopes[0].Flush(start, end, SampleRate());
  return S_OK;
}

HRESULT CMediaParams::SetTimeFormat(GUID format, std::uint32_t) {
  return format == GUID_TIME_REFERENCE ? S_OK : E_INVALIDARG;
}

// --- IMediaParamInfo -------------------------------------------------------------------------------

HRESULT CMediaParams::GetParamCount(std::uint32_t* count) {
  if (!count) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT CMediaParams::GetParamInfo(std::uint32_t index, MP_PARAMINFO* info) {
  if (index != 0) return E_INVALIDARG;
  if (!info) return E_POINTER;
  std::memcpy(info, &m_envelopes[0].Row().info, sizeof *info);
  return S_OK;
}

HRESULT CMediaParams::GetParamText(std::uint32_t index, ParamChar** text) {
  if (index != 0) return E_INVALIDARG;
  if (!text) return E_POINTER;
  const ParamRow& row = m_envelopes[0].Row();
  const std::size_t label = FieldLength(row.info.szLabel);
  const std::size_t unit = FieldLength(row.info.szUnitText);
  const std::size_t names = TextLength(row.enumText);
  const std::size_t chars = label + 1 + unit + 1 + names + 1;
  auto* block = static_cast<ParamChar*>(CoTaskMemAlloc(chars * sizeof(ParamChar)));
  if (!block) return E_OUTOFMEMORY;
  ParamChar* at = std::copy_n(row.info.szLabel, label, block);
  *at++ = 0;
  at = std::copy_n(row.info.szUnitText, unit, at);
  *at++ = 0;
  if (row.enumText) {
    at = std::replace_copy(row.enumText, row.enumText + names, at, ParamChar{','}, ParamChar{0});
    *at = 0;
  }
  *text = block;
  return S_OK;
}

HRESULT CMediaParams::GetNumTimeFormats(std::uint32_t* count) {
  if (!count) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT CMediaParams::GetSupportedTimeFormat(std::uint32_t index, GUID* format) {
  if (!format) return E_POINTER;
  if (index != 0) return E_INVALIDARG;
  *format = GUID_TIME_REFERENCE;
  return S_OK;
}

HRESULT CMediaParams::GetCurrentTimeFormat(GUID* format, std::uint32_t*) {
  if (!format) return E_POINTER;
  *format = GUID_TIME_REFERENCE;
  return S_OK;
}

// --- user-interface callbacks ------------------------------------------------------------------------

HRESULT CMediaParams::SetUICallback(IMediaParamsUICallback* callback) {
  if (callback) callback->AddRef();
  IMediaParamsUICallback* old = nullptr;
  {
    CAutoLock lock(m_callbackLock);
    old = m_callback;
    m_callback = callback;
  }
  if (old) old->Release();
  return S_OK;
}

IMediaParamsUICallback* CMediaParams::TakeCallback() {
  CAutoLock lock(m_callbackLock);
  if (m_callback) m_callback->AddRef();
  return m_callback;
}

HRESULT CMediaParams::ParamsBeginCapture(const std::uint32_t* indices, std::uint32_t count) {
  if (count > 0 && !indices) return E_POINTER;
  for (std::uint32_t i = 0; i < count; ++i)
    if (indices[i] < kParamRows) m_envelopes[indices[i]].SetCapture(true);
  IMediaParamsUICallback* callback = TakeCallback();
  if (!callback) return S_OK;
  const HRESULT hr = callback->ParamsBeginCapture(indices, count);
  callback->Release();
  return hr;
}

HRESULT CMediaParams::ParamsChanged(const std::uint32_t* indices, std::uint32_t count,
                                    const MP_DATA* values) {
  if (count > 0 && (!indices || !values)) return E_POINTER;
  for (std::uint32_t i = 0; i < count; ++i) {
    const HRESULT hr = SetParam(indices[i], values[i]);
    if (FAILED(hr)) return hr;
  }
  IMediaParamsUICallback* callback = TakeCallback();
  if (!callback) return S_OK;
  const HRESULT hr = callback->ParamsChanged(indices, count, values);
  callback->Release();
  return hr;
}

HRESULT CMediaParams::ParamsEndCapture(const std::uint32_t* indices, std::uint32_t count) {
  if (count > 0 && !indices) return E_POINTER;
  for (std::uint32_t i = 0; i < count; ++i)
    if (indices[i] < kParamRows) m_envelopes[indices[i]].SetCapture(false);
  IMediaParamsUICallback* callback = TakeCallback();
  if (!callback) return S_OK;
  const HRESULT hr = callback->ParamsEndCapture(indices, count);
  callback->Release();
  return hr;
}

// --- the processing loop -----------------------------------------------------------------------------

HRESULT CMediaParams::SetSampleRate(std::int32_t rate) noexcept {
  if (rate <= 0) return E_INVALIDARG;
  m_sampleRate.store(rate, std::memory_order_relaxed);
  return S_OK;
}

HRESULT CMediaParams::GetSliceBoundaries(std::int64_t start, std::int64_t end,
                                         std::vector<std::int64_t>& positions) {
  positions.clear();
  if (end <= start) return S_OK;
  // Compared without subtracting: end - start could leave 64 bits.
  const bool tooLong = start < 0 ? end > start + kLongestRange : end - kLongestRange > start;
  const std::int32_t rate = SampleRate();
  const auto interval = static_cast<std::int64_t>(kSliceInterval * rate);
  const auto multiples =
      tooLong ? 0 : static_cast<std::size_t>(interval > 0 ? (end - start) / interval : 0) + 1;
  // The segments' own positions first: one pass under the lock, which also tells whether any
  // segments exist at all. The order does not matter, as the list is sorted at the end.
  if (!m_envelopes[0].AppendSegmentPositions(start, end, rate, multiples, positions)) return S_OK;
  if (tooLong) {
    positions.clear();
    return E_INVALIDARG;
  }
  // Below 50 Hz the interval is no sample at all: then only the segments cut.
  // Each step is checked against the room left, so no sum leaves 64 bits.
  if (interval > 0) {
    std::int64_t multiple = start / interval * interval;
    bool inRange = true;
    if (multiple < start) {
      inRange = end - multiple > interval;
      multiple += inRange ? interval : 0;
    }
    while (inRange) {
      positions.push_back(multiple);
      if (end - multiple <= interval) break;
      multiple += interval;
    }
  }
  std::sort(positions.begin(), positions.end());
  return S_OK;
}

HRESULT CMediaParams::UpdateValuesForSample(std::int64_t position) {
  const std::int32_t rate = SampleRate();
  m_envelopes[0].Evaluate(TimeOfSample(position, rate), rate);
  return S_OK;
}
