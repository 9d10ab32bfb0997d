#include "host/audio/graph_ends.h"

#include <cstring>

#include "frame/allocator.h"
#include "frame/base_filter.h"
#include "frame/input_pin.h"
#include "frame/output_pin.h"

namespace {

constexpr CLSID kSourceClsid =
    MakeGuid(0x5A1D0C3E, 0x7B21, 0x4C0E, 0x9D, 0x61, 0x3F, 0x2B, 0x70, 0x1E, 0x44, 0x01);
constexpr CLSID kSinkClsid =
    MakeGuid(0x5A1D0C3E, 0x7B21, 0x4C0E, 0x9D, 0x61, 0x3F, 0x2B, 0x70, 0x1E, 0x44, 0x02);
constexpr std::int32_t kBuffers = 4;

}  // namespace

void DisconnectBothEnds(IPin* pin) {
  if (!pin) return;
  ComPtr<IPin> peer;
  if (SUCCEEDED(pin->ConnectedTo(peer.Receive()))) peer->Disconnect();
  pin->Disconnect();
}

ComPtr<IPin> FirstPin(IBaseFilter* filter, PIN_DIRECTION direction) {
  ComPtr<IEnumPins> pins;
  if (!filter || FAILED(filter->EnumPins(pins.Receive()))) return {};
  for (;;) {
    ComPtr<IPin> pin;
    std::uint32_t fetched = 0;
    if (pins->Next(1, pin.Receive(), &fetched) != S_OK || fetched != 1) return {};
    PIN_DIRECTION actual{};
    if (SUCCEEDED(pin->QueryDirection(&actual)) && actual == direction) return pin;
  }
}

// ---- source ----

class CHostSource::SourcePin final : public CBaseOutputPin {
 public:
  SourcePin(CBaseFilter* filter, CCritSec* lock, const CMediaType& type, std::int32_t bufferBytes)
      : CBaseOutputPin(L"Host source pin", filter, lock, nullptr, L"Out"),
        m_type(type),
        m_bufferBytes(bufferBytes) {}

  HRESULT CheckMediaType(const CMediaType& type) override {
    return type == m_type ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
  }
  HRESULT GetMediaType(std::int32_t position, CMediaType* type) override {
    if (position != 0) return VFW_S_NO_MORE_ITEMS;
    *type = m_type;
    return S_OK;
  }
  // The host lends from its own pool, whatever the downstream pin offers.
  HRESULT DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator) override {
    ComPtr<IMemAllocator> own = CMemAllocator::Create();
    ALLOCATOR_PROPERTIES request{};
    HRESULT hr = DecideBufferSize(own.Get(), &request);
    if (SUCCEEDED(hr)) hr = pin->NotifyAllocator(own.Get(), 0);
    if (SUCCEEDED(hr)) *allocator = own.Detach();
    return hr;
  }
  HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES*) override {
    const ALLOCATOR_PROPERTIES wanted{kBuffers, m_bufferBytes, 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    return allocator->SetProperties(&wanted, &actual);
  }

 private:
  const CMediaType m_type;
  const std::int32_t m_bufferBytes;
};

class CHostSource::SourceFilter final : public CBaseFilter {
 public:
  SourceFilter(const CMediaType& type, std::int32_t bufferBytes)
      : CBaseFilter(L"Host source", nullptr, &m_lock, kSourceClsid),
        m_pin(std::make_unique<CHostSource::SourcePin>(this, &m_lock, type, bufferBytes)) {}
  std::int32_t GetPinCount() override { return 1; }
  CBasePin* GetPin(std::int32_t n) override { return n == 0 ? m_pin.get() : nullptr; }
  CHostSource::SourcePin& OutPin() { return *m_pin; }

 private:
  CCritSec m_lock;
  std::unique_ptr<CHostSource::SourcePin> m_pin;
};

CHostSource::CHostSource(const WaveFormat& format, std::int32_t bufferBytes)
    : m_type(AudioMediaType(format)),
      m_bufferBytes(bufferBytes),
      m_impl(new SourceFilter(m_type, bufferBytes)) {
  m_filter = ComPtr<IBaseFilter>(m_impl);
}

CHostSource::~CHostSource() {
  m_impl->Stop();
  DisconnectBothEnds(Output());
}

IPin* CHostSource::Output() const noexcept { return &m_impl->OutPin(); }

HRESULT CHostSource::ConnectTo(IPin* input) { return m_impl->OutPin().Connect(input, &m_type); }

HRESULT CHostSource::Deliver(std::span<const std::uint8_t> bytes, REFERENCE_TIME start,
                             REFERENCE_TIME stop) {
  ComPtr<IMediaSample> sample;
  HRESULT hr = m_impl->OutPin().GetDeliveryBuffer(sample.Receive(), nullptr, nullptr, 0);
  if (FAILED(hr)) return hr;
  if (bytes.size() > static_cast<std::size_t>(sample->GetSize())) return VFW_E_BUFFER_OVERFLOW;
  std::uint8_t* data = nullptr;
  sample->GetPointer(&data);
  if (!bytes.empty()) std::memcpy(data, bytes.data(), bytes.size());
  sample->SetActualDataLength(static_cast<std::int32_t>(bytes.size()));
  sample->SetTime(&start, &stop);
  sample->SetSyncPoint(1);
  return m_impl->OutPin().Deliver(sample.Get());
}

HRESULT CHostSource::EndOfStream() { return m_impl->OutPin().DeliverEndOfStream(); }

// ---- sink ----

class CHostSink::SinkPin final : public CBaseInputPin {
 public:
  SinkPin(CBaseFilter* filter, CCritSec* lock, Consumer consumer)
      : CBaseInputPin(L"Host sink pin", filter, lock, nullptr, L"In"),
        m_consumer(std::move(consumer)) {}

  HRESULT CheckMediaType(const CMediaType& type) override {
    return type.majortype == MEDIATYPE_Audio && type.WaveFormatPtr() ? S_OK
                                                                     : VFW_E_TYPE_NOT_ACCEPTED;
  }
  HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override {
    const HRESULT hr = CBaseInputPin::Receive(sample);
    if (hr != S_OK) return hr;
    std::uint8_t* data = nullptr;
    sample->GetPointer(&data);
    const std::int32_t length = sample->GetActualDataLength();
    REFERENCE_TIME start = 0, stop = 0;
    if (FAILED(sample->GetTime(&start, &stop))) start = stop = 0;
    if (data && length > 0) m_consumer({data, static_cast<std::size_t>(length)}, start, stop);
    return S_OK;
  }

 private:
  Consumer m_consumer;
};

class CHostSink::SinkFilter final : public CBaseFilter {
 public:
  explicit SinkFilter(Consumer consumer)
      : CBaseFilter(L"Host sink", nullptr, &m_lock, kSinkClsid),
        m_pin(std::make_unique<CHostSink::SinkPin>(this, &m_lock, std::move(consumer))) {}
  std::int32_t GetPinCount() override { return 1; }
  CBasePin* GetPin(std::int32_t n) override { return n == 0 ? m_pin.get() : nullptr; }
  CHostSink::SinkPin& InPin() { return *m_pin; }

 private:
  CCritSec m_lock;
  std::unique_ptr<CHostSink::SinkPin> m_pin;
};

CHostSink::CHostSink(Consumer consumer) : m_impl(new SinkFilter(std::move(consumer))) {
  m_filter = ComPtr<IBaseFilter>(m_impl);
}

CHostSink::~CHostSink() {
  m_impl->Stop();
  DisconnectBothEnds(Input());
}

IPin* CHostSink::Input() const noexcept { return &m_impl->InPin(); }

WaveFormat CHostSink::Format() const {
  CMediaType type;
  if (FAILED(m_impl->InPin().ConnectionMediaType(&type)) || !type.WaveFormatPtr()) return {};
  return *type.WaveFormatPtr();
}
