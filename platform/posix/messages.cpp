#include "platform/messages.h"

#include <map>
#include <mutex>
#include <string>

MessageId RegisterMessage(std::wstring_view name) {
  static std::mutex mutex;
  static std::map<std::wstring, MessageId, std::less<>> numbers;
  static MessageId next = 0xC000;

  std::lock_guard lock(mutex);
  if (const auto it = numbers.find(name); it != numbers.end()) return it->second;
  if (next > 0xFFFF) return 0;
  numbers.emplace(std::wstring(name), next);
  return next++;
}
