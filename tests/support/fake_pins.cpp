#include "tests/support/fake_pins.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>

#include "frame/allocator.h"
#include "frame/base_filter.h"
#include "frame/input_pin.h"
#include "frame/output_pin.h"

namespace {

constexpr CLSID kSourceClsid =
    MakeGuid(0x9E2C1A40, 0x5B1D, 0x4F7A, 0x8C, 0x11, 0x2D, 0x3E, 0x4F, 0x50, 0x61, 0x01);
constexpr CLSID kSinkClsid =
    MakeGuid(0x9E2C1A40, 0x5B1D, 0x4F7A, 0x8C, 0x11, 0x2D, 0x3E, 0x4F, 0x50, 0x61, 0x02);

// Breaks both ends of the connection of `pin`, if any.
void DisconnectBothEnds(IPin* pin) {
  ComPtr<IPin> peer;
  if (SUCCEEDED(pin->ConnectedTo(peer.Receive()))) peer->Disconnect();
  pin->Disconnect();
}

}  // namespace

WaveFormat MakeWaveFormat(std::uint16_t tag, std::uint16_t channels, std::uint32_t samplesPerSec,
                          std::uint16_t bitsPerSample) {
  const auto blockAlign = static_cast<std::uint16_t>(channels * bitsPerSample / 8);
  return WaveFormat{tag,           channels, samplesPerSec, samplesPerSec * blockAlign, blockAlign,
                    bitsPerSample, 0};
}

// ---- source ----

class FakeSource::SourcePin final : public CBaseOutputPin {
 public:
  SourcePin(CBaseFilter* filter, CCritSec* lock, const CMediaType& type, Options options)
      : CBaseOutputPin(L"Fake source pin", filter, lock, nullptr, L"Out"),
        m_type(type),
        m_options(options),
        m_seeking(*GetOwner()) {}

  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override {
    if (object && m_options.offersSeeking && iid == IID_IMediaSeeking)
      return GetInterface(&m_seeking, object);
    return CBaseOutputPin::NonDelegatingQueryInterface(iid, object);
  }
  FakeSeeking& Seeking() { return m_seeking; }

  HRESULT CheckMediaType(const CMediaType& type) override {
    return type == m_type ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
  }
  HRESULT GetMediaType(std::int32_t position, CMediaType* type) override {
    if (position != 0) return VFW_S_NO_MORE_ITEMS;
    *type = m_type;
    return S_OK;
  }
  HRESULT InitAllocator(IMemAllocator** allocator) override {
    *allocator = CMemAllocator::Create(m_options.samplesOfferSilence).Detach();
    return S_OK;
  }
  // A host lends from its own pool whatever the downstream pin offers.
  HRESULT DecideAllocator(IMemInputPin* pin, IMemAllocator** allocator) override {
    ComPtr<IMemAllocator> own;
    InitAllocator(own.Receive());
    ALLOCATOR_PROPERTIES request{};
    HRESULT hr = DecideBufferSize(own.Get(), &request);
    if (SUCCEEDED(hr)) hr = pin->NotifyAllocator(own.Get(), 0);
    if (SUCCEEDED(hr)) *allocator = own.Detach();
    return hr;
  }
  HRESULT DecideBufferSize(IMemAllocator* allocator, ALLOCATOR_PROPERTIES*) override {
    const ALLOCATOR_PROPERTIES wanted{m_options.buffers, m_options.bufferBytes, 1, 0};
    ALLOCATOR_PROPERTIES actual{};
    return allocator->SetProperties(&wanted, &actual);
  }

 private:
  const CMediaType m_type;
  const Options m_options;
  FakeSeeking m_seeking;
};

class FakeSource::SourceFilter final : public CBaseFilter {
 public:
  SourceFilter(const CMediaType& type, Options options)
      : CBaseFilter(L"Fake source", nullptr, &m_lock, kSourceClsid),
        m_pin(std::make_unique<SourcePin>(this, &m_lock, type, options)) {}

  std::int32_t GetPinCount() override { return 1; }
  CBasePin* GetPin(std::int32_t n) override { return n == 0 ? m_pin.get() : nullptr; }
  SourcePin& Pin() { return *m_pin; }

 private:
  CCritSec m_lock;
  std::unique_ptr<SourcePin> m_pin;
};

FakeSource::FakeSource(const WaveFormat& format) : FakeSource(format, Options{}) {}

FakeSource::FakeSource(const WaveFormat& format, Options options)
    : m_type(AudioMediaType(format)), m_impl(new SourceFilter(m_type, options)) {
  m_filter = ComPtr<IBaseFilter>(m_impl);
}

FakeSource::~FakeSource() {
  Stop();
  Disconnect();
}

HRESULT FakeSource::ConnectTo(IPin* input) { return m_impl->Pin().Connect(input, &m_type); }
void FakeSource::Disconnect() { DisconnectBothEnds(&m_impl->Pin()); }
HRESULT FakeSource::Pause() { return m_impl->Pause(); }
HRESULT FakeSource::Stop() { return m_impl->Stop(); }

HRESULT FakeSource::Push(std::span<const std::uint8_t> bytes, const SampleMarks& marks) {
  ComPtr<IMediaSample> sample;
  const HRESULT hr = Prepare(bytes, marks, sample);
  return FAILED(hr) ? hr : m_impl->Pin().Deliver(sample.Get());
}

HRESULT FakeSource::Prepare(std::span<const std::uint8_t> bytes, const SampleMarks& marks,
                            ComPtr<IMediaSample>& sample) {
  HRESULT hr = m_impl->Pin().GetDeliveryBuffer(sample.Receive(), nullptr, nullptr, 0);
  if (FAILED(hr)) return hr;
  if (bytes.size() > static_cast<std::size_t>(sample->GetSize())) return VFW_E_BUFFER_OVERFLOW;
  std::uint8_t* data = nullptr;
  sample->GetPointer(&data);
  if (!bytes.empty()) std::memcpy(data, bytes.data(), bytes.size());
  sample->SetActualDataLength(static_cast<std::int32_t>(bytes.size()));
  if (marks.start) sample->SetTime(&*marks.start, marks.stop ? &*marks.stop : nullptr);
  sample->SetSyncPoint(marks.syncPoint);
  sample->SetDiscontinuity(marks.discontinuity);
  sample->SetPreroll(marks.preroll);
  if (marks.type) sample->SetMediaType(&*marks.type);
  ComPtr<ISampleSilence> silence;
  if (marks.silent && SUCCEEDED(silence.QueryFrom(sample.Get(), IID_ISampleSilence)))
    silence->SetSilent(1);
  return S_OK;
}

HRESULT FakeSource::PushFloats(std::span<const float> values, const SampleMarks& marks) {
  const auto bytes = std::as_bytes(values);
  return Push({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, marks);
}

HRESULT FakeSource::EndOfStream() { return m_impl->Pin().DeliverEndOfStream(); }
HRESULT FakeSource::BeginFlush() { return m_impl->Pin().DeliverBeginFlush(); }
HRESULT FakeSource::EndFlush() { return m_impl->Pin().DeliverEndFlush(); }
HRESULT FakeSource::NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) {
  return m_impl->Pin().DeliverNewSegment(start, stop, rate);
}

IPin* FakeSource::Output() const noexcept { return &m_impl->Pin(); }
IMemAllocator* FakeSource::Allocator() const noexcept { return m_impl->Pin().Allocator(); }
FakeSeeking& FakeSource::Seeking() const noexcept { return m_impl->Pin().Seeking(); }

// ---- sink ----

class FakeSink::SinkPin final : public CBaseInputPin {
 public:
  SinkPin(CBaseFilter* filter, CCritSec* lock, Options options)
      : CBaseInputPin(L"Fake sink pin", filter, lock, nullptr, L"In"),
        m_options(std::move(options)) {}

  HRESULT CheckMediaType(const CMediaType& type) override {
    const bool takes =
        m_options.accepts ? m_options.accepts(type) : type.majortype == MEDIATYPE_Audio;
    return takes ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
  }
  HRESULT GetMediaType(std::int32_t position, CMediaType* type) override {
    if (position < 0 || static_cast<std::size_t>(position) >= m_options.preferred.size())
      return VFW_S_NO_MORE_ITEMS;
    *type = m_options.preferred[static_cast<std::size_t>(position)];
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator** allocator) override {
    if (!allocator) return E_POINTER;
    CAutoLock lock(*m_lock);
    if (!m_allocator) m_allocator = CMemAllocator::Create(m_options.samplesOfferSilence);
    *allocator = ComPtr<IMemAllocator>(m_allocator).Detach();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) override {
    if (!m_options.requirements) return E_NOTIMPL;
    *properties = *m_options.requirements;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) override {
    const HRESULT hr = CBaseInputPin::Receive(sample);
    if (hr != S_OK) return hr;
    if (!m_options.recordSamples) {
      m_log.counted.fetch_add(1, std::memory_order_relaxed);
      return S_OK;
    }
    Record(sample);
    std::lock_guard lock(m_log.mutex);
    return m_log.receiveResult;
  }
  HRESULT STDMETHODCALLTYPE EndOfStream() override { return Count(m_log.endOfStreams); }
  HRESULT STDMETHODCALLTYPE BeginFlush() override {
    CBaseInputPin::BeginFlush();
    return Count(m_log.beginFlushes);
  }
  HRESULT STDMETHODCALLTYPE EndFlush() override {
    CBaseInputPin::EndFlush();
    return Count(m_log.endFlushes);
  }
  HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop,
                                       double rate) override {
    CBaseInputPin::NewSegment(start, stop, rate);
    std::lock_guard lock(m_log.mutex);
    m_log.segments.push_back({start, stop, rate});
    return S_OK;
  }

  // What reached the pin, shared with the FakeSink that reads it.
  struct Log {
    mutable std::mutex mutex;
    HRESULT receiveResult = S_OK;
    std::vector<ReceivedSample> samples;
    std::atomic<std::int64_t> counted{0};  // samples taken without recording
    std::vector<ReceivedSegment> segments;
    std::int32_t endOfStreams = 0;
    std::int32_t beginFlushes = 0;
    std::int32_t endFlushes = 0;
  };
  Log& Seen() { return m_log; }

 private:
  void Record(IMediaSample* sample) {
    ReceivedSample seen{};
    std::uint8_t* data = nullptr;
    sample->GetPointer(&data);
    seen.actualLength = sample->GetActualDataLength();
    seen.size = sample->GetSize();
    seen.bytes.assign(data, data + seen.actualLength);
    seen.timeResult = sample->GetTime(&seen.start, &seen.stop);
    seen.syncPoint = sample->IsSyncPoint() == S_OK;
    seen.discontinuity = sample->IsDiscontinuity() == S_OK;
    seen.preroll = sample->IsPreroll() == S_OK;
    ComPtr<ISampleSilence> silence;
    if (SUCCEEDED(silence.QueryFrom(sample, IID_ISampleSilence)))
      seen.silent = silence->GetSilent() != 0;
    std::lock_guard lock(m_log.mutex);
    m_log.samples.push_back(std::move(seen));
  }
  HRESULT Count(std::int32_t& counter) {
    std::lock_guard lock(m_log.mutex);
    ++counter;
    return S_OK;
  }

  const Options m_options;
  Log m_log;
};

class FakeSink::SinkFilter final : public CBaseFilter {
 public:
  explicit SinkFilter(Options options)
      : CBaseFilter(L"Fake sink", nullptr, &m_lock, kSinkClsid),
        m_pin(std::make_unique<SinkPin>(this, &m_lock, std::move(options))) {}

  std::int32_t GetPinCount() override { return 1; }
  CBasePin* GetPin(std::int32_t n) override { return n == 0 ? m_pin.get() : nullptr; }
  SinkPin& Pin() { return *m_pin; }

 private:
  CCritSec m_lock;
  std::unique_ptr<SinkPin> m_pin;
};

FakeSink::FakeSink() : FakeSink(Options{}) {}

FakeSink::FakeSink(Options options) : m_impl(new SinkFilter(std::move(options))) {
  m_filter = ComPtr<IBaseFilter>(m_impl);
}

FakeSink::~FakeSink() {
  Stop();
  Disconnect();
}

IPin* FakeSink::Input() const noexcept { return &m_impl->Pin(); }
HRESULT FakeSink::Pause() { return m_impl->Pause(); }
HRESULT FakeSink::Stop() { return m_impl->Stop(); }
void FakeSink::Disconnect() { DisconnectBothEnds(&m_impl->Pin()); }

void FakeSink::SetReceiveResult(HRESULT result) {
  auto& log = m_impl->Pin().Seen();
  std::lock_guard lock(log.mutex);
  log.receiveResult = result;
}

std::vector<ReceivedSample> FakeSink::Samples() const {
  auto& log = m_impl->Pin().Seen();
  std::lock_guard lock(log.mutex);
  return log.samples;
}

std::int64_t FakeSink::SampleCount() const {
  auto& log = m_impl->Pin().Seen();
  std::lock_guard lock(log.mutex);
  return log.counted.load() + static_cast<std::int64_t>(log.samples.size());
}

std::vector<ReceivedSegment> FakeSink::Segments() const {
  auto& log = m_impl->Pin().Seen();
  std::lock_guard lock(log.mutex);
  return log.segments;
}

std::int32_t FakeSink::EndOfStreams() const {
  auto& log = m_impl->Pin().Seen();
  std::lock_guard lock(log.mutex);
  return log.endOfStreams;
}

std::int32_t FakeSink::BeginFlushes() const {
  auto& log = m_impl->Pin().Seen();
  std::lock_guard lock(log.mutex);
  return log.beginFlushes;
}

std::int32_t FakeSink::EndFlushes() const {
  auto& log = m_impl->Pin().Seen();
  std::lock_guard lock(log.mutex);
  return log.endFlushes;
}
