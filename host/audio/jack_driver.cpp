#include "host/audio/jack_driver.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

constexpr std::int64_t kUnitsPerSecond = 10'000'000;  // stream time is in 100 ns units
constexpr std::int32_t kTicksPerQuarter = 480;
constexpr std::size_t kRingPeriods = 16;

void Quiet(const char*) {}

std::string ServerName() {
  const char* name = std::getenv("JACK_DEFAULT_SERVER");
  return name ? name : "default";
}

}  // namespace

CJackDriver::CJackDriver(const JackAudioOptions& options) : m_options(options) {
  sem_init(&m_periodDone, 0, 0);
}

CJackDriver::~CJackDriver() {
  if (m_client) jack_client_close(m_client);  // deactivates first: no callback runs after this
  if (m_captured) jack_ringbuffer_free(m_captured);
  if (m_played) jack_ringbuffer_free(m_played);
  sem_destroy(&m_periodDone);
}

std::unique_ptr<CJackDriver> CJackDriver::Open(const JackAudioOptions& options,
                                               std::string& error) {
  jack_set_error_function(Quiet);
  jack_set_info_function(Quiet);
  std::unique_ptr<CJackDriver> driver(new CJackDriver(options));
  jack_status_t status{};
  driver->m_client = jack_client_open(
      options.clientName.c_str(),
      static_cast<jack_options_t>(JackNoStartServer | JackUseExactName), &status);
  if (!driver->m_client) {
    error = (status & JackNameNotUnique)
                ? "a JACK client named " + options.clientName +
                      " is already there: give this host another --client-name"
                : "no JACK server is running (server \"" + ServerName() + "\")";
    return nullptr;
  }
  jack_client_t* client = driver->m_client;
  driver->m_rate = static_cast<std::int32_t>(jack_get_sample_rate(client));
  driver->m_period = static_cast<std::int32_t>(jack_get_buffer_size(client));
  const std::size_t periodBytes = static_cast<std::size_t>(driver->m_period) * kChannels *
                                  sizeof(float);
  driver->m_captured = jack_ringbuffer_create(kRingPeriods * periodBytes);
  driver->m_played = jack_ringbuffer_create(kRingPeriods * periodBytes);
  driver->m_scratch.resize(static_cast<std::size_t>(driver->m_period) * kChannels);
  for (std::size_t c = 0; c < kChannels; ++c) {
    const std::string in = "in_" + std::to_string(c + 1);
    const std::string out = "out_" + std::to_string(c + 1);
    driver->m_inputs[c] =
        jack_port_register(client, in.c_str(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    driver->m_outputs[c] =
        jack_port_register(client, out.c_str(), JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
    if (!driver->m_inputs[c] || !driver->m_outputs[c]) {
      error = "JACK: the ports of " + options.clientName + " cannot be made";
      return nullptr;
    }
  }
  jack_set_process_callback(client, Process, driver.get());
  jack_on_shutdown(client, OnShutdown, driver.get());
  if (jack_activate(client) != 0) {
    error = "JACK: " + options.clientName + " cannot be activated";
    return nullptr;
  }
  return driver;
}

WaveFormat CJackDriver::Format() const {
  const auto align = static_cast<std::uint16_t>(kChannels * sizeof(float));
  return WaveFormat{WAVE_FORMAT_IEEE_FLOAT_TAG,
                    static_cast<std::uint16_t>(kChannels),
                    static_cast<std::uint32_t>(m_rate),
                    static_cast<std::uint32_t>(m_rate) * align,
                    align,
                    32,
                    0};
}

std::int32_t CJackDriver::BufferBytes() const {
  return m_period * static_cast<std::int32_t>(kChannels * sizeof(float));
}

int CJackDriver::Process(jack_nframes_t frames, void* self) {
  CJackDriver& driver = *static_cast<CJackDriver*>(self);
  driver.ReadTransport();
  if (!driver.m_streaming.load(std::memory_order_acquire) ||
      frames * kChannels > driver.m_scratch.size()) {
    for (jack_port_t* port : driver.m_outputs)
      std::memset(jack_port_get_buffer(port, frames), 0, frames * sizeof(float));
    return 0;
  }
  driver.CopyIn(frames);
  driver.CopyOut(frames);
  sem_post(&driver.m_periodDone);
  return 0;
}

void CJackDriver::CopyIn(jack_nframes_t frames) {
  const std::size_t bytes = frames * kChannels * sizeof(float);
  if (jack_ringbuffer_write_space(m_captured) < bytes) {
    m_inputDropped.fetch_add(1, std::memory_order_relaxed);
    return;
  }
  for (std::size_t c = 0; c < kChannels; ++c) {
    const auto* in = static_cast<const float*>(jack_port_get_buffer(m_inputs[c], frames));
    for (jack_nframes_t f = 0; f < frames; ++f) m_scratch[f * kChannels + c] = in[f];
  }
  jack_ringbuffer_write(m_captured, reinterpret_cast<const char*>(m_scratch.data()), bytes);
}

void CJackDriver::CopyOut(jack_nframes_t frames) {
  const std::size_t bytes = frames * kChannels * sizeof(float);
  float* out[kChannels];
  for (std::size_t c = 0; c < kChannels; ++c)
    out[c] = static_cast<float*>(jack_port_get_buffer(m_outputs[c], frames));
  if (jack_ringbuffer_read_space(m_played) < bytes) {
    m_outputMissing.fetch_add(1, std::memory_order_relaxed);
    for (float* channel : out) std::memset(channel, 0, frames * sizeof(float));
    return;
  }
  jack_ringbuffer_read(m_played, reinterpret_cast<char*>(m_scratch.data()), bytes);
  for (std::size_t c = 0; c < kChannels; ++c)
    for (jack_nframes_t f = 0; f < frames; ++f) out[c][f] = m_scratch[f * kChannels + c];
}

void CJackDriver::ReadTransport() {
  jack_position_t position{};
  jack_transport_query(m_client, &position);
  if (!(position.valid & JackPositionBBT) || !(position.beats_per_minute > 0)) {
    m_transportBpm.store(0, std::memory_order_relaxed);
    m_transportTick.store(-1, std::memory_order_relaxed);
    return;
  }
  m_transportBpm.store(position.beats_per_minute, std::memory_order_relaxed);
  const double beats =
      static_cast<double>(position.bar - 1) * static_cast<double>(position.beats_per_bar) +
      (position.beat - 1) +
      (position.ticks_per_beat > 0 ? position.tick / position.ticks_per_beat : 0.0);
  // A beat of the transport is a quarter when its type is 4; another type scales it.
  const double beatType = position.beat_type > 0 ? static_cast<double>(position.beat_type) : 4.0;
  const double quarters = beats * 4.0 / beatType;
  m_transportTick.store(std::llround(quarters * kTicksPerQuarter), std::memory_order_relaxed);
}

void CJackDriver::OnShutdown(void* self) {
  CJackDriver& driver = *static_cast<CJackDriver*>(self);
  driver.m_serverGone = true;
  sem_post(&driver.m_periodDone);
}

std::optional<double> CJackDriver::TransportTempo() const {
  const double bpm = m_transportBpm.load(std::memory_order_relaxed);
  if (!(bpm > 0)) return std::nullopt;
  return bpm;
}

std::optional<std::int32_t> CJackDriver::TransportTick() const {
  const std::int64_t tick = m_transportTick.load(std::memory_order_relaxed);
  if (tick < 0 || tick > INT32_MAX) return std::nullopt;
  return static_cast<std::int32_t>(tick);
}

bool CJackDriver::Stream(CHostSource& source, const Progress& progress, std::string& error) {
  const std::size_t periodBytes = static_cast<std::size_t>(BufferBytes());
  std::vector<std::uint8_t> buffer(periodBytes);
  // The output's lead: what the chain makes of the first period plays after this.
  for (std::int32_t i = 0; i < kLeadPeriods; ++i) Consume(std::vector<std::uint8_t>(periodBytes));
  m_streaming.store(true, std::memory_order_release);
  const auto total = static_cast<std::int64_t>(std::llround(m_options.seconds * m_rate));
  std::int64_t frames = 0;
  bool streamed = true;
  while (frames < total) {
    timespec deadline{};
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += 2;
    if (sem_timedwait(&m_periodDone, &deadline) != 0 && errno == ETIMEDOUT) {
      error = "the JACK server ran no period for 2 s";
      streamed = false;
      break;
    }
    if (m_serverGone) {
      error = "the JACK server shut the host down";
      streamed = false;
      break;
    }
    while (frames < total && jack_ringbuffer_read_space(m_captured) >= periodBytes) {
      jack_ringbuffer_read(m_captured, reinterpret_cast<char*>(buffer.data()), periodBytes);
      const REFERENCE_TIME start = frames * kUnitsPerSecond / m_rate;
      frames += m_period;
      const REFERENCE_TIME stop = frames * kUnitsPerSecond / m_rate;
      const HRESULT hr = source.Deliver(buffer, start, stop);
      if (FAILED(hr)) {
        char code[16];
        std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(hr));
        error = std::string("the chain refused a buffer (") + code + ")";
        m_streaming = false;
        return false;
      }
      if (progress) progress(frames);
    }
  }
  m_streaming.store(false, std::memory_order_release);
  if (streamed) source.EndOfStream();
  return streamed;
}

void CJackDriver::Consume(std::span<const std::uint8_t> bytes) {
  if (jack_ringbuffer_write_space(m_played) < bytes.size()) {
    m_outputDropped.fetch_add(1, std::memory_order_relaxed);
    return;
  }
  jack_ringbuffer_write(m_played, reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

bool CJackDriver::Finish(std::string&) { return true; }

namespace {

std::string Periods(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " period" : " periods");
}

}  // namespace

std::vector<std::string> CJackDriver::Faults() const {
  std::vector<std::string> faults;
  if (const auto dropped = m_inputDropped.load())
    faults.push_back("JACK audio: input lost for " + Periods(dropped) +
                     ": the chain fell behind");
  if (const auto missing = m_outputMissing.load())
    faults.push_back("JACK audio: output played as silence for " + Periods(missing) +
                     ": the chain fell behind");
  if (const auto dropped = m_outputDropped.load())
    faults.push_back("JACK audio: output lost for " + Periods(dropped) +
                     ": the server fell behind");
  return faults;
}
