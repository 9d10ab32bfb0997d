// The page's operations that edit a stored event in its dialog: a bank and program change, one
// controller, a pause. The first two open their dialog only for an event of their shape; an
// event of another shape opens nothing, shows nothing and posts nothing. The event is written
// only when the dialog ends with OK, and the event list then refilled; UWM_REFRESH goes to the
// page when the dialog ends either way.
#pragma once

#include <functional>

#include "editor/view_factory.h"
#include "interfaces/my_filter.h"
#include "platform/notify.h"

class CStoredEvent;

// What an edit needs of the page.
struct EventEditHost {
  IMyFilter* filter = nullptr;  // the instance; its device's names feed the preset tree
  ParentWindow parent = nullptr;
  NotifyHandle page = 0;  // where UWM_REFRESH goes
  std::function<void()> fillEventList;
};

// [editor thread] Three messages B0 00 msb, B0 20 lsb, C0 program (any channels): the program
// dialog. On OK all three carry the dialog's channel; MSB is masked to 7 bits, LSB and program
// are taken modulo 128.
void EditProgramEvent(CStoredEvent& event, const EventEditHost& host);
// [editor thread] One controller message: the controller dialog. On OK one message with the
// channel, and controller and value masked to 7 bits.
void EditControllerEvent(CStoredEvent& event, const EventEditHost& host);
// [editor thread] Any event opens the wait dialog; name and description are written on OK, and
// the pause only when the event was a pause already.
void EditWaitEvent(CStoredEvent& event, const EventEditHost& host);
