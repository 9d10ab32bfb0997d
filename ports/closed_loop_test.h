// The closed-loop wiring test: every enabled instance sends a fixed number of controller
// messages on its output, and the test counts what all instances send and receive. With every
// output heard by every instance under test, the wiring carries everything only when the total
// received is the number of instances times the total sent; a difference of zero after all
// sending is done, and only that, is a pass. A clean run is followed by another until the user
// stops.
//
// The object draws nothing and owns no timer: its owner (the editor's dialog, or a host running
// the test headless) shows the status and the numbers, works the buttons and ticks the timers.
// All of it runs on one thread, the owner's; timer ticks are serial.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "platform/notify.h"

struct IMyFilter;

// The owner's timers, by id.
enum ClosedLoopTimer : std::uint32_t {
  QuiesceTimer = 2112,  // waits until the input has gone quiet
  SendTimer = 2113,     // sends, and watches for the end of a run
  DrainTimer = 2114,    // waits for the last events to come back
  EndTimer = 2115,      // decides the outcome
};

// The period each timer is started with, in milliseconds; 0 for an id that is none of them.
constexpr std::uint32_t ClosedLoopTimerPeriodMs(std::uint32_t id) {
  switch (id) {
    case QuiesceTimer: return 1000;
    case SendTimer: return 100;
    case DrainTimer:
    case EndTimer: return 200;
    default: return 0;
  }
}

// The status lines, exactly as the user sees them.
inline constexpr const wchar_t* kClosedLoopWaiting = L"Waiting for quiescence MIDI input...";
inline constexpr const wchar_t* kClosedLoopTesting = L"Testing...";
inline constexpr const wchar_t* kClosedLoopFinishing = L"Finishing";
inline constexpr const wchar_t* kClosedLoopUserStop = L"User Stop";
inline constexpr const wchar_t* kClosedLoopRestarting = L"Restarting";
inline constexpr const wchar_t* kClosedLoopFinished = L"Finished";
inline constexpr const wchar_t* kClosedLoopMismatch =
    L"Check Results:  Number of input and output events does not match";

// What the owner shows on each refresh.
struct ClosedLoopNumbers {
  std::uint32_t instanceCount = 0;
  std::int32_t difference = 0;  // sent times instanceCount, less received
  std::uint32_t sent = 0;       // running total of every instance's sent events
  std::uint32_t received = 0;   // running total of every instance's received events
  // The ranges of the two bars, 640 times instanceCount and that times instanceCount again.
  // They are kept in 16 bits, as the bars hold them, so they wrap for very many instances; the
  // outcome does not depend on them.
  std::uint16_t outputRange = 0;
  std::uint16_t inputRange = 0;
};

// What the test needs of its owner. The owner starts with an empty status line, Start enabled
// and Stop disabled, and no timer running.
struct IClosedLoopTestOwner {
  // [editor thread] Calls `visit` with every live instance, in a fixed order, holding for the
  // whole walk the lock that keeps instances from entering or leaving (InstanceLock for the
  // module's own registry: WalkRegisteredInstances). `visit` may call the instance's counter,
  // send and flag operations, which take only that instance's own brief locks.
  virtual void WalkInstances(const std::function<void(IMyFilter*)>& visit) = 0;
  // [editor thread] Starts timer `id` firing every `periodMs` until it is stopped; starting a
  // running timer starts it again with that period. Ticks come back through OnTimer on this
  // thread, never inside another call of the test.
  virtual void StartTimer(std::uint32_t id, std::uint32_t periodMs) = 0;
  // [editor thread] Stops timer `id`; one that is not running stays stopped.
  virtual void StopTimer(std::uint32_t id) = 0;
  // [editor thread] Replaces the status line.
  virtual void ShowStatus(const std::wstring& text) = 0;
  // [editor thread] Enables or disables the Start and Stop buttons.
  virtual void EnableButtons(bool start, bool stop) = 0;
  // [editor thread] Shows the numbers and sets both bars: positions `sent` and `received`.
  virtual void Refresh(const ClosedLoopNumbers& numbers) = 0;

 protected:
  ~IClosedLoopTestOwner() = default;
};

// [editor thread] The module's registry walk, inside InstanceLock: what the dialog's owner
// answers to WalkInstances.
void WalkRegisteredInstances(const std::function<void(IMyFilter*)>& visit);

class ClosedLoopTest {
 public:
  static constexpr std::uint32_t kMessagesPerTick = 10;   // per instance
  static constexpr std::uint32_t kMessagesPerRun = 640;   // per instance
  static constexpr std::uint32_t kTestStatus = 0xB0;      // controller, first channel

  // [editor thread] Tells `opener` (the instance whose page opened the test, or null) that a
  // test opened in `window`, then takes into the test every instance whose output is active
  // (its worker runs and output is enabled), counts them, sets their test flag and clears their
  // counters. Instances that appear later are not taken in. `owner` must outlive the test.
  ClosedLoopTest(IClosedLoopTestOwner& owner, IMyFilter* opener, NotifyHandle window = 0);
  // [editor thread] Clears the test flag of every registered instance, taken in or not, so
  // their input is forwarded again.
  ~ClosedLoopTest();
  ClosedLoopTest(const ClosedLoopTest&) = delete;
  ClosedLoopTest& operator=(const ClosedLoopTest&) = delete;

  // [editor thread] The Start button: disables Start, enables Stop, shows the waiting text,
  // clears the counters and starts QuiesceTimer. The run begins at the first QuiesceTimer tick
  // that finds nothing sent or received since the tick before.
  void OnStart();
  // [editor thread] The Stop button: shows "User Stop", stops sending and goes straight to the
  // outcome, with no restart; then enables Start and disables Stop. The outcome at the next
  // EndTimer tick is "Finished" when everything sent has come back by then, else the mismatch
  // text.
  void OnStop();
  // [editor thread] One tick of timer `id`: reads the counters, does that timer's step, and
  // refreshes the owner's numbers. An id that is none of the four only reads and refreshes.
  void OnTimer(std::uint32_t id);

  // [editor thread] The numbers as the last read left them.
  ClosedLoopNumbers Numbers() const;
  // [editor thread] The number of the next test message: how many this run has queued, across
  // all instances, which `sent` reaches once the workers have put them out.
  std::uint32_t MessageNumber() const { return m_messageNumber; }

  // The packed test message for message number `number`: controller on the first channel, the
  // number's bits 0 to 6 as the controller and bits 7 to 13 as the value, so that it starts over
  // every 16384 messages.
  static constexpr std::uint32_t PackedMessage(std::uint32_t number) {
    const std::uint32_t low16 = number & 0xFFFFu;
    return kTestStatus | (low16 & 0x7Fu) << 8 | ((low16 >> 7) & 0x7Fu) << 16;
  }

 private:
  // Walks the owner's instances, calling `visit` only for those taken into the test.
  void WalkIncluded(const std::function<void(IMyFilter*)>& visit);
  // Zeroes every included instance's counters and the running totals.
  void ClearingRead();
  // Adds every included instance's counters to the running totals, zeroing them in the
  // instance, and works out the difference anew.
  void AccumulatingRead();
  // Ends a run: shows `text`, stops sending, and lets DrainTimer or EndTimer take over.
  void EndRun(const wchar_t* text, bool drain, bool repeat);
  void SendTick();
  void EndTick();
  void Refresh();
  std::uint32_t Limit() const { return kMessagesPerRun * m_instanceCount; }

  IClosedLoopTestOwner& m_owner;
  std::uint32_t m_instanceCount = 0;
  // An instance is under test when its entry is true; looking one up that has none adds it as
  // false. Entries of instances that have gone stay: they are only compared, never called.
  std::map<IMyFilter*, bool> m_included;
  std::int32_t m_difference = 0;
  std::uint32_t m_sent = 0;
  std::uint32_t m_received = 0;
  std::uint32_t m_messageNumber = 0;
  bool m_sending = false;
  bool m_repeat = true;
};
