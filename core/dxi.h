// The processing side of an instance: the synth context that the processing class calls back
// into, and the processing class itself, which holds the instance lock and the wave formats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "interfaces/host_records.h"
#include "interfaces/media_type.h"
#include "platform/com.h"
#include "platform/lock.h"

struct IMediaSample;
class CBasePin;

// Per-key mixing state of the sequenced line, six bytes. A new record has channel 255.
struct ChannelState {
  std::uint8_t channel = 255;
  std::uint8_t muteBits = 0;
  std::int8_t velocityOffset1 = 0;
  std::int8_t velocityOffset2 = 0;
  std::int8_t keyOffset1 = 0;
  std::int8_t keyOffset2 = 0;
};
static_assert(sizeof(ChannelState) == 6);
static_assert(offsetof(ChannelState, muteBits) == 1);
static_assert(offsetof(ChannelState, velocityOffset1) == 2);
static_assert(offsetof(ChannelState, keyOffset1) == 4);
static_assert(offsetof(ChannelState, keyOffset2) == 5);

// One stretch of one media sample as Process sees it.
struct AudioBuffer {
  std::int32_t frames;
  std::int32_t byteOffset;  // into the sample's data
  std::uint32_t pinId;
  IMediaSample* sample;
  std::int32_t silent;      // the data is to be taken as zero and has not been written
};

// [streaming thread] Where the buffer's stretch starts: the sample's data plus `byteOffset`.
std::uint8_t* DataAt(const AudioBuffer& buffer);
// [streaming thread] DataAt for a stretch that is about to be overwritten whole: clears
// `silent`, and zeroes nothing first, as the write covers it.
std::uint8_t* WritePosition(AudioBuffer& buffer);
// [streaming thread] Marks the buffer silent, and its sample too when the sample can say so.
void MarkSilent(AudioBuffer& buffer);
// [streaming thread] Makes a silent buffer read as silence when delivered: a sample that cannot
// say so has `bytes` of its stretch (never past the sample's end) zeroed; one that can is left
// as it is.
void SettleSilence(AudioBuffer& buffer, std::int32_t bytes);

using VoiceQueue = std::deque<HostEventRecord>;

// What the processing class may ask of the instance: output pins and time conversion.
class CDXiSynthContext {
 public:
  virtual HRESULT AddOutputPin(const wchar_t* name, std::uint32_t* id) = 0;
  virtual HRESULT RemoveOutputPin(std::uint32_t id) = 0;
  virtual HRESULT RemoveAllOutputPins() = 0;
  virtual CBasePin* FindOutputPin(std::uint32_t id) = 0;
  virtual std::int32_t GetOutputPinCount() = 0;
  virtual std::int32_t GetOutputPinId(std::int32_t index) = 0;
  // [instance lock] Through the host's time converter, else its tempo map, else 0.
  virtual std::int64_t TicksToSamples(std::int32_t ticks) = 0;
  virtual std::int32_t SamplesToTicks(std::int64_t samples) = 0;
  virtual ~CDXiSynthContext() = default;
};

// The processing class's frame. Its critical section is the instance lock, shared with the
// filter frame and the pins.
class CDXi : public CCritSec {
 public:
  explicit CDXi(CDXiSynthContext* owner) : m_owner(owner) {}

  virtual HRESULT Initialize() = 0;
  virtual HRESULT IsValidInputFormat(const WaveFormat& format) = 0;
  virtual HRESULT IsValidOutputFormat(const WaveFormat& format) = 0;
  virtual HRESULT IsValidTransform(const WaveFormat& input, const WaveFormat& output) = 0;
  virtual HRESULT SuggestOutputFormat(WaveFormat& format) = 0;
  virtual const WaveFormat* GetInputFormat() = 0;
  virtual const WaveFormat* GetOutputFormat() = 0;
  // [streaming thread, instance lock] 0 to go on, 1 for no more data, negative for an error.
  virtual HRESULT Process(std::int64_t sampleFrom, AudioBuffer* input, AudioBuffer* outputs,
                          std::int32_t outputCount, std::int64_t streamSample,
                          VoiceQueue& voiceQueue) = 0;
  virtual HRESULT OnEventQueued(const HostEventRecord& event) = 0;
  virtual HRESULT OnNoteStart(const HostEventRecord& event) = 0;
  virtual HRESULT OnNoteFlush(const HostEventRecord& event, std::int32_t force) = 0;
  virtual HRESULT AllocateResources() = 0;
  virtual HRESULT FreeResources() = 0;
  virtual ~CDXi() = default;

 protected:
  CDXiSynthContext* m_owner;
  WaveFormat m_inputFormat{};
  WaveFormat m_outputFormat{};
};

// The processing class of this plug-in: it accepts only 32-bit floating point, passes audio
// through untouched, and takes no action on the events it is given.
class CExternalHardwareProxyDXi : public CDXi {
 public:
  using CDXi::CDXi;

  HRESULT Initialize() override { return S_OK; }
  HRESULT IsValidInputFormat(const WaveFormat& format) override;
  HRESULT IsValidOutputFormat(const WaveFormat& format) override;
  HRESULT IsValidTransform(const WaveFormat& input, const WaveFormat& output) override;
  HRESULT SuggestOutputFormat(WaveFormat&) override { return S_OK; }
  const WaveFormat* GetInputFormat() override { return &m_inputFormat; }
  const WaveFormat* GetOutputFormat() override { return &m_outputFormat; }
  // [streaming thread, instance lock] Copies the input's frames, all its channels, byte for byte
  // to the first output; a silent input makes that output silent instead. Other outputs keep
  // their silence. 1 without input, else 0. The audio is never changed, and the events in
  // `voiceQueue` are left alone: nothing of the sequenced line is ever sent.
  HRESULT Process(std::int64_t sampleFrom, AudioBuffer* input, AudioBuffer* outputs,
                  std::int32_t outputCount, std::int64_t streamSample,
                  VoiceQueue& voiceQueue) override;
  HRESULT OnEventQueued(const HostEventRecord&) override { return S_OK; }
  HRESULT OnNoteStart(const HostEventRecord&) override { return S_OK; }
  // A note never leaves the voice queue through a flush.
  HRESULT OnNoteFlush(const HostEventRecord&, std::int32_t) override { return S_FALSE; }
  HRESULT AllocateResources() override { return S_OK; }
  HRESULT FreeResources() override { return S_OK; }

  // Stores a format that a pin connected with.
  void SetInputFormat(const WaveFormat& format) { m_inputFormat = format; }
  void SetOutputFormat(const WaveFormat& format) { m_outputFormat = format; }
};
