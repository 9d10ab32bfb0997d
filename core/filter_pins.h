// The instance's pins: one audio input, and output pins that the processing side adds and
// removes. Audio enters through the input pin and leaves, untouched, through every connected
// output pin; only 32-bit floating point audio of one or two channels connects.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "frame/input_pin.h"
#include "frame/output_pin.h"
#include "frame/position_pass_through.h"

class CFilter;

class CFilterInputPin final : public CBaseInputPin {
 public:
  CFilterInputPin(CFilter* filter, CCritSec* lock, HRESULT* phr);
  ~CFilterInputPin() override;

  // [graph thread, filter lock] The audio type check (see CFilter::CheckAudioType) with the
  // processing class's input test.
  HRESULT CheckMediaType(const CMediaType& type) override;
  // [graph thread, filter lock] Keeps the type and its format as the processing input format.
  HRESULT SetMediaType(const CMediaType& type) override;
  // [graph thread, filter lock] Asks the graph to reconnect each connected output whose type no
  // longer fits the new input.
  HRESULT CompleteConnect(IPin* receivePin) override;

  // [streaming thread] One buffer through the instance (CFilter::ReceiveAudio).
  HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override;
  // [streaming thread, filter lock] Tells each connected output pin that the stream has ended,
  // twice (CFilter::EndAudioStream); with none connected, nothing happens.
  HRESULT STDMETHODCALLTYPE EndOfStream() override;
  // [graph thread, filter lock] Flushes and segments go on to each connected output in list
  // order; the first failure stops the passing and is the answer.
  HRESULT STDMETHODCALLTYPE BeginFlush() override;
  HRESULT STDMETHODCALLTYPE EndFlush() override;
  HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop,
                                       double rate) override;

  // [graph thread, filter lock] The properties of the allocator that the upstream pin chose;
  // VFW_E_NO_ALLOCATOR before one was chosen.
  HRESULT AllocatorProperties(ALLOCATOR_PROPERTIES* properties);
  // [any thread] The object that answers position requests for the output pins by passing them
  // upstream; made at the first request, and it lives as long as the filter.
  CPositionPassThrough& PositionPassThrough();

 private:
  CFilter* m_instance;
  std::unique_ptr<CPositionPassThrough> m_position;
};

// An output pin lives by its own reference count, so the filter can drop it from its list while
// a neighbour still holds it. The list's reference is the only one that does not also hold the
// filter: a pin held by its peer, or found through FindPin or EnumPins, keeps its filter alive.
// The pin is deleted under the filter's lock when its last reference goes. It connects only while
// the input is connected, and then only to the input's format or one that the processing class
// can make of it.
class CFilterOutputPin final : public CBaseOutputPin {
 public:
  CFilterOutputPin(CFilter* filter, CCritSec* lock, HRESULT* phr, const wchar_t* name,
                   std::uint32_t id);

  // [any thread] IMediaPosition and IMediaSeeking through the input pin's pass-through, then
  // the pin's own interfaces.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;
  // [any thread] Every reference but the list's also holds the filter.
  ULONG STDMETHODCALLTYPE NonDelegatingAddRef() override;
  ULONG STDMETHODCALLTYPE NonDelegatingRelease() override;
  // [instance lock] The reference of the filter's pin list, which does not hold the filter.
  void AddListReference() noexcept { ++m_refs; }
  void ReleaseListReference();

  // [graph thread, filter lock] VFW_E_NOT_CONNECTED while the input is not connected.
  HRESULT CheckConnect(IPin* pin) override;
  // [graph thread, filter lock] The audio type check with the processing class's output test,
  // then, with an input connected, the same sample rate on both sides and its transform test.
  HRESULT CheckMediaType(const CMediaType& type) override;
  // [graph thread, filter lock] Keeps the type and its format as the processing output format.
  HRESULT SetMediaType(const CMediaType& type) override;
  // [any thread] One type at position 0: the input's format as the processing class suggests
  // it. E_UNEXPECTED with no input connected; VFW_S_NO_MORE_ITEMS past 0.
  HRESULT GetMediaType(std::int32_t position, CMediaType* type) override;
  // [any thread] The types of the pin connected to the input; VFW_E_NOT_CONNECTED without one.
  HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes** types) override;
  // [graph thread, filter lock] As many buffers as the input's allocator has, of its size, twice
  // that for a mono input going out in stereo; keeps the downstream alignment and prefix.
  HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override;

  std::uint32_t Id() const noexcept { return m_id; }

 private:
  CFilter* m_instance;
  const std::uint32_t m_id;
  std::atomic<ULONG> m_refs{0};
};
