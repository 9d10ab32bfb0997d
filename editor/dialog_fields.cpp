#include "editor/dialog_fields.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "platform/message_box.h"

namespace {

bool OnlyBlanks(const wchar_t* rest) {
  for (; *rest; ++rest)
    if (*rest != L' ' && *rest != L'\t') return false;
  return true;
}

void Refuse(IEventDialogView& view, int control, const std::wstring& message) {
  ShowMessageBox(message, L"Tarn", MB_ICONWARNING_FLAG);
  view.FocusItem(control);
}

}  // namespace

std::optional<std::int32_t> ParseInteger(std::wstring_view text) {
  const std::wstring copy(text);
  wchar_t* rest = nullptr;
  errno = 0;
  const long long value = std::wcstoll(copy.c_str(), &rest, 10);
  if (rest == copy.c_str() || !OnlyBlanks(rest) || errno == ERANGE) return std::nullopt;
  if (value < INT32_MIN || value > INT32_MAX) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

std::optional<float> ParseFloat(std::wstring_view text) {
  const std::wstring copy(text);
  wchar_t* rest = nullptr;
  const double value = std::wcstod(copy.c_str(), &rest);
  if (rest == copy.c_str() || !OnlyBlanks(rest) || !std::isfinite(value)) return std::nullopt;
  return static_cast<float>(value);
}

std::wstring FormatInteger(std::int64_t value) { return std::to_wstring(value); }

std::wstring FormatFloat(float value) {
  wchar_t text[32];
  std::swprintf(text, 32, L"%.*g", 6, static_cast<double>(value));
  return text;
}

bool CheckIntegerField(IEventDialogView& view, int control, std::optional<std::int32_t> value,
                       std::int32_t min, std::int32_t max) {
  if (value && *value >= min && *value <= max) return true;
  Refuse(view, control,
         L"Enter a whole number from " + FormatInteger(min) + L" to " + FormatInteger(max) + L".");
  return false;
}

bool CheckFloatField(IEventDialogView& view, int control, std::optional<float> value, float min,
                     float max) {
  if (value && *value >= min && *value <= max) return true;
  Refuse(view, control,
         L"Enter a number from " + FormatFloat(min) + L" to " + FormatFloat(max) + L".");
  return false;
}
