// The real-time audio back end: tarn-host as a JACK client with two audio inputs and two
// outputs ("<name>:in_1", "in_2", "out_1", "out_2"). The server's process callback only copies:
// each period's input into a ring, and the chain's output from another ring into the outputs.
// A host thread streams what arrives through the chain, period by period, so nothing on the
// real-time thread locks, allocates or reaches an instance. The output starts two periods of
// silence ahead, which is the latency the host adds; what comes out is what went in,
// sample for sample, that much later.
//
// When a JACK timebase master gives the transport a tempo and a position, they are the run's;
// else the host's own tempo rules.
#pragma once

#include <jack/jack.h>
#include <jack/ringbuffer.h>
#include <semaphore.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/audio/audio_driver.h"

struct JackAudioOptions {
  std::string clientName = "tarn-host";
  double seconds = 1.0;  // how long the chain streams
};

class CJackDriver final : public CAudioDriver {
 public:
  // [host thread] A client on the server, active, with its ports; null with `error` saying why
  // not (no server, the name taken).
  static std::unique_ptr<CJackDriver> Open(const JackAudioOptions& options, std::string& error);
  ~CJackDriver() override;

  // Stereo 32-bit float at the server's rate; a buffer is one period.
  WaveFormat Format() const override;
  std::int32_t BufferBytes() const override;
  bool Stream(CHostSource& source, const Progress& progress, std::string& error) override;
  void Consume(std::span<const std::uint8_t> bytes) override;
  bool Finish(std::string& error) override;
  std::optional<double> TransportTempo() const override;
  std::optional<std::int32_t> TransportTick() const override;

  std::vector<std::string> Faults() const override;

  std::int32_t SampleRate() const noexcept { return m_rate; }
  std::int32_t PeriodFrames() const noexcept { return m_period; }

 private:
  static constexpr std::size_t kChannels = 2;
  static constexpr std::int32_t kLeadPeriods = 2;  // silence the output starts with
  explicit CJackDriver(const JackAudioOptions& options);
  // [real-time thread]
  static int Process(jack_nframes_t frames, void* self);
  void CopyIn(jack_nframes_t frames);
  void CopyOut(jack_nframes_t frames);
  void ReadTransport();
  // [any thread] The server shut the client down.
  static void OnShutdown(void* self);

  const JackAudioOptions m_options;
  jack_client_t* m_client = nullptr;
  jack_port_t* m_inputs[kChannels] = {};
  jack_port_t* m_outputs[kChannels] = {};
  std::int32_t m_rate = 0;
  std::int32_t m_period = 0;
  jack_ringbuffer_t* m_captured = nullptr;  // the server's input, frames of interleaved floats
  jack_ringbuffer_t* m_played = nullptr;    // the chain's output, likewise
  std::vector<float> m_scratch;             // the real-time thread's, sized at Open
  sem_t m_periodDone;
  std::atomic<bool> m_streaming{false};
  std::atomic<bool> m_serverGone{false};
  std::atomic<double> m_transportBpm{0};       // 0: no timebase master
  std::atomic<std::int64_t> m_transportTick{-1};  // -1: no timebase master
  std::atomic<std::uint64_t> m_inputDropped{0};   // periods that found the ring full
  std::atomic<std::uint64_t> m_outputMissing{0};  // periods played as silence
  std::atomic<std::uint64_t> m_outputDropped{0};  // periods that found the ring full
};
