// Races the worker must survive: posts from many threads while the graph starts and stops, and
// an instance destroyed while its worker sleeps in a pause. Run under the sanitizers.
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/test_instance.h"

namespace {

using namespace std::chrono_literals;

TEST(WorkerSafety, PostersRaceWithPauseAndStopInALoop) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.UseSink();
  std::atomic<bool> done{false};
  std::atomic<int> accepted{0};
  std::vector<std::thread> posters;
  for (int t = 0; t < 3; ++t) {
    posters.emplace_back([&, t] {
      const auto e = CStoredEvent::FromMessage(ShortMessage::FromBytes(0x90, static_cast<std::uint8_t>(t), 64));
      while (!done) {
        if (rig.instance->PostToWorker(e) == S_OK) ++accepted;
        rig.instance->SetOutputRechannel(static_cast<std::uint32_t>(t));
        std::this_thread::yield();
      }
    });
  }
  for (int i = 0; i < 60; ++i) {
    rig.instance->Pause();
    std::this_thread::sleep_for(1ms);
    if (i % 3 == 0) {
      rig.instance->SetInputSink(nullptr);
      rig.UseSink();
    }
    rig.instance->Stop();
  }
  done = true;
  for (auto& p : posters) p.join();
  EXPECT_GT(accepted.load(), 0);
}

TEST(WorkerSafety, DestroyingAnInstanceCutsASleepingWorkersPauseShort) {
  FakeTempoMap tempoMap;
  FakeMidiPorts ports;
  FakeHostContext context;
  context.tempoMap = &tempoMap;
  context.midiPorts = &ports;
  const auto t0 = std::chrono::steady_clock::now();
  {
    TestInstance instance;
    context.AddRef();
    instance->Connect(&context);
    instance->SelectOutputPort(L"Out A");
    instance->SetOutputEnabled(1);
    instance->Pause();
    CStoredEvent pause;
    pause.SetWait(60'000);
    instance->PostToWorker(pause);
    instance->PostToWorker(CStoredEvent::FromMessage(ShortMessage::FromBytes(0x90, 1, 1)));
    std::this_thread::sleep_for(30ms);
    instance->Stop();  // returns at once; the worker sleeps on
  }
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 5s);
  EXPECT_EQ(ports.SendCount(), 0u) << "nothing is sent for an instance that is gone";
  EXPECT_EQ(ports.RefCount(), 0) << "every host reference was released";
}

TEST(WorkerSafety, DisconnectWhileTheWorkerSendsLeavesNoDanglingHostReference) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.UseSink();
  rig.Start();
  std::thread poster([&] {
    for (int i = 0; i < 2000; ++i)
      rig.instance->PostToWorker(CStoredEvent::FromMessage(ShortMessage::FromBytes(0xB0, 1, 1)));
  });
  std::this_thread::sleep_for(2ms);
  rig.instance->Disconnect();
  poster.join();
  rig.Stop();
  rig.instance.Destroy();
  EXPECT_EQ(rig.ports.RefCount(), 0);
  EXPECT_EQ(rig.sink.RefCount(), 0);
  EXPECT_EQ(rig.context.RefCount(), 0);
}

}  // namespace
