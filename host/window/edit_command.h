// `tarn-host edit RACK`: the rack's instances in a window, live on the rack's MIDI back end, each
// with its property page; the rack is saved on request and when the window closes with changes.
#pragma once

#include <filesystem>

#include "host/cli/commands.h"

struct EditOptions {
  std::filesystem::path rack;
  BackEndOptions backEnds;
};

// Runs the window until it closes; 0, or 1 when the rack cannot be opened, there is no display,
// or saving failed.
int EditCommand(const EditOptions& options);
