// What a host can do to an instance from several threads, or in an unusual order, without the
// instance touching freed memory or racing on its own fields. Run under ASan and TSan.
#include <atomic>
#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/test_instance.h"

namespace {

using namespace std::chrono_literals;

WaveFormat StereoFloat() { return MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, 2, 48000, 32); }

CStoredEvent Message(std::uint8_t status, std::uint8_t d1, std::uint8_t d2) {
  return CStoredEvent::FromMessage(ShortMessage::FromBytes(status, d1, d2));
}

CStoredEvent Wait(std::uint32_t ms) {
  CStoredEvent e;
  e.SetWait(ms);
  return e;
}

// Polls `done` until it holds or a second has passed.
template <class Predicate>
bool Eventually(Predicate done) {
  const auto deadline = std::chrono::steady_clock::now() + 1s;
  while (!done()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(1ms);
  }
  return true;
}

TEST(PinLifetime, AnOutputPinHeldByItsPeerKeepsTheFilterAlive) {
  ConnectedRig host;
  FakeSource source(StereoFloat());
  FakeSink sink;
  ASSERT_EQ(source.ConnectTo(host.instance->GetPin(0)), S_OK);
  ASSERT_EQ(host.instance->GetPin(1)->Connect(sink.Input(), nullptr), S_OK);
  source.Disconnect();
  host.instance.Destroy();  // the host lets go of the filter; the sink still holds its pin
  sink.Disconnect();        // the pin and then the filter go here, and not before
}

// A host may join one instance's output straight to another's input. Connecting the second
// instance's output asks the first for its types while the second's lock is held, the reverse of
// the order in which the first connection took them; streaming, seeking through the chain and
// taking it apart must not invert it either.
TEST(PinLifetime, InstancesChainedPinToPinConnectStreamAndComeApartWithoutALockOrderInversion) {
  FakeSource::Options seekable;
  seekable.offersSeeking = true;
  ConnectedRig first, second;
  FakeSource source(StereoFloat(), seekable);
  FakeSink sink;
  ASSERT_EQ(source.ConnectTo(first.instance->GetPin(0)), S_OK);
  ASSERT_EQ(first.instance->GetPin(1)->Connect(second.instance->GetPin(0), nullptr), S_OK);
  ASSERT_EQ(second.instance->GetPin(1)->Connect(sink.Input(), nullptr), S_OK);
  sink.Pause();
  second.instance->Pause();
  first.instance->Pause();
  source.Pause();

  std::thread streaming([&] {
    const std::vector<float> values(512, 0.25f);
    for (int i = 0; i < 50; ++i) source.PushFloats(values);
    source.EndOfStream();
  });
  ComPtr<IMediaSeeking> seeking;
  ASSERT_EQ(seeking.QueryFrom(second.instance->GetPin(1), IID_IMediaSeeking), S_OK);
  for (int i = 0; i < 50; ++i) {
    std::int64_t duration = 0;
    EXPECT_EQ(seeking->GetDuration(&duration), S_OK);
  }
  streaming.join();
  EXPECT_EQ(sink.SampleCount(), 50);
  EXPECT_EQ(sink.EndOfStreams(), 4) << "each instance says end of stream twice";

  source.Stop();
  first.instance->Stop();
  second.instance->Stop();
  sink.Stop();
  second.instance->GetPin(0)->Disconnect();  // the downstream end first, then the upstream
  first.instance->GetPin(1)->Disconnect();
}

TEST(PinLifetime, AFoundPinKeepsTheFilterAlive) {
  ConnectedRig host;
  ComPtr<IPin> found;
  ASSERT_EQ(host.instance->FindPin(L"Output 1", found.Receive()), S_OK);
  host.instance.Destroy();
  PIN_INFO info{};
  ASSERT_EQ(found->QueryPinInfo(&info), S_OK);
  EXPECT_EQ(std::wstring(info.achName), L"Output 1");
  const auto owner = ComPtr<IBaseFilter>::Attach(info.pFilter);
}

TEST(PortChoiceSafety, ChoosingPortsWhileOthersReadThemIsSafe) {
  ConnectedRig rig;
  rig.ports.SetInputs({L"In A"});
  MessageBoxRecorder boxes;
  std::atomic<bool> done{false};
  std::thread chooser([&] {
    for (int i = 0; i < 500; ++i) {
      rig.instance->SelectOutputPort(L"Out A");
      rig.instance->SelectInputPort(L"In A");
      rig.instance->SetOutputEnabled(0);
    }
    done = true;
  });
  wchar_t name[64];
  wchar_t port[64];
  std::uint32_t channel = 0;
  std::int32_t index = 0;
  while (!done) {
    rig.instance->GetDeviceSummary(name, 64, port, 64, &channel);
    rig.instance->GetInputPortIndex(&index);
  }
  chooser.join();
}

TEST(HostReferences, AWorkerAsleepInAPauseHoldsNothingOfTheHostAfterDisconnect) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.UseSink();
  rig.Start();
  const std::int32_t portsBefore = rig.ports.RefCount();
  rig.instance->PostToWorker(Message(0x90, 1, 1));
  rig.instance->PostToWorker(Wait(3000));
  ASSERT_TRUE(rig.ports.WaitForSends(1, 2000));
  rig.instance->Disconnect();
  EXPECT_TRUE(Eventually([&] { return rig.ports.RefCount() == 0; }))
      << "the ports were held " << rig.ports.RefCount() << " times, " << portsBefore
      << " while connected";
  EXPECT_TRUE(Eventually([&] { return rig.sink.RefCount() == 0; }));
  rig.instance.Destroy();  // cuts the pause short
}

}  // namespace
