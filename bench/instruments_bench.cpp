// The device store's paths: importing a large instrument definition file, selecting a device
// with many banks, and the host reading every name of that device through an instance.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "instruments/instrument.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_instance.h"

namespace {

constexpr int kDevices = 50;
constexpr int kBanks = 100;           // per device
constexpr int kTablesPerDevice = 10;  // each used by ten of the device's banks
constexpr int kPatches = 128;         // per table
const std::wstring kBigDevice = L"Device 25";

// 50 devices of 100 banks over 500 tables of 128 names: about 69,000 lines, with CRLF endings.
std::string DefinitionText() {
  std::string text = "; generated\r\n.Patch Names\r\n";
  for (int d = 0; d < kDevices; ++d)
    for (int t = 0; t < kTablesPerDevice; ++t) {
      text += "\r\n[Device " + std::to_string(d) + " Table " + std::to_string(t) + "]\r\n";
      for (int p = 0; p < kPatches; ++p)
        text += std::to_string(p) + "=Patch " + std::to_string(p) + " of table " +
                std::to_string(t) + "\r\n";
    }
  text += "\r\n.Controller Names\r\n[Controls]\r\n";
  for (int c = 0; c < 128; ++c)
    text += std::to_string(c) + "=Controller " + std::to_string(c) + "\r\n";
  text += "\r\n.Instrument Definitions\r\n";
  for (int d = 0; d < kDevices; ++d) {
    text += "\r\n[Device " + std::to_string(d) + "]\r\nControl=Controls\r\n";
    for (int b = 0; b < kBanks; ++b)
      text += "Patch[" + std::to_string(b * 128) + "]=Device " + std::to_string(d) + " Table " +
              std::to_string(b % kTablesPerDevice) + "\r\n";
  }
  return text;
}

struct Fixture {
  TempFolder folder;
  std::string text = DefinitionText();
  std::wstring insFile = folder.Write("bench.ins", text);
  std::wstring devicesFile = folder.File("devices.xml");
};

Fixture& Shared() {
  static Fixture fixture;
  return fixture;
}

void BM_ImportDefinitionFile(benchmark::State& state) {
  Fixture& f = Shared();
  for (auto _ : state) {
    ComPtr<CInstrument> store(new CInstrument(f.devicesFile));
    benchmark::DoNotOptimize(store->ParseDefinitionFile(f.insFile));
    state.PauseTiming();
    store.Reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(f.text.size()));
}
BENCHMARK(BM_ImportDefinitionFile)->Unit(benchmark::kMillisecond);

// Writing the imported store to "devices.xml", as a dirty store does when it goes.
void BM_SaveDevicesFile(benchmark::State& state) {
  Fixture& f = Shared();
  for (auto _ : state) {
    state.PauseTiming();
    ComPtr<CInstrument> store(new CInstrument(f.folder.File("none.xml")));
    store->ParseDefinitionText(f.text);
    store->RemoveAllDevices();           // marks the store for writing ...
    store->ParseDefinitionText(f.text);  // ... and brings the devices back
    state.ResumeTiming();
    store.Reset();
  }
}
BENCHMARK(BM_SaveDevicesFile)->Unit(benchmark::kMillisecond);

void BM_SelectDeviceWith100Banks(benchmark::State& state) {
  Fixture& f = Shared();
  ComPtr<CInstrument> store(new CInstrument(f.devicesFile));
  store->ParseDefinitionText(f.text);
  for (auto _ : state) benchmark::DoNotOptimize(store->SelectDevice(kBigDevice));
  state.SetItemsProcessed(state.iterations() * kBanks * kPatches);
}
BENCHMARK(BM_SelectDeviceWith100Banks)->Unit(benchmark::kMicrosecond);

// An instance with the big device selected; the host reads through its soft-synth interface.
struct HostView {
  TestInstance instance;
  HostView() {
    CInstrument* store = nullptr;
    instance->GetInstrumentObject(&store);
    store->ParseDefinitionText(Shared().text);
    store->SelectDevice(kBigDevice);
  }
};

// Asks for the current device's banks and hands each bank's name list to `read`, as a host does.
template <class Read>
void ForEachPatchList(IMfxSoftSynth2& synth, Read read) {
  std::int32_t* banks = nullptr;
  std::int32_t count = 0;
  synth.GetBanks(&banks, &count);
  for (std::int32_t b = 0; b < count; ++b) {
    ComPtr<IMfxNameList> list;
    synth.GetPatchNames(banks[b], list.Receive());
    ComPtr<IMfxNameList2> list2;
    list2.QueryFrom(list.Get(), IID_IMfxNameList2);
    read(*list, *list2);
  }
  CoTaskMemFree(banks);
}

// As the program-change dialog does: banks, then each list by index up to its count.
void BM_HostReadsAllNamesByIndex(benchmark::State& state) {
  HostView view;
  char name[260];
  for (auto _ : state) {
    ForEachPatchList(view.instance.filter(), [&](IMfxNameList& list, IMfxNameList2& list2) {
      std::int32_t names = 0;
      list2.GetCount(&names);
      for (std::int32_t i = 0; i < names; ++i) list.GetNameAt(i, name, sizeof name);
    });
    benchmark::DoNotOptimize(name);
  }
  state.SetItemsProcessed(state.iterations() * kBanks * kPatches);
}
BENCHMARK(BM_HostReadsAllNamesByIndex)->Unit(benchmark::kMicrosecond);

void BM_HostWalksAllNames(benchmark::State& state) {
  HostView view;
  char name[260];
  for (auto _ : state) {
    ForEachPatchList(view.instance.filter(), [&](IMfxNameList&, IMfxNameList2& list2) {
      MfxPosition position = 0;
      std::int32_t key = 0;
      list2.GetFirstPosition(&position);
      while (list2.GetNextEntry(&position, &key, name, sizeof name) == S_OK) {
      }
    });
    benchmark::DoNotOptimize(name);
  }
  state.SetItemsProcessed(state.iterations() * kBanks * kPatches);
}
BENCHMARK(BM_HostWalksAllNames)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
