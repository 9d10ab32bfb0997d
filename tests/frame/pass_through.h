// A small filter built on the frame the way the plug-in is: one input pin that takes 32-bit
// float audio, one output pin with a reference count of its own that copies each sample with
// its marks downstream, and flushes, segments and end of stream passed on.
#pragma once

#include <cstring>
#include <utility>

#include "frame/base_filter.h"
#include "frame/input_pin.h"
#include "frame/output_pin.h"

inline constexpr CLSID kPassThroughClsid =
    MakeGuid(0x3F1B7C20, 0x8A44, 0x4B0E, 0x9D, 0x62, 0x51, 0x0C, 0x7A, 0x33, 0xE4, 0x10);

class PassThroughFilter;

class PassOutput final : public CBaseOutputPin {
 public:
  PassOutput(CBaseFilter* filter, CCritSec* lock, CBasePin& input)
      : CBaseOutputPin(L"Pass output", filter, lock, nullptr, L"Out"), m_input(input) {}

  // This pin lives by its own count, as the plug-in's output pins do.
  ULONG STDMETHODCALLTYPE NonDelegatingAddRef() override { return CUnknown::NonDelegatingAddRef(); }
  ULONG STDMETHODCALLTYPE NonDelegatingRelease() override {
    return CUnknown::NonDelegatingRelease();
  }

  HRESULT CheckMediaType(const CMediaType& type) override {
    return m_input.IsConnected() && type == m_input.CurrentMediaType() ? S_OK
                                                                       : VFW_E_TYPE_NOT_ACCEPTED;
  }
  HRESULT GetMediaType(std::int32_t position, CMediaType* type) override {
    if (position != 0 || !m_input.IsConnected()) return VFW_S_NO_MORE_ITEMS;
    *type = m_input.CurrentMediaType();
    return S_OK;
  }
  // Keeps the downstream pin's alignment and prefix; two buffers of 1024 bytes.
  HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES* request) override {
    request->cBuffers = 2;
    request->cbBuffer = 1024;
    ALLOCATOR_PROPERTIES actual{};
    return allocator->SetProperties(request, &actual);
  }

  std::int32_t activations = 0;
  HRESULT Active() override {
    ++activations;
    return CBaseOutputPin::Active();
  }

 private:
  CBasePin& m_input;
};

class PassInput final : public CBaseInputPin {
 public:
  PassInput(CBaseFilter* filter, CCritSec* lock, PassOutput*& output)
      : CBaseInputPin(L"Pass input", filter, lock, nullptr, L"In"), m_output(output) {}

  HRESULT CheckMediaType(const CMediaType& type) override {
    const WaveFormat* format = type.WaveFormatPtr();
    return type.majortype == MEDIATYPE_Audio && format &&
                   format->wFormatTag == WAVE_FORMAT_IEEE_FLOAT_TAG
               ? S_OK
               : VFW_E_TYPE_NOT_ACCEPTED;
  }

  HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override {
    HRESULT hr = CBaseInputPin::Receive(sample);
    if (hr != S_OK || !m_output || !m_output->IsConnected()) return hr;
    ComPtr<IMediaSample> copy;
    hr = m_output->GetDeliveryBuffer(copy.Receive(), nullptr, nullptr, 0);
    if (FAILED(hr)) return hr;
    const std::int32_t length = sample->GetActualDataLength();
    hr = copy->SetActualDataLength(length);
    if (FAILED(hr)) return hr;
    std::uint8_t* from = nullptr;
    std::uint8_t* to = nullptr;
    sample->GetPointer(&from);
    copy->GetPointer(&to);
    std::memcpy(to, from, static_cast<std::size_t>(length));
    CopyMarks(*sample, *copy.Get());
    return m_output->Deliver(copy.Get());
  }
  HRESULT STDMETHODCALLTYPE EndOfStream() override {
    return Pass(&CBaseOutputPin::DeliverEndOfStream);
  }
  HRESULT STDMETHODCALLTYPE BeginFlush() override {
    CBaseInputPin::BeginFlush();
    return Pass(&CBaseOutputPin::DeliverBeginFlush);
  }
  HRESULT STDMETHODCALLTYPE EndFlush() override {
    CBaseInputPin::EndFlush();
    return Pass(&CBaseOutputPin::DeliverEndFlush);
  }
  HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop,
                                       double rate) override {
    CBaseInputPin::NewSegment(start, stop, rate);
    return m_output ? m_output->DeliverNewSegment(start, stop, rate) : S_OK;
  }

 private:
  static void CopyMarks(IMediaSample& from, IMediaSample& to) {
    REFERENCE_TIME start = 0, stop = 0;
    const HRESULT time = from.GetTime(&start, &stop);
    if (time == S_OK) to.SetTime(&start, &stop);
    if (time == VFW_S_NO_STOP_TIME) to.SetTime(&start, nullptr);
    to.SetSyncPoint(from.IsSyncPoint() == S_OK);
    to.SetDiscontinuity(from.IsDiscontinuity() == S_OK);
    to.SetPreroll(from.IsPreroll() == S_OK);
  }
  HRESULT Pass(HRESULT (CBaseOutputPin::*step)()) {
    return m_output && m_output->IsConnected() ? (m_output->*step)() : S_OK;
  }

  PassOutput*& m_output;
};

class PassThroughFilter final : public CBaseFilter {
 public:
  PassThroughFilter()
      : CBaseFilter(L"Pass-through", nullptr, &m_lock, kPassThroughClsid),
        m_input(this, &m_lock, m_output) {
    m_output = new PassOutput(this, &m_lock, m_input);
    m_output->AddRef();
  }
  ~PassThroughFilter() override { DropOutput(); }

  std::int32_t GetPinCount() override { return m_output ? 2 : 1; }
  CBasePin* GetPin(std::int32_t n) override {
    if (n == 0) return &m_input;
    return n == 1 ? m_output : nullptr;
  }

  // Lets go of the output pin, as a filter removing a pin does; holders keep it alive.
  void DropOutput() {
    if (!m_output) return;
    IncrementPinVersion();
    std::exchange(m_output, nullptr)->Release();
  }

  PassInput& Input() { return m_input; }
  PassOutput& Output() { return *m_output; }

 private:
  CCritSec m_lock;
  PassOutput* m_output = nullptr;  // declared before m_input, which refers to it
  PassInput m_input;
};
