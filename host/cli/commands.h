// The commands of tarn-host, each a function of its parsed options that prints to standard
// output, reports faults on standard error as "tarn-host: <file>: <what>", and answers the
// process's exit code: 0 when everything worked, 1 when something failed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct RegisterOptions {
  std::filesystem::path module;  // empty: the module installed beside tarn-host
  bool unregister = false;
};
int RegisterCommand(const RegisterOptions& options);

// The registered soft synths: identifier, name and module, one a line.
int ListCommand();


struct NewOptions {
  std::filesystem::path rack;
  int count = 2;
  std::vector<std::string> names;  // display names; when given, one instance each
  std::string classId;             // empty: Tarn's own class
};
// Writes a rack of fresh instances named by `names`, or "Synth 1", "Synth 2", ...
int NewCommand(const NewOptions& options);

// The back ends a command runs on, when the command line names them instead of the rack.
struct BackEndOptions {
  std::optional<std::string> midi;   // "virtual", "jack" or "alsa"
  std::optional<std::string> audio;  // "offline" or "jack"
  std::string clientName = "tarn-host";  // on a server: the prefix of the host's client names
};

struct PortsOptions {
  BackEndOptions backEnds;
  std::int32_t count = 2;  // the host's own ports in each direction
};
// The MIDI back end's ports with their stable identifiers.
int PortsCommand(const PortsOptions& options);

struct RunOptions {
  std::filesystem::path rack;
  BackEndOptions backEnds;
  double seconds = 1.0;
  std::optional<std::filesystem::path> input;
  std::optional<std::filesystem::path> output;
  std::optional<double> bpm;
  std::int32_t startTick = 0;          // where the transport starts
  std::optional<double> loopSeconds;  // the transport jumps back to the start this often
  std::optional<std::filesystem::path> save;
  bool quiet = false;  // no monitor lines
  std::optional<double> feedRate;  // live input played into feedPort, messages a second
  std::int32_t feedPort = 1;       // from 1
};
// Loads the rack, adds its envelopes, streams audio and delivers MIDI for the given time, prints
// every message reaching a port and, for each enveloped parameter, the value it ended with, and
// saves the rack when asked. With a feed, plays live input into a port for the whole time, lets
// the instances send what they took, and prints what went in and out, what was lost, and the
// memory held when the feed began and ended.
int RunCommand(const RunOptions& options);

struct TestOptions {
  std::filesystem::path rack;
  BackEndOptions backEnds;
  std::uint32_t cleanRuns = 1;  // passes wanted before the host presses Stop
  double timeout = 30;          // seconds a run may take before the host presses Stop
  bool report = false;          // round-trip latency, losses and duplicates per port
  bool wait = false;            // start only when a line arrives on standard input
};
// Runs the closed-loop wiring test over the rack's instances with real timers, printing each
// status and the numbers as they move; 0 when the clean runs wanted passed and the outcome is
// "Finished", 1 otherwise. With `report`, also prints the host's own figures. With `wait`, the
// ports are open before the test starts, so they can be wired first (JACK's ports exist only
// while the host runs).
int TestCommand(const TestOptions& options);

struct ConfigOptions {
  std::filesystem::path rack;
  BackEndOptions backEnds;
  std::string instance;  // a 1-based number or a name
  std::optional<std::filesystem::path> set;
};
// Prints an instance's configuration; with `set`, applies the document in that file and saves
// the instance's new state into the rack.
int ConfigCommand(const ConfigOptions& options);

struct ParamsOptions {
  std::filesystem::path rack;
  BackEndOptions backEnds;
  std::string instance;           // a 1-based number or a name; empty: every instance
  std::vector<std::string> sets;  // "INDEX=VALUE", applied in order before printing
};
// Prints each instance's parameters, one a line: index, name, type, unit, range, default and
// current value; with `sets`, sets those values first (they are not saved: a parameter's value
// is no part of an instance's state).
int ParamsCommand(const ParamsOptions& options);

// Where the commands look for the module when none is named.
std::filesystem::path DefaultModulePath();
