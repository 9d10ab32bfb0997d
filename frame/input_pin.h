// The input pin base: receives samples from an upstream output pin over IMemInputPin.
#pragma once

#include <atomic>
#include <cstdint>

#include "frame/base_pin.h"
#include "interfaces/graph_interfaces.h"
#include "platform/com_ptr.h"

class CBaseInputPin : public CBasePin, public IMemInputPin {
 public:
  DECLARE_IUNKNOWN

  CBaseInputPin(const wchar_t* objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* phr,
                const wchar_t* pinName);
  ~CBaseInputPin() override;

  // Answers IMemInputPin, then CBasePin's.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;

  // IMemInputPin; see interfaces.h. GetAllocator makes a CMemAllocator without ISampleSilence
  // when the pin has none; NotifyAllocator keeps the one given (E_POINTER for null).
  // GetAllocatorRequirements answers E_NOTIMPL. Receive checks CheckStreaming and, for a sample
  // that changes the type, CheckMediaType (VFW_E_INVALIDMEDIATYPE); a derived pin overrides it,
  // calls this first and goes on only on S_OK. ReceiveCanBlock answers S_OK: a pin that passes
  // samples on waits for buffers downstream.
  HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator** allocator) override;
  HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator* allocator,
                                            std::int32_t readOnly) override;
  HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) override;
  HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override;
  HRESULT STDMETHODCALLTYPE ReceiveMultiple(IMediaSample** samples, std::int32_t count,
                                            std::int32_t* processed) override;
  HRESULT STDMETHODCALLTYPE ReceiveCanBlock() override;

  // [graph thread, filter lock] Set and clear the flushing flag; S_OK. A derived pin passes the
  // flush on downstream after calling these.
  HRESULT STDMETHODCALLTYPE BeginFlush() override;
  HRESULT STDMETHODCALLTYPE EndFlush() override;

  // Decommits the allocator and clears flushing.
  HRESULT Inactive() override;
  // Drops the allocator.
  HRESULT BreakConnect() override;

  // [streaming thread] May a sample be taken now? S_OK; VFW_E_NOT_CONNECTED; VFW_E_WRONG_STATE
  // when the filter is stopped; S_FALSE while flushing.
  HRESULT CheckStreaming();

  // [any thread]
  bool IsFlushing() const noexcept { return m_bFlushing.load(); }
  // Whether the upstream pin said the samples' data must not be written.
  bool IsReadOnly() const noexcept { return m_bReadOnly; }

 protected:
  ComPtr<IMemAllocator> m_allocator;  // guarded by the filter lock
  std::atomic<bool> m_bFlushing{false};
  bool m_bReadOnly = false;

 private:
  // [streaming thread] Where Receive asks a sample for a new type. Kept from call to call: most
  // samples carry none, and then nothing is built or torn down for the question.
  CMediaType m_sampleType;
};
