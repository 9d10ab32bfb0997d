// The instance as the host sees it: its interface table, connection and the reference rules,
// time conversion, pins and their announcements, and the graph states that drive the worker.
#include <cwchar>

#include <gtest/gtest.h>

#include "tests/support/fake_graph.h"
#include "tests/support/test_instance.h"

namespace {

void* Facet(CFilter& f, REFIID iid) {
  void* out = nullptr;
  if (FAILED(f.QueryInterface(iid, &out))) return nullptr;
  f.Release();
  return out;
}

TEST(FilterInterfaces, AnswersEachIdentifierWithItsFacet) {
  TestInstance instance;
  CFilter& f = instance.filter();
  EXPECT_EQ(instance.construction(), S_OK);
  EXPECT_EQ(Facet(f, IID_IMfxSoftSynth), Facet(f, IID_IMfxSoftSynth2));
  EXPECT_EQ(Facet(f, IID_IMfxSoftSynth2), static_cast<IMfxSoftSynth2*>(&f));
  EXPECT_EQ(Facet(f, IID_IExternalDeviceProxy), Facet(f, IID_IExternalDeviceProxy3));
  EXPECT_EQ(Facet(f, IID_IExternalDeviceProxy2), Facet(f, IID_IExternalDeviceProxy3));
  for (const IID& iid : {IID_IMyFilter, IID_IMfxNotify, IID_IMfxInputPort, IID_IPersistStream,
                         IID_ISpecifyPropertyPages, IID_IBaseFilter})
    EXPECT_NE(Facet(f, iid), nullptr);
  EXPECT_NE(Facet(f, IID_IDispatch), nullptr) << "there, though it does nothing";
  void* none = &f;
  EXPECT_EQ(f.QueryInterface(IID_IHostTempoMap, &none), E_NOINTERFACE);
  EXPECT_EQ(none, nullptr);
}

TEST(FilterInterfaces, NamesExactlyOnePropertyPage) {
  TestInstance instance;
  CAUUID pages{};
  ASSERT_EQ(instance->GetPages(&pages), S_OK);
  ASSERT_EQ(pages.cElems, 1u);
  EXPECT_EQ(pages.pElems[0], CLSID_TarnPropertyPage);
  CoTaskMemFree(pages.pElems);
  EXPECT_EQ(instance->GetPages(nullptr), E_POINTER);
}

TEST(FilterConnection, ASecondConnectFailsAndStillReleasesTheLentContext) {
  FakeTempoMap tempoMap;
  FakeHostContext context;
  context.tempoMap = &tempoMap;
  TestInstance instance;
  context.AddRef();
  ASSERT_EQ(instance->Connect(&context), S_OK);
  EXPECT_EQ(context.RefCount(), 0);
  context.AddRef();
  EXPECT_EQ(instance->Connect(&context), E_UNEXPECTED);
  EXPECT_EQ(context.RefCount(), 0);
  EXPECT_EQ(tempoMap.RefCount(), 1);
  instance->Disconnect();
  EXPECT_EQ(tempoMap.RefCount(), 0);
}

TEST(FilterConnection, AContextWithoutATempoMapIsRefused) {
  FakeMidiPorts ports;
  FakeTempoMap tempoMap;  // the host's objects outlive the instance that holds them
  FakeHostContext context;
  context.midiPorts = &ports;
  TestInstance instance;
  context.AddRef();
  EXPECT_EQ(instance->Connect(&context), E_NOINTERFACE);
  EXPECT_EQ(ports.RefCount(), 0) << "nothing else is asked for";
  context.tempoMap = &tempoMap;
  context.AddRef();
  EXPECT_EQ(instance->Connect(&context), S_OK) << "the failed attempt left it unconnected";
}

TEST(FilterConnection, TheSinkIsHeldWithAReferenceAndGivenOutWithAnother) {
  FakeInputSink sink;
  TestInstance instance;
  IHostInputSink* out = &sink;
  EXPECT_EQ(instance->GetInputSink(&out), S_FALSE);
  EXPECT_EQ(out, nullptr);
  instance->SetInputSink(&sink);
  EXPECT_EQ(sink.RefCount(), 1);
  EXPECT_EQ(instance->GetInputSink(&out), S_OK);
  EXPECT_EQ(out, &sink);
  EXPECT_EQ(sink.RefCount(), 2);
  out->Release();
  instance->SetInputSink(nullptr);
  EXPECT_EQ(sink.RefCount(), 0);
  EXPECT_EQ(instance->GetInputSink(nullptr), E_POINTER);
}

TEST(FilterTime, ConvertsThroughTheConverterThenTheTempoMapThenNothing) {
  FakeTempoMap tempoMap(480, 500);  // 120 beats per minute
  FakeTimeConverter converter(100);
  FakeHostContext context;  // the host's objects outlive the instance that holds them
  TestInstance instance;
  WaveFormat format{WAVE_FORMAT_IEEE_FLOAT_TAG, 2, 48000, 384000, 8, 32, 0};
  instance->SetInputFormat(format);
  EXPECT_EQ(instance->TicksToSamples(480), 0);
  EXPECT_EQ(instance->SamplesToTicks(48000), 0);

  context.tempoMap = &tempoMap;
  context.AddRef();
  instance->Connect(&context);
  EXPECT_EQ(instance->TicksToSamples(480), 24000);
  EXPECT_EQ(instance->SamplesToTicks(48000), 960);
  EXPECT_EQ(instance->SamplesToTicks(-48000), -960);
  instance->SamplesToTicks(INT64_MAX);  // far positions must not overflow on the way
  instance->Disconnect();

  context.timeConverter = &converter;
  context.AddRef();
  instance->Connect(&context);
  EXPECT_EQ(instance->TicksToSamples(7), 700);
  EXPECT_EQ(instance->SamplesToTicks(1050), 10);
}

TEST(FilterTime, AMissingSampleRateGivesNoTicksRatherThanADivisionByZero) {
  FakeTempoMap tempoMap;
  FakeHostContext context;
  context.tempoMap = &tempoMap;
  TestInstance instance;
  context.AddRef();
  instance->Connect(&context);
  EXPECT_EQ(instance->SamplesToTicks(48000), 0);
}

std::wstring PinName(CBasePin* pin) { return pin ? pin->Name() : L"(none)"; }

TEST(FilterPins, StartsWithTheInputAndOneNumberedOutput) {
  TestInstance instance;
  EXPECT_EQ(instance->GetPinCount(), 2);
  EXPECT_EQ(PinName(instance->GetPin(0)), L"Input");
  EXPECT_EQ(PinName(instance->GetPin(1)), L"Output 1");
  EXPECT_EQ(instance->GetPin(2), nullptr);
  EXPECT_EQ(instance->GetPin(-1), nullptr);
  EXPECT_EQ(instance->GetOutputPinId(1), -1);
}

TEST(FilterPins, IdsGrowAcrossInstancesAndNamesFollowTheCount) {
  TestInstance a, b;
  const std::int32_t first = a->GetOutputPinId(0);
  const std::int32_t second = b->GetOutputPinId(0);
  EXPECT_GT(second, first);
  std::uint32_t id = 0;
  ASSERT_EQ(a->AddOutputPin(nullptr, &id), S_OK);
  EXPECT_GT(static_cast<std::int32_t>(id), second);
  EXPECT_EQ(PinName(a->FindOutputPin(id)), L"Output 2");
  ASSERT_EQ(a->AddOutputPin(L"Aux", &id), S_OK);
  EXPECT_EQ(PinName(a->GetPin(3)), L"Aux");
  EXPECT_EQ(a->RemoveOutputPin(id), S_OK);
  EXPECT_EQ(a->FindOutputPin(id), nullptr);
  EXPECT_EQ(a->RemoveAllOutputPins(), S_OK);
  EXPECT_EQ(a->GetOutputPinCount(), 0);
  EXPECT_EQ(a->RemoveOutputPin(id), E_FAIL);
}

TEST(FilterPins, AnnouncesChangesToTheObserverOnlyWhileConnected) {
  FakeTempoMap tempoMap;
  FakePinObserver observer;
  FakeHostContext context;
  context.tempoMap = &tempoMap;
  TestInstance instance;
  std::uint32_t id = 0;
  EXPECT_EQ(instance->AddOutputPin(nullptr, &id), S_OK) << "not connected: nothing to ask";

  context.AddRef();
  instance->Connect(&context);
  EXPECT_EQ(instance->AddOutputPin(nullptr, &id), E_FAIL) << "connected without an observer";
  EXPECT_EQ(instance->GetOutputPinCount(), 2);
  instance->Disconnect();

  context.pinObserver = &observer;
  context.AddRef();
  instance->Connect(&context);
  ASSERT_EQ(instance->AddOutputPin(nullptr, &id), S_OK);
  ASSERT_EQ(observer.Calls().size(), 2u);
  EXPECT_EQ(observer.Calls()[0].phase, 1);
  EXPECT_EQ(observer.Calls()[0].count, 3);
  EXPECT_EQ(observer.Calls()[1].phase, 2);
  observer.RefuseChanges(true);
  EXPECT_EQ(instance->RemoveOutputPin(id), E_FAIL);
  EXPECT_EQ(instance->GetOutputPinCount(), 3) << "a refused change changes nothing";
}

TEST(FilterPins, TellsTheGraphOfEachChangeButOnlyWhenInOne) {
  FakeGraph graph;
  TestInstance instance;
  std::uint32_t id = 0;
  instance->AddOutputPin(nullptr, &id);
  ASSERT_EQ(graph.AddFilter(&instance.filter(), L"Tarn"), S_OK);
  instance->AddOutputPin(nullptr, &id);
  instance->RemoveOutputPin(id);
  const auto events = graph.Events();
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[0].code, EC_GRAPH_CHANGED);
  graph.RemoveFilter(&instance.filter());
}

TEST(FilterStreaming, PauseOrRunStartsTheWorkerAndStopEndsIt) {
  ConnectedRig rig;
  rig.EnableOutput();
  std::uint8_t active = 9;
  rig.instance->IsOutputActive(&active);
  EXPECT_EQ(active, 0);
  EXPECT_EQ(rig.instance->Pause(), S_OK);
  EXPECT_EQ(rig.instance->Pause(), S_OK);
  rig.instance->IsOutputActive(&active);
  EXPECT_EQ(active, 1);
  EXPECT_EQ(rig.instance->Run(0), S_OK);
  FILTER_STATE state{};
  rig.instance->GetState(0, &state);
  EXPECT_EQ(state, State_Running);
  EXPECT_EQ(rig.instance->Stop(), S_OK);
  EXPECT_EQ(rig.instance->Stop(), S_OK);
  rig.instance->IsOutputActive(&active);
  EXPECT_EQ(active, 0);

  rig.instance->Run(0);  // from stopped, Run starts the worker too
  EXPECT_EQ(rig.instance->SendTestMessage(0x007F3C90), S_OK);
  ASSERT_TRUE(rig.ports.WaitForSends(1, 2000));
  rig.instance->Stop();
}

}  // namespace
