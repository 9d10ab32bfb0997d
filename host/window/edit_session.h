// A rack opened for editing: its instances made on the rack's MIDI back end, running (their
// workers send at once) with their states loaded, as a host holds them while the user edits.
// On the virtual ports output N comes back as live input N, so an instance's input meter moves
// with its output. What reaches the ports is kept for the window's monitor. The rack is saved on request; whether it
// changed is told by comparing what the instances would save with what the file holds.
//
// Everything here runs on the host's window thread, but the port traffic, which runs on a
// thread of its own.
#pragma once

#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/cli/commands.h"
#include "host/midi/midi_session.h"
#include "host/rack/live_rack.h"
#include "interfaces/property_page.h"

class CEditSession {
 public:
  // The rack at `file` brought to life on its MIDI back end, or on the one `backEnds` names;
  // nothing, with `error` saying why, when the file cannot be read or the back end cannot start. Faults of single instances go to `errors`.
  static std::unique_ptr<CEditSession> Open(const std::filesystem::path& file,
                                            CLiveRack::ErrorSink errors, std::string& error,
                                            const BackEndOptions& backEnds = {});
  // Stops the instances and the traffic.
  ~CEditSession();
  CEditSession(const CEditSession&) = delete;
  CEditSession& operator=(const CEditSession&) = delete;

  const std::filesystem::path& File() const noexcept { return m_file; }
  std::vector<LiveInstance>& Instances() { return m_live->Instances(); }
  // The property page of `instance`, made through its module as a host makes it: the first
  // page the instance names. Null with `error` when there is none.
  ComPtr<IPropertyPage> CreatePage(LiveInstance& instance, std::string& error);

  // True when an instance would now save other bytes than the rack holds.
  bool Changed();
  // Writes every instance's state into the rack file; false with `error` when it cannot.
  bool Save(std::string& error);

  // [any thread] The monitor's lines that came since the last call, oldest first.
  std::vector<std::string> TakeMonitorLines();

 private:
  CEditSession(std::filesystem::path file, Rack rack);
  void Start(CLiveRack::ErrorSink errors);
  // [traffic thread]
  void OnMonitorLine(const std::string& line);

  const std::filesystem::path m_file;
  Rack m_rack;  // as the file holds it now
  std::mutex m_monitorMutex;
  std::deque<std::string> m_monitor;
  std::unique_ptr<CMidiSession> m_midi;
  std::unique_ptr<CLiveRack> m_live;
};
