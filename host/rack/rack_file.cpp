#include "host/rack/rack_file.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using Json = nlohmann::ordered_json;

std::string ToHex(const std::vector<std::uint8_t>& bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t b : bytes) {
    text += kDigits[b >> 4];
    text += kDigits[b & 15];
  }
  return text;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::optional<std::vector<std::uint8_t>> FromHex(const std::string& text) {
  if (text.size() % 2) return std::nullopt;
  std::vector<std::uint8_t> bytes(text.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const int high = HexDigit(text[2 * i]);
    const int low = HexDigit(text[2 * i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
  }
  return bytes;
}

// Reads one optional setting, keeping the default when absent; throws on a wrong type.
template <class T>
void ReadSetting(const Json& settings, const char* name, T& value) {
  if (settings.contains(name)) value = settings.at(name).get<T>();
}

// Reads one optional whole-number setting, keeping the default when absent. A fraction, or a
// number no 32-bit setting holds, is refused rather than cut to one.
void ReadWholeSetting(const Json& settings, const char* name, std::int32_t& value) {
  if (!settings.contains(name)) return;
  const Json& field = settings.at(name);
  constexpr std::int64_t kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  const bool fits = field.is_number_unsigned()
                        ? field.get<std::uint64_t>() <= static_cast<std::uint64_t>(kMost)
                        : field.is_number_integer() && field.get<std::int64_t>() >= kLeast &&
                              field.get<std::int64_t>() <= kMost;
  if (!fits) throw std::runtime_error("\"" + std::string(name) + "\" must be a whole number");
  value = field.get<std::int32_t>();
}

RackSettings ReadSettings(const Json& json) {
  RackSettings settings;
  if (!json.contains("settings")) return settings;
  const Json& s = json.at("settings");
  if (!s.is_object()) throw std::runtime_error("\"settings\" is not an object");
  ReadWholeSetting(s, "sampleRate", settings.sampleRate);
  ReadWholeSetting(s, "bufferFrames", settings.bufferFrames);
  ReadSetting(s, "bpm", settings.beatsPerMinute);
  ReadWholeSetting(s, "midiPorts", settings.midiPorts);
  ReadSetting(s, "midi", settings.midi);
  ReadSetting(s, "audio", settings.audio);
  if (settings.sampleRate < 8000 || settings.sampleRate > 384000)
    throw std::runtime_error("\"sampleRate\" must lie between 8000 and 384000");
  if (settings.bufferFrames < 16 || settings.bufferFrames > 65536)
    throw std::runtime_error("\"bufferFrames\" must lie between 16 and 65536");
  if (!(settings.beatsPerMinute >= 1 && settings.beatsPerMinute <= 1000))
    throw std::runtime_error("\"bpm\" must lie between 1 and 1000");
  if (settings.midiPorts < 1 || settings.midiPorts > 64)
    throw std::runtime_error("\"midiPorts\" must lie between 1 and 64");
  return settings;
}

struct CurveName {
  const char* name;
  std::uint32_t curve;
};
constexpr CurveName kCurves[] = {{"jump", MP_CURVE_JUMP},
                                 {"linear", MP_CURVE_LINEAR},
                                 {"square", MP_CURVE_SQUARE},
                                 {"inverse-square", MP_CURVE_INVSQUARE},
                                 {"sine", MP_CURVE_SINE}};

// One segment, which `where` names; throws with the place and the fault.
MP_ENVELOPE_SEGMENT ReadSegment(const Json& json, const std::string& where) {
  if (!json.is_object()) throw std::runtime_error(where + " is not an object");
  MP_ENVELOPE_SEGMENT segment{};
  for (const char* name : {"start", "end"})
    if (!json.contains(name) || !json.at(name).is_number_integer())
      throw std::runtime_error(where + " needs \"" + name + "\" as a whole number of 100 ns");
  for (const char* name : {"from", "to"})
    if (!json.contains(name) || !json.at(name).is_number())
      throw std::runtime_error(where + " needs \"" + name + "\" as a number");
  segment.rtStart = json.at("start").get<std::int64_t>();
  segment.rtEnd = json.at("end").get<std::int64_t>();
  if (segment.rtStart < 0 || segment.rtEnd < segment.rtStart)
    throw std::runtime_error(where + " must start at 0 or later and end no earlier than it starts");
  constexpr auto kLargest = static_cast<double>(std::numeric_limits<float>::max());
  for (const char* name : {"from", "to"})
    if (!(std::fabs(json.at(name).get<double>()) <= kLargest))
      throw std::runtime_error(where + " has \"" + name + "\" out of range");
  segment.valStart = json.at("from").get<float>();
  segment.valEnd = json.at("to").get<float>();
  segment.iCurve = MP_CURVE_LINEAR;
  if (json.contains("curve")) {
    const Json& curve = json.at("curve");
    const std::string name = curve.is_string() ? curve.get<std::string>() : curve.dump();
    const auto* known = std::find_if(std::begin(kCurves), std::end(kCurves),
                                     [&](const CurveName& c) { return name == c.name; });
    if (!curve.is_string() || known == std::end(kCurves))
      throw std::runtime_error(where + " has an unknown curve " + name +
                               " (jump, linear, square, inverse-square or sine)");
    segment.iCurve = known->curve;
  }
  return segment;
}

std::vector<RackEnvelope> ReadEnvelopes(const Json& json) {
  if (!json.is_array()) throw std::runtime_error("its \"envelopes\" is not a list");
  std::vector<RackEnvelope> envelopes;
  for (std::size_t e = 0; e < json.size(); ++e) {
    const std::string where = "envelope " + std::to_string(e + 1);
    const Json& entry = json.at(e);
    if (!entry.is_object()) throw std::runtime_error(where + " is not an object");
    if (!entry.contains("param") || !entry.at("param").is_number_unsigned() ||
        entry.at("param").get<std::uint64_t>() > 0xFFFFFFFFu)
      throw std::runtime_error(where + " needs \"param\", a parameter index");
    if (!entry.contains("segments") || !entry.at("segments").is_array())
      throw std::runtime_error(where + " needs a \"segments\" list");
    RackEnvelope envelope;
    envelope.param = entry.at("param").get<std::uint32_t>();
    const Json& segments = entry.at("segments");
    for (std::size_t s = 0; s < segments.size(); ++s)
      envelope.segments.push_back(
          ReadSegment(segments.at(s), where + " segment " + std::to_string(s + 1)));
    envelopes.push_back(std::move(envelope));
  }
  return envelopes;
}

RackInstance ReadInstance(const Json& entry) {
  RackInstance instance;
  if (!entry.is_object()) {
    instance.problem = "the entry is not an object";
    return instance;
  }
  if (entry.contains("name") && entry.at("name").is_string())
    instance.name = entry.at("name").get<std::string>();
  if (!entry.contains("class") || !entry.at("class").is_string()) {
    instance.problem = "the entry has no \"class\"";
    return instance;
  }
  instance.classId = entry.at("class").get<std::string>();
  if (entry.contains("state")) {
    const Json& state = entry.at("state");
    auto bytes = state.is_string() ? FromHex(state.get<std::string>()) : std::nullopt;
    if (!bytes) {
      instance.problem = "its \"state\" is not hex text";
      return instance;
    }
    instance.state = std::move(*bytes);
  }
  if (entry.contains("envelopes")) {
    instance.envelopesText = entry.at("envelopes").dump();
    try {
      instance.envelopes = ReadEnvelopes(entry.at("envelopes"));
    } catch (const std::exception& e) {
      instance.problem = std::string("its envelopes are not valid: ") + e.what();
    }
  }
  return instance;
}

}  // namespace

std::optional<Rack> ParseRack(std::string_view text, std::string& fault) {
  try {
    const Json json = Json::parse(text.begin(), text.end());
    if (!json.is_object() || json.value("format", "") != "tarn-rack")
      throw std::runtime_error("it is not a tarn rack (\"format\" must be \"tarn-rack\")");
    const auto version = json.find("version");
    if (version == json.end() || !version->is_number_integer() || *version != 1)
      throw std::runtime_error("its \"version\" is not 1");
    Rack rack;
    rack.settings = ReadSettings(json);
    if (!json.contains("instances") || !json.at("instances").is_array())
      throw std::runtime_error("it has no \"instances\" list");
    for (const Json& entry : json.at("instances")) rack.instances.push_back(ReadInstance(entry));
    return rack;
  } catch (const std::exception& e) {
    fault = e.what();
    return std::nullopt;
  }
}

std::optional<Rack> LoadRackFile(const std::filesystem::path& path, std::string& error) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  if (!file || !(text << file.rdbuf())) {
    error = "rack file " + path.string() + " cannot be read";
    return std::nullopt;
  }
  std::string fault;
  auto rack = ParseRack(text.str(), fault);
  if (!rack) error = "rack file " + path.string() + " is not valid: " + fault;
  return rack;
}

std::string RackText(const Rack& rack) {
  Json json;
  json["format"] = "tarn-rack";
  json["version"] = 1;
  const RackSettings& s = rack.settings;
  json["settings"] = {{"sampleRate", s.sampleRate}, {"bufferFrames", s.bufferFrames},
                      {"bpm", s.beatsPerMinute},    {"midiPorts", s.midiPorts},
                      {"midi", s.midi},             {"audio", s.audio}};
  json["instances"] = Json::array();
  for (const RackInstance& instance : rack.instances) {
    Json entry = {
        {"name", instance.name}, {"class", instance.classId}, {"state", ToHex(instance.state)}};
    if (!instance.envelopesText.empty()) entry["envelopes"] = Json::parse(instance.envelopesText);
    json["instances"].push_back(std::move(entry));
  }
  return json.dump(2) + "\n";
}

bool SaveRackFile(const std::filesystem::path& path, const Rack& rack, std::string& error) {
  const std::string text = RackText(rack);

  std::filesystem::path temporary = path;
  temporary += ".saving";
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    if (!out) {
      std::error_code ignored;
      std::filesystem::remove(temporary, ignored);
      error = "rack file " + path.string() + " cannot be written (its folder is not writable?)";
      return false;
    }
  }
  std::error_code renamed;
  std::filesystem::rename(temporary, path, renamed);
  if (renamed) {
    std::filesystem::remove(temporary, renamed);
    error = "rack file " + path.string() + " cannot be replaced";
    return false;
  }
  return true;
}
