// The virtual back end's wiring: output N comes back as input N. Whole short messages that
// reach an output cross as live input to the instances listening at the input of the same
// number; until Open they are held, after Close dropped. Sysex blocks do not cross.
#pragma once

#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include "host/midi/port_traffic.h"

class CLiveRack;

class CInputRouting {
 public:
  // [traffic thread]
  void Route(const PortMessage& message);
  // [host thread] Delivers what was held, then everything as it comes.
  void Open(CLiveRack& live);
  // [host thread] From now on everything is dropped.
  void Close();

 private:
  std::mutex m_mutex;
  CLiveRack* m_live = nullptr;
  bool m_closed = false;
  std::vector<std::pair<std::int32_t, std::uint32_t>> m_held;
};
