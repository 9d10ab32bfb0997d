// The embedded audio back end: streams a WAV file (16-bit PCM or 32-bit float, mono or stereo)
// through the chain as fast as the chain takes it, or silence paced at real time, and writes
// what comes out to a WAV file of the input's format (float for silence). The chain carries
// 32-bit float; 16-bit samples are scaled by 1/32768 and back, which is exact. The output is written beside its final
// name and renamed there only when complete.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "host/audio/audio_driver.h"

struct OfflineOptions {
  std::int32_t sampleRate = 48000;
  std::int32_t bufferFrames = 512;
  double seconds = 0;                          // silence to stream without an input file
  std::optional<std::filesystem::path> input;  // a WAV file instead of silence
  std::optional<std::filesystem::path> output;
  bool progress = false;  // a progress line on standard error while a file streams
};

class COfflineDriver final : public CAudioDriver {
 public:
  // [host thread] A driver whose input is open and checked and whose output can be created; null
  // with `error` naming the file and the fault (unreadable, wrong format, other rate).
  static std::unique_ptr<COfflineDriver> Open(const OfflineOptions& options, std::string& error);
  ~COfflineDriver() override;

  WaveFormat Format() const override { return m_format; }
  std::int32_t BufferBytes() const override;
  bool Stream(CHostSource& source, const Progress& progress, std::string& error) override;
  void Consume(std::span<const std::uint8_t> bytes) override;
  bool Finish(std::string& error) override;

  // Frames streamed so far.
  std::int64_t FramesStreamed() const noexcept { return m_frames; }

 private:
  struct SoundFile;
  explicit COfflineDriver(const OfflineOptions& options);
  bool OpenInput(std::string& error);
  bool OpenOutput(std::string& error);
  std::int64_t ReadBuffer(std::vector<std::uint8_t>& buffer);
  void ShowProgress(std::int64_t total, int& shown) const;

  const OfflineOptions m_options;
  WaveFormat m_format{};
  std::unique_ptr<SoundFile> m_in;
  std::unique_ptr<SoundFile> m_out;
  std::filesystem::path m_partial;  // the output while it is written
  std::int64_t m_frames = 0;
  std::int64_t m_inputFrames = 0;
  bool m_writeFailed = false;
  bool m_filePcm16 = false;  // the files hold 16-bit PCM; the chain float
  // Reused for every buffer, so that streaming allocates only at its start.
  std::vector<short> m_shorts;
  std::vector<float> m_floats;
};
