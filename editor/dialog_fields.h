// Reading and checking the number boxes of the event dialogs on OK, as a dialog's data exchange
// does: a value that does not parse or lies outside its range brings up a message naming the
// limits and puts the caret back in its box.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "editor/event_dialog_views.h"

// A whole decimal number filling the text (blanks around it allowed); nothing otherwise.
std::optional<std::int32_t> ParseInteger(std::wstring_view text);
// A decimal number filling the text; nothing otherwise, also for infinities and NaN.
std::optional<float> ParseFloat(std::wstring_view text);

std::wstring FormatInteger(std::int64_t value);
// As a float is shown in a dialog: up to 6 significant digits, "1000", "0.5", "1e+06".
std::wstring FormatFloat(float value);

// [editor thread] True when `value` is there and within `min` to `max`; else the message and
// the caret in `control`, and false.
bool CheckIntegerField(IEventDialogView& view, int control, std::optional<std::int32_t> value,
                       std::int32_t min, std::int32_t max);
bool CheckFloatField(IEventDialogView& view, int control, std::optional<float> value, float min,
                     float max);
