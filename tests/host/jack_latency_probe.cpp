// jack_latency_probe: measures MIDI latency on a JACK server in the server's own frames. It
// offers "<name>:out" and "<name>:in", waits until both are connected (directly to each other,
// or through a program to measure), settles for half a second, then sends COUNT numbered
// controller messages, one a period at a varying frame within it, and matches each with its
// return. It prints what was lost or duplicated and the latency's minimum, median, 99th
// percentile and maximum, in frames and in milliseconds. Nothing is asserted: it measures.
//
//   jack_latency_probe COUNT [NAME]
#include <jack/jack.h>
#include <jack/midiport.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::uint32_t kMaxCount = 16384;  // the number travels in 14 bits

struct Probe {
  jack_client_t* client = nullptr;
  jack_port_t* out = nullptr;
  jack_port_t* in = nullptr;
  std::uint32_t count = 0;
  std::atomic<bool> sending{false};
  std::atomic<std::uint32_t> sent{0};
  std::atomic<std::uint32_t> duplicated{0};
  std::uint32_t cycle = 0;
  // Frames each message left and came back at; -1 until then. Sized before the server runs us.
  std::vector<std::int64_t> sentAt;
  std::vector<std::atomic<std::int64_t>> receivedAt;

  explicit Probe(std::uint32_t n) : count(n), sentAt(n, -1), receivedAt(n) {
    for (auto& r : receivedAt) r = -1;
  }
};

int Process(jack_nframes_t frames, void* self) {
  Probe& probe = *static_cast<Probe*>(self);
  const std::int64_t start = jack_last_frame_time(probe.client);
  void* in = jack_port_get_buffer(probe.in, frames);
  const jack_nframes_t events = jack_midi_get_event_count(in);
  for (jack_nframes_t i = 0; i < events; ++i) {
    jack_midi_event_t event{};
    if (jack_midi_event_get(&event, in, i) != 0 || event.size != 3 || event.buffer[0] != 0xB0)
      continue;
    const std::uint32_t number = event.buffer[1] | static_cast<std::uint32_t>(event.buffer[2]) << 7;
    if (number >= probe.count) continue;
    std::int64_t none = -1;
    if (!probe.receivedAt[number].compare_exchange_strong(none, start + event.time))
      probe.duplicated.fetch_add(1);
  }
  void* out = jack_port_get_buffer(probe.out, frames);
  jack_midi_clear_buffer(out);
  const std::uint32_t number = probe.sent.load();
  if (probe.sending && number < probe.count) {
    // A frame that wanders through the period, so that every offset is measured.
    const auto offset = static_cast<jack_nframes_t>((probe.cycle++ * 37u) % frames);
    jack_midi_data_t* data = jack_midi_event_reserve(out, offset, 3);
    if (data) {
      data[0] = 0xB0;
      data[1] = static_cast<jack_midi_data_t>(number & 0x7F);
      data[2] = static_cast<jack_midi_data_t>(number >> 7);
      probe.sentAt[number] = start + offset;
      probe.sent.store(number + 1);
    }
  }
  return 0;
}

std::int64_t Rank(const std::vector<std::int64_t>& sorted, double share) {
  const auto n = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
  return sorted[std::max<std::size_t>(n, 1) - 1];
}

}  // namespace

int main(int argc, char** argv) {
  const int count = argc < 2 ? 0 : std::atoi(argv[1]);
  if (count <= 0 || static_cast<std::uint32_t>(count) > kMaxCount) {
    std::fprintf(stderr, "usage: jack_latency_probe COUNT (1 to %u) [NAME]\n", kMaxCount);
    return 2;
  }
  Probe probe(static_cast<std::uint32_t>(count));
  const std::string name = argc > 2 ? argv[2] : "latency-probe";
  probe.client = jack_client_open(name.c_str(), JackNoStartServer, nullptr);
  if (!probe.client) {
    std::fprintf(stderr, "jack_latency_probe: no JACK server\n");
    return 1;
  }
  probe.out = jack_port_register(probe.client, "out", JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput, 0);
  probe.in = jack_port_register(probe.client, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
  jack_set_process_callback(probe.client, Process, &probe);
  if (!probe.out || !probe.in || jack_activate(probe.client) != 0) {
    std::fprintf(stderr, "jack_latency_probe: the ports cannot be made\n");
    return 1;
  }
  using namespace std::chrono_literals;
  while (!jack_port_connected(probe.out) || !jack_port_connected(probe.in))
    std::this_thread::sleep_for(20ms);
  std::this_thread::sleep_for(500ms);
  probe.sending = true;
  while (probe.sent.load() < probe.count) std::this_thread::sleep_for(20ms);
  std::this_thread::sleep_for(1s);  // for the last returns
  jack_deactivate(probe.client);

  const double rate = jack_get_sample_rate(probe.client);
  const jack_nframes_t period = jack_get_buffer_size(probe.client);
  std::vector<std::int64_t> latencies;
  for (std::uint32_t i = 0; i < probe.count; ++i)
    if (probe.receivedAt[i] >= 0) latencies.push_back(probe.receivedAt[i] - probe.sentAt[i]);
  jack_client_close(probe.client);
  std::printf("period %u frames at %.0f Hz: %u sent, %zu back, %u lost, %u duplicated\n", period,
              rate, probe.count, latencies.size(),
              probe.count - static_cast<std::uint32_t>(latencies.size()), probe.duplicated.load());
  if (latencies.empty()) return 1;
  std::sort(latencies.begin(), latencies.end());
  const auto ms = [rate](std::int64_t frames) {
    return 1000.0 * static_cast<double>(frames) / rate;
  };
  const std::int64_t figures[] = {latencies.front(), Rank(latencies, 0.5), Rank(latencies, 0.99),
                                  latencies.back()};
  std::printf("latency frames: min %lld  median %lld  p99 %lld  max %lld\n",
              static_cast<long long>(figures[0]), static_cast<long long>(figures[1]),
              static_cast<long long>(figures[2]), static_cast<long long>(figures[3]));
  std::printf("latency ms:     min %.3f  median %.3f  p99 %.3f  max %.3f  (jitter p99-min %.3f)\n",
              ms(figures[0]), ms(figures[1]), ms(figures[2]), ms(figures[3]),
              ms(figures[2] - figures[0]));
  return 0;
}
