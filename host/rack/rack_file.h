// A rack file: the host's settings and the instances in order, each with its class, a display
// name and its saved state as the exact bytes its Save wrote (hex in the file). JSON:
//
//   { "format": "tarn-rack", "version": 1,
//     "settings": { "sampleRate": 48000, "bufferFrames": 512, "bpm": 120.0, "midiPorts": 2,
//                   "midi": "virtual", "audio": "offline" },
//     "instances": [ { "name": "Synth A", "class": "{D8DF3849-...}", "state": "3000...",
//                      "envelopes": [ { "param": 0, "segments": [ { "start": 0, "end": 5000000,
//                          "from": 1.0, "to": 0.0, "curve": "linear" } ] } ] } ] }
//
// Envelope times are media time in units of 100 ns from the start of the stream; the curve is
// "jump", "linear", "square", "inverse-square" or "sine" ("linear" when left out). The host adds
// an instance's envelopes before it runs; saving writes them back as the file had them.
//
// Saving writes a temporary file beside the rack and renames it over the rack only when it is
// complete, so a failed save leaves the old file as it was.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "interfaces/media_params.h"

struct RackSettings {
  std::int32_t sampleRate = 48000;
  std::int32_t bufferFrames = 512;
  double beatsPerMinute = 120.0;
  std::int32_t midiPorts = 2;
  std::string midi = "virtual";  // the MIDI back end
  std::string audio = "offline"; // the audio back end
};

struct RackEnvelope {
  std::uint32_t param = 0;
  std::vector<MP_ENVELOPE_SEGMENT> segments;
};

struct RackInstance {
  std::string name;
  std::string classId;              // "{XXXXXXXX-...}" as written
  std::vector<std::uint8_t> state;  // empty for a fresh instance
  std::string problem;              // why the entry cannot be used; empty when it can
  std::vector<RackEnvelope> envelopes;
  std::string envelopesText;  // the "envelopes" field as JSON text, written back on saving
};

struct Rack {
  RackSettings settings;
  std::vector<RackInstance> instances;
};

// [any thread] The rack that `text` holds; nothing with `fault` saying what is wrong when it is
// not JSON or not a rack. Entries with a fault of their own are kept, marked, as below.
std::optional<Rack> ParseRack(std::string_view text, std::string& fault);
// [any thread] The text SaveRackFile writes: `rack` as JSON, two-space indented, with a final
// line ending. Parsing it gives the same rack back.
std::string RackText(const Rack& rack);

// [host thread] The rack in `path`; nothing with `error` naming the file and the fault when the
// file cannot be read or is not a rack. An instance entry with a fault of its own is kept with
// its `problem` set, so that the others still load.
std::optional<Rack> LoadRackFile(const std::filesystem::path& path, std::string& error);

// [host thread] Writes `rack` to `path` through a temporary file and a rename; false with
// `error` naming the file when it cannot, and then `path` is untouched.
bool SaveRackFile(const std::filesystem::path& path, const Rack& rack, std::string& error);
