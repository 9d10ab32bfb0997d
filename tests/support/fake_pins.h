// The neighbours of a filter under test: an upstream source whose output pin connects to the
// filter's input and pushes samples into it, and a downstream sink whose input pin records all
// that reaches it. Both are real filters on the frame, owned here; put them in a FakeGraph when
// the test needs one. Stop the filters before the fakes go, so that disconnecting is allowed.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "interfaces/graph_interfaces.h"
#include "interfaces/media_type.h"
#include "interfaces/seeking_interfaces.h"
#include "platform/com_ptr.h"

// A wave format record with consistent block align and byte rate.
WaveFormat MakeWaveFormat(std::uint16_t tag, std::uint16_t channels, std::uint32_t samplesPerSec,
                          std::uint16_t bitsPerSample);

// What a pushed sample carries besides its bytes.
struct SampleMarks {
  std::optional<REFERENCE_TIME> start{};
  std::optional<REFERENCE_TIME> stop{};  // used only with a start
  bool syncPoint = false;
  bool discontinuity = false;
  bool preroll = false;
  bool silent = false;               // set through ISampleSilence when the samples offer it
  std::optional<CMediaType> type{};  // a type change carried by the sample
};

// The seeking face of a seekable source: a fixed duration, and a record of the rates set. All
// else answers E_NOTIMPL.
class FakeSeeking final : public IMediaSeeking {
 public:
  explicit FakeSeeking(IUnknown& owner) : m_owner(owner) {}
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    return m_owner.QueryInterface(iid, object);
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return m_owner.AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return m_owner.Release(); }
  HRESULT STDMETHODCALLTYPE GetCapabilities(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CheckCapabilities(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE IsFormatSupported(const GUID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryPreferredFormat(GUID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTimeFormat(GUID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE IsUsingTimeFormat(const GUID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetTimeFormat(const GUID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetDuration(std::int64_t* duration) override {
    *duration = kDuration;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetStopPosition(std::int64_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetCurrentPosition(std::int64_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE ConvertTimeFormat(std::int64_t*, const GUID*, std::int64_t,
                                              const GUID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetPositions(std::int64_t*, std::uint32_t, std::int64_t*,
                                         std::uint32_t) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetPositions(std::int64_t*, std::int64_t*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetAvailable(std::int64_t*, std::int64_t*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetRate(double rate) override {
    rates.push_back(rate);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetRate(double*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPreroll(std::int64_t*) override { return E_NOTIMPL; }

  static constexpr std::int64_t kDuration = 123'456'789;
  std::vector<double> rates;

 private:
  IUnknown& m_owner;
};

class FakeSource {
 public:
  struct Options {
    bool samplesOfferSilence = false;
    std::int32_t buffers = 4;
    std::int32_t bufferBytes = 4096;
    // The output pin answers IMediaSeeking (see FakeSeeking) as a seekable source does.
    bool offersSeeking = false;
  };

  // The output pin offers and accepts exactly AudioMediaType(format), and always lends samples
  // from an allocator of its own, as a host does.
  explicit FakeSource(const WaveFormat& format);
  FakeSource(const WaveFormat& format, Options options);
  // Stops and disconnects both ends of the connection.
  ~FakeSource();
  FakeSource(const FakeSource&) = delete;
  FakeSource& operator=(const FakeSource&) = delete;

  // [graph thread] Connects the output pin to `input`.
  HRESULT ConnectTo(IPin* input);
  // [graph thread] Disconnects the peer, then the output pin.
  void Disconnect();
  // [graph thread] The source filter's state; Pause commits its allocator.
  HRESULT Pause();
  HRESULT Stop();

  // [streaming thread] Pushes one sample holding `bytes` with `marks`: the downstream Receive's
  // answer, or why no buffer could be had (VFW_E_BUFFER_OVERFLOW for too many bytes).
  HRESULT Push(std::span<const std::uint8_t> bytes, const SampleMarks& marks = {});
  // [streaming thread] A sample filled as Push fills it, kept instead of delivered, so that one
  // sample can be handed to a pin again and again.
  HRESULT Prepare(std::span<const std::uint8_t> bytes, const SampleMarks& marks,
                  ComPtr<IMediaSample>& sample);
  HRESULT PushFloats(std::span<const float> values, const SampleMarks& marks = {});
  // [streaming thread] The downstream pin's answers.
  HRESULT EndOfStream();
  HRESULT BeginFlush();
  HRESULT EndFlush();
  HRESULT NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate);

  IPin* Output() const noexcept;
  // The allocator it lends from once connected, else null.
  IMemAllocator* Allocator() const noexcept;
  const CMediaType& Type() const noexcept { return m_type; }
  // What the output pin's IMediaSeeking was asked, when it offers one.
  FakeSeeking& Seeking() const noexcept;

 private:
  class SourceFilter;
  class SourcePin;

  CMediaType m_type;
  ComPtr<IBaseFilter> m_filter;
  SourceFilter* m_impl;  // owned through m_filter
};

// One sample as the sink saw it.
struct ReceivedSample {
  std::vector<std::uint8_t> bytes;  // the first actual-length bytes
  std::int32_t actualLength;
  std::int32_t size;
  HRESULT timeResult;  // GetTime's answer; start and stop are valid when it succeeded
  REFERENCE_TIME start;
  REFERENCE_TIME stop;
  bool syncPoint;
  bool discontinuity;
  bool preroll;
  std::optional<bool> silent;  // empty when the sample offers no ISampleSilence
};

struct ReceivedSegment {
  REFERENCE_TIME start;
  REFERENCE_TIME stop;
  double rate;
};

class FakeSink {
 public:
  struct Options {
    // Which types the input pin takes; empty means any audio type.
    std::function<bool(const CMediaType&)> accepts{};
    // What its EnumMediaTypes offers, in order.
    std::vector<CMediaType> preferred{};
    // What GetAllocatorRequirements answers; empty means E_NOTIMPL.
    std::optional<ALLOCATOR_PROPERTIES> requirements{};
    // The samples of the pin's own allocator answer ISampleSilence.
    bool samplesOfferSilence = false;
    // Without it the pin only counts samples (SampleCount), touching no heap: for benchmarks.
    bool recordSamples = true;
  };

  FakeSink();
  explicit FakeSink(Options options);
  // Stops and disconnects both ends of the connection.
  ~FakeSink();
  FakeSink(const FakeSink&) = delete;
  FakeSink& operator=(const FakeSink&) = delete;

  IPin* Input() const noexcept;
  // [graph thread] The sink filter's state; it records only while not stopped.
  HRESULT Pause();
  HRESULT Stop();
  // [graph thread] Disconnects the peer, then the input pin.
  void Disconnect();

  // What Receive answers after recording a sample (S_OK at first).
  void SetReceiveResult(HRESULT result);

  // [any thread] What reached the input pin, in order.
  std::vector<ReceivedSample> Samples() const;
  std::int64_t SampleCount() const;
  std::vector<ReceivedSegment> Segments() const;
  std::int32_t EndOfStreams() const;
  std::int32_t BeginFlushes() const;
  std::int32_t EndFlushes() const;

 private:
  class SinkFilter;
  class SinkPin;

  ComPtr<IBaseFilter> m_filter;
  SinkFilter* m_impl;  // owned through m_filter
};
