// The saved state in one run against peers: loading a state that holds one 4 MB sysex event
// (frame, parse, decode, scan, queue) against pugixml's parse of the same text plus a plain
// table decode of the block, and saving it against a plain encode plus pugixml's compact
// print. A typical state (ten events, one device of 16 banks) is measured on its own. The
// ratios are printed at the end, one to a line.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "bench/plain_base64.h"
#include "documents/xml.h"
#include "platform/streams.h"
#include "tests/support/test_instance.h"

namespace {

constexpr std::size_t kSysexBytes = 4u << 20;
std::vector<std::uint8_t> SysexBlock() {
  std::vector<std::uint8_t> bytes(kSysexBytes);
  std::uint32_t seed = 2024;
  for (std::uint8_t& b : bytes) {
    seed = seed * 1664525u + 1013904223u;
    b = static_cast<std::uint8_t>(seed >> 25);  // data bytes stay below 0x80
  }
  bytes.front() = 0xF0;
  bytes.back() = 0xF7;
  return bytes;
}

// An instance connected to a host without ports, its worker running, so that a load queues
// its events and the worker drains them without a port to copy them to.
struct Rig {
  ConnectedRig host{false};
  Rig() { host.Start(); }
  ~Rig() { host.Stop(); }
  CFilter& filter() { return host.instance.filter(); }
};

void AddEvent(CFilter& filter, const CStoredEvent& event) {
  std::uint32_t count = 0;
  filter.GetEventCount(&count);
  filter.InsertEvent(count, &event);
}

void MakeLargeState(CFilter& filter) {
  CStoredEvent event = CStoredEvent::MakeNew(NewEventKind::SystemExclusive);
  event.SetSysex(SysexBlock());
  AddEvent(filter, event);
}

// Ten events of the usual kinds and one device of 16 banks of 128 patches, with controllers.
void MakeTypicalState(CFilter& filter) {
  std::string device = "<Config><Instrument><Type>Typical Synth</Type>";
  for (int cc = 0; cc < 32; ++cc)
    device += "<CC Num=\"" + std::to_string(cc) + "\">Controller " + std::to_string(cc) + "</CC>";
  for (int bank = 0; bank < 16; ++bank) {
    device += "<Bank Num=\"" + std::to_string(bank * 128) + "\" Name=\"Bank " +
              std::to_string(bank) + "\">";
    for (int patch = 0; patch < 128; ++patch)
      device += "<Patch Num=\"" + std::to_string(patch) + "\">Patch " + std::to_string(patch) +
                "</Patch>";
    device += "</Bank>";
  }
  device += "</Instrument></Config>";
  TiXmlDocument doc;
  doc.Parse(device.c_str());
  CInstrument* store = nullptr;
  filter.GetInstrumentObject(&store);
  std::vector<std::wstring> names;
  store->ReadDevices(*doc.RootElement(), names);
  store->SelectDevice(names.front());
  const NewEventKind kinds[] = {NewEventKind::BankProgramChange, NewEventKind::ControllerChange,
                                NewEventKind::Wait, NewEventKind::SystemExclusive,
                                NewEventKind::MidiData};
  for (int i = 0; i < 10; ++i) AddEvent(filter, CStoredEvent::MakeNew(kinds[i % 5]));
  filter.SetOutputRechannel(2);
}

std::vector<std::uint8_t> Saved(CFilter& filter) {
  auto stream = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
  filter.Save(stream.Get(), 1);
  return stream->Bytes();
}

void Rewind(IStream& stream) {
  LARGE_INTEGER start{};
  stream.Seek(start, STREAM_SEEK_SET, nullptr);
}

void InstanceLoad(benchmark::State& state, void (*make)(CFilter&)) {
  Rig source;
  make(source.filter());
  const std::vector<std::uint8_t> bytes = Saved(source.filter());
  Rig target;
  auto stream = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create(bytes.data(), bytes.size()));
  for (auto _ : state) {
    Rewind(*stream);
    if (target.filter().Load(stream.Get()) != S_OK) state.SkipWithError("load failed");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void InstanceSave(benchmark::State& state, void (*make)(CFilter&)) {
  Rig rig;
  make(rig.filter());
  auto stream = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
  for (auto _ : state) {
    Rewind(*stream);
    stream->SetSize(ULARGE_INTEGER{});
    rig.filter().Save(stream.Get(), 1);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream->Bytes().size()));
}

// The large state's text, as it stands in the frame.
const std::string& LargeText() {
  static const std::string text = [] {
    Rig rig;
    MakeLargeState(rig.filter());
    const std::vector<std::uint8_t> bytes = Saved(rig.filter());
    return std::string(bytes.begin() + 28, bytes.end());
  }();
  return text;
}

void PeerLoad(benchmark::State& state) {
  const std::string& text = LargeText();
  std::vector<std::uint8_t> decoded;
  for (auto _ : state) {
    pugi::xml_document doc;
    doc.load_buffer(text.data(), text.size());
    const pugi::char_t* block = doc.child("Config").child("MIDIMsg").text().get();
    plain_base64::Decode(block, std::char_traits<char>::length(block), decoded);
    benchmark::DoNotOptimize(decoded.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

struct StringWriter final : pugi::xml_writer {
  std::string out;
  void write(const void* data, std::size_t size) override {
    out.append(static_cast<const char*>(data), size);
  }
};

void PeerSave(benchmark::State& state) {
  const std::vector<std::uint8_t> sysex = SysexBlock();
  std::string encoded;
  StringWriter writer;
  for (auto _ : state) {
    plain_base64::Encode(sysex.data(), sysex.size(), encoded);
    pugi::xml_document doc;
    pugi::xml_node config = doc.append_child("Config");
    config.append_attribute("Schema") = 1;
    config.append_child("MIDIOutputRechannel").append_attribute("Channel") = 0;
    config.append_child("MIDISync").append_attribute("Enabled") = 0;
    pugi::xml_node msg = config.append_child("MIDIMsg");
    msg.append_attribute("Name") = "System Exclusive";
    msg.append_attribute("Description") = "";
    msg.append_attribute("Enabled") = 1;
    msg.append_child(pugi::node_pcdata).set_value(encoded.c_str());
    writer.out.clear();
    doc.save(writer, "", pugi::format_raw);
    benchmark::DoNotOptimize(writer.out.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(writer.out.size()));
}

BENCHMARK_CAPTURE(InstanceLoad, large, MakeLargeState)->Unit(benchmark::kMillisecond);
BENCHMARK(PeerLoad)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(InstanceSave, large, MakeLargeState)->Unit(benchmark::kMillisecond);
BENCHMARK(PeerSave)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(InstanceLoad, typical, MakeTypicalState)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(InstanceSave, typical, MakeTypicalState)->Unit(benchmark::kMicrosecond);

// Keeps each run's CPU time per iteration by name, to print the ratios after the table. CPU
// time, because the machines these run on are shared; the worker's draining of the queue runs
// on its own thread and is not counted, while the load's copy onto the queue is.
class RatioReporter final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    // With repetitions the median stands for the run; without, the one run does.
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !m_medians.contains(run.run_name.str()))
        m_times[run.run_name.str()] = run.GetAdjustedCPUTime();
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
        m_times[run.run_name.str()] = run.GetAdjustedCPUTime();
        m_medians[run.run_name.str()] = true;
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
  void PrintRatio(const char* label, const char* measured, const char* baseline, double target) {
    const auto m = m_times.find(measured);
    const auto b = m_times.find(baseline);
    if (m == m_times.end() || b == m_times.end() || b->second <= 0) return;
    std::printf("%s: %.2fx CPU time (target %.0fx)\n", label, m->second / b->second, target);
  }

 private:
  std::map<std::string, double> m_times;
  std::map<std::string, bool> m_medians;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatio("load of a 4 MB sysex state / pugixml parse + plain decode",
                      "InstanceLoad/large", "PeerLoad", 3);
  reporter.PrintRatio("save of a 4 MB sysex state / plain encode + pugixml compact print",
                      "InstanceSave/large", "PeerSave", 2);
  benchmark::Shutdown();
  return 0;
}
