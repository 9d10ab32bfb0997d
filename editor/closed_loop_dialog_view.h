// The closed-loop test dialog's drawing, as its logic sees it: a passive, modal view. The logic
// writes the status line, the four numbers and the two bars, and works the Start and Stop
// buttons; the view reports the buttons and runs the modal loop, during which the dialog's
// timers tick.
//
// Everything here runs on the editor thread.
#pragma once

#include <cstdint>
#include <string>

#include "editor/view_factory.h"

enum ClosedLoopControlId : std::uint32_t {
  kClosedLoopClose = 1,          // push button "Close", the default; ends the dialog
  kClosedLoopOutputBar = 1035,   // progress bar labelled "Output"
  kClosedLoopInputBar = 1036,    // progress bar labelled "Input"
  kClosedLoopInstances = 1037,   // read-only edit: instances under test
  kClosedLoopStart = 1038,       // push button "Start"
  kClosedLoopStop = 1039,        // push button "Stop", disabled at first
  kClosedLoopStatus = 1040,      // static: the status line
  kClosedLoopDifference = 1041,  // read-only edit
  kClosedLoopSent = 1042,        // read-only edit
  kClosedLoopReceived = 1043,    // read-only edit
};

// The dialog's fixed texts, as its resource holds them.
inline constexpr const wchar_t* kClosedLoopTitle = L"MIDI Closed Loop Test";
inline constexpr int kClosedLoopWidthDlu = 354, kClosedLoopHeightDlu = 253;
inline constexpr const wchar_t* kClosedLoopIntroText =
    L"This tests MIDI data integrity through your system by outputting events on all enabled "
    L"Tarn instances and making sure the expected number of events return.";
inline constexpr const wchar_t* kClosedLoopInstructionsText =
    L"Instructions:\n\n1. Connect the MIDI outputs to MIDI inputs and configure Sorel to pass "
    L"event through unmodified.\n2. Press Start.";
inline constexpr const wchar_t* kClosedLoopInstancesLabel =
    L"Number of active instances of Tarn to be used in the test:  ";
inline constexpr const wchar_t* kClosedLoopDifferenceLabel =
    L"Difference between events output and input (should be zero):  ";
inline constexpr const wchar_t* kClosedLoopReceivedLabel =
    L"Count of all input events on all instances of Tarn.  Should be instances X output count.";

class IClosedLoopDialogEvents {
 public:
  // A push button was clicked: kClosedLoopStart, kClosedLoopStop or kClosedLoopClose. Closing
  // the window by its frame reports kClosedLoopClose too.
  virtual void OnButton(std::uint32_t id) = 0;

 protected:
  ~IClosedLoopDialogEvents() = default;
};

class IClosedLoopDialogView {
 public:
  virtual ~IClosedLoopDialogView() = default;

  // Where the view reports; null to stop reporting.
  virtual void SetEvents(IClosedLoopDialogEvents* events) = 0;
  // Shows the dialog modally and returns when EndDialog is called, with its code. The editor
  // thread's timers and posted messages keep being served meanwhile.
  virtual int RunModal() = 0;
  // Ends the modal loop; RunModal returns `result`.
  virtual void EndDialog(int result) = 0;

  // The text of the status line or of a read-only edit.
  virtual void SetText(std::uint32_t control, const std::wstring& text) = 0;
  virtual void EnableControl(std::uint32_t control, bool enabled) = 0;
  // A bar's range, 0 to `range`, as a 16-bit bar holds it, and its position.
  virtual void SetProgress(std::uint32_t control, std::uint16_t range, std::int32_t position) = 0;
};
