// The instance's pins: one audio input, and output pins that the processing side adds and
// removes. Media types and streaming through them belong to the audio path.
#pragma once

#include <cstdint>

#include "frame/input_pin.h"
#include "frame/output_pin.h"

class CFilter;

class CFilterInputPin final : public CBaseInputPin {
 public:
  CFilterInputPin(CFilter* filter, CCritSec* lock, HRESULT* phr);

  HRESULT CheckMediaType(const CMediaType& type) override;
  // [graph thread, pin lock] Tells each connected output pin that the stream has ended; with
  // none connected, nothing happens.
  HRESULT STDMETHODCALLTYPE EndOfStream() override;

 private:
  CFilter* m_filter;
};

// An output pin lives by its own reference count, not the filter's: the filter's pin list holds
// one reference, and the pin is deleted when the last goes.
class CFilterOutputPin final : public CBaseOutputPin {
 public:
  CFilterOutputPin(CFilter* filter, CCritSec* lock, HRESULT* phr, const wchar_t* name,
                   std::uint32_t id);

  ULONG STDMETHODCALLTYPE NonDelegatingAddRef() override;
  ULONG STDMETHODCALLTYPE NonDelegatingRelease() override;
  HRESULT CheckMediaType(const CMediaType& type) override;
  HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override;

  std::uint32_t Id() const noexcept { return m_id; }

 private:
  const std::uint32_t m_id;
};
