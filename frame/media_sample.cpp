#include "frame/media_sample.h"

CMediaSample::CMediaSample(IMemAllocator* allocator, std::uint8_t* buffer, std::int32_t size,
                           bool offersSilence) noexcept
    : m_allocator(allocator),
      m_buffer(buffer),
      m_size(size),
      m_offersSilence(offersSilence),
      m_actual(size) {}

HRESULT CMediaSample::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  if (iid == IID_IUnknown || iid == IID_IMediaSample)
    *object = static_cast<IMediaSample*>(this);
  else if (iid == IID_ISampleSilence && m_offersSilence)
    *object = static_cast<ISampleSilence*>(this);
  else {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG CMediaSample::AddRef() { return ++m_refs; }

ULONG CMediaSample::Release() {
  const ULONG left = --m_refs;
  if (left == 0) {
    // Cleared before it goes back: the next borrower may be on another thread at once.
    ResetProperties();
    m_allocator->ReleaseBuffer(this);
  }
  return left;
}

void CMediaSample::ResetProperties() noexcept {
  m_actual = m_size;
  m_time.reset();
  m_mediaTime.reset();
  m_type.reset();
  m_syncPoint = m_preroll = m_discontinuity = m_silent = false;
}

HRESULT CMediaSample::GetPointer(std::uint8_t** buffer) {
  if (!buffer) return E_POINTER;
  *buffer = m_buffer;
  return S_OK;
}

std::int32_t CMediaSample::GetSize() { return m_size; }

HRESULT CMediaSample::GetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) {
  if (!start || !stop) return E_POINTER;
  if (!m_time) return VFW_E_SAMPLE_TIME_NOT_SET;
  *start = m_time->start;
  if (!m_time->stop) {
    *stop = m_time->start + 1;
    return VFW_S_NO_STOP_TIME;
  }
  *stop = *m_time->stop;
  return S_OK;
}

HRESULT CMediaSample::SetTime(const REFERENCE_TIME* start, const REFERENCE_TIME* stop) {
  if (!start)
    m_time.reset();
  else
    m_time = Times{*start, stop ? std::optional(*stop) : std::nullopt};
  return S_OK;
}

namespace {
HRESULT Mark(bool set) { return set ? S_OK : S_FALSE; }
}  // namespace

HRESULT CMediaSample::IsSyncPoint() { return Mark(m_syncPoint); }
HRESULT CMediaSample::SetSyncPoint(std::int32_t isSyncPoint) {
  m_syncPoint = isSyncPoint != 0;
  return S_OK;
}
HRESULT CMediaSample::IsPreroll() { return Mark(m_preroll); }
HRESULT CMediaSample::SetPreroll(std::int32_t isPreroll) {
  m_preroll = isPreroll != 0;
  return S_OK;
}
HRESULT CMediaSample::IsDiscontinuity() { return Mark(m_discontinuity); }
HRESULT CMediaSample::SetDiscontinuity(std::int32_t isDiscontinuity) {
  m_discontinuity = isDiscontinuity != 0;
  return S_OK;
}

std::int32_t CMediaSample::GetActualDataLength() { return m_actual; }

HRESULT CMediaSample::SetActualDataLength(std::int32_t length) {
  if (length < 0) return E_INVALIDARG;
  if (length > m_size) return VFW_E_BUFFER_OVERFLOW;
  m_actual = length;
  return S_OK;
}

HRESULT CMediaSample::GetMediaType(CMediaType* type) {
  if (!type) return E_POINTER;
  if (!m_type) return S_FALSE;
  *type = *m_type;
  return S_OK;
}

HRESULT CMediaSample::SetMediaType(const CMediaType* type) {
  if (type)
    m_type = *type;
  else
    m_type.reset();
  return S_OK;
}

HRESULT CMediaSample::GetMediaTime(std::int64_t* start, std::int64_t* stop) {
  if (!start || !stop) return E_POINTER;
  if (!m_mediaTime) return VFW_E_MEDIA_TIME_NOT_SET;
  *start = m_mediaTime->start;
  *stop = m_mediaTime->stop.value_or(m_mediaTime->start + 1);
  return S_OK;
}

HRESULT CMediaSample::SetMediaTime(const std::int64_t* start, const std::int64_t* stop) {
  if (!start)
    m_mediaTime.reset();
  else
    m_mediaTime = Times{*start, stop ? std::optional(*stop) : std::nullopt};
  return S_OK;
}

std::int32_t CMediaSample::GetSilent() { return m_silent ? 1 : 0; }

HRESULT CMediaSample::SetSilent(std::int32_t silent) {
  m_silent = silent != 0;
  return S_OK;
}
