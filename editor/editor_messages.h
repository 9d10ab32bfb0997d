// The registered message the event editors post to the page when they end:
// "UWM_REFRESH-{F8C1103C-156D-4395-A922-42472183FC14}", the same number the module registers.
#pragma once

#include "platform/notify.h"

// [any thread] Registered on first use.
MessageId RefreshMessage();
