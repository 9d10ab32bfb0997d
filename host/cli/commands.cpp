#include "host/cli/commands.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <sstream>
#include <thread>

#include "host/audio/offline_driver.h"
#include "host/cli/live_feed.h"
#include "host/midi/port_traffic.h"
#include "host/plugin/synth_catalog.h"
#include "host/rack/live_rack.h"
#include "platform/codepage.h"

namespace {

constexpr CLSID kTarnClass =
    MakeGuid(0xD8DF3849, 0xA01D, 0x4254, 0xA5, 0x7D, 0x55, 0x15, 0xBF, 0x9E, 0x38, 0x86);

void Report(const std::string& text) { std::fprintf(stderr, "tarn-host: %s\n", text.c_str()); }

std::wstring PortName(IHostMidiPorts* ports, std::int32_t index, bool output) {
  wchar_t name[kPortNameCapacity] = {};
  const HRESULT hr = output ? ports->GetOutputPortName(index, name, kPortNameCapacity)
                            : ports->GetInputPortName(index, name, kPortNameCapacity);
  return SUCCEEDED(hr) ? name : L"?";
}

// Counts what was reported, so a command can answer 1 when anything went wrong.
struct CErrors {
  int count = 0;
  CLiveRack::ErrorSink Sink() {
    return [this](const std::string& text) {
      ++count;
      Report(text);
    };
  }
};

std::optional<Rack> LoadRack(const std::filesystem::path& path) {
  std::string error;
  auto rack = LoadRackFile(path, error);
  if (!rack) Report(error);
  return rack;
}

// The instance that `which` names: its 1-based number, or else its display name.
LiveInstance* FindInstance(CLiveRack& live, const std::string& which) {
  for (LiveInstance& instance : live.Instances())
    if (std::to_string(instance.number) == which) return &instance;
  for (LiveInstance& instance : live.Instances())
    if (instance.entry.name == which) return &instance;
  return nullptr;
}

void PrintSummary(CLiveRack& live) {
  for (LiveInstance& instance : live.Instances()) {
    std::uint32_t received = 0, sent = 0;
    if (instance.myFilter) instance.myFilter->GetEventCounters(&received, &sent, 0);
    std::printf("instance %zu \"%s\": %u sent, %u received, %lld handed to the host\n",
                instance.number, instance.entry.name.c_str(), sent, received,
                static_cast<long long>(instance.context->SinkCount()));
  }
}

// The value each enveloped parameter ended with: what automation did is otherwise unseen, as
// nothing in the instance reads "Enabled".
void PrintEnvelopeEnds(CLiveRack& live) {
  for (LiveInstance& instance : live.Instances()) {
    if (!instance.params) continue;
    for (const RackEnvelope& envelope : instance.entry.envelopes) {
      MP_DATA value = 0;
      if (FAILED(instance.params->GetParam(envelope.param, &value))) continue;
      std::printf("instance %zu \"%s\": parameter %u ended at %g\n", instance.number,
                  instance.entry.name.c_str(), envelope.param, static_cast<double>(value));
    }
  }
}

std::string ParamString(const ParamChar* text, std::size_t capacity) {
  std::wstring wide;
  for (std::size_t i = 0; i < capacity && text[i]; ++i) wide += static_cast<wchar_t>(text[i]);
  return WideToNarrow(wide);
}

const char* TypeName(std::uint32_t type) {
  switch (type) {
    case MPT_INT: return "int";
    case MPT_FLOAT: return "float";
    case MPT_BOOL: return "bool";
    case MPT_ENUM: return "enum";
    default: return "?";
  }
}

// "INDEX=VALUE"; false when the text is not that.
bool ParseSetting(const std::string& text, std::uint32_t& index, MP_DATA& value) {
  const auto equals = text.find('=');
  if (equals == std::string::npos) return false;
  const char* end = text.data() + equals;
  const auto [indexEnd, indexError] = std::from_chars(text.data(), end, index);
  if (indexError != std::errc() || indexEnd != end || equals == 0) return false;
  const std::string number = text.substr(equals + 1);
  char* numberEnd = nullptr;
  value = std::strtof(number.c_str(), &numberEnd);
  return !number.empty() && *numberEnd == '\0' && std::isfinite(value);
}

// One instance's parameters, one a line; false when they cannot be read (reported).
bool PrintParams(CLiveRack& live, LiveInstance& instance) {
  std::printf("instance %zu \"%s\":\n", instance.number, instance.entry.name.c_str());
  std::uint32_t count = 0;
  HRESULT hr = instance.paramInfo ? instance.paramInfo->GetParamCount(&count) : S_OK;
  if (FAILED(hr)) {
    Report(live.Where(instance) + "its parameters cannot be counted (" + ResultText(hr) + ")");
    return false;
  }
  if (count == 0 || !instance.params) std::printf("  no parameters\n");
  for (std::uint32_t i = 0; i < count && instance.params; ++i) {
    MP_PARAMINFO info{};
    MP_DATA value = 0;
    hr = instance.paramInfo->GetParamInfo(i, &info);
    if (SUCCEEDED(hr)) hr = instance.params->GetParam(i, &value);
    if (FAILED(hr)) {
      Report(live.Where(instance) + "parameter " + std::to_string(i) + " cannot be read (" +
             ResultText(hr) + ")");
      return false;
    }
    std::printf("  %u  %s  %s  unit \"%s\"  range %g..%g  default %g  value %g\n", i,
                ParamString(info.szLabel, std::size(info.szLabel)).c_str(), TypeName(info.mpType),
                ParamString(info.szUnitText, std::size(info.szUnitText)).c_str(),
                static_cast<double>(info.mpdMinValue), static_cast<double>(info.mpdMaxValue),
                static_cast<double>(info.mpdNeutralValue), static_cast<double>(value));
  }
  return true;
}

bool SaveRack(const std::filesystem::path& path, Rack rack, CLiveRack& live) {
  if (!live.Snapshot(rack.instances)) return false;
  std::string error;
  if (!SaveRackFile(path, rack, error)) {
    Report(error);
    return false;
  }
  return true;
}

// Output N wired back to input N: whole short messages cross as live input to the instances
// listening there; until Open they are held, after Close dropped.
class CInputRouting {
 public:
  // [traffic thread]
  void Route(const PortMessage& message) {
    if (message.bytes.empty() || message.bytes.size() > 3 || message.bytes[0] == 0xF0) return;
    std::uint32_t packed = 0;
    for (std::size_t i = 0; i < message.bytes.size(); ++i)
      packed |= static_cast<std::uint32_t>(message.bytes[i]) << (8 * i);
    std::lock_guard lock(m_mutex);
    if (m_live) m_live->DeliverInput(message.port, packed);
    else if (!m_closed) m_held.emplace_back(message.port, packed);
  }
  // [host thread] Delivers what was held, then everything as it comes.
  void Open(CLiveRack& live) {
    std::lock_guard lock(m_mutex);
    m_live = &live;
    for (const auto& [port, packed] : m_held) live.DeliverInput(port, packed);
    m_held.clear();
  }
  // [host thread]
  void Close() {
    std::lock_guard lock(m_mutex);
    m_live = nullptr;
    m_closed = true;
  }

 private:
  std::mutex m_mutex;
  CLiveRack* m_live = nullptr;
  bool m_closed = false;
  std::vector<std::pair<std::int32_t, std::uint32_t>> m_held;
};

// With a loop length, the transport jumps back to its start each time the audio has played that
// long; the tick it jumps from follows the tempo.
CAudioDriver::Progress LoopingTransport(const RunOptions& options, const RackSettings& settings,
                                        CLiveRack& live) {
  if (!options.loopSeconds) return {};
  const auto loopFrames =
      std::max<std::int64_t>(1, std::llround(*options.loopSeconds * settings.sampleRate));
  const auto loopTicks = static_cast<std::int32_t>(std::llround(
      *options.loopSeconds * settings.beatsPerMinute / 60.0 * HostTiming::kTicksPerQuarter));
  const std::int32_t start = options.startTick;
  return [&live, loopFrames, loopTicks, start, loops = std::int64_t{0}](
             std::int64_t frames) mutable {
    for (; (loops + 1) * loopFrames <= frames; ++loops) live.Loop(start + loopTicks, start);
  };
}

// The instances listening on input `port` (from 0), with what each took in and sent out.
struct ListenerCounts {
  std::size_t listeners = 0;
  std::int64_t received = 0;
  std::int64_t sent = 0;
};
ListenerCounts CountListeners(CLiveRack& live, std::int32_t port) {
  ListenerCounts counts;
  for (LiveInstance& instance : live.Instances()) {
    std::int32_t chosen = -1;
    if (!instance.myFilter || FAILED(instance.myFilter->GetInputPortIndex(&chosen)) ||
        chosen != port)
      continue;
    std::uint32_t received = 0, sent = 0;
    instance.myFilter->GetEventCounters(&received, &sent, 0);
    ++counts.listeners;
    counts.received += received;
    counts.sent += sent;
  }
  return counts;
}

// After the feed: the workers get the time to send what they took before the graph stops, which
// would drop it. Ten seconds at most; done once what went out stops growing or catches up.
void WaitForListeners(CLiveRack& live, std::int32_t port) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  std::int64_t last = -1;
  for (;;) {
    const ListenerCounts counts = CountListeners(live, port);
    if (counts.sent >= counts.received || counts.sent == last ||
        std::chrono::steady_clock::now() > deadline)
      return;
    last = counts.sent;
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
  }
}

// The feed's account: every message fed should come in at each listener and go out once. False
// when anything was lost (reported).
bool PrintFeed(CLiveRack& live, const CLiveFeed& feed, const RunOptions& options,
               std::int64_t memoryBefore, std::int64_t memoryAfter) {
  const ListenerCounts counts = CountListeners(live, options.feedPort - 1);
  const std::int64_t expected = feed.Fed() * static_cast<std::int64_t>(counts.listeners);
  const std::int64_t lost = expected - std::min(counts.received, counts.sent);
  std::printf("live input: %lld messages fed to input %d at %g a second, %zu instances listening\n",
              static_cast<long long>(feed.Fed()), options.feedPort, *options.feedRate,
              counts.listeners);
  std::printf("live input: %lld in, %lld received, %lld out, %lld lost\n",
              static_cast<long long>(expected), static_cast<long long>(counts.received),
              static_cast<long long>(counts.sent), static_cast<long long>(lost));
  std::printf("memory: %lld kB resident when the feed began, %lld kB when it ended\n",
              static_cast<long long>(memoryBefore), static_cast<long long>(memoryAfter));
  if (lost != 0) Report(options.rack.string() + ": live input was lost");
  return lost == 0;
}

// A rack's instances made and their states loaded with no worker running, so nothing is sent:
// what `config` and `params` read and change.
struct CQuietRack {
  struct CNobody final : CMidiPortListener {
    void OnPortSend(std::int32_t, std::span<const std::uint8_t>) override {}
  };

  CQuietRack(const std::filesystem::path& file, const Rack& rack, CErrors& errors)
      : ports(rack.settings.midiPorts, nobody), live(file, rack.settings, &ports, errors.Sink()) {
    live.Create(rack.instances);
    live.LoadStates();
  }

  CNobody nobody;
  CVirtualMidiPorts ports;
  CLiveRack live;
};

}  // namespace

std::filesystem::path DefaultModulePath() {
  std::error_code ec;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
  const std::filesystem::path folder = self.parent_path();
  // Installed beside the program's lib folder, or built in the tree beside the host's folder.
  for (const auto& candidate : {folder / "../lib/tarn/libtarn.so", folder / "libtarn.so",
                                folder / "../module/libtarn.so"})
    if (std::filesystem::exists(candidate, ec)) return std::filesystem::canonical(candidate, ec);
  return folder / "../lib/tarn/libtarn.so";
}

int RegisterCommand(const RegisterOptions& options) {
  std::error_code ec;
  std::filesystem::path path = options.module.empty() ? DefaultModulePath() : options.module;
  if (std::filesystem::exists(path, ec)) path = std::filesystem::canonical(path, ec);
  std::string error;
  const auto module = CModuleLibrary::Open(path, error);
  if (!module) {
    Report(error);
    return 1;
  }
  module->SetRegistryRoot(HostRegistryRoot());
  const HRESULT hr = options.unregister ? module->Unregister() : module->Register();
  if (FAILED(hr)) {
    Report("module " + path.string() + ": " +
           (options.unregister ? "unregistering" : "registering") + " failed (" +
           ResultText(hr) + ")");
    return 1;
  }
  std::printf("%s %s\n", options.unregister ? "unregistered" : "registered", path.c_str());
  return 0;
}

int ListCommand() {
  const auto synths = CSynthCatalog::List();
  if (synths.empty()) std::printf("no soft synths are registered\n");
  for (const SynthEntry& synth : synths)
    std::printf("%s  %s  %s\n", WideToNarrow(GuidToString(synth.clsid)).c_str(),
                WideToNarrow(synth.name).c_str(), synth.modulePath.string().c_str());
  return 0;
}

int PortsCommand(int count) {
  struct : CMidiPortListener {
    void OnPortSend(std::int32_t, std::span<const std::uint8_t>) override {}
  } nobody;
  CVirtualMidiPorts ports(count, nobody);
  for (std::int32_t i = 0; i < ports.GetInputPortCount(); ++i) {
    std::int32_t id = 0;
    ports.GetInputPortId(i, &id);
    std::printf("input  %d  %s  (id %d)\n", i + 1, WideToNarrow(PortName(&ports, i, false)).c_str(),
                id);
  }
  for (std::int32_t i = 0; i < ports.GetOutputPortCount(); ++i) {
    std::int32_t id = 0;
    ports.GetOutputPortId(i, &id);
    std::printf("output %d  %s  (id %d)\n", i + 1, WideToNarrow(PortName(&ports, i, true)).c_str(),
                id);
  }
  return 0;
}

int NewCommand(const NewOptions& options) {
  CLSID clsid = kTarnClass;
  if (!options.classId.empty() && !GuidFromString(NarrowToWide(options.classId), clsid)) {
    Report("\"" + options.classId + "\" is not a class identifier");
    return 1;
  }
  Rack rack;
  const std::size_t count =
      options.names.empty() ? static_cast<std::size_t>(options.count) : options.names.size();
  for (std::size_t i = 0; i < count; ++i)
    rack.instances.push_back(
        {options.names.empty() ? "Synth " + std::to_string(i + 1) : options.names[i],
         WideToNarrow(GuidToString(clsid)), {}, {}, {}, {}});
  CErrors errors;
  struct : CMidiPortListener {
    void OnPortSend(std::int32_t, std::span<const std::uint8_t>) override {}
  } nobody;
  CVirtualMidiPorts ports(rack.settings.midiPorts, nobody);
  {
    CLiveRack live(options.rack, rack.settings, &ports, errors.Sink());
    live.Create(rack.instances);
    live.LoadStates();  // fresh entries: marks each state as the instance's own
    if (errors.count) return 1;
    if (!SaveRack(options.rack, rack, live)) return 1;
  }
  std::printf("wrote %s with %zu instances\n", options.rack.c_str(), count);
  return 0;
}

int RunCommand(const RunOptions& options) {
  auto rack = LoadRack(options.rack);
  if (!rack) return 1;
  if (options.bpm) rack->settings.beatsPerMinute = *options.bpm;
  CErrors errors;
  if (rack->settings.midi != "virtual" || rack->settings.audio != "offline") {
    Report(options.rack.string() + ": back ends \"" + rack->settings.midi + "\" and \"" +
           rack->settings.audio + "\" are not available; this host has \"virtual\" and \"offline\"");
    return 1;
  }

  // Audio files are checked before any instance starts.
  OfflineOptions audio{rack->settings.sampleRate, rack->settings.bufferFrames, options.seconds,
                       options.input, options.output, isatty(STDERR_FILENO) != 0};
  std::string error;
  auto driver = COfflineDriver::Open(audio, error);
  if (!driver) {
    Report(error);
    return 1;
  }

  // Live input waits until every state is loaded, so that an instance sending on load reaches
  // a listener that is loaded after it.
  CInputRouting routing;
  CVirtualMidiPorts* portsForNames = nullptr;
  CPortTraffic traffic([&](const PortMessage& message) {
    if (!options.quiet)
      std::printf("%s\n", MonitorLine(message, PortName(portsForNames, message.port, true)).c_str());
    routing.Route(message);
  });
  CVirtualMidiPorts ports(rack->settings.midiPorts, traffic);
  portsForNames = &ports;

  CHostSource source(driver->Format(), driver->BufferBytes());
  CHostSink sink([&](std::span<const std::uint8_t> bytes, REFERENCE_TIME, REFERENCE_TIME) {
    driver->Consume(bytes);
  });
  bool streamed = false;
  {
    CLiveRack live(options.rack, rack->settings, &ports, errors.Sink());
    live.Create(rack->instances);
    if (!live.ConnectAudio(source, sink)) return 1;
    live.Pause(&source, &sink);
    live.LoadStates();  // after Pause, so that the workers send what the states hold
    live.AddEnvelopes();  // after the states, before the first sample
    routing.Open(live);
    const auto start = std::chrono::steady_clock::now();
    live.Run(&source, &sink);
    live.Start(options.startTick);
    std::unique_ptr<CLiveFeed> feed;
    const std::int64_t memoryBefore = ResidentKilobytes();
    if (options.feedRate)
      feed = std::make_unique<CLiveFeed>(live, options.feedPort - 1, *options.feedRate);
    streamed = driver->Stream(source, LoopingTransport(options, rack->settings, live), error);
    if (!streamed) Report(options.rack.string() + ": " + error);
    std::this_thread::sleep_until(start + std::chrono::duration<double>(options.seconds));
    std::int64_t memoryAfter = 0;
    if (feed) {
      feed->Stop();
      memoryAfter = ResidentKilobytes();
      WaitForListeners(live, options.feedPort - 1);
    }
    live.StopTransport();
    live.Stop(&source, &sink);
    traffic.Drain();
    routing.Close();
    std::fflush(stdout);
    PrintSummary(live);
    PrintEnvelopeEnds(live);
    if (feed && !PrintFeed(live, *feed, options, memoryBefore, memoryAfter)) ++errors.count;
    if (options.save && SaveRack(*options.save, *rack, live))
      std::printf("saved %s\n", options.save->c_str());
    else if (options.save)
      ++errors.count;
  }
  if (!driver->Finish(error)) {
    Report(error);
    return 1;
  }
  return streamed && errors.count == 0 ? 0 : 1;
}

int ConfigCommand(const ConfigOptions& options) {
  auto rack = LoadRack(options.rack);
  if (!rack) return 1;
  std::wstring document;
  if (options.set) {
    std::ifstream file(*options.set, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    if (!file || !text) {
      Report("configuration file " + options.set->string() + " cannot be read");
      return 1;
    }
    document = NarrowToWide(text.str());
  }
  CErrors errors;
  CQuietRack quiet(options.rack, *rack, errors);
  CLiveRack& live = quiet.live;
  LiveInstance* instance = FindInstance(live, options.instance);
  if (!instance || !instance->proxy) {
    Report(options.rack.string() + ": no usable instance \"" + options.instance + "\"");
    return 1;
  }
  if (options.set) {
    const HRESULT hr = instance->proxy->SetConfigXml(document.c_str());
    if (FAILED(hr)) {
      Report(live.Where(*instance) + "the instance refused " + options.set->string() + " (" +
             ResultText(hr) + ")");
      return 1;
    }
    instance->stateLoaded = true;
    if (!SaveRack(options.rack, *rack, live)) return 1;
  }
  std::uint32_t size = 0;
  HRESULT hr = instance->proxy->GetConfigXmlSize(&size, 1);
  std::wstring text(size + 1, L'\0');
  if (SUCCEEDED(hr)) hr = instance->proxy->GetConfigXml(text.data(), size + 1, 1);
  if (FAILED(hr)) {
    Report(live.Where(*instance) + "its configuration cannot be read (" + ResultText(hr) + ")");
    return 1;
  }
  text.resize(std::wcslen(text.c_str()));
  std::printf("%s\n", WideToNarrow(text).c_str());
  return errors.count ? 1 : 0;
}

int ParamsCommand(const ParamsOptions& options) {
  struct Setting {
    std::uint32_t index;
    MP_DATA value;
    std::string text;
  };
  std::vector<Setting> settings;
  for (const std::string& text : options.sets) {
    std::uint32_t index = 0;
    MP_DATA value = 0;
    if (!ParseSetting(text, index, value)) {
      Report("\"" + text + "\" is not INDEX=VALUE (a parameter index and a number)");
      return 1;
    }
    settings.push_back({index, value, text});
  }
  auto rack = LoadRack(options.rack);
  if (!rack) return 1;
  CErrors errors;
  CQuietRack quiet(options.rack, *rack, errors);
  CLiveRack& live = quiet.live;
  std::vector<LiveInstance*> chosen;
  if (options.instance.empty()) {
    for (LiveInstance& instance : live.Instances()) chosen.push_back(&instance);
  } else if (LiveInstance* instance = FindInstance(live, options.instance)) {
    chosen.push_back(instance);
  } else {
    Report(options.rack.string() + ": no usable instance \"" + options.instance + "\"");
    return 1;
  }
  for (LiveInstance* instance : chosen) {
    for (const Setting& setting : settings) {
      const HRESULT hr = instance->params ? instance->params->SetParam(setting.index, setting.value)
                                          : E_NOINTERFACE;
      if (FAILED(hr)) {
        ++errors.count;
        Report(live.Where(*instance) + "the instance refused " + setting.text + " (" +
               ResultText(hr) + ")");
      }
    }
    if (!PrintParams(live, *instance)) ++errors.count;
  }
  return errors.count ? 1 : 0;
}
