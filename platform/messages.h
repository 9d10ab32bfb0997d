// Registered message numbers: one number per name, the same for every caller in the process,
// in the range the platform keeps for them (0xC000 to 0xFFFF).
#pragma once

#include <string_view>

#include "platform/notify.h"

// [any thread] The number registered for `name`, made on first use; 0 when the range is full.
MessageId RegisterMessage(std::wstring_view name);
