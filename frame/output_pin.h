// The output pin base: decides an allocator with the downstream input pin and delivers samples,
// end of stream, flushes and new segments to it.
#pragma once

#include <cstdint>

#include "frame/base_pin.h"
#include "interfaces/graph_interfaces.h"
#include "platform/com_ptr.h"

class CBaseOutputPin : public CBasePin {
 public:
  CBaseOutputPin(const wchar_t* objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* phr,
                 const wchar_t* pinName);
  ~CBaseOutputPin() override;

  // Also needs the peer's IMemInputPin (its query's failure otherwise).
  HRESULT CheckConnect(IPin* pin) override;
  // Decides the allocator (DecideAllocator); its failure refuses the connection.
  HRESULT CompleteConnect(IPin* receivePin) override;
  // Decommits and drops the allocator and drops the peer's IMemInputPin.
  HRESULT BreakConnect() override;
  // Commit / decommit the allocator; VFW_E_NO_ALLOCATOR when there is none.
  HRESULT Active() override;
  HRESULT Inactive() override;

  // Data flows out of an output pin, never into it: E_UNEXPECTED.
  HRESULT STDMETHODCALLTYPE EndOfStream() override;
  HRESULT STDMETHODCALLTYPE BeginFlush() override;
  HRESULT STDMETHODCALLTYPE EndFlush() override;

  // [graph thread, filter lock] Sets the buffer count and size on `allocator`, starting from the
  // downstream pin's requirements in `request` (zero where it has none, alignment at least 1).
  virtual HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) = 0;
  // [graph thread, filter lock] Tries the downstream pin's allocator, then our own
  // (InitAllocator): DecideBufferSize, then NotifyAllocator on `pin`. The chosen one, with a
  // reference, in `allocator`; the last failure when neither works.
  virtual HRESULT DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator);
  // [graph thread, filter lock] Our own allocator with a reference: a CMemAllocator.
  virtual HRESULT InitAllocator(IMemAllocator** allocator);

  // [streaming thread] A sample of the decided allocator; VFW_E_NO_ALLOCATOR unconnected.
  virtual HRESULT GetDeliveryBuffer(IMediaSample** sample, REFERENCE_TIME* start,
                                    REFERENCE_TIME* stop, std::uint32_t flags);
  // [streaming thread] The peer's Receive; the caller keeps its own reference to the sample.
  virtual HRESULT Deliver(IMediaSample* sample);
  // [streaming thread or graph thread] The peer's EndOfStream, BeginFlush, EndFlush and
  // NewSegment. All answer VFW_E_NOT_CONNECTED when unconnected.
  virtual HRESULT DeliverEndOfStream();
  virtual HRESULT DeliverBeginFlush();
  virtual HRESULT DeliverEndFlush();
  virtual HRESULT DeliverNewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate);

  // [any thread] The decided allocator without a reference, or null.
  IMemAllocator* Allocator() const noexcept { return m_allocator.Get(); }

 protected:
  ComPtr<IMemAllocator> m_allocator;
  ComPtr<IMemInputPin> m_inputPin;  // the peer's transport face

 private:
  // DecideBufferSize on a copy of `request`, then NotifyAllocator.
  HRESULT TryAllocator(IMemInputPin* pin, IMemAllocator* allocator,
                       const ALLOCATOR_PROPERTIES& request);
};
