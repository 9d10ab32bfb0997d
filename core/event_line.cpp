// The sequenced line: timed events are converted to stream samples, kept until the audio reaches
// them, adjusted by the per-key mixing state and queued as voices. The processing class takes
// no action on them, so nothing of this line ever leaves the instance.
#include <algorithm>
#include <array>
#include <cstring>

#include "core/event_line.h"

namespace {

constexpr std::uint32_t kOpenNote = 0xFFFFFFFF;
constexpr std::uint8_t kWindowChannel = 15;  // every event that passes gets it, whatever it had
constexpr std::uint32_t kHostFlagsHigh = 2;
constexpr std::uint32_t kMuteExemptFlag = 2;  // bit 1 of the high flags word
constexpr std::uint8_t kMuteExemptBit = 8;

std::uint8_t Clamp7(std::int32_t sum) { return static_cast<std::uint8_t>(std::clamp(sum, 0, 127)); }

bool IsNote(const HostEventRecord& r) { return r.kind == HostEventRecord::kNote; }

// A muted note is dropped unless the host exempted it and only bit 3 is in question. OnEvents
// always sets the flag, so every muted note goes; the two-step test is kept as the host knows it.
bool DropsMutedNote(const HostEventRecord& note, std::uint8_t muteBits) {
  if (muteBits == 0) return false;
  const bool exempt = (note.flagsHigh & kMuteExemptFlag) == 0 && (muteBits & kMuteExemptBit) != 0;
  return !exempt;
}

}  // namespace

// --- transport --------------------------------------------------------------------------------

void CEventLine::Start(std::int64_t startSample) {
  Stop();
  m_startSample = startSample;
  m_streamSample = 0;
  m_loopShift = 0;
}

void CEventLine::Stop() {
  FlushPass(1);
  m_pendingEvents.clear();
  m_voiceQueue.clear();
}

// --- events and mixing state --------------------------------------------------------------------

HRESULT CEventLine::Queue(HostEventRecord record, std::int64_t sampleTime,
                          std::int32_t channelKey) {
  record.sampleTime = StreamTime(sampleTime);
  record.channelKey = channelKey;
  record.flagsLow = 0;
  record.flagsHigh = kHostFlagsHigh;
  const HRESULT hr = m_processing->OnEventQueued(record);
  if (hr == S_OK) m_pendingEvents.push_back(record);
  return hr;
}

void CEventLine::Notify(const ChannelStateMessage& m) {
  ChannelState& state = m_channelStates[m.channelKey];
  const auto offset = static_cast<std::int8_t>(m.value);
  switch (m.kind) {
    case ChannelStateMessage::kChannel: state.channel = m.value; break;
    case ChannelStateMessage::kMuteBits:
      state.muteBits = static_cast<std::uint8_t>((state.muteBits & ~m.mask) | m.value);
      break;
    case ChannelStateMessage::kVelocityOffset1: state.velocityOffset1 = offset; break;
    case ChannelStateMessage::kVelocityOffset2: state.velocityOffset2 = offset; break;
    case ChannelStateMessage::kKeyOffset1: state.keyOffset1 = offset; break;
    default: state.keyOffset2 = offset; break;
  }
}

// --- the window pass ----------------------------------------------------------------------------

// Taken records leave the array as if each were erased at once, later ones moving down; the
// survivors are compacted in one sweep so that the pass stays linear in the pending count.
HRESULT CEventLine::WindowPass(std::int32_t frames) {
  const std::int64_t from = m_streamSample;
  const std::int64_t to = from + frames;
  auto kept = m_pendingEvents.begin();
  HRESULT hr = S_OK;
  ChannelState* state = nullptr;  // map nodes stay put: the key's state is looked up once a run
  std::int32_t stateKey = 0;
  for (auto it = m_pendingEvents.begin(); it != m_pendingEvents.end(); ++it) {
    const std::int64_t time = it->sampleTime;
    if (time < from || time >= to) {
      *kept++ = *it;
      continue;
    }
    if (!state || stateKey != it->channelKey) {
      stateKey = it->channelKey;
      state = &m_channelStates[stateKey];
    }
    hr = TakeIntoVoices(*it, *state);
    if (FAILED(hr)) {
      kept = std::move(it + 1, m_pendingEvents.end(), kept);
      break;
    }
  }
  if (kept != m_pendingEvents.end()) m_pendingEvents.erase(kept, m_pendingEvents.end());
  if (FAILED(hr)) return hr;
  CloseOpenNotes();
  return S_OK;
}

HRESULT CEventLine::TakeIntoVoices(HostEventRecord event, ChannelState& state) {
  if (event.kind == HostEventRecord::kMuteMask)
    state.muteBits = static_cast<std::uint8_t>((state.muteBits & ~event.channel) | event.port);
  if (IsNote(event)) {
    if (DropsMutedNote(event, state.muteBits)) return S_OK;
    event.key = Clamp7(event.key + state.keyOffset1 + state.keyOffset2);
    event.velocity = Clamp7(event.velocity + state.velocityOffset1 + state.velocityOffset2);
  }
  state.channel = kWindowChannel;
  event.channel = kWindowChannel;
  if (IsNote(event) && event.duration != 0) {
    const HRESULT hr = m_processing->OnNoteStart(event);
    if (hr != S_OK) return hr;  // negative ends the pass; positive leaves the event out
  }
  m_voiceQueue.push_back(event);
  return S_OK;
}

// Each note-off leaves the queue and closes the oldest open note of its key, which stays queued
// as a note-off of its own and so closes the next open note of that key in the next pass.
void CEventLine::CloseOpenNotes() {
  if (m_voiceQueue.empty()) return;
  std::array<bool, 128> offs{};
  std::erase_if(m_voiceQueue, [&offs](const HostEventRecord& r) {
    if (!IsNote(r) || r.duration != 0) return false;
    offs[r.key & 0x7F] = true;
    return true;
  });
  for (HostEventRecord& r : m_voiceQueue) {
    if (!IsNote(r) || r.duration != kOpenNote || !offs[r.key & 0x7F]) continue;
    r.duration = 0;
    offs[r.key & 0x7F] = false;
  }
}

HRESULT CEventLine::FlushPass(std::int32_t force) {
  HRESULT hr = S_OK;
  auto kept = m_voiceQueue.begin();
  for (auto it = m_voiceQueue.begin(); it != m_voiceQueue.end(); ++it) {
    bool drop;
    if (IsNote(*it)) {
      hr = m_processing->OnNoteFlush(*it, force);
      if (FAILED(hr)) {
        kept = std::move(it, m_voiceQueue.end(), kept);
        break;
      }
      drop = hr == S_OK;
    } else {
      drop = m_streamSample > it->sampleTime;
    }
    if (!drop) *kept++ = *it;
  }
  if (kept != m_voiceQueue.end()) m_voiceQueue.erase(kept, m_voiceQueue.end());
  return FAILED(hr) ? hr : S_OK;
}

HRESULT CEventLine::Process(std::int64_t position, AudioBuffer* input, AudioBuffer* outputs,
                            std::int32_t outputCount) {
  return m_processing->Process(position, input, outputs, outputCount, m_streamSample, m_voiceQueue);
}

std::optional<ChannelState> CEventLine::ChannelStateOf(std::int32_t channelKey) const {
  const auto it = m_channelStates.find(channelKey);
  if (it == m_channelStates.end()) return std::nullopt;
  return it->second;
}
