// An instance hands the host its device's names through its own soft-synth interface, and the
// editor and the host's summary reach the same store.
#include <gtest/gtest.h>

#include <cwchar>

#include "documents/xml.h"
#include "tests/instruments/host_reading.h"
#include "tests/support/test_instance.h"

namespace {

// Puts one device with two banks into the instance's store, as a saved state does, and
// selects it. The store is not changed for its file.
CInstrument& WithDevice(TestInstance& instance) {
  CInstrument* store = nullptr;
  EXPECT_EQ(instance->GetInstrumentObject(&store), S_OK);
  TiXmlDocument doc;
  doc.Parse(R"(<Config><Instrument><Type>Synth</Type><CC Num="1">Mod</CC>
      <Bank Num="0" Name="A"><Patch Num="0">Piano</Patch></Bank>
      <Bank Num="1" Name="B"><Patch Num="5">Pad</Patch></Bank></Instrument></Config>)");
  std::vector<std::wstring> names;
  store->ReadDevices(*doc.RootElement(), names);
  store->SelectDevice(L"Synth");
  return *store;
}

TEST(InstanceNames, TheHostReadsTheSelectedDeviceThroughTheSoftSynth) {
  TestInstance instance;
  ASSERT_EQ(instance.construction(), S_OK);
  std::int32_t changed = -1;
  instance->ConsumeInstrumentChanged(&changed);
  EXPECT_EQ(changed, 1) << "a new instance counts as changed";
  WithDevice(instance);
  instance->ConsumeInstrumentChanged(&changed);
  EXPECT_EQ(changed, 1);
  instance->ConsumeInstrumentChanged(&changed);
  EXPECT_EQ(changed, 0) << "given once only";
  IMfxSoftSynth2& synth = instance.filter();
  std::int32_t* array = nullptr;
  std::int32_t count = 0;
  ASSERT_EQ(synth.GetBanks(&array, &count), S_OK);
  ASSERT_EQ(count, 2);
  EXPECT_EQ(array[1], 1);
  CoTaskMemFree(array);
  EXPECT_EQ(Walk(*PatchNames(synth, 1)), (std::map<std::int32_t, std::string>{{5, "Pad"}}));
  EXPECT_EQ(Title(*ControllerNames(synth)), "Synth Controllers");
  EXPECT_EQ(synth.QueryPatchFalse(0, 0), S_FALSE);
  EXPECT_EQ(synth.GetPatchNames(16384, nullptr), E_INVALIDARG);
  EXPECT_EQ(synth.ReservedListB(nullptr), E_NOTIMPL);
}

TEST(InstanceNames, TheInstrumentInterfaceIsTheEditorsStoreWithAReferenceAdded) {
  TestInstance instance;
  CInstrument* store = nullptr;
  ASSERT_EQ(instance->GetInstrumentObject(&store), S_OK);
  ASSERT_NE(store, nullptr);
  IMfxInstrument* instrument = nullptr;
  EXPECT_EQ(instance->GetInstrumentInterface(0, nullptr), E_POINTER);
  ASSERT_EQ(instance->GetInstrumentInterface(0, &instrument), S_OK);
  EXPECT_EQ(instrument, static_cast<IMfxInstrument*>(store));
  EXPECT_EQ(instrument->Release(), 1u) << "the instance keeps its own reference";
  EXPECT_EQ(instance->GetInstrumentObject(nullptr), E_POINTER);
}

TEST(InstanceNames, TheSummaryGivesDeviceAndPortWhenEachFits) {
  ConnectedRig rig;
  rig.EnableOutput();
  rig.instance->SetOutputRechannel(3);
  wchar_t name[32] = L"old";
  wchar_t port[32] = L"";
  std::uint32_t rechannel = 0;
  ASSERT_EQ(rig.instance->GetDeviceSummary(name, 32, port, 32, &rechannel), S_OK);
  EXPECT_STREQ(name, L"Generic Device");
  EXPECT_STREQ(port, L"Out A");
  EXPECT_EQ(rechannel, 3u);

  WithDevice(rig.instance);
  std::wcscpy(name, L"old");
  EXPECT_EQ(rig.instance->GetDeviceSummary(name, 5, port, 32, &rechannel), E_FAIL);
  EXPECT_STREQ(name, L"old") << "a name that does not fit is not written";
  EXPECT_EQ(rig.instance->GetDeviceSummary(name, 6, port, 5, &rechannel), E_FAIL)
      << "the port's terminator must fit too";
  EXPECT_STREQ(name, L"Synth");
}

}  // namespace
