#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "tests/frame/pass_through.h"
#include "tests/support/fake_graph.h"
#include "tests/support/fake_pins.h"

namespace {

const WaveFormat kFloatStereo = MakeWaveFormat(WAVE_FORMAT_IEEE_FLOAT_TAG, 2, 48000, 32);
const WaveFormat kPcm16 = MakeWaveFormat(WAVE_FORMAT_PCM_TAG, 2, 48000, 16);

// Source -> pass-through -> sink, the shape the plug-in sits in. Stopped before it goes, so
// that the fakes can disconnect both ends of each connection.
struct Chain {
  FakeSource source{kFloatStereo};
  PassThroughFilter* filter = new PassThroughFilter;
  ComPtr<IBaseFilter> held{filter};
  FakeSink sink;

  ~Chain() { Stop(); }
  void Connect() {
    ASSERT_EQ(source.ConnectTo(&filter->Input()), S_OK);
    ASSERT_EQ(filter->Output().Connect(sink.Input(), nullptr), S_OK);
  }
  void Pause() {
    sink.Pause();
    filter->Pause();
    source.Pause();
  }
  void Stop() {
    source.Stop();
    filter->Stop();
    sink.Stop();
  }
};

class Connected : public ::testing::Test {
 protected:
  void SetUp() override {
    chain.Connect();
    chain.Pause();
  }
  Chain chain;
};

TEST(Connection, ARefusedTypeLeavesBothEndsUnconnectedAndAFloatSourceConnectsWithItsType) {
  Chain c;
  FakeSource pcm(kPcm16);
  EXPECT_EQ(pcm.ConnectTo(&c.filter->Input()), VFW_E_TYPE_NOT_ACCEPTED);
  ComPtr<IPin> peer;
  EXPECT_EQ(c.filter->Input().ConnectedTo(peer.Receive()), VFW_E_NOT_CONNECTED);
  EXPECT_FALSE(peer);
  EXPECT_EQ(pcm.Output()->ConnectedTo(peer.Receive()), VFW_E_NOT_CONNECTED);
  CMediaType none = c.source.Type();
  EXPECT_EQ(c.filter->Input().ConnectionMediaType(&none), VFW_E_NOT_CONNECTED);
  EXPECT_FALSE(none.IsValid());
  EXPECT_EQ(c.filter->Input().QueryAccept(&pcm.Type()), S_FALSE);
  EXPECT_EQ(c.filter->Input().QueryAccept(&c.source.Type()), S_OK);

  c.Connect();
  ASSERT_EQ(c.source.Output()->ConnectedTo(peer.Receive()), S_OK);
  EXPECT_EQ(peer.Get(), static_cast<IPin*>(&c.filter->Input()));
  CMediaType upstream, downstream;
  EXPECT_EQ(c.filter->Input().ConnectionMediaType(&upstream), S_OK);
  EXPECT_EQ(c.sink.Input()->ConnectionMediaType(&downstream), S_OK);
  EXPECT_EQ(upstream, c.source.Type());
  EXPECT_EQ(downstream, c.source.Type());
}

TEST(Connection, RefusesASecondPeerTheWrongDirectionAndAnyChangeWhileActive) {
  Chain c;
  ASSERT_EQ(c.source.ConnectTo(&c.filter->Input()), S_OK);
  FakeSource second(kFloatStereo);
  EXPECT_EQ(second.ConnectTo(&c.filter->Input()), VFW_E_ALREADY_CONNECTED);
  EXPECT_EQ(c.sink.Input()->Connect(&c.filter->Input(), &c.source.Type()), VFW_E_INVALID_DIRECTION);

  c.filter->Pause();
  EXPECT_EQ(c.filter->Input().Disconnect(), VFW_E_NOT_STOPPED);
  EXPECT_EQ(c.filter->Output().Connect(c.sink.Input(), nullptr), VFW_E_NOT_STOPPED);
  c.filter->Stop();
  EXPECT_EQ(c.filter->Input().Disconnect(), S_OK);
  EXPECT_EQ(c.filter->Input().Disconnect(), S_FALSE);
  EXPECT_EQ(c.source.Output()->Disconnect(), S_OK);
}

TEST(Negotiation, WalksThePeersTypesPastRefusalsThenItsOwn) {
  Chain c;
  ASSERT_EQ(c.source.ConnectTo(&c.filter->Input()), S_OK);
  FakeSink prefersPcm({.preferred = {AudioMediaType(kPcm16), c.source.Type()}});
  EXPECT_EQ(c.filter->Output().Connect(prefersPcm.Input(), nullptr), S_OK);
  EXPECT_EQ(c.filter->Output().CurrentMediaType(), c.source.Type());
  prefersPcm.Disconnect();

  EXPECT_EQ(c.filter->Output().Connect(c.sink.Input(), nullptr), S_OK)
      << "a peer without preferences gets the pin's own type";
}

TEST(Negotiation, APartialTypeFiltersTheCandidates) {
  Chain c;
  ASSERT_EQ(c.source.ConnectTo(&c.filter->Input()), S_OK);
  CMediaType pcmOnly(MEDIATYPE_Audio);
  pcmOnly.subtype = MEDIASUBTYPE_PCM;
  EXPECT_EQ(c.filter->Output().Connect(c.sink.Input(), &pcmOnly), VFW_E_NO_ACCEPTABLE_TYPES);
  EXPECT_FALSE(c.filter->Output().IsConnected());
  const CMediaType anyAudio(MEDIATYPE_Audio);
  EXPECT_EQ(c.filter->Output().Connect(c.sink.Input(), &anyAudio), S_OK);
}

TEST(Negotiation, APeerThatTakesNothingIsRefusedAndLeftUnconnected) {
  Chain c;
  ASSERT_EQ(c.source.ConnectTo(&c.filter->Input()), S_OK);
  FakeSink picky({.accepts = [](const CMediaType&) { return false; }});
  EXPECT_EQ(c.filter->Output().Connect(picky.Input(), nullptr), VFW_E_NO_ACCEPTABLE_TYPES);
  EXPECT_FALSE(c.filter->Output().IsConnected());
  EXPECT_EQ(c.filter->Output().Allocator(), nullptr) << "a failed attempt keeps no allocator";
}

TEST(AllocatorDecision, TheOutputUsesTheDownstreamAllocatorWithItsRequirements) {
  Chain c;
  FakeSink aligned({.requirements = ALLOCATOR_PROPERTIES{0, 0, 16, 8}});
  ASSERT_EQ(c.source.ConnectTo(&c.filter->Input()), S_OK);
  ASSERT_EQ(c.filter->Output().Connect(aligned.Input(), nullptr), S_OK);

  ComPtr<IMemInputPin> transport;
  ASSERT_EQ(transport.QueryFrom(aligned.Input(), IID_IMemInputPin), S_OK);
  ComPtr<IMemAllocator> theirs;
  transport->GetAllocator(theirs.Receive());
  EXPECT_EQ(c.filter->Output().Allocator(), theirs.Get());
  ALLOCATOR_PROPERTIES held{};
  theirs->GetProperties(&held);
  EXPECT_EQ(held.cBuffers, 2);
  EXPECT_EQ(held.cbAlign, 16);
  EXPECT_EQ(held.cbPrefix, 8);
  EXPECT_EQ(held.cbBuffer, 1032) << "1024 + 8 rounded up to 16";

  ComPtr<IMemAllocator> upstream;
  c.filter->Input().GetAllocator(upstream.Receive());
  EXPECT_EQ(upstream.Get(), c.source.Allocator()) << "the input pin was told the source's";
  c.Stop();
  aligned.Disconnect();
}

TEST(State, PauseFromStoppedActivatesConnectedPinsAndStopDeactivatesThem) {
  Chain c;
  PassOutput& out = c.filter->Output();
  EXPECT_EQ(c.filter->Pause(), S_OK);
  EXPECT_EQ(out.activations, 0) << "an unconnected pin is neither activated nor an error";
  EXPECT_EQ(c.filter->Stop(), S_OK);
  c.Connect();
  ComPtr<IMediaSample> sample;

  ASSERT_EQ(c.filter->Pause(), S_OK);
  EXPECT_EQ(out.activations, 1);
  EXPECT_EQ(out.GetDeliveryBuffer(sample.Receive(), nullptr, nullptr, AM_GBF_NOWAIT), S_OK);
  sample.Reset();

  ASSERT_EQ(c.filter->Run(0), S_OK);
  EXPECT_EQ(out.activations, 1) << "paused to running activates nothing";

  ASSERT_EQ(c.filter->Stop(), S_OK);
  EXPECT_EQ(out.GetDeliveryBuffer(sample.Receive(), nullptr, nullptr, 0), VFW_E_NOT_COMMITTED);

  ASSERT_EQ(c.filter->Run(0), S_OK);
  EXPECT_EQ(out.activations, 2) << "run from stopped pauses first";
  EXPECT_EQ(c.filter->GetState(0, nullptr), E_POINTER);
}

TEST_F(Connected, EndOfStreamSegmentsAndFlushesPassDownstream) {
  EXPECT_EQ(chain.source.NewSegment(10, 20, 1.5), S_OK);
  EXPECT_EQ(chain.source.EndOfStream(), S_OK);
  ASSERT_EQ(chain.sink.Segments().size(), 1u);
  EXPECT_EQ(chain.sink.Segments()[0].stop, 20);
  EXPECT_EQ(chain.sink.Segments()[0].rate, 1.5);
  EXPECT_EQ(chain.sink.EndOfStreams(), 1);

  const float one[] = {1.f};
  EXPECT_EQ(chain.source.BeginFlush(), S_OK);
  EXPECT_TRUE(chain.filter->Input().IsFlushing());
  EXPECT_EQ(chain.source.PushFloats(one), S_FALSE) << "a flushing pin takes nothing";
  EXPECT_EQ(chain.source.EndFlush(), S_OK);
  EXPECT_EQ(chain.source.PushFloats(one), S_OK);
  EXPECT_EQ(chain.sink.BeginFlushes(), 1);
  EXPECT_EQ(chain.sink.EndFlushes(), 1);
  EXPECT_EQ(chain.sink.Samples().size(), 1u);
}

TEST_F(Connected, ReceiveRefusesWhenStoppedOrForATypeItCannotTake) {
  const float one[] = {1.f};
  EXPECT_EQ(chain.source.PushFloats(one, {.type = AudioMediaType(kPcm16)}), VFW_E_INVALIDMEDIATYPE);
  EXPECT_EQ(chain.source.PushFloats(one, {.type = chain.source.Type()}), S_OK);
  chain.sink.SetReceiveResult(E_FAIL);
  EXPECT_EQ(chain.source.PushFloats(one), E_FAIL) << "downstream failures come back up";
  ComPtr<IMediaSample> held;
  ASSERT_EQ(chain.source.Allocator()->GetBuffer(held.Receive(), nullptr, nullptr, 0), S_OK);
  chain.filter->Stop();
  EXPECT_EQ(chain.filter->Input().Receive(held.Get()), VFW_E_WRONG_STATE);
  EXPECT_EQ(chain.source.PushFloats(one), VFW_E_NOT_COMMITTED)
      << "the stopped input pin decommitted the allocator it shares with the source";
}

TEST(Delivery, AnUnconnectedOutputPinDeliversNothing) {
  ComPtr<IBaseFilter> held{new PassThroughFilter};
  auto& out = static_cast<PassThroughFilter*>(held.Get())->Output();
  ComPtr<IMediaSample> sample;
  EXPECT_EQ(out.GetDeliveryBuffer(sample.Receive(), nullptr, nullptr, 0), VFW_E_NO_ALLOCATOR);
  EXPECT_FALSE(sample);
  EXPECT_EQ(out.Deliver(nullptr), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(out.DeliverEndOfStream(), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(out.DeliverBeginFlush(), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(out.DeliverEndFlush(), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(out.DeliverNewSegment(0, 1, 1.0), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(out.EndOfStream(), E_UNEXPECTED) << "nothing flows into an output pin";
  EXPECT_EQ(static_cast<PassThroughFilter*>(held.Get())->Input().CheckStreaming(),
            VFW_E_NOT_CONNECTED);
}

TEST(Graph, EventsReachTheGraphsSinkOnlyWhileTheFilterIsInIt) {
  FakeGraph graph;
  ComPtr<IBaseFilter> held{new PassThroughFilter};
  auto* filter = static_cast<PassThroughFilter*>(held.Get());
  EXPECT_EQ(filter->NotifyEvent(EC_GRAPH_CHANGED, 0, 0), S_OK) << "no graph, nobody to tell";

  ASSERT_EQ(graph.AddFilter(held.Get(), L"Pass"), S_OK);
  EXPECT_EQ(graph.OutsideReferences(), 0u) << "a filter keeps no reference on its graph";
  EXPECT_EQ(filter->NotifyEvent(EC_GRAPH_CHANGED, 1, 2), S_OK);
  ASSERT_EQ(graph.Events().size(), 1u);
  EXPECT_EQ(graph.Events()[0].code, EC_GRAPH_CHANGED);
  EXPECT_EQ(graph.Events()[0].param2, 2);

  FILTER_INFO info{};
  ASSERT_EQ(held->QueryFilterInfo(&info), S_OK);
  EXPECT_STREQ(info.achName, L"Pass");
  EXPECT_EQ(info.pGraph, static_cast<IFilterGraph*>(&graph));
  info.pGraph->Release();

  graph.RemoveFilter(held.Get());
  filter->NotifyEvent(EC_GRAPH_CHANGED, 0, 0);
  EXPECT_EQ(graph.Events().size(), 1u);
  held->QueryFilterInfo(&info);
  EXPECT_EQ(info.pGraph, nullptr);

  FakeGraph bare(false);  // a graph without an event sink hears nothing, and nothing fails
  ASSERT_EQ(bare.AddFilter(held.Get(), L"Pass"), S_OK);
  EXPECT_EQ(filter->NotifyEvent(EC_GRAPH_CHANGED, 0, 0), S_OK);
  EXPECT_TRUE(bare.Events().empty());
}

TEST(Identity, TheFilterAndItsPinsAnswerWhatTheyAre) {
  ComPtr<IBaseFilter> held{new PassThroughFilter};
  for (const IID& iid : {IID_IBaseFilter, IID_IMediaFilter, IID_IPersist}) {
    ComPtr<IUnknown> face;
    ASSERT_EQ(face.QueryFrom(held.Get(), iid), S_OK);
    EXPECT_EQ(static_cast<void*>(face.Get()), static_cast<void*>(held.Get()));
  }

  ComPtr<IPin> in, out;
  ASSERT_EQ(held->FindPin(L"In", in.Receive()), S_OK);
  ASSERT_EQ(held->FindPin(L"Out", out.Receive()), S_OK);
  EXPECT_EQ(held->FindPin(L"Nope", in.Receive()), VFW_E_NOT_FOUND);
  EXPECT_FALSE(in);
  held->FindPin(L"In", in.Receive());
  ComPtr<IMemInputPin> transport;
  EXPECT_EQ(transport.QueryFrom(in.Get(), IID_IMemInputPin), S_OK);
  EXPECT_EQ(transport.QueryFrom(out.Get(), IID_IMemInputPin), E_NOINTERFACE);

  wchar_t* id = nullptr;
  EXPECT_EQ(held->QueryVendorInfo(&id), E_NOTIMPL);
}

// Both enumerators share one walker; pins add the out-of-step check when the filter changes.
TEST(Enumerators, WalkToTheEndKeepAClonesPlaceAndFallOutOfStepWhenThePinsChange) {
  const CMediaType pcm = AudioMediaType(kPcm16);
  const CMediaType flt = AudioMediaType(kFloatStereo);
  FakeSink sink({.preferred = {pcm, flt}});
  ComPtr<IEnumMediaTypes> types, typesClone;
  ASSERT_EQ(sink.Input()->EnumMediaTypes(types.Receive()), S_OK);
  CMediaType gotTypes[3];
  ASSERT_EQ(types->Next(1, gotTypes, nullptr), S_OK);
  ASSERT_EQ(types->Clone(typesClone.Receive()), S_OK);
  std::uint32_t fetched = 0;
  EXPECT_EQ(types->Next(3, gotTypes, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 1u);
  EXPECT_EQ(gotTypes[0], flt);
  EXPECT_EQ(typesClone->Next(1, gotTypes, nullptr), S_OK);
  EXPECT_EQ(gotTypes[0], flt);

  ComPtr<IBaseFilter> held{new PassThroughFilter};
  ComPtr<IEnumPins> pins;
  ASSERT_EQ(held->EnumPins(pins.Receive()), S_OK);
  IPin* got[2] = {};
  EXPECT_EQ(pins->Next(2, got, nullptr), E_POINTER);
  static_cast<PassThroughFilter*>(held.Get())->DropOutput();
  EXPECT_EQ(pins->Next(1, got, nullptr), VFW_E_ENUM_OUT_OF_SYNC);
  EXPECT_EQ(pins->Skip(1), VFW_E_ENUM_OUT_OF_SYNC);
  pins->Reset();
  ASSERT_EQ(pins->Next(2, got, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 1u);
  got[0]->Release();
}

TEST(References, PinsCountOnTheirFilterUnlessTheyKeepACountOfTheirOwn) {
  const std::int32_t before = CBaseObject::ObjectsActive();
  auto* filter = new PassThroughFilter;
  ComPtr<IBaseFilter> held{filter};
  ComPtr<IPin> in, out;
  held->FindPin(L"In", in.Receive());
  held->FindPin(L"Out", out.Receive());
  const auto filterCount = [&] {
    const ULONG n = held->AddRef();
    held->Release();
    return n;
  };
  const ULONG base = filterCount();
  out->AddRef();
  EXPECT_EQ(filterCount(), base) << "the output pin counts on itself";
  out->Release();
  in->AddRef();
  EXPECT_EQ(filterCount(), base + 1) << "the input pin counts on the filter";
  in->Release();

  const std::int32_t live = CBaseObject::ObjectsActive();
  filter->DropOutput();
  EXPECT_EQ(CBaseObject::ObjectsActive(), live) << "our reference keeps the removed pin";
  PIN_DIRECTION dir{};
  EXPECT_EQ(out->QueryDirection(&dir), S_OK);
  out.Reset();
  EXPECT_EQ(CBaseObject::ObjectsActive(), live - 1) << "deleted at its last release";
  held.Reset();
  EXPECT_EQ(in->QueryDirection(&dir), S_OK) << "a held input pin keeps its filter";
  in.Reset();
  EXPECT_EQ(CBaseObject::ObjectsActive(), before);
}

TEST(References, AStreamedChainLeavesNoLiveObjects) {
  const std::int32_t before = CBaseObject::ObjectsActive();
  {
    Chain c;
    c.Connect();
    c.Pause();
    const float one[] = {1.f};
    c.source.PushFloats(one);
    c.source.EndOfStream();
  }
  EXPECT_EQ(CBaseObject::ObjectsActive(), before);
}

TEST(Streaming, FlushesFromTheGraphThreadRaceAStreamingThreadSafely) {
  Chain c;
  c.Connect();
  c.Pause();
  std::atomic<bool> flushing{true};
  std::atomic<int> unexpected{0};
  std::thread streaming([&] {
    for (int i = 0; flushing || i < 50; ++i) {
      const float value[] = {static_cast<float>(i)};
      const HRESULT hr = c.source.PushFloats(value, {.start = i});
      if (hr != S_OK && hr != S_FALSE) ++unexpected;
    }
  });
  for (int i = 0; i < 50; ++i) {
    c.source.BeginFlush();
    FILTER_STATE state{};
    c.filter->GetState(0, &state);
    c.source.EndFlush();
  }
  flushing = false;
  streaming.join();
  EXPECT_EQ(unexpected.load(), 0) << "a sample meets either a flush (S_FALSE) or delivery";
  const auto seen = c.sink.Samples();
  ASSERT_FALSE(seen.empty());
  for (std::size_t i = 1; i < seen.size(); ++i) EXPECT_LT(seen[i - 1].start, seen[i].start);
}

}  // namespace
