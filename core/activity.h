// What instances share on the MIDI path besides the instance registry: the lock around every
// port send, and the registered numbers of the activity messages the page listens to.
#pragma once

#include <cstdint>

#include "documents/short_message.h"
#include "platform/lock.h"
#include "platform/notify.h"

// [output worker] Held around each single port call, across all instances: ports are shared,
// and a system exclusive block must not be cut into by another instance's message.
CCritSec& SendLock();

// "UWM_MIDI_INPUT_ACTIVITY-{...}" and "UWM_MIDI_OUTPUT_ACTIVITY-{...}". The word parameter is a
// level from 10 to 127, the long parameter 0.
MessageId InputActivityMessage();
MessageId OutputActivityMessage();

// The meter level of a message: a note-on's or controller's third byte, at least 10; else 10.
constexpr std::uint32_t ActivityLevel(ShortMessage m) noexcept {
  if (m.Kind() == 0x90 || m.Kind() == 0xB0) return m.Data2() < 10 ? 10u : m.Data2();
  return 10;
}
