// Audio through the instance: each input buffer is cut into segments, each segment runs the
// event window and the processing class, and every connected output pin gets a buffer that is
// delivered whole at the end. Nothing here allocates, except when an envelope outgrows the list
// of change positions kept from buffer to buffer.
#include <algorithm>
#include <optional>

#include "core/filter.h"
#include "core/segments.h"
#include "platform/stack_array.h"

namespace {

constexpr REFERENCE_TIME kUnitsPerSecond = 10'000'000;
// Keeps seconds times any sample rate inside 64 bits: 34 years of media time.
constexpr std::int64_t kLongestSeconds = std::int64_t{1} << 30;
// Output buffers live on the stack; a graph with more connected outputs is refused.
constexpr std::int32_t kMostConnectedOutputs = 256;

// The sample position of media time `time` at `rate`: time * rate / 10^7, without overflow.
std::int64_t SamplePosition(REFERENCE_TIME time, std::uint32_t rate) {
  const std::int64_t seconds =
      std::clamp(time / kUnitsPerSecond, -kLongestSeconds, kLongestSeconds);
  return seconds * rate + time % kUnitsPerSecond * rate / kUnitsPerSecond;
}

// Reads the sample's silence and writes the same value back; 0 for a sample that has none.
std::int32_t ReadBackSilence(IMediaSample* sample) {
  ComPtr<ISampleSilence> silence;
  if (FAILED(silence.QueryFrom(sample, IID_ISampleSilence))) return 0;
  const std::int32_t silent = silence->GetSilent();
  silence->SetSilent(silent);
  return silent;
}

// The output samples taken in one pass, given back however the pass ends.
class TakenOutputs {
 public:
  explicit TakenOutputs(AudioBuffer* buffers) noexcept : m_buffers(buffers) {}
  ~TakenOutputs() { ReleaseAll(); }
  TakenOutputs(const TakenOutputs&) = delete;
  TakenOutputs& operator=(const TakenOutputs&) = delete;

  void Add() noexcept { ++m_count; }
  void ReleaseAll() noexcept {
    for (std::int32_t i = 0; i < m_count; ++i) m_buffers[i].sample->Release();
    m_count = 0;
  }

 private:
  AudioBuffer* m_buffers;
  std::int32_t m_count = 0;
};

// Lends a buffer of `pin` into `buffer`: all its frames from byte 0, taken as silent until
// written, with its actual length at its full size.
HRESULT LendOutput(CFilterOutputPin& pin, std::uint16_t blockAlign, AudioBuffer& buffer,
                   TakenOutputs& taken) {
  IMediaSample* sample = nullptr;
  const HRESULT hr = pin.GetDeliveryBuffer(&sample, nullptr, nullptr, 0);
  if (FAILED(hr)) return hr;
  buffer = AudioBuffer{sample->GetSize() / blockAlign, 0, pin.Id(), sample, 1};
  taken.Add();
  sample->SetActualDataLength(sample->GetSize());
  return S_OK;
}

void CopyMarks(IMediaSample* from, IMediaSample* to, const std::optional<REFERENCE_TIME>& start) {
  to->SetTime(start ? &*start : nullptr, nullptr);
  to->SetSyncPoint(from->IsSyncPoint() == S_OK);
  to->SetDiscontinuity(from->IsDiscontinuity() == S_OK);
  to->SetPreroll(from->IsPreroll() == S_OK);
}

// Result 0 delivers the buffer, 1 ends the stream on the pin instead, anything else neither.
void DeliverOutput(CFilterOutputPin& pin, AudioBuffer& buffer, HRESULT result,
                   std::uint16_t blockAlign) {
  if (result == S_FALSE) {
    pin.DeliverEndOfStream();
    return;
  }
  if (result != S_OK) return;
  const auto bytes = static_cast<std::int32_t>(
      std::min<std::int64_t>(std::int64_t{buffer.frames} * blockAlign, buffer.sample->GetSize()));
  if (buffer.silent) SettleSilence(buffer, bytes);
  buffer.sample->SetActualDataLength(bytes);
  pin.Deliver(buffer.sample);
}

}  // namespace

// One buffer's walk through its segments: the steps that CutAtChanges calls.
struct CFilter::AudioPass {
  CFilter& filter;
  AudioBuffer& input;
  AudioBuffer* outputs;
  std::int32_t outputCount;
  std::uint16_t inputAlign;
  std::uint16_t outputAlign;
  HRESULT processed = S_OK;  // the last answer of the processing class
  bool flushed = false;      // the last segment ended with a flush of the voices

  HRESULT Apply(std::int64_t position) { return filter.ApplyParameters(position); }
  bool LastFailed() const { return FAILED(processed); }

  HRESULT Segment(std::int32_t frames, std::int64_t from) {
    for (std::int32_t i = 0; i < outputCount; ++i) outputs[i].frames = frames;
    const HRESULT hr = filter.RunSegment(from, &input, outputs, outputCount, frames, processed);
    input.byteOffset += frames * inputAlign;
    for (std::int32_t i = 0; i < outputCount; ++i) outputs[i].byteOffset += frames * outputAlign;
    flushed = true;
    return hr;
  }
};

HRESULT CFilter::ParameterChanges(std::int64_t from, std::int32_t frames,
                                  std::vector<std::int64_t>& changes) {
  if (!m_mediaParams) {
    changes.clear();
    return S_OK;
  }
  return m_mediaParams->GetSliceBoundaries(from, from + frames, changes);
}

HRESULT CFilter::ApplyParameters(std::int64_t position) {
  return m_mediaParams ? m_mediaParams->UpdateValuesForSample(position) : S_OK;
}

HRESULT CFilter::ReceiveAudio(IMediaSample* sample) {
  std::int32_t count = 0;
  CFilterOutputPin** pins = nullptr;
  AudioBuffer* outputs = nullptr;
  WaveFormat in{};
  WaveFormat out{};
  {
    CAutoLock lock(InstanceLock());
    count = m_outputPins.CountConnected();
    if (count > kMostConnectedOutputs) return E_OUTOFMEMORY;
    pins = TARN_STACK_ARRAY(CFilterOutputPin*, count);
    outputs = TARN_STACK_ARRAY(AudioBuffer, count);
    m_outputPins.CollectConnected(pins, count);
    in = m_inputFormat;
    out = m_outputFormat;
  }
  if (in.nBlockAlign == 0 || (count > 0 && out.nBlockAlign == 0)) return E_UNEXPECTED;

  const std::optional<REFERENCE_TIME> start = TakeDiscontinuity(sample, in.nSamplesPerSec);
  // Only this thread moves the position while streaming: plain loads and stores will do.
  const std::int64_t position = m_inputSample.load(std::memory_order_relaxed);
  const std::int32_t frames = sample->GetActualDataLength() / in.nBlockAlign;
  AudioBuffer input{frames, 0, 0, sample, ReadBackSilence(sample)};
  std::vector<std::int64_t>& changes = m_paramChanges;
  HRESULT hr = ParameterChanges(position, frames, changes);
  if (FAILED(hr)) return hr;

  TakenOutputs taken(outputs);
  for (std::int32_t i = 0; i < count; ++i) {
    hr = LendOutput(*pins[i], out.nBlockAlign, outputs[i], taken);
    if (FAILED(hr)) return hr;
    CopyMarks(sample, outputs[i].sample, start);
    if (outputs[i].frames < frames) return E_FAIL;
    outputs[i].frames = frames;
  }
  AudioPass pass{*this, input, outputs, count, in.nBlockAlign, out.nBlockAlign};
  hr = CutAtChanges(changes, position, frames, pass);
  if (FAILED(hr)) return hr;
  for (std::int32_t i = 0; i < count; ++i) {
    outputs[i].frames = frames;
    outputs[i].byteOffset = 0;
    DeliverOutput(*pins[i], outputs[i], pass.processed, out.nBlockAlign);
  }
  taken.ReleaseAll();

  SendClockIfDue(position);
  m_inputSample.store(position + frames, std::memory_order_relaxed);
  // After a segment the flush that closes the buffer would find nothing to drop: the segment's
  // own flush ran at this stream position, only a window pass or a move of the stream gives a
  // flush more to do, and this processing class keeps every note it is asked about. So the
  // lock it would take is spared.
  hr = pass.flushed ? S_OK : FlushVoices(0);
  return FAILED(hr) ? hr : S_OK;
}

std::optional<REFERENCE_TIME> CFilter::TakeDiscontinuity(IMediaSample* sample,
                                                         std::uint32_t rate) {
  if (sample->IsDiscontinuity() != S_OK) return std::nullopt;
  REFERENCE_TIME start = 0, stop = 0;
  const HRESULT hr = sample->GetTime(&start, &stop);
  if (hr != S_OK && hr != VFW_S_NO_STOP_TIME) return std::nullopt;
  m_inputSample.store(SamplePosition(start, rate), std::memory_order_relaxed);
  return start;
}

// The processing class is asked for more until it has none; each answer goes out of every pin.
HRESULT CFilter::EndAudioStream() {
  CAutoLock lock(InstanceLock());
  const std::int32_t count = m_outputPins.CountConnected();
  if (count == 0) return S_OK;
  if (count > kMostConnectedOutputs) return E_OUTOFMEMORY;
  const std::uint16_t align = m_outputFormat.nBlockAlign;
  if (align == 0) return E_UNEXPECTED;
  auto* pins = TARN_STACK_ARRAY(CFilterOutputPin*, count);
  auto* outputs = TARN_STACK_ARRAY(AudioBuffer, count);
  m_outputPins.CollectConnected(pins, count);

  TakenOutputs taken(outputs);
  for (std::int32_t i = 0; i < count; ++i) {
    const HRESULT hr = LendOutput(*pins[i], align, outputs[i], taken);
    if (FAILED(hr)) return hr;
    if (outputs[i].frames > outputs[0].frames) return E_FAIL;
    outputs[i].frames = outputs[0].frames;
  }
  const std::int32_t frames = outputs[0].frames;
  HRESULT hr = RunEventWindow(frames);
  if (FAILED(hr)) return hr;
  for (;;) {
    const HRESULT result = ProcessAt(m_inputSample, nullptr, outputs, count);
    for (std::int32_t i = 0; i < count; ++i) DeliverOutput(*pins[i], outputs[i], result, align);
    if (result == S_FALSE || FAILED(result)) break;
    m_inputSample += frames;
    AdvanceStream(frames);
    hr = FlushVoices(0);
    if (SUCCEEDED(hr)) hr = RunEventWindow(frames);
    if (FAILED(hr)) return hr;
  }
  // Said once more on every pin, after the processing class's own answer: intended as it stands.
  for (std::int32_t i = 0; i < count; ++i) pins[i]->DeliverEndOfStream();
  return S_OK;
}

// --- media types ---------------------------------------------------------------------------------

HRESULT CFilter::CheckAudioType(const CMediaType& type, PIN_DIRECTION direction) {
  const WaveFormat* format = type.WaveFormatPtr();
  if (type.majortype != MEDIATYPE_Audio || type.bTemporalCompression || !format)
    return VFW_E_TYPE_NOT_ACCEPTED;
  const std::uint16_t tag = format->wFormatTag;
  const std::uint16_t bits = format->wBitsPerSample;
  const bool pcm16 =
      (tag == WAVE_FORMAT_PCM_TAG || tag == WAVE_FORMAT_EXTENSIBLE_TAG) && bits == 16;
  const bool float32 = tag == WAVE_FORMAT_IEEE_FLOAT_TAG && bits == 32;
  const std::uint16_t channels = format->nChannels;
  if ((!pcm16 && !float32) || (channels != 1 && channels != 2)) return VFW_E_TYPE_NOT_ACCEPTED;
  return direction == PINDIR_INPUT ? IsValidInputFormat(*format) : IsValidOutputFormat(*format);
}

void CFilter::ReconnectUnfitOutputs() {
  IFilterGraph* graph = GetFilterGraph();
  if (!graph) return;
  for (CFilterOutputPin* pin : m_outputPins)
    if (pin->IsConnected() && pin->CheckMediaType(pin->CurrentMediaType()) != S_OK)
      graph->Reconnect(pin);
}
