// The views of the three event dialogs: program change, controller and wait. Their boxes are
// reached by control id; number boxes take digits only (the view refuses other characters), and
// the logic reads and checks them when OK is pressed. A refused value keeps the dialog open.
#pragma once

#include <string>

#include "editor/modal_view.h"
#include "editor/text_box_view.h"

// Shared by all three.
inline constexpr int kEventNameBox = 1019;
inline constexpr int kEventDescriptionBox = 1020;
inline constexpr const wchar_t* kEventNameLabel = L"Name:";
inline constexpr const wchar_t* kEventDescriptionLabel = L"Description:";

namespace program_dialog {
inline constexpr const wchar_t* kTitle = L"Edit Program Change Event";
inline constexpr int kWidthDlu = 249, kHeightDlu = 182;
inline constexpr int kPresetName = 1033;    // read-only: the preset picked, empty at start
inline constexpr int kPresetButton = 1034;  // "...": the preset tree
inline constexpr int kChannelBox = 1035;    // number box, 1 to 16
inline constexpr int kMsbBox = 1027;        // hex or decimal, in the group "Bank"
inline constexpr int kLsbBox = 1028;
inline constexpr int kProgramBox = 1030;    // number box
inline constexpr const wchar_t* kPresetLabel = L"Select by preset name";
inline constexpr const wchar_t* kPresetButtonText = L"...";
inline constexpr const wchar_t* kManualLabel = L"Select by manual entry";
inline constexpr const wchar_t* kChannelLabel = L"Channel";
inline constexpr const wchar_t* kBankGroup = L"Bank";
inline constexpr const wchar_t* kMsbLabel = L"MSB";
inline constexpr const wchar_t* kLsbLabel = L"LSB";
inline constexpr const wchar_t* kProgramLabel = L"Program";
}  // namespace program_dialog

namespace controller_dialog {
inline constexpr const wchar_t* kTitle = L"Edit Controller Event";
inline constexpr int kWidthDlu = 318, kHeightDlu = 111;
inline constexpr int kChannelBox = 1033, kControllerBox = 1031, kValueBox = 1032;  // numbers
inline constexpr const wchar_t* kChannelLabel = L"Channel";
inline constexpr const wchar_t* kControllerLabel = L"Controller";
inline constexpr const wchar_t* kValueLabel = L"Value";
}  // namespace controller_dialog

namespace wait_dialog {
inline constexpr const wchar_t* kTitle = L"Edit Wait Event";
inline constexpr int kWidthDlu = 249, kHeightDlu = 115;
inline constexpr int kMillisecondsBox = 1026;  // number box
inline constexpr const wchar_t* kHelp =
    L"Enter the length of this wait event in milliseconds.  1000 MS = 1 Second.";
}  // namespace wait_dialog

class IProgramDialogEvents : public IModalEvents {
 public:
  // [editor thread, inside RunModal] The "..." button (1034) was pressed.
  virtual void OnPresetButton() = 0;

 protected:
  ~IProgramDialogEvents() = default;
};

// The boxes of a dialog by control id.
class IEventDialogView : public IModalView {
 public:
  // [editor thread]
  virtual void SetItemText(int control, const std::wstring& text) = 0;
  virtual std::wstring ItemText(int control) const = 0;
  // [editor thread] Puts the caret in the box whose value was refused, its text selected.
  virtual void FocusItem(int control) = 0;
};

class IProgramDialogView : public IEventDialogView {
 public:
  // [editor thread] The MSB (1027) and LSB (1028) boxes, which their logic drives; valid for
  // the view's life. ItemText and SetItemText reach their text as well.
  virtual ITextBoxView& BankBox(int control) = 0;
  // [editor thread] The lower left corner of the "..." button, where the preset tree opens.
  virtual ScreenPoint PresetButtonCorner() const = 0;
  // [editor thread] Shows the dialog until EndDialog; answers its result.
  virtual int RunModal(IProgramDialogEvents& events) = 0;
};

class IControllerDialogView : public IEventDialogView {
 public:
  // [editor thread] Shows the dialog until EndDialog; answers its result.
  virtual int RunModal(IModalEvents& events) = 0;
};

class IWaitDialogView : public IEventDialogView {
 public:
  // [editor thread] Shows the dialog until EndDialog; answers its result.
  virtual int RunModal(IModalEvents& events) = 0;
};
