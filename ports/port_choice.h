// Which of the host's ports an instance uses: the names and indexes last chosen, and whether
// output is enabled. The editor and a load choose; the worker, the page and the host's summary
// read from other threads, so the names are guarded and the worker's fields are atomics.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "interfaces/host_midi_ports.h"

class CPortChoice {
 public:
  enum class Direction { Input, Output };

  // [editor thread or load] Takes the first port of `ports` named exactly `name` and announces
  // its id to a host that offers ids. No match, or no ports: E_FAIL with the choice unchanged,
  // and a warning box unless the name is empty.
  HRESULT Select(IHostMidiPorts* ports, Direction direction, const std::wstring& name);
  // [any thread] False also forgets the output port's name and index.
  void SetOutputEnabled(bool enabled);

  // [any thread] Snapshots of the choice.
  bool OutputEnabled() const noexcept { return m_outputEnabled.load(); }
  std::int32_t OutputIndex() const noexcept { return m_outputIndex.load(); }
  std::int32_t InputIndex() const noexcept { return m_inputIndex.load(); }
  std::wstring OutputName() const;
  std::wstring InputName() const;

 private:
  // First, so that what the output worker reads for each batch shares one cache line.
  std::atomic<std::int32_t> m_outputIndex{-1};
  std::atomic<std::int32_t> m_inputIndex{-1};
  std::atomic<bool> m_outputEnabled{false};
  mutable std::mutex m_namesLock;  // guards the two names
  std::wstring m_outputName;
  std::wstring m_inputName;
};
