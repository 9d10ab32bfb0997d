// What reaches the host's MIDI ports, moved off the sender's thread: senders (the instances'
// output workers) queue each message with its arrival time, and one host thread takes them in
// order, shows them on the monitor and delivers them where they are wired.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/midi/midi_back_end.h"

struct PortMessage {
  std::chrono::steady_clock::duration time;  // since the traffic started
  std::int32_t port;                         // the output port it was sent on
  std::vector<std::uint8_t> bytes;
};

class CPortTraffic final : public CMidiPortListener {
 public:
  using Handler = std::function<void(const PortMessage&)>;

  // [host thread] Starts the host thread, which calls `handler` for each message in arrival
  // order. Time runs from here.
  explicit CPortTraffic(Handler handler);
  // Delivers what is queued, then ends the thread.
  ~CPortTraffic();
  CPortTraffic(const CPortTraffic&) = delete;
  CPortTraffic& operator=(const CPortTraffic&) = delete;

  // [the sender's thread] Queues one message or one sysex block; never waits for the handler.
  void OnPortSend(std::int32_t port, std::span<const std::uint8_t> bytes) override;
  // [host thread] Waits until every message queued so far has been handled.
  void Drain();
  // [any thread] Messages handled so far.
  std::int64_t Handled() const;
  // [any thread] Where the messages' times count from.
  std::chrono::steady_clock::time_point Start() const { return m_start; }

 private:
  void Deliver();

  const Handler m_handler;
  const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
  mutable std::mutex m_mutex;
  std::condition_variable m_changed;
  std::deque<PortMessage> m_queue;
  std::int64_t m_queued = 0;
  std::int64_t m_handled = 0;
  bool m_stopping = false;
  std::thread m_thread;  // last, so it starts after everything it uses
};

// The monitor's line for one message: its time in milliseconds, the port's name and the bytes in
// hex, e.g. "    12.345 ms  Virtual Out 1  B0 07 64".
std::string MonitorLine(const PortMessage& message, const std::wstring& portName);
