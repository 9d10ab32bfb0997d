// "MIDI Closed Loop Test": the dialog around the closed-loop test's logic. It owns the test, its
// four timers and its controls: Start and Stop go to the test, each timer tick too, and the
// test's status line, buttons and numbers come back to the controls.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "editor/closed_loop_dialog_view.h"
#include "platform/timer.h"
#include "ports/closed_loop_test.h"

struct IMyFilter;

class CMidiClosedLoopTestDlg final : private IClosedLoopTestOwner,
                                     private IClosedLoopDialogEvents,
                                     private ITimerClient {
 public:
  // `filter` is the instance whose page opens the test; `parent` the page's window.
  CMidiClosedLoopTestDlg(IMyFilter* filter, ParentWindow parent);
  ~CMidiClosedLoopTestDlg();
  CMidiClosedLoopTestDlg(const CMidiClosedLoopTestDlg&) = delete;
  CMidiClosedLoopTestDlg& operator=(const CMidiClosedLoopTestDlg&) = delete;

  // [editor thread] Takes every instance whose output is active into a test, shows the dialog
  // until Close, then stops the timers and ends the test, which clears every instance's test
  // flag. Answers 1 (Close), or 2 at once when no view can be made.
  int DoModal();

 private:
  // IClosedLoopTestOwner
  void WalkInstances(const std::function<void(IMyFilter*)>& visit) override;
  void StartTimer(std::uint32_t id, std::uint32_t periodMs) override;
  void StopTimer(std::uint32_t id) override;
  void ShowStatus(const std::wstring& text) override;
  void EnableButtons(bool start, bool stop) override;
  void Refresh(const ClosedLoopNumbers& numbers) override;
  // IClosedLoopDialogEvents
  void OnButton(std::uint32_t id) override;
  // ITimerClient
  void OnTimer(std::uint32_t id) override;

  IMyFilter* m_filter;
  ParentWindow m_parent;
  std::unique_ptr<IClosedLoopDialogView> m_view;
  std::unique_ptr<ClosedLoopTest> m_test;
};
