// tarn-host: the reference host. It finds soft synths in the class registry, loads their module
// through its exports, and runs racks of instances on its MIDI and audio back ends.
#include <CLI/CLI.hpp>

#include "host/cli/commands.h"
#include "host/plugin/synth_catalog.h"
#include "host/window/edit_command.h"
#include "platform/codepage.h"

namespace {

// --midi, --audio and --client-name, for the commands that run instances.
void AddBackEndOptions(CLI::App& command, BackEndOptions& options, bool audio) {
  command.add_option("--midi", options.midi, "MIDI back end instead of the rack's")
      ->check(CLI::IsMember({"virtual", "jack", "alsa"}));
  if (audio)
    command.add_option("--audio", options.audio, "Audio back end instead of the rack's")
        ->check(CLI::IsMember({"offline", "jack"}));
  command.add_option("--client-name", options.clientName,
                     "Name of the host on a JACK server or ALSA sequencer (default tarn-host)");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"tarn-host: the reference host for the Tarn soft synth"};
  app.require_subcommand(1);
  std::string registry;
  app.add_option("--registry", registry,
                 "Class registry folder to use instead of the user's own (keeps trials apart)");

  RegisterOptions reg;
  auto* registerCmd = app.add_subcommand("register", "Register a module's soft synths");
  registerCmd->add_option("module", reg.module, "The module (default: the one installed beside "
                                                "tarn-host)");
  RegisterOptions unreg{{}, true};
  auto* unregisterCmd = app.add_subcommand("unregister", "Remove a module's soft synths");
  unregisterCmd->add_option("module", unreg.module, "The module (default: as for register)");

  auto* listCmd = app.add_subcommand("list", "List the registered soft synths");

  PortsOptions ports;
  auto* portsCmd = app.add_subcommand("ports", "List the MIDI ports of a back end with their ids");
  portsCmd->add_option("--count", ports.count, "The host's own ports in each direction")
      ->check(CLI::Range(1, 64));
  AddBackEndOptions(*portsCmd, ports.backEnds, false);

  NewOptions fresh;
  auto* newCmd = app.add_subcommand("new", "Write a rack of fresh instances");
  newCmd->add_option("rack", fresh.rack, "The rack file to write")->required();
  newCmd->add_option("--count", fresh.count, "Number of instances")->check(CLI::Range(1, 256));
  newCmd->add_option("--name", fresh.names, "Display name of an instance (repeat for each)");
  newCmd->add_option("--class", fresh.classId, "Class identifier of the soft synth");

  RunOptions run;
  auto* runCmd = app.add_subcommand(
      "run", "Run a rack: load each instance's state, stream audio, print the MIDI traffic");
  runCmd->add_option("rack", run.rack, "The rack file")->required();
  runCmd->add_option("--seconds", run.seconds,
                     "How long the instances run; without --in, seconds of silence streamed")
      ->check(CLI::Range(0.0, 86400.0));
  runCmd->add_option("--in", run.input, "WAV file streamed through the instances");
  runCmd->add_option("--out", run.output, "WAV file receiving what comes out");
  runCmd->add_option("--bpm", run.bpm, "Tempo instead of the rack's")->check(CLI::Range(1.0, 1000.0));
  runCmd->add_option("--start", run.startTick, "Transport start in ticks (480 a quarter)");
  runCmd->add_option("--loop", run.loopSeconds,
                     "Loop the transport back to its start after this many seconds of audio")
      ->check(CLI::Range(0.001, 86400.0));
  runCmd->add_option("--save", run.save, "Save the rack with every instance's state to this file");
  runCmd->add_flag("--quiet", run.quiet, "Do not print the MIDI monitor");
  runCmd->add_option("--feed", run.feedRate,
                     "Play live input (note-ons and note-offs) at this many messages a second, "
                     "and report what went in and out and the memory held")
      ->check(CLI::Range(0.001, 100000.0));
  runCmd->add_option("--feed-port", run.feedPort, "The input port the feed plays into (from 1)")
      ->check(CLI::Range(1, 64));
  AddBackEndOptions(*runCmd, run.backEnds, true);

  TestOptions test;
  auto* testCmd = app.add_subcommand(
      "test", "Run the closed-loop wiring test over a rack's instances, whose outputs must be "
              "wired back to their inputs");
  testCmd->add_option("rack", test.rack, "The rack file")->required();
  testCmd->add_option("--runs", test.cleanRuns, "Clean runs to pass before stopping (default 1)")
      ->check(CLI::Range(1, 1000));
  testCmd->add_option("--timeout", test.timeout,
                      "Seconds a run may take before the host presses Stop (default 30)")
      ->check(CLI::Range(1.0, 86400.0));
  testCmd->add_flag("--report", test.report,
                    "Also print each port's round-trip latency, losses and duplicates");
  testCmd->add_flag("--wait", test.wait,
                    "Open the ports, then wait for Enter before starting, so they can be wired");
  AddBackEndOptions(*testCmd, test.backEnds, false);

  ConfigOptions config;
  auto* configCmd = app.add_subcommand(
      "config", "Print an instance's configuration, or apply one with --set");
  configCmd->add_option("rack", config.rack, "The rack file")->required();
  configCmd->add_option("instance", config.instance, "The instance's number (from 1) or name")
      ->required();
  configCmd->add_option("--set", config.set,
                        "Configuration document to apply; the rack is saved with the result");
  AddBackEndOptions(*configCmd, config.backEnds, false);

  ParamsOptions params;
  auto* paramsCmd = app.add_subcommand(
      "params", "List the parameters of a rack's instances with their values, or set them");
  paramsCmd->add_option("rack", params.rack, "The rack file")->required();
  paramsCmd->add_option("instance", params.instance,
                        "The instance's number (from 1) or name (default: every instance)");
  paramsCmd->add_option("--set", params.sets,
                        "INDEX=VALUE to set before listing (repeat for each; not saved)");
  AddBackEndOptions(*paramsCmd, params.backEnds, false);

  EditOptions edit;
  auto* editCmd = app.add_subcommand(
      "edit", "Open a rack in a window: each instance's property page, live on the rack's MIDI "
              "ports; the rack is saved with File > Save and on closing when it changed");
  editCmd->add_option("rack", edit.rack, "The rack file")->required();
  AddBackEndOptions(*editCmd, edit.backEnds, false);

  CLI11_PARSE(app, argc, argv);
  if (!registry.empty()) SetHostRegistryRoot(NarrowToWide(registry));

  if (registerCmd->parsed()) return RegisterCommand(reg);
  if (unregisterCmd->parsed()) return RegisterCommand(unreg);
  if (listCmd->parsed()) return ListCommand();
  if (portsCmd->parsed()) return PortsCommand(ports);
  if (newCmd->parsed()) return NewCommand(fresh);
  if (runCmd->parsed()) return RunCommand(run);
  if (testCmd->parsed()) return TestCommand(test);
  if (configCmd->parsed()) return ConfigCommand(config);
  if (paramsCmd->parsed()) return ParamsCommand(params);
  if (editCmd->parsed()) return EditCommand(edit);
  return 1;
}
