// A memory allocator: a fixed pool of samples over one block of memory, made at Commit and freed
// once decommitted and every sample is back. No allocation happens per GetBuffer. Each sample
// that is out holds a reference on the allocator, so the allocator outlives its samples.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "interfaces/graph_interfaces.h"
#include "frame/media_sample.h"
#include "frame/unknown.h"
#include "platform/com_ptr.h"

class CMemAllocator : public CUnknown, public IMemAllocator {
 public:
  DECLARE_IUNKNOWN

  // With `samplesOfferSilence` every sample also answers ISampleSilence.
  CMemAllocator(const wchar_t* name, IUnknown* outer, bool samplesOfferSilence = false);
  ~CMemAllocator() override;

  // [any thread] A new stand-alone allocator with one reference.
  static ComPtr<IMemAllocator> Create(bool samplesOfferSilence = false);

  // Answers IMemAllocator, then CUnknown's.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;

  // IMemAllocator; see interfaces.h. Each buffer with its prefix starts at an address that is a
  // multiple of cbAlign; SetProperties grows cbBuffer so that buffer and prefix fill whole
  // alignment units. Commit answers E_OUTOFMEMORY when the block cannot be had.
  HRESULT STDMETHODCALLTYPE SetProperties(const ALLOCATOR_PROPERTIES* request,
                                          ALLOCATOR_PROPERTIES* actual) override;
  HRESULT STDMETHODCALLTYPE GetProperties(ALLOCATOR_PROPERTIES* properties) override;
  HRESULT STDMETHODCALLTYPE Commit() override;
  HRESULT STDMETHODCALLTYPE Decommit() override;
  HRESULT STDMETHODCALLTYPE GetBuffer(IMediaSample** sample, REFERENCE_TIME* start,
                                      REFERENCE_TIME* stop, std::uint32_t flags) override;
  HRESULT STDMETHODCALLTYPE ReleaseBuffer(IMediaSample* sample) override;

  // [any thread] Samples made at Commit and not yet freed, and those of them not lent out.
  std::int32_t SampleCount() const;
  std::int32_t FreeCount() const;

 private:
  bool AllBackLocked() const noexcept { return m_free.size() == m_samples.size(); }
  HRESULT AllocateLocked();
  void FreeLocked() noexcept;

  const bool m_samplesOfferSilence;
  mutable std::mutex m_mutex;
  std::condition_variable m_returned;
  ALLOCATOR_PROPERTIES m_properties{};
  bool m_committed = false;
  std::unique_ptr<std::uint8_t[]> m_block;
  std::vector<std::unique_ptr<CMediaSample>> m_samples;
  std::vector<CMediaSample*> m_free;
};
