// tarn-host's own costs beside the plug-in's: the audio chain per buffer with and without an
// instance in it, the offline driver streaming a file through an instance, and loading a rack
// of 16 instances holding 100 stored events each. The module is registered in a private
// registry and loaded through its exports, as the host does.
#include <benchmark/benchmark.h>

#include <sndfile.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/audio/offline_driver.h"
#include "host/midi/virtual_midi_ports.h"
#include "host/plugin/synth_catalog.h"
#include "host/rack/live_rack.h"
#include "platform/codepage.h"

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kFrames = 512;
const char* kClass = "{D8DF3849-A01D-4254-A57D-5515BF9E3886}";

struct CSilentListener final : CMidiPortListener {
  void OnPortSend(std::int32_t, std::span<const std::uint8_t>) override {}
};

// A private registry with the module registered, kept for the whole run.
const fs::path& Folder() {
  static const fs::path folder = [] {
    const fs::path made = fs::temp_directory_path() / "tarn-host-bench";
    fs::remove_all(made);
    fs::create_directories(made);
    SetHostRegistryRoot((made / "registry").wstring());
    std::string error;
    static auto module = CModuleLibrary::Open(TARN_MODULE_FILE, error);
    module->SetRegistryRoot(HostRegistryRoot());
    module->Register();
    return made;
  }();
  return folder;
}

WaveFormat StereoFloat() {
  return {WAVE_FORMAT_IEEE_FLOAT_TAG, 2, 48000, 48000 * 8, 8, 32, 0};
}

void Chain(benchmark::State& state, bool withInstance) {
  Folder();
  CSilentListener listener;
  CVirtualMidiPorts ports(2, listener);
  CHostSource source(StereoFloat(), kFrames * 8);
  CHostSink sink([](std::span<const std::uint8_t> bytes, REFERENCE_TIME, REFERENCE_TIME) {
    benchmark::DoNotOptimize(bytes.data());
  });
  CLiveRack live("bench", RackSettings{}, &ports, [](const std::string&) {});
  if (withInstance) live.Create({{"A", kClass, {}, {}, {}, {}}});
  live.ConnectAudio(source, sink);
  live.Pause(&source, &sink);
  live.Run(&source, &sink);
  std::vector<std::uint8_t> buffer(kFrames * 8);
  REFERENCE_TIME time = 0;
  for (auto _ : state) {
    source.Deliver(buffer, time, time + 106'666);
    time += 106'666;
  }
  live.Stop(&source, &sink);
  state.SetItemsProcessed(state.iterations());
}

// The host's own cost per buffer: its source lending and filling a sample, its sink taking it.
void BM_ChainHostOnly(benchmark::State& state) { Chain(state, false); }
// The same with one instance between them: the difference is the instance's Receive.
void BM_ChainWithInstance(benchmark::State& state) { Chain(state, true); }

// The offline driver reading a stereo file and writing it back, through one instance, per
// buffer (the iteration streams 10 s of audio; items are buffers). The argument is the file's
// sample width: 16 converts to the chain's float and back, 32 does not.
void BM_OfflineDriverThroughInstance(benchmark::State& state) {
  const bool pcm16 = state.range(0) == 16;
  const fs::path in = Folder() / "in.wav";
  const fs::path out = Folder() / "out.wav";
  constexpr sf_count_t kTotal = 48000 * 10;
  {
    SF_INFO info{0, 48000, 2, SF_FORMAT_WAV | (pcm16 ? SF_FORMAT_PCM_16 : SF_FORMAT_FLOAT), 0, 0};
    SNDFILE* file = sf_open(in.c_str(), SFM_WRITE, &info);
    std::vector<float> samples(static_cast<std::size_t>(kTotal) * 2, 0.25f);
    sf_writef_float(file, samples.data(), kTotal);
    sf_close(file);
  }
  CSilentListener listener;
  CVirtualMidiPorts ports(2, listener);
  for (auto _ : state) {
    std::string error;
    auto driver = COfflineDriver::Open({48000, kFrames, 0, in, out, false}, error);
    CHostSource source(driver->Format(), driver->BufferBytes());
    CHostSink sink([&](std::span<const std::uint8_t> bytes, REFERENCE_TIME, REFERENCE_TIME) {
    driver->Consume(bytes);
  });
    {
      CLiveRack live("bench", RackSettings{}, &ports, [](const std::string&) {});
      live.Create({{"A", kClass, {}, {}, {}, {}}});
      live.ConnectAudio(source, sink);
      live.Pause(&source, &sink);
      live.Run(&source, &sink);
      driver->Stream(source, {}, error);
      live.Stop(&source, &sink);
    }
    driver->Finish(error);
  }
  state.SetItemsProcessed(state.iterations() * (kTotal / kFrames));
}

// One state holding 100 enabled short stored events, as its instance saved it.
std::vector<std::uint8_t> StateWithEvents(CMidiBackEnd* ports) {
  std::wstring config = L"<Config Schema=\"1\"><MIDIOutputPort Name=\"Virtual Out 1\" ID=\"2000\" />";
  for (int i = 0; i < 100; ++i)
    config += L"<MIDIMsg Name=\"E" + std::to_wstring(i) +
              L"\" Description=\"\" Enabled=\"1\"><Msg Status=\"176\" Data1=\"7\" Data2=\"" +
              std::to_wstring(i) + L"\" /></MIDIMsg>";
  config += L"</Config>";
  CLiveRack live("bench", RackSettings{}, ports, [](const std::string&) {});
  live.Create({{"A", kClass, {}, {}, {}, {}}});
  live.LoadStates();
  live.Instances()[0].proxy->SetConfigXml(config.c_str());
  std::vector<RackInstance> entries{{"A", kClass, {}, {}, {}, {}}};
  live.Snapshot(entries);
  return entries[0].state;
}

// Reading the rack file, creating and connecting 16 instances and loading their states (which
// queues 1600 events), then releasing them.
void BM_LoadRack16x100(benchmark::State& state) {
  const fs::path file = Folder() / "rack16.json";
  CSilentListener listener;
  CVirtualMidiPorts ports(2, listener);
  Rack rack;
  const std::vector<std::uint8_t> saved = StateWithEvents(&ports);
  for (int i = 0; i < 16; ++i) rack.instances.push_back({"I" + std::to_string(i), kClass, saved, {}, {}, {}});
  std::string error;
  SaveRackFile(file, rack, error);
  for (auto _ : state) {
    auto loaded = LoadRackFile(file, error);
    CLiveRack live(file, loaded->settings, &ports, [](const std::string&) {});
    live.Create(loaded->instances);
    live.LoadStates();
    benchmark::DoNotOptimize(live.Instances().size());
  }
  state.counters["state_bytes"] = static_cast<double>(saved.size());
}

BENCHMARK(BM_ChainHostOnly);
BENCHMARK(BM_ChainWithInstance);
BENCHMARK(BM_OfflineDriverThroughInstance)->Arg(16)->Arg(32)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadRack16x100)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
