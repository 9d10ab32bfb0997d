// Test stand-ins for the editor's platform presenters: file dialogs, popup menus and timers. Each
// installs itself for its lifetime and restores the one before. All run on the test's thread,
// which plays the editor thread.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/file_dialog.h"
#include "platform/popup_menu.h"
#include "platform/timer.h"

// Records each request and answers the paths queued with AnswerNext, in order; Cancel when
// nothing is queued.
class FileDialogRecorder final : public CFileDialogPresenter {
 public:
  FileDialogRecorder();
  ~FileDialogRecorder();
  FileDialogRecorder(const FileDialogRecorder&) = delete;
  FileDialogRecorder& operator=(const FileDialogRecorder&) = delete;

  std::optional<std::wstring> Choose(const FileDialogRequest& request) override;

  // Queues the answer of a coming dialog: a path, or nothing for Cancel.
  void AnswerNext(std::optional<std::wstring> path) { m_answers.push_back(std::move(path)); }
  const std::vector<FileDialogRequest>& Requests() const noexcept { return m_requests; }

 private:
  std::vector<FileDialogRequest> m_requests;
  std::deque<std::optional<std::wstring>> m_answers;
  CFileDialogPresenter* m_previous;
};

// Records each menu shown (a copy, with where it was shown) and answers what was queued: a
// command, or a chooser that looks at the menu; 0 (dismissed) when nothing is queued.
class PopupMenuRecorder final : public CPopupMenuPresenter {
 public:
  using Chooser = std::function<std::uint32_t(const CPopupMenu&)>;
  struct Shown {
    CPopupMenu menu;
    int x;
    int y;
  };

  PopupMenuRecorder();
  ~PopupMenuRecorder();
  PopupMenuRecorder(const PopupMenuRecorder&) = delete;
  PopupMenuRecorder& operator=(const PopupMenuRecorder&) = delete;

  std::uint32_t Track(const CPopupMenu& menu, int x, int y) override;

  void AnswerNext(std::uint32_t command);
  void AnswerNext(Chooser chooser) { m_answers.push_back(std::move(chooser)); }
  const std::vector<Shown>& Menus() const noexcept { return m_shown; }

 private:
  std::vector<Shown> m_shown;
  std::deque<Chooser> m_answers;
  CPopupMenuPresenter* m_previous;
};

// A manual clock for window timers: keeps which timers run with which period, and ticks them
// only when the test says so, so that timed logic runs in microseconds.
class ManualTimers final : public CTimerPresenter {
 public:
  ManualTimers();
  ~ManualTimers();
  ManualTimers(const ManualTimers&) = delete;
  ManualTimers& operator=(const ManualTimers&) = delete;

  void Start(ITimerClient& client, std::uint32_t id, std::uint32_t periodMs) override;
  void Stop(ITimerClient& client, std::uint32_t id) override;

  std::size_t RunningCount() const noexcept { return m_timers.size(); }
  // Lets `ms` milliseconds pass: every running timer ticks each time its period comes round,
  // in time order (by id between timers due at the same moment). A timer started or stopped by
  // a tick takes effect from that moment on.
  void Advance(std::uint32_t ms);

 private:
  struct Running {
    std::uint32_t periodMs;
    std::uint64_t nextDue;  // in ms of the manual clock
  };
  using Key = std::pair<ITimerClient*, std::uint32_t>;

  std::map<Key, Running> m_timers;
  std::uint64_t m_now = 0;
  CTimerPresenter* m_previous;
};
