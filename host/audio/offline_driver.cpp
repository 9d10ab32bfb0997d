#include "host/audio/offline_driver.h"

#include <sndfile.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

constexpr std::int64_t kUnitsPerSecond = 10'000'000;  // stream time is in 100 ns units

// The chain always carries 32-bit float, which is what the instances take.
WaveFormat MakeFormat(std::uint16_t channels, std::int32_t rate) {
  const std::uint16_t bits = 32;
  const auto align = static_cast<std::uint16_t>(channels * bits / 8);
  return WaveFormat{WAVE_FORMAT_IEEE_FLOAT_TAG,
                    channels,
                    static_cast<std::uint32_t>(rate),
                    static_cast<std::uint32_t>(rate) * align,
                    align,
                    bits,
                    0};
}

}  // namespace

struct COfflineDriver::SoundFile {
  SNDFILE* file = nullptr;
  SF_INFO info{};
  ~SoundFile() {
    if (file) sf_close(file);
  }
};

COfflineDriver::COfflineDriver(const OfflineOptions& options) : m_options(options) {}

std::unique_ptr<COfflineDriver> COfflineDriver::Open(const OfflineOptions& options,
                                                     std::string& error) {
  std::unique_ptr<COfflineDriver> driver(new COfflineDriver(options));
  if (options.input) {
    if (!driver->OpenInput(error)) return nullptr;
  } else {
    driver->m_format = MakeFormat(2, options.sampleRate);
  }
  if (options.output && !driver->OpenOutput(error)) return nullptr;
  return driver;
}

COfflineDriver::~COfflineDriver() {
  m_out.reset();
  if (!m_partial.empty()) {
    std::error_code ignored;
    std::filesystem::remove(m_partial, ignored);
  }
}

bool COfflineDriver::OpenInput(std::string& error) {
  const std::string name = m_options.input->string();
  m_in = std::make_unique<SoundFile>();
  m_in->file = sf_open(name.c_str(), SFM_READ, &m_in->info);
  if (!m_in->file) {
    error = "audio file " + name + " cannot be read: " + sf_strerror(nullptr);
    return false;
  }
  const int subtype = m_in->info.format & SF_FORMAT_SUBMASK;
  if (subtype != SF_FORMAT_PCM_16 && subtype != SF_FORMAT_FLOAT) {
    error = "audio file " + name + " is neither 16-bit PCM nor 32-bit float";
    return false;
  }
  if (m_in->info.channels != 1 && m_in->info.channels != 2) {
    error = "audio file " + name + " has " + std::to_string(m_in->info.channels) +
            " channels; mono or stereo is needed";
    return false;
  }
  if (m_in->info.samplerate != m_options.sampleRate) {
    error = "audio file " + name + " has a rate of " + std::to_string(m_in->info.samplerate) +
            " Hz; the rack runs at " + std::to_string(m_options.sampleRate) + " Hz";
    return false;
  }
  m_inputFrames = m_in->info.frames;
  m_filePcm16 = subtype == SF_FORMAT_PCM_16;
  m_format = MakeFormat(static_cast<std::uint16_t>(m_in->info.channels), m_options.sampleRate);
  return true;
}

bool COfflineDriver::OpenOutput(std::string& error) {
  const std::filesystem::path& target = *m_options.output;
  m_partial = target;
  m_partial += ".partial";
  m_out = std::make_unique<SoundFile>();
  m_out->info.samplerate = m_options.sampleRate;
  m_out->info.channels = m_format.nChannels;
  m_out->info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  if (m_in) m_out->info.format = m_in->info.format;
  m_out->file = sf_open(m_partial.string().c_str(), SFM_WRITE, &m_out->info);
  if (!m_out->file) {
    error = "audio file " + target.string() + " cannot be written: " + sf_strerror(nullptr);
    m_partial.clear();
    return false;
  }
  return true;
}

std::int32_t COfflineDriver::BufferBytes() const {
  return m_options.bufferFrames * m_format.nBlockAlign;
}

std::int64_t COfflineDriver::ReadBuffer(std::vector<std::uint8_t>& buffer) {
  const sf_count_t frames = m_options.bufferFrames;
  float* samples = reinterpret_cast<float*>(buffer.data());
  if (!m_filePcm16) return sf_readf_float(m_in->file, samples, frames);
  m_shorts.resize(static_cast<std::size_t>(frames) * m_format.nChannels);
  const sf_count_t read = sf_readf_short(m_in->file, m_shorts.data(), frames);
  const auto count = static_cast<std::size_t>(std::max<sf_count_t>(read, 0)) * m_format.nChannels;
  for (std::size_t i = 0; i < count; ++i) samples[i] = static_cast<float>(m_shorts[i]) / 32768.0f;
  return read;
}

void COfflineDriver::ShowProgress(std::int64_t total, int& shown) const {
  if (!m_options.progress || total <= 0) return;
  const int percent = static_cast<int>(m_frames * 100 / total);
  if (percent == shown) return;
  shown = percent;
  std::fprintf(stderr, "\rstreaming %3d%%%s", percent, percent == 100 ? "\n" : "");
  std::fflush(stderr);
}

bool COfflineDriver::Stream(CHostSource& source, const Progress& progress, std::string& error) {
  // Samples are filled as whole frames of floats or shorts, so the buffer is aligned for both.
  std::vector<std::uint8_t> buffer(static_cast<std::size_t>(BufferBytes()));
  const auto begin = std::chrono::steady_clock::now();
  const std::int64_t total =
      m_in ? m_inputFrames : static_cast<std::int64_t>(m_options.seconds * m_options.sampleRate);
  int shown = -1;
  while (m_frames < total) {
    std::int64_t frames = 0;
    if (m_in) {
      frames = ReadBuffer(buffer);
      if (frames <= 0) break;
    } else {
      frames = std::min<std::int64_t>(m_options.bufferFrames, total - m_frames);
      // Silence keeps the pace of a clock, so that what the instances time by it stays real.
      std::this_thread::sleep_until(
          begin + std::chrono::microseconds(m_frames * 1'000'000 / m_options.sampleRate));
    }
    const REFERENCE_TIME start = m_frames * kUnitsPerSecond / m_options.sampleRate;
    const REFERENCE_TIME stop = (m_frames + frames) * kUnitsPerSecond / m_options.sampleRate;
    const auto bytes = static_cast<std::size_t>(frames) * m_format.nBlockAlign;
    const HRESULT hr = source.Deliver({buffer.data(), bytes}, start, stop);
    if (FAILED(hr)) {
      char code[16];
      std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(hr));
      error = std::string("the chain refused a buffer (") + code + ")";
      return false;
    }
    m_frames += frames;
    if (m_in) ShowProgress(total, shown);
    if (progress) progress(m_frames);
  }
  source.EndOfStream();
  return true;
}

void COfflineDriver::Consume(std::span<const std::uint8_t> bytes) {
  if (!m_out || m_writeFailed) return;
  const std::size_t frames = bytes.size() / m_format.nBlockAlign;
  const std::size_t count = frames * m_format.nChannels;
  // Copied out so that the sample's bytes need no particular alignment.
  m_floats.resize(count);
  std::memcpy(m_floats.data(), bytes.data(), count * sizeof(float));
  sf_count_t written = 0;
  if (m_filePcm16) {
    // The exact inverse of the reading scale, so 16-bit audio comes back bit for bit.
    m_shorts.resize(count);
    for (std::size_t i = 0; i < count; ++i)
      m_shorts[i] = static_cast<short>(
          std::clamp(std::lrint(m_floats[i] * 32768.0f), -32768L, 32767L));
    written = sf_writef_short(m_out->file, m_shorts.data(), static_cast<sf_count_t>(frames));
  } else {
    written = sf_writef_float(m_out->file, m_floats.data(), static_cast<sf_count_t>(frames));
  }
  if (written != static_cast<sf_count_t>(frames)) m_writeFailed = true;
}

bool COfflineDriver::Finish(std::string& error) {
  if (!m_out) return true;
  const std::string target = m_options.output->string();
  const bool closed = sf_close(m_out->file) == 0;
  m_out->file = nullptr;
  m_out.reset();
  std::error_code renamed;
  if (closed && !m_writeFailed) std::filesystem::rename(m_partial, *m_options.output, renamed);
  if (!closed || m_writeFailed || renamed) {
    error = "audio file " + target + " could not be written";
    return false;  // the destructor removes the partial file
  }
  m_partial.clear();
  return true;
}
