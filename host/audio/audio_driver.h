// The seam between the host and an audio back end. A driver says what it streams, then feeds the
// chain's source and takes what reaches the chain's sink. The offline driver is the default; a
// real-time driver slots in beside it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/audio/graph_ends.h"

class CAudioDriver {
 public:
  virtual ~CAudioDriver() = default;

  // [host thread] The format every buffer carries, fixed before the chain is connected.
  virtual WaveFormat Format() const = 0;
  // [host thread] Bytes per buffer.
  virtual std::int32_t BufferBytes() const = 0;
  // [streaming thread] Called after each buffer with the frames streamed so far: where the
  // host keeps its transport in step with the audio.
  using Progress = std::function<void(std::int64_t frames)>;
  // [streaming thread] Feeds `source` until the driver's audio ends, calling `progress` (if
  // any) after each buffer; false with `error` set when the stream broke.
  virtual bool Stream(CHostSource& source, const Progress& progress, std::string& error) = 0;
  // [streaming thread] One sample's bytes that reached the sink.
  virtual void Consume(std::span<const std::uint8_t> bytes) = 0;
  // [host thread] After streaming: keeps what was produced; false with `error` set when it
  // cannot be kept (nothing half-written is left behind).
  virtual bool Finish(std::string& error) = 0;
  // [any thread] The tempo the transport has when something outside the host sets it (a JACK
  // timebase master); none when the host's own tempo rules.
  virtual std::optional<double> TransportTempo() const { return std::nullopt; }
  // [any thread] Likewise the transport's position, in ticks of 480 a quarter.
  virtual std::optional<std::int32_t> TransportTick() const { return std::nullopt; }
  // [host thread, after streaming] What went wrong in real time, one line each; the audio a
  // driver could not keep up with, for example.
  virtual std::vector<std::string> Faults() const { return {}; }
};
