// The outside world of the JACK tests: a server of a test's own, and JACK's example clients run
// in the background with their output in a file. Each ends by its process id when its object
// goes, and with the test process if that dies first.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

class CBackground {
 public:
  // Runs `command` through /bin/sh, its standard output and error to `output`.
  CBackground(const std::string& command, const std::filesystem::path& output);
  ~CBackground() { Stop(); }
  CBackground(const CBackground&) = delete;
  CBackground& operator=(const CBackground&) = delete;

  // Ends the program and whatever it started (SIGTERM, then SIGKILL after a second) and waits
  // for it.
  void Stop();

 private:
  pid_t m_pid;
};

// A dummy-backend server named `name` at `rate` and `period`, up when the constructor returns.
class CJackServer {
 public:
  CJackServer(const std::string& name, int rate, int period, const std::filesystem::path& log);
  bool Up() const { return m_up; }
  void Stop() { m_server.Stop(); }
  // What the server printed, for a failure's message.
  std::string Log() const;

 private:
  std::filesystem::path m_log;
  CBackground m_server;
  bool m_up = false;
};

// Whether jackd is installed.
bool JackInstalled();
// The ports of the server JACK_DEFAULT_SERVER names, or none when it cannot be reached.
std::vector<std::string> JackPorts();
// Waits until `port` is listed; false after `timeout`.
bool WaitForJackPort(const std::string& port,
                     std::chrono::milliseconds timeout = std::chrono::seconds(10));
// The cycles in which the server found a client unfinished (xruns), as the log of the server
// that TARN_JACK_SERVER_LOG names shows them; 0 without one.
std::size_t ServerXruns();
// jack_connect `from` `to`.
bool JackConnect(const std::string& from, const std::string& to);

// One line of jack_midi_dump -a: the frame it arrived at and its bytes, "92 3c 40".
struct DumpedMessage {
  long long frame;
  std::string bytes;
};
std::vector<DumpedMessage> ReadDump(const std::filesystem::path& file);
