// The sequenced line: timed events from the host are converted to stream samples, kept until
// the audio reaches them, adjusted by the per-key mixing state and queued as voices. The
// processing class takes no action on them, so nothing of this line ever leaves the instance.
//
// Every operation runs under the instance lock, which the caller holds.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "core/dxi.h"
#include "interfaces/host_records.h"

class CEventLine {
 public:
  // [construction] The processing class that is asked about each event and note; it outlives
  // the line, and is bound before any other operation.
  void Bind(CDXi& processing) noexcept { m_processing = &processing; }

  // [host thread, instance lock] Transport. Start drops every queued event and starts the
  // stream at `startSample`; Loop moves later events by `shift` samples more; Stop drops every
  // queued event and leaves the positions.
  void Start(std::int64_t startSample);
  void Loop(std::int64_t shift) noexcept { m_loopShift += shift; }
  void Stop();
  // [host thread, instance lock] Keeps `record`, timed `sampleTime` samples from the start tick,
  // for the channel key; the processing class's negative answer is the result, and its
  // positive answer leaves the event out.
  HRESULT Queue(HostEventRecord record, std::int64_t sampleTime, std::int32_t channelKey);
  // [host thread, instance lock] A change of a key's mixing state (a ChannelStateMessage).
  void Notify(const ChannelStateMessage& message);

  // [streaming thread, instance lock] Takes every pending event whose sample time lies in
  // [stream position, stream position + frames) out of the pending list (the others keep their
  // order), adjusts it by its key's mixing state, and appends it to the voice queue. Then each
  // note-off in the queue leaves it and closes the oldest open note of its key: one note per
  // note-off per pass. The processing class's first negative answer, else 0.
  HRESULT WindowPass(std::int32_t frames);
  // [streaming thread, instance lock] Drops from the voice queue what is not a note once the
  // stream has passed its time, and the notes that the processing class lets go. Its first
  // negative answer stops the walk and is the result; else 0.
  HRESULT FlushPass(std::int32_t force);
  // [streaming thread, instance lock] The processing class's Process at the stream position.
  HRESULT Process(std::int64_t position, AudioBuffer* input, AudioBuffer* outputs,
                  std::int32_t outputCount);
  // [streaming thread, instance lock] Moves the stream position on by `frames`.
  void Advance(std::int32_t frames) noexcept { m_streamSample += frames; }

  // [instance lock] Where a tick lands on the stream, given its sample time from the song's 0.
  std::int64_t StreamTime(std::int64_t sampleTime) const noexcept {
    return m_loopShift - m_startSample + sampleTime;
  }
  // [instance lock] Copies for whoever must see the line.
  std::vector<HostEventRecord> PendingEvents() const { return m_pendingEvents; }
  std::vector<HostEventRecord> Voices() const { return {m_voiceQueue.begin(), m_voiceQueue.end()}; }
  std::optional<ChannelState> ChannelStateOf(std::int32_t channelKey) const;

 private:
  // Adjusts the copy of a taken event by its key's `state` and queues it; the processing
  // class's negative answer ends the window pass.
  HRESULT TakeIntoVoices(HostEventRecord event, ChannelState& state);
  void CloseOpenNotes();

  CDXi* m_processing = nullptr;
  std::vector<HostEventRecord> m_pendingEvents;
  VoiceQueue m_voiceQueue;
  std::map<std::int32_t, ChannelState> m_channelStates;
  std::int64_t m_streamSample = 0;
  std::int64_t m_startSample = 0;
  std::int64_t m_loopShift = 0;
};
