#include "core/activity.h"

#include "platform/messages.h"

CCritSec& SendLock() {
  static CCritSec lock;
  return lock;
}

MessageId InputActivityMessage() {
  static const MessageId id =
      RegisterMessage(L"UWM_MIDI_INPUT_ACTIVITY-{F8C1103C-156D-4395-A922-42472183FC14}");
  return id;
}

MessageId OutputActivityMessage() {
  static const MessageId id =
      RegisterMessage(L"UWM_MIDI_OUTPUT_ACTIVITY-{F8C1103C-156D-4395-A922-42472183FC14}");
  return id;
}
