#include "ports/closed_loop_test.h"

#include "interfaces/my_filter.h"
#include "ports/instance_tracker.h"

void WalkRegisteredInstances(const std::function<void(IMyFilter*)>& visit) {
  WalkInstances([&](IMyFilter* instance) { visit(instance); });
}

ClosedLoopTest::ClosedLoopTest(IClosedLoopTestOwner& owner, IMyFilter* opener,
                               NotifyHandle window)
    : m_owner(owner) {
  if (opener) opener->OpenClosedLoopTest(window);
  m_owner.WalkInstances([&](IMyFilter* instance) {
    std::uint8_t active = 0;
    instance->IsOutputActive(&active);
    if (!active) return;
    ++m_instanceCount;
    m_included[instance] = true;
    instance->SetClosedLoopTest(1);
  });
  ClearingRead();
}

ClosedLoopTest::~ClosedLoopTest() {
  m_owner.WalkInstances([](IMyFilter* instance) { instance->SetClosedLoopTest(0); });
}

void ClosedLoopTest::WalkIncluded(const std::function<void(IMyFilter*)>& visit) {
  m_owner.WalkInstances([&](IMyFilter* instance) {
    if (m_included[instance]) visit(instance);
  });
}

void ClosedLoopTest::ClearingRead() {
  WalkIncluded([](IMyFilter* instance) {
    std::uint32_t received = 0, sent = 0;
    instance->GetEventCounters(&received, &sent, 1);
  });
  m_difference = 0;
  m_sent = 0;
  m_received = 0;
}

// The totals are unsigned and wrap, as the counts do; the difference is their 32-bit
// difference read as signed.
void ClosedLoopTest::AccumulatingRead() {
  WalkIncluded([&](IMyFilter* instance) {
    std::uint32_t received = 0, sent = 0;
    instance->GetEventCounters(&received, &sent, 1);
    m_received += received;
    m_sent += sent;
  });
  m_difference = static_cast<std::int32_t>(m_sent * m_instanceCount - m_received);
}

void ClosedLoopTest::OnStart() {
  m_owner.EnableButtons(false, true);
  m_owner.ShowStatus(kClosedLoopWaiting);
  ClearingRead();
  m_owner.StartTimer(QuiesceTimer, ClosedLoopTimerPeriodMs(QuiesceTimer));
}

void ClosedLoopTest::OnStop() {
  EndRun(kClosedLoopUserStop, false, false);
  m_owner.EnableButtons(true, false);
}

void ClosedLoopTest::EndRun(const wchar_t* text, bool drain, bool repeat) {
  m_owner.ShowStatus(text);
  m_owner.StopTimer(SendTimer);
  const std::uint32_t next = drain ? DrainTimer : EndTimer;
  m_owner.StartTimer(next, ClosedLoopTimerPeriodMs(next));
  m_repeat = repeat;
  m_sending = false;
}

void ClosedLoopTest::OnTimer(std::uint32_t id) {
  AccumulatingRead();
  switch (id) {
    case QuiesceTimer:
      // Traffic seen in the last period postpones the start by one more period.
      if (m_received == 0 && m_sent == 0) {
        m_messageNumber = 0;
        m_owner.StopTimer(QuiesceTimer);
        m_owner.StartTimer(SendTimer, ClosedLoopTimerPeriodMs(SendTimer));
        m_sending = true;
        m_repeat = true;
        m_owner.ShowStatus(kClosedLoopTesting);
      } else {
        ClearingRead();
      }
      break;
    case SendTimer:
      SendTick();
      break;
    case DrainTimer:
      m_owner.StopTimer(QuiesceTimer);
      m_owner.StopTimer(SendTimer);
      // No time-out: a run that lost events stands here until the user stops it.
      if (m_difference == 0) {
        m_owner.StopTimer(DrainTimer);
        m_owner.StartTimer(EndTimer, ClosedLoopTimerPeriodMs(EndTimer));
      }
      break;
    case EndTimer:
      EndTick();
      break;
    default:
      break;
  }
  Refresh();
}

// `sent` counts what the workers have put out, not what was queued, so sending may run a few
// ticks past the limit; the difference allows for that.
void ClosedLoopTest::SendTick() {
  if (m_sent >= Limit()) EndRun(kClosedLoopFinishing, true, true);
  if (!m_sending) return;
  WalkIncluded([&](IMyFilter* instance) {
    for (std::uint32_t i = 0; i < kMessagesPerTick; ++i) {
      // An instance whose output was disabled since refuses; it just adds nothing to `sent`.
      instance->SendTestMessage(PackedMessage(m_messageNumber));
      ++m_messageNumber;
    }
  });
}

void ClosedLoopTest::EndTick() {
  for (std::uint32_t id : {QuiesceTimer, SendTimer, DrainTimer, EndTimer}) m_owner.StopTimer(id);
  if (m_difference != 0) m_repeat = false;
  if (m_repeat) {
    m_owner.StartTimer(QuiesceTimer, ClosedLoopTimerPeriodMs(QuiesceTimer));
    m_owner.ShowStatus(kClosedLoopRestarting);
  } else if (m_difference != 0) {
    m_owner.ShowStatus(kClosedLoopMismatch);
  } else {
    m_owner.ShowStatus(kClosedLoopFinished);
  }
}

void ClosedLoopTest::Refresh() {
  AccumulatingRead();
  m_owner.Refresh(Numbers());
}

ClosedLoopNumbers ClosedLoopTest::Numbers() const {
  ClosedLoopNumbers numbers;
  numbers.instanceCount = m_instanceCount;
  numbers.difference = m_difference;
  numbers.sent = m_sent;
  numbers.received = m_received;
  const std::uint32_t outputRange = Limit();
  numbers.outputRange = static_cast<std::uint16_t>(outputRange);
  numbers.inputRange = static_cast<std::uint16_t>(outputRange * m_instanceCount);
  return numbers;
}
