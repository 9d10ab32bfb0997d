#include "host/rack/rack_file.h"

#include <fstream>
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

RackSettings ReadSettings(const Json& json) {
  RackSettings settings;
  if (!json.contains("settings")) return settings;
  const Json& s = json.at("settings");
  if (!s.is_object()) throw std::runtime_error("\"settings\" is not an object");
  ReadSetting(s, "sampleRate", settings.sampleRate);
  ReadSetting(s, "bufferFrames", settings.bufferFrames);
  ReadSetting(s, "bpm", settings.beatsPerMinute);
  ReadSetting(s, "midiPorts", settings.midiPorts);
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
  return instance;
}

}  // namespace

std::optional<Rack> LoadRackFile(const std::filesystem::path& path, std::string& error) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    error = "rack file " + path.string() + " cannot be read";
    return std::nullopt;
  }
  try {
    const Json json = Json::parse(file);
    if (!json.is_object() || json.value("format", "") != "tarn-rack")
      throw std::runtime_error("it is not a tarn rack (\"format\" must be \"tarn-rack\")");
    if (json.value("version", 0) != 1) throw std::runtime_error("its \"version\" is not 1");
    Rack rack;
    rack.settings = ReadSettings(json);
    if (!json.contains("instances") || !json.at("instances").is_array())
      throw std::runtime_error("it has no \"instances\" list");
    for (const Json& entry : json.at("instances")) rack.instances.push_back(ReadInstance(entry));
    return rack;
  } catch (const std::exception& e) {
    error = "rack file " + path.string() + " is not valid: " + e.what();
    return std::nullopt;
  }
}

bool SaveRackFile(const std::filesystem::path& path, const Rack& rack, std::string& error) {
  Json json;
  json["format"] = "tarn-rack";
  json["version"] = 1;
  const RackSettings& s = rack.settings;
  json["settings"] = {{"sampleRate", s.sampleRate}, {"bufferFrames", s.bufferFrames},
                      {"bpm", s.beatsPerMinute},    {"midiPorts", s.midiPorts},
                      {"midi", s.midi},             {"audio", s.audio}};
  json["instances"] = Json::array();
  for (const RackInstance& instance : rack.instances)
    json["instances"].push_back(
        {{"name", instance.name}, {"class", instance.classId}, {"state", ToHex(instance.state)}});
  const std::string text = json.dump(2) + "\n";

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
