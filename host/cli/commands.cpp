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
#include <sstream>
#include <thread>

#include "host/audio/jack_driver.h"
#include "host/audio/offline_driver.h"
#include "host/cli/live_feed.h"
#include "host/midi/midi_session.h"
#include "host/looptest/loop_latency.h"
#include "host/looptest/loop_test_runner.h"
#include "host/midi/virtual_midi_ports.h"
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
    std::printf("instance %zu \"%s\": %u sent, %u received, %zu handed to the host\n",
                instance.number, instance.entry.name.c_str(), sent, received,
                instance.context->SinkMessages().size());
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

// The back ends asked for on the command line replace the rack's.
void ApplyBackEnds(const BackEndOptions& options, RackSettings& settings) {
  if (options.midi) settings.midi = *options.midi;
  if (options.audio) settings.audio = *options.audio;
}

MidiSessionOptions SessionOptions(const BackEndOptions& options, const RackSettings& settings,
                                  bool monitor) {
  return {settings.midi, settings.midiPorts, options.clientName, monitor, {}};
}

// What the MIDI back end saw fail during the run, each counted as an error.
void ReportFaults(CMidiSession& session, CErrors& errors) {
  for (const std::string& fault : session.Faults()) {
    ++errors.count;
    Report(fault);
  }
}

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

// The tempo follows the transport when something outside the host sets it, from the frame
// where it changed; and the loop, if any, jumps back.
CAudioDriver::Progress Transport(const RunOptions& options, const RackSettings& settings,
                                 const CAudioDriver& driver, CLiveRack& live) {
  return [loop = LoopingTransport(options, settings, live), &driver, &live](
             std::int64_t frames) {
    if (const auto bpm = driver.TransportTempo()) live.Tempo().Change(*bpm, frames);
    if (loop) loop(frames);
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

// The id the session's ports give the feed's input, as instances announce it.
std::int32_t FeedInputId(CMidiSession& session, const RunOptions& options) {
  std::int32_t id = options.feedPort - 1;
  session.Ports().GetInputPortId(options.feedPort - 1, &id);
  return id;
}

// The audio back end the rack names; the server's rate and period become the rack's. Audio files
// are checked here, before any instance starts.
std::unique_ptr<CAudioDriver> OpenAudio(const RunOptions& options, RackSettings& settings,
                                        std::string& error) {
  if (settings.audio == "offline") {
    const OfflineOptions audio{settings.sampleRate, settings.bufferFrames,
                               options.seconds,     options.input,
                               options.output,      isatty(STDERR_FILENO) != 0};
    return COfflineDriver::Open(audio, error);
  }
  if (settings.audio != "jack") {
    error = options.rack.string() + ": there is no audio back end \"" + settings.audio +
            "\" (offline or jack)";
    return nullptr;
  }
  if (options.input || options.output) {
    error = "--in and --out are for the offline audio back end; on JACK, wire the host's ports";
    return nullptr;
  }
  auto jack = CJackDriver::Open({options.backEnds.clientName, options.seconds}, error);
  if (jack) {
    settings.sampleRate = jack->SampleRate();
    settings.bufferFrames = jack->PeriodFrames();
  }
  return jack;
}

// A rack's instances made and their states loaded with no worker running, so nothing is sent:
// what `config` and `params` read and change. The rack's MIDI back end is there, so that its
// instances find their ports.
struct CQuietRack {
  CQuietRack(const std::filesystem::path& file, const Rack& rack,
             std::unique_ptr<CMidiSession> midi, CErrors& errors)
      : session(std::move(midi)), live(file, rack.settings, &session->Ports(), errors.Sink()) {
    live.Create(rack.instances);
    live.LoadStates();
  }
  // Null when the back end cannot be opened (reported).
  static std::unique_ptr<CQuietRack> Open(const std::filesystem::path& file, Rack& rack,
                                          const BackEndOptions& backEnds, CErrors& errors) {
    ApplyBackEnds(backEnds, rack.settings);
    std::string error;
    auto session = CMidiSession::Open(SessionOptions(backEnds, rack.settings, false), error);
    if (!session) {
      Report(error);
      return nullptr;
    }
    return std::make_unique<CQuietRack>(file, rack, std::move(session), errors);
  }

  std::unique_ptr<CMidiSession> session;
  CLiveRack live;
};

// End of input counts as Enter, so a closed or absent terminal cannot hold the test for ever.
void WaitForEnter() {
  std::printf("ports open: wire them, then press Enter to start the test\n");
  std::fflush(stdout);
  for (int c = std::getchar(); c != '\n' && c != EOF; c = std::getchar()) {
  }
}

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

int PortsCommand(const PortsOptions& options) {
  std::string error;
  auto session = CMidiSession::Open(
      {options.backEnds.midi.value_or("virtual"), options.count, options.backEnds.clientName,
       false, {}},
      error);
  if (!session) {
    Report(error);
    return 1;
  }
  CMidiBackEnd& ports = session->Ports();
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
  ApplyBackEnds(options.backEnds, rack->settings);
  if (options.bpm) rack->settings.beatsPerMinute = *options.bpm;
  CErrors errors;
  std::string error;
  auto driver = OpenAudio(options, rack->settings, error);
  if (!driver) {
    Report(error);
    return 1;
  }
  auto session = CMidiSession::Open(SessionOptions(options.backEnds, rack->settings,
                                                   !options.quiet), error);
  if (!session) {
    Report(error);
    return 1;
  }

  CHostSource source(driver->Format(), driver->BufferBytes());
  CHostSink sink([&](std::span<const std::uint8_t> bytes, REFERENCE_TIME, REFERENCE_TIME) {
    driver->Consume(bytes);
  });
  bool streamed = false;
  {
    CLiveRack live(options.rack, rack->settings, &session->Ports(), errors.Sink());
    live.Create(rack->instances);
    if (!live.ConnectAudio(source, sink)) return 1;
    live.Pause(&source, &sink);
    live.LoadStates();  // after Pause, so that the workers send what the states hold
    live.AddEnvelopes();  // after the states, before the first sample
    session->OpenTo(live);
    const auto start = std::chrono::steady_clock::now();
    live.Run(&source, &sink);
    live.Start(driver->TransportTick().value_or(options.startTick));
    std::unique_ptr<CLiveFeed> feed;
    const std::int64_t memoryBefore = ResidentKilobytes();
    if (options.feedRate)
      feed = std::make_unique<CLiveFeed>(live, FeedInputId(*session, options), *options.feedRate);
    streamed = driver->Stream(source, Transport(options, rack->settings, *driver, live), error);
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
    session->Close();
    std::fflush(stdout);
    PrintSummary(live);
    PrintEnvelopeEnds(live);
    ReportFaults(*session, errors);
    for (const std::string& fault : driver->Faults()) {
      ++errors.count;
      Report(fault);
    }
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

int TestCommand(const TestOptions& options) {
  auto rack = LoadRack(options.rack);
  if (!rack) return 1;
  ApplyBackEnds(options.backEnds, rack->settings);
  CLoopLatency latency;  // before the session, whose threads report to it until they end
  std::string error;
  auto session =
      CMidiSession::Open(SessionOptions(options.backEnds, rack->settings, false), error);
  if (!session) {
    Report(error);
    return 1;
  }
  if (options.report) session->Observe(&latency);
  CErrors errors;
  bool passed = false;
  {
    CLiveRack live(options.rack, rack->settings, &session->Ports(), errors.Sink());
    live.Create(rack->instances);
    // No audio streams: Pause starts the output workers, which is all the test needs, and no
    // MIDI clock runs to disturb the counts.
    live.Pause(nullptr, nullptr);
    live.LoadStates();
    session->OpenTo(live);
    CSteadyLoopClock clock;
    CLoopTestRunner runner(
        [&live](const std::function<void(IMyFilter*)>& visit) {
          for (LiveInstance& instance : live.Instances())
            if (instance.myFilter) visit(instance.myFilter.Get());
        },
        clock, {options.cleanRuns, std::chrono::milliseconds(std::llround(options.timeout * 1000))},
        stdout);
    runner.OnStatus([&latency](const std::wstring& status) {
      if (status == kClosedLoopTesting) latency.Begin();
    });
    IMyFilter* opener = live.Instances().empty() ? nullptr : live.Instances()[0].myFilter.Get();
    if (options.wait) WaitForEnter();
    passed = runner.Run(opener);
    live.Stop(nullptr, nullptr);
    session->Close();
    ReportFaults(*session, errors);
  }
  std::printf("%s", session->LatencyReport().c_str());
  std::printf("%s\n", passed ? "passed" : "failed");
  return passed && errors.count == 0 ? 0 : 1;
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
  auto quiet = CQuietRack::Open(options.rack, *rack, options.backEnds, errors);
  if (!quiet) return 1;
  CLiveRack& live = quiet->live;
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
  auto quiet = CQuietRack::Open(options.rack, *rack, options.backEnds, errors);
  if (!quiet) return 1;
  CLiveRack& live = quiet->live;
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
