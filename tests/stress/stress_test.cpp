// Many instances in one process under load from every side at once: producers posting live
// input, stored events and sysex; the graph pausing, running and stopping in a loop; states
// saved and loaded; an editor changing the event list and the sysex prefix; instances destroyed
// and made anew, some while their worker sleeps in a pause. Every post that a running worker
// accepted must reach the port exactly once, in order per producer, and be counted. Run under
// ASan and TSan as well: nothing freed may be touched and no lock order inverted.
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/streams.h"
#include "tests/support/test_instance.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kInstances = 64;
constexpr std::size_t kProducers = 4;        // per instance
constexpr std::size_t kHelpers = 4;          // editor threads, and as many state threads
constexpr int kPostsPerProducer = 240;
constexpr int kCyclesPerLife = 3;    // pause, run, stop
constexpr int kLives = 2;            // instances made per slot
constexpr auto kPatience = 20s;      // a drain that takes longer is a failure

// What a producer's message carries: its road and producer in the status byte, its sequence
// number in the other three bytes. Events of the stored list carry status B0 and are counted
// only; the controller's markers carry D0 (drained) and C0 (must never go out).
constexpr std::uint8_t kLive = 0x90, kStored = 0xA0, kList = 0xB0, kLost = 0xC0, kMark = 0xD0;
constexpr std::uint8_t kSysexTag = 0x7D;

std::uint32_t Packed(std::uint8_t status, std::uint32_t number) {
  return status | (number & 0xFFFFFFu) << 8;
}

// A sysex block whose identity lies past any prefix laid over it: the editor sets at most 5
// bytes, which a save and load make 6 (base64 padding comes back as zero bytes).
constexpr std::size_t kSysexIdentity = 9;
std::vector<std::uint8_t> SysexOf(std::size_t producer, std::uint32_t number) {
  std::vector<std::uint8_t> bytes(kSysexIdentity + 6, 0);
  bytes.front() = 0xF0;
  bytes[kSysexIdentity] = kSysexTag;
  bytes[kSysexIdentity + 1] = static_cast<std::uint8_t>(producer);
  bytes[kSysexIdentity + 2] = static_cast<std::uint8_t>(number);
  bytes[kSysexIdentity + 3] = static_cast<std::uint8_t>(number >> 8);
  bytes[kSysexIdentity + 4] = static_cast<std::uint8_t>(number >> 16);
  bytes.back() = 0xF7;
  return bytes;
}

struct Post {
  std::uint32_t number;
  std::uint32_t epoch;  // which run of the worker it was made in
  bool accepted;
};

// What a send was, decoded; producer kNone for anything but a producer's post.
constexpr std::size_t kNone = ~std::size_t{0};
struct Decoded {
  std::size_t producer = kNone;
  std::uint32_t number = 0;
  std::uint8_t status = 0;
};

Decoded Decode(const FakeMidiPorts::Sent& sent) {
  if (sent.sysex) {
    const auto* b = sent.bytes.data() + kSysexIdentity;
    if (sent.bytes.size() != kSysexIdentity + 6 || b[0] != kSysexTag) return {};
    return {b[1], b[2] | std::uint32_t{b[3]} << 8 | std::uint32_t{b[4]} << 16, 0xF0};
  }
  const auto status = static_cast<std::uint8_t>(sent.message & 0xFF);
  const std::uint8_t kind = status & 0xF0;
  if (kind != kLive && kind != kStored) return {kNone, sent.message >> 8, status};
  return {std::size_t{status} & 0x0F, sent.message >> 8, status};
}

// Totals over the whole run, for the report.
struct Tally {
  std::atomic<long> posts{0}, accepted{0}, refused{0}, sent{0}, droppedByStop{0}, listSent{0};
  std::atomic<long> saves{0}, loads{0}, edits{0}, lives{0}, destroyedAsleep{0}, cycles{0};
};

// One place in the rack: an instance at a time, its producers' logs and its graph state. The
// gate orders the controller's state changes against everyone else: producers, editors and
// state threads hold it shared; pausing, stopping and replacing the instance hold it alone.
struct Slot {
  std::shared_mutex gate;
  std::unique_ptr<ConnectedRig> rig;
  bool running = false;
  std::uint32_t epoch = 0;
  std::vector<bool> drained{false};  // per epoch: ended with everything sent
  std::array<std::vector<Post>, kProducers> logs;  // producer p appends under the shared gate
  std::array<std::uint32_t, kProducers> next{};
  std::atomic<long> liveInputs{0};  // OnInput records handed over in this life, all counted
  std::atomic<std::size_t> producersDone{0};
};

class Stress {
 public:
  void Run();
  void Report(double seconds) const;

 private:
  void Produce(Slot& slot, std::size_t producer);
  void Control(Slot& slot);
  void Edit(std::size_t helper);
  void SaveAndLoad(std::size_t helper);

  void NewLife(Slot& slot);
  void Pause(Slot& slot);
  void StopDrained(Slot& slot);
  void StopAbruptly(Slot& slot);
  void DestroyAsleep(Slot& slot);
  void Verify(Slot& slot);
  bool WaitForMark(Slot& slot, std::uint32_t mark);

  std::array<Slot, kInstances> m_slots;
  std::atomic<bool> m_helpersStop{false};
  std::atomic<std::uint32_t> m_marks{0};
  Tally m_tally;
};

void Stress::NewLife(Slot& slot) {
  slot.rig = std::make_unique<ConnectedRig>();
  slot.rig->EnableOutput();
  slot.rig->instance->SetEditorWindow(nullptr);  // activity would pile up for a silent thread
  slot.running = false;
  slot.epoch = 0;
  slot.drained.assign(1, false);
  for (auto& log : slot.logs) log.clear();
  slot.liveInputs = 0;
  ++m_tally.lives;
}

void Stress::Pause(Slot& slot) {
  std::unique_lock lock(slot.gate);
  slot.rig->Start();
  slot.running = true;
  ++slot.epoch;
  slot.drained.push_back(false);
}

bool Stress::WaitForMark(Slot& slot, std::uint32_t mark) {
  const auto deadline = Clock::now() + kPatience;
  for (;;) {
    for (const auto& sent : slot.rig->ports.Sends())
      if (!sent.sysex && sent.message == Packed(kMark, mark)) return true;
    if (Clock::now() > deadline) return false;
    std::this_thread::sleep_for(1ms);
  }
}

// With no one posting, a marker queued last is sent last: once it is out, so is everything
// accepted before it.
void Stress::StopDrained(Slot& slot) {
  std::unique_lock lock(slot.gate);
  const std::uint32_t mark = ++m_marks;
  const CStoredEvent marker = CStoredEvent::FromMessage({0, Packed(kMark, mark)});
  ASSERT_EQ(slot.rig->instance->SendEvent(&marker), S_OK);
  ASSERT_TRUE(WaitForMark(slot, mark)) << "the worker did not drain its queue";
  slot.rig->Stop();
  slot.running = false;
  slot.drained[slot.epoch] = true;
  ++m_tally.cycles;
}

void Stress::StopAbruptly(Slot& slot) {
  std::unique_lock lock(slot.gate);
  slot.rig->Stop();
  slot.running = false;
  ++m_tally.cycles;
}

// Sends a marker, then a long pause and a message behind it; once the marker is out the worker
// is inside that batch, asleep. Destroying the instance must cut the pause short, and what lay
// behind it never goes out.
void Stress::DestroyAsleep(Slot& slot) {
  std::unique_lock lock(slot.gate);
  if (!slot.running) {
    slot.rig->Start();
    slot.running = true;
    ++slot.epoch;
    slot.drained.push_back(false);
  }
  const std::uint32_t mark = ++m_marks;
  CStoredEvent pause;
  pause.SetWait(60'000);
  const CStoredEvent marker = CStoredEvent::FromMessage({0, Packed(kMark, mark)});
  const CStoredEvent behind = CStoredEvent::FromMessage({0, Packed(kLost, mark)});
  ASSERT_EQ(slot.rig->instance->SendEvent(&marker), S_OK);
  ASSERT_EQ(slot.rig->instance->SendEvent(&pause), S_OK);
  ASSERT_EQ(slot.rig->instance->SendEvent(&behind), S_OK);
  ASSERT_TRUE(WaitForMark(slot, mark));
  Verify(slot);
  const auto start = Clock::now();
  slot.rig->instance.Destroy();
  EXPECT_LT(Clock::now() - start, 10s) << "destruction waited for the pause";
  for (const auto& sent : slot.rig->ports.Sends())
    EXPECT_NE(sent.message, Packed(kLost, mark)) << "an event behind the cut pause went out";
  slot.rig.reset();
  ++m_tally.destroyedAsleep;
}

// [controller, gate held alone] Each producer's sends are its accepted posts in the order made,
// each once: all of those of a drained run, a leading part of those of a run that was stopped
// with work queued (a stop drops the queue). Refused posts never go out. Each send is counted,
// and so is each live input.
void Stress::Verify(Slot& slot) {
  // A worker stopped with a batch in hand may still be sending it: take the sends once they
  // and the count agree, the worker counting just after the port has taken each message.
  std::vector<FakeMidiPorts::Sent> sends;
  std::uint32_t received = 0, counted = 0;
  const auto deadline = Clock::now() + kPatience;
  for (;;) {
    sends = slot.rig->ports.Sends();
    slot.rig->instance->GetEventCounters(&received, &counted, 0);
    if (counted == sends.size() || Clock::now() > deadline) break;
    std::this_thread::sleep_for(1ms);
  }
  EXPECT_EQ(counted, sends.size()) << "every send is counted";
  EXPECT_EQ(received, static_cast<std::uint32_t>(slot.liveInputs)) << "every live input counted";
  std::array<std::vector<std::uint32_t>, kProducers> sent;
  for (const auto& s : sends) {
    const Decoded d = Decode(s);
    if (d.producer < kProducers) sent[d.producer].push_back(d.number);
    else if ((d.status & 0xF0) == kList) ++m_tally.listSent;
  }
  for (std::size_t p = 0; p < kProducers; ++p) {
    const auto& out = sent[p];
    for (std::size_t i = 1; i < out.size(); ++i)
      ASSERT_LT(out[i - 1], out[i]) << "producer " << p << ": sent twice or out of order";
    std::size_t at = 0;  // next send to match
    bool gap = false;    // an accepted post of this run was not sent
    std::uint32_t epoch = 0;
    for (const Post& post : slot.logs[p]) {
      if (post.epoch != epoch) {
        epoch = post.epoch;
        gap = false;
      }
      const bool wentOut = at < out.size() && out[at] == post.number;
      if (wentOut) ++at;
      ASSERT_TRUE(post.accepted || !wentOut) << "a refused post went out";
      if (!post.accepted) continue;
      if (!wentOut) {
        ASSERT_FALSE(slot.drained[post.epoch]) << "producer " << p << ": post " << post.number
                                               << " was accepted in a drained run and lost";
        ++m_tally.droppedByStop;
        gap = true;
      }
      ASSERT_FALSE(wentOut && gap) << "producer " << p << ": a post went out after one that "
                                   << "a stop dropped, in the same run";
    }
    ASSERT_EQ(at, out.size()) << "producer " << p << ": a send matches no accepted post";
    m_tally.sent += static_cast<long>(out.size());
  }
}

void Stress::Produce(Slot& slot, std::size_t producer) {
  for (int i = 0; i < kPostsPerProducer; ++i) {
    {
      std::shared_lock lock(slot.gate);
      CFilter& instance = slot.rig->instance.filter();
      const std::uint32_t number = slot.next[producer]++;
      bool accepted = slot.running;
      switch (number % 3) {
        case 0: {
          FakeDataList list({{0, Packed(static_cast<std::uint8_t>(kLive | producer), number)}});
          instance.OnInput(0, &list);
          ++slot.liveInputs;
          break;
        }
        case 1: {
          const CStoredEvent event = CStoredEvent::FromMessage(
              {0, Packed(static_cast<std::uint8_t>(kStored | producer), number)});
          const HRESULT hr = instance.SendEvent(&event);
          EXPECT_EQ(hr == S_OK, slot.running) << "a post is taken exactly while the worker runs";
          accepted = hr == S_OK;
          break;
        }
        default: {
          const auto bytes = SysexOf(producer, number);
          instance.SendSysexData(0, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
        }
      }
      slot.logs[producer].push_back({number, slot.epoch, accepted});
      ++m_tally.posts;
      ++(accepted ? m_tally.accepted : m_tally.refused);
    }
    std::this_thread::sleep_for(150us);  // spread over the lives of the instance
  }
  ++slot.producersDone;
}

// The graph's thread for one slot: pause, run, stop in a loop, instances replaced between
// lives, the last life of some slots ending with the worker asleep in a pause.
void Stress::Control(Slot& slot) {
  const auto index = static_cast<std::size_t>(&slot - m_slots.data());
  for (int life = 0; life < kLives; ++life) {
    const bool last = life + 1 == kLives;
    for (int cycle = 0; cycle < kCyclesPerLife || (last && slot.producersDone < kProducers);
         ++cycle) {
      Pause(slot);
      std::this_thread::sleep_for(2ms);
      {
        std::shared_lock lock(slot.gate);
        slot.rig->instance->Run(0);
      }
      std::this_thread::sleep_for(3ms);
      if (cycle % 3 == 2) StopAbruptly(slot);
      else StopDrained(slot);
      if (::testing::Test::HasFatalFailure()) return;
      std::this_thread::sleep_for(1ms);  // stopped: posts are refused now
    }
    if (last && index % 4 == 0) {
      DestroyAsleep(slot);
      return;
    }
    std::unique_lock lock(slot.gate);
    Verify(slot);
    slot.rig->instance.Destroy();
    if (!last) NewLife(slot);
  }
}

// One editor per instance, as a property page is: edits the list, the prefix, and sends all.
void Stress::Edit(std::size_t helper) {
  std::uint32_t round = 0;
  while (!m_helpersStop) {
    for (std::size_t i = helper; i < kInstances; i += kHelpers) {
      std::shared_lock lock(m_slots[i].gate);
      if (!m_slots[i].rig || !m_slots[i].rig->instance.Alive()) continue;
      CFilter& instance = m_slots[i].rig->instance.filter();
      std::uint32_t count = 0;
      instance.GetEventCount(&count);
      CStoredEvent event = CStoredEvent::FromMessage({0, Packed(kList, round)});
      event.SetEnabled(round % 3 != 0);
      if (count > 6) instance.RemoveEvent(round % count);
      else instance.InsertEvent(round % (count + 1), &event);
      const std::uint8_t prefix[] = {0xF0, 0x43, 0x10, 0x4C, 0x00};
      if (round % 4 == 0) instance.SetSysexPrefix(prefix, round % 6);
      else if (round % 4 == 1) instance.AssignSysexPrefix({0x43, 0x10});
      std::uint32_t length = 0;
      instance.GetSysexPrefixLength(&length);
      if (round % 16 == 5) instance.SendEnabledEvents();
      ++m_tally.edits;
    }
    ++round;
    std::this_thread::sleep_for(1ms);
  }
}

// A host saving states and loading them back; each load sends the enabled list again.
void Stress::SaveAndLoad(std::size_t helper) {
  while (!m_helpersStop) {
    for (std::size_t i = helper; i < kInstances; i += kHelpers) {
      std::shared_lock lock(m_slots[i].gate);
      if (!m_slots[i].rig || !m_slots[i].rig->instance.Alive()) continue;
      CFilter& instance = m_slots[i].rig->instance.filter();
      auto saved = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create());
      ASSERT_EQ(instance.Save(saved.Get(), 1), S_OK);
      ++m_tally.saves;
      const auto& bytes = saved->Bytes();
      auto load = ComPtr<CMemoryStream>::Attach(CMemoryStream::Create(bytes.data(), bytes.size()));
      ASSERT_EQ(instance.Load(load.Get()), S_OK);
      ++m_tally.loads;
    }
    std::this_thread::sleep_for(2ms);
  }
}

void Stress::Run() {
  for (Slot& slot : m_slots) NewLife(slot);
  std::vector<std::thread> helpers;
  for (std::size_t h = 0; h < kHelpers; ++h) {
    helpers.emplace_back([this, h] { Edit(h); });
    helpers.emplace_back([this, h] { SaveAndLoad(h); });
  }
  std::vector<std::thread> threads;
  for (Slot& slot : m_slots) {
    threads.emplace_back([this, &slot] { Control(slot); });
    for (std::size_t p = 0; p < kProducers; ++p)
      threads.emplace_back([this, &slot, p] { Produce(slot, p); });
  }
  for (std::thread& t : threads) t.join();
  m_helpersStop = true;
  for (std::thread& t : helpers) t.join();
}

void Stress::Report(double seconds) const {
  std::printf(
      "stress: %zu instances at a time, %ld made in all, %ld destroyed asleep in a pause; "
      "%zu threads (%zu producers, %zu graph, %zu editors, %zu state)\n"
      "stress: %ld posts, %ld accepted by a running worker, %ld refused while stopped; "
      "%ld sent exactly once in order, %ld dropped by a stop with work queued, none lost\n"
      "stress: %ld stored-list events sent, %ld pause/run/stop cycles, %ld saves, %ld loads, "
      "%ld edits, in %.1f s\n",
      kInstances, m_tally.lives.load(), m_tally.destroyedAsleep.load(),
      kInstances * (kProducers + 1) + 2 * kHelpers, kInstances * kProducers, kInstances,
      kHelpers, kHelpers, m_tally.posts.load(), m_tally.accepted.load(), m_tally.refused.load(),
      m_tally.sent.load(), m_tally.droppedByStop.load(), m_tally.listSent.load(),
      m_tally.cycles.load(), m_tally.saves.load(), m_tally.loads.load(), m_tally.edits.load(),
      seconds);
}

TEST(Stress, ManyInstancesUnderLoadSendEveryAcceptedPostOnceInOrderAndCountIt) {
  const auto start = Clock::now();
  auto stress = std::make_unique<Stress>();
  stress->Run();
  stress->Report(std::chrono::duration<double>(Clock::now() - start).count());
}

}  // namespace
