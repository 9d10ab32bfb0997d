// The registered window messages that instances and the page share, each registered once when
// the module loads. Every name ends in "-{F8C1103C-156D-4395-A922-42472183FC14}".
#pragma once

#include "platform/notify.h"

struct ModuleMessages {
  MessageId getMenu;         // "UWM_GETHMENU-..."
  MessageId displayPage;     // "UWM_DISPLAYPLUGINPROPERTYPAGE-..."
  MessageId pageLoaded;      // "UWM_PAGE_LOADED-..."
  MessageId inputActivity;   // "UWM_MIDI_INPUT_ACTIVITY-..."
  MessageId outputActivity;  // "UWM_MIDI_OUTPUT_ACTIVITY-..."
  MessageId refresh;         // "UWM_REFRESH-..."
};

// [any thread] The six numbers; registered on the first call, which the module makes at load.
const ModuleMessages& WindowMessages();
