#include "editor/editor_messages.h"

#include "platform/messages.h"

MessageId RefreshMessage() {
  static const MessageId id =
      RegisterMessage(L"UWM_REFRESH-{F8C1103C-156D-4395-A922-42472183FC14}");
  return id;
}
