// A media sample: a window on one buffer of an allocator, with the marks and times that travel
// with the data. The allocator owns the sample and its memory; users only count references.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

#include "interfaces/graph_interfaces.h"

class CMediaSample : public IMediaSample, public ISampleSilence {
 public:
  // Lends `size` bytes at `buffer`. On its last Release the sample clears its marks, times,
  // type and silence, restores the actual length to `size` and goes back to `allocator` through
  // ReleaseBuffer. With `offersSilence` false the sample answers no ISampleSilence, as the
  // samples of some hosts do not.
  CMediaSample(IMemAllocator* allocator, std::uint8_t* buffer, std::int32_t size,
               bool offersSilence) noexcept;
  virtual ~CMediaSample() = default;
  CMediaSample(const CMediaSample&) = delete;
  CMediaSample& operator=(const CMediaSample&) = delete;

  // [any thread] IUnknown, IMediaSample and (when offered) ISampleSilence.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE GetPointer(std::uint8_t** buffer) override;
  std::int32_t STDMETHODCALLTYPE GetSize() override;
  HRESULT STDMETHODCALLTYPE GetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) override;
  HRESULT STDMETHODCALLTYPE SetTime(const REFERENCE_TIME* start,
                                    const REFERENCE_TIME* stop) override;
  HRESULT STDMETHODCALLTYPE IsSyncPoint() override;
  HRESULT STDMETHODCALLTYPE SetSyncPoint(std::int32_t isSyncPoint) override;
  HRESULT STDMETHODCALLTYPE IsPreroll() override;
  HRESULT STDMETHODCALLTYPE SetPreroll(std::int32_t isPreroll) override;
  std::int32_t STDMETHODCALLTYPE GetActualDataLength() override;
  HRESULT STDMETHODCALLTYPE SetActualDataLength(std::int32_t length) override;
  HRESULT STDMETHODCALLTYPE GetMediaType(CMediaType* type) override;
  HRESULT STDMETHODCALLTYPE SetMediaType(const CMediaType* type) override;
  HRESULT STDMETHODCALLTYPE IsDiscontinuity() override;
  HRESULT STDMETHODCALLTYPE SetDiscontinuity(std::int32_t isDiscontinuity) override;
  HRESULT STDMETHODCALLTYPE GetMediaTime(std::int64_t* start, std::int64_t* stop) override;
  HRESULT STDMETHODCALLTYPE SetMediaTime(const std::int64_t* start,
                                         const std::int64_t* stop) override;

  std::int32_t STDMETHODCALLTYPE GetSilent() override;
  HRESULT STDMETHODCALLTYPE SetSilent(std::int32_t silent) override;

  // Whether QueryInterface answers ISampleSilence.
  bool OffersSilence() const noexcept { return m_offersSilence; }

 private:
  struct Times {
    std::int64_t start;
    std::optional<std::int64_t> stop;
  };
  void ResetProperties() noexcept;

  IMemAllocator* const m_allocator;  // outlives its samples
  std::uint8_t* const m_buffer;
  const std::int32_t m_size;
  const bool m_offersSilence;
  std::atomic<ULONG> m_refs{0};

  std::int32_t m_actual;
  std::optional<Times> m_time;
  std::optional<Times> m_mediaTime;
  std::optional<CMediaType> m_type;
  bool m_syncPoint = false;
  bool m_preroll = false;
  bool m_discontinuity = false;
  bool m_silent = false;
};
