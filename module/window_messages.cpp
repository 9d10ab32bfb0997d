#include "module/window_messages.h"

#include "platform/messages.h"

const ModuleMessages& WindowMessages() {
  static const ModuleMessages messages{
      RegisterMessage(L"UWM_GETHMENU-{F8C1103C-156D-4395-A922-42472183FC14}"),
      RegisterMessage(L"UWM_DISPLAYPLUGINPROPERTYPAGE-{F8C1103C-156D-4395-A922-42472183FC14}"),
      RegisterMessage(L"UWM_PAGE_LOADED-{F8C1103C-156D-4395-A922-42472183FC14}"),
      RegisterMessage(L"UWM_MIDI_INPUT_ACTIVITY-{F8C1103C-156D-4395-A922-42472183FC14}"),
      RegisterMessage(L"UWM_MIDI_OUTPUT_ACTIVITY-{F8C1103C-156D-4395-A922-42472183FC14}"),
      RegisterMessage(L"UWM_REFRESH-{F8C1103C-156D-4395-A922-42472183FC14}"),
  };
  return messages;
}
