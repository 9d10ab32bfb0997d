#include <string>

#include "platform/messages.h"
#include "platform/windows/system.h"

MessageId RegisterMessage(std::wstring_view name) {
  return RegisterWindowMessageW(std::wstring(name).c_str());
}
