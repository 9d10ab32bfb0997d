// Runs the built tarn-host in a fresh folder with a private registry and its own copy of the
// module (so that the module's "devices.xml" is the folder's too), and reads what it printed.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

struct HostResult {
  int code;
  std::string out;
  std::string err;
};

// One line of the monitor: "  12.345 ms  Virtual Out 1  B0 07 64".
struct MonitorEntry {
  double ms;
  std::string port;
  std::string bytes;  // "B0 07 64"
};

class HostRunner {
 public:
  // A fresh folder with the module copied in and registered.
  HostRunner();
  ~HostRunner();
  HostRunner(const HostRunner&) = delete;
  HostRunner& operator=(const HostRunner&) = delete;

  // Runs `tarn-host --registry <folder>/registry <arguments>` in the folder.
  HostResult Run(const std::string& arguments) const;
  // The same in the background: Run's result comes from Wait. One at a time.
  void Start(const std::string& arguments);
  // Whether the started host has printed `text`, within `timeout`.
  bool WaitForOutput(const std::string& text,
                     std::chrono::milliseconds timeout = std::chrono::seconds(10)) const;
  // A line on the started host's standard input, which ends when Wait begins.
  void Enter();
  HostResult Wait();
  const std::filesystem::path& Folder() const { return m_folder; }
  std::filesystem::path File(const std::string& name) const { return m_folder / name; }
  void Write(const std::string& name, const std::string& text) const;
  std::string Read(const std::string& name) const;

 private:
  std::string Command(const std::string& arguments) const;

  std::filesystem::path m_folder;
  pid_t m_started = -1;
  int m_input = -1;  // write end of the started host's standard input
};

// The monitor lines of `out`, in order.
std::vector<MonitorEntry> Monitor(const std::string& out);
// The bytes of each monitor line at `port`, in order, leaving out MIDI clock when asked.
std::vector<std::string> BytesAt(const std::string& out, const std::string& port,
                                 bool withClock = false);
