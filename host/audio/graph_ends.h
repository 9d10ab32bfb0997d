// The two ends of the host's audio chain, as real filters of the streaming graph: a source whose
// output pin lends buffers from its own allocator and delivers them downstream, and a sink whose
// input pin hands every sample's bytes to the audio driver. The audio drivers feed the source
// and drain the sink; the instances sit between them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "interfaces/graph_interfaces.h"
#include "interfaces/media_type.h"
#include "platform/com_ptr.h"

class CHostSource {
 public:
  // Offers exactly AudioMediaType(format), in buffers of `bufferBytes`.
  CHostSource(const WaveFormat& format, std::int32_t bufferBytes);
  // Stops and disconnects both ends of its connection.
  ~CHostSource();
  CHostSource(const CHostSource&) = delete;
  CHostSource& operator=(const CHostSource&) = delete;

  IBaseFilter* Filter() const noexcept { return m_filter.Get(); }
  IPin* Output() const noexcept;
  const WaveFormat& Format() const noexcept { return *m_type.WaveFormatPtr(); }
  std::int32_t BufferBytes() const noexcept { return m_bufferBytes; }
  // [graph thread] Connects the output pin to `input` with the source's type.
  HRESULT ConnectTo(IPin* input);
  // [streaming thread] Delivers `bytes` (at most the buffer size) stamped with the stream times
  // in 100 ns units: the downstream Receive's answer.
  HRESULT Deliver(std::span<const std::uint8_t> bytes, REFERENCE_TIME start, REFERENCE_TIME stop);
  // [streaming thread]
  HRESULT EndOfStream();

 private:
  class SourceFilter;
  class SourcePin;
  CMediaType m_type;
  std::int32_t m_bufferBytes;
  ComPtr<IBaseFilter> m_filter;
  SourceFilter* m_impl;  // owned through m_filter
};

class CHostSink {
 public:
  // [streaming thread] What the sink does with each sample's bytes and stream times (zero when
  // the sample has none).
  using Consumer =
      std::function<void(std::span<const std::uint8_t>, REFERENCE_TIME start, REFERENCE_TIME stop)>;

  // Takes any uncompressed audio type.
  explicit CHostSink(Consumer consumer);
  ~CHostSink();
  CHostSink(const CHostSink&) = delete;
  CHostSink& operator=(const CHostSink&) = delete;

  IBaseFilter* Filter() const noexcept { return m_filter.Get(); }
  IPin* Input() const noexcept;
  // [any thread] The type of the connection; valid once connected.
  WaveFormat Format() const;

 private:
  class SinkFilter;
  class SinkPin;
  ComPtr<IBaseFilter> m_filter;
  SinkFilter* m_impl;
};

// [graph thread] Breaks both ends of the connection of `pin`, if any.
void DisconnectBothEnds(IPin* pin);
// [graph thread] The first pin of `filter` in `direction`, or null.
ComPtr<IPin> FirstPin(IBaseFilter* filter, PIN_DIRECTION direction);
