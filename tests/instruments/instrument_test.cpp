// The device store: what it reads from its file and from saved states, what it selects and
// hands the host, and when it writes the file back.
#include "instruments/instrument.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "documents/xml.h"
#include "platform/module_path.h"
#include "tests/instruments/host_reading.h"
#include "tests/support/temp_folder.h"

namespace {

using Names = std::map<std::int32_t, std::string>;

constexpr const char* kTwoDevices = R"(<Instruments>
  <Instrument><Type>Synth</Type><CC Num="7">Volume</CC><CC Num="x">Bad</CC>
    <Bank Num="0" Name="Main"><Patch Num="0">Piano</Patch><Patch Num="2">Organ</Patch></Bank>
    <Bank Num="128" Name="Main"/>
    <Bank Num="oops" Name="Lost"/></Instrument>
  <Instrument><Type>Drums</Type><Bank Num="5" Name="Kits"><Patch Num="1">Room</Patch></Bank>
  </Instrument>
</Instruments>)";

class DeviceStore : public ::testing::Test {
 protected:
  ComPtr<CInstrument> Open() { return ComPtr<CInstrument>(new CInstrument(DevicesFile())); }
  std::wstring DevicesFile() const { return folder.File("devices.xml"); }

  // Merges a document's "Instrument" children, as a saved state does.
  static std::vector<std::wstring> Merge(CInstrument& store, const char* text) {
    TiXmlDocument doc;
    doc.Parse(text);
    std::vector<std::wstring> names;
    store.ReadDevices(*doc.FirstChildElement(), names);
    return names;
  }

  TempFolder folder;
};

TEST_F(DeviceStore, AnEmptyStoreRefusesSelectionUntilTheGenericDeviceIsAskedFor) {
  ComPtr<CInstrument> store = Open();
  EXPECT_TRUE(store->GetDeviceNames().empty());
  EXPECT_EQ(store->SelectDevice(L"Generic Device"), E_FAIL);
  EXPECT_TRUE(Banks(*store).empty());
  EXPECT_EQ(store->GetDeviceNames(), std::vector<std::wstring>{L"Generic Device"});
  EXPECT_EQ(store->SelectDevice(L"Anything"), S_OK) << "an unknown name adds an empty device";
  EXPECT_EQ(store->GetDeviceNames().size(), 2u);
}

TEST_F(DeviceStore, SelectingADeviceBuildsItsListsForTheHost) {
  ComPtr<CInstrument> store = Open();
  EXPECT_EQ(Merge(*store, kTwoDevices), (std::vector<std::wstring>{L"Synth", L"Drums"}));
  ASSERT_EQ(store->SelectDevice(L"Synth"), S_OK);

  char name[6];
  EXPECT_EQ(store->GetInstrumentName(name, 5), E_POINTER) << "no room for the terminator";
  EXPECT_EQ(store->GetInstrumentName(name, 6), S_OK);
  EXPECT_STREQ(name, "Synth");
  EXPECT_EQ(Banks(*store), (std::vector<std::int32_t>{0, 128}));
  for (std::int32_t bank : {0, 128}) {
    ComPtr<IMfxNameList> patches = PatchNames(*store, bank);
    ASSERT_TRUE(patches) << bank;
    EXPECT_EQ(Title(*patches), "Synth Patches");
    EXPECT_EQ(Walk(*patches), (Names{{0, "Piano"}, {2, "Organ"}}));
    EXPECT_EQ(ByIndex(*patches), (std::vector<std::string>{"Piano", ""}))
        << "reading by index up to the count shows holes and misses the last name";
  }
  ComPtr<IMfxNameList> controllers = ControllerNames(*store);
  ASSERT_TRUE(controllers);
  EXPECT_EQ(Title(*controllers), "Synth Controllers");
  EXPECT_EQ(Walk(*controllers), (Names{{7, "Volume"}}));
  IMfxNameList* list = nullptr;
  EXPECT_EQ(store->GetPatchNames(16384, &list), E_INVALIDARG);
  EXPECT_EQ(store->QueryPatchTrue(-1, 127), S_OK);
  EXPECT_EQ(store->QueryPatchFalse(0, 128), E_INVALIDARG);
}

TEST_F(DeviceStore, ListsOfBanksTheNewDeviceLacksStayWithTheOldNames) {
  ComPtr<CInstrument> store = Open();
  Merge(*store, kTwoDevices);
  IMfxNameList* none = nullptr;
  EXPECT_EQ(store->GetControllerNames(&none), E_FAIL) << "nothing selected yet";
  store->SelectDevice(L"Drums");
  EXPECT_EQ(store->GetPatchNames(0, &none), E_FAIL);
  store->SelectDevice(L"Synth");
  store->SelectDevice(L"Drums");
  EXPECT_EQ(Title(*PatchNames(*store, 0)), "Synth Patches");
  EXPECT_EQ(Walk(*PatchNames(*store, 5)), (Names{{1, "Room"}}));
}

TEST_F(DeviceStore, ASecondDefinitionOfADeviceReplacesItsTablesButMergesItsPatches) {
  ComPtr<CInstrument> store = Open();
  Merge(*store, kTwoDevices);
  Merge(*store, R"(<Instruments><Instrument><Type>Synth</Type><CC Num="1">Mod</CC>
      <Bank Num="3" Name="Main"><Patch Num="2">Strings</Patch></Bank></Instrument></Instruments>)");
  store->SelectDevice(L"Synth");
  EXPECT_EQ(Banks(*store), std::vector<std::int32_t>{3});
  EXPECT_EQ(Walk(*ControllerNames(*store)), (Names{{1, "Mod"}}));
  EXPECT_EQ(Walk(*PatchNames(*store, 3)), (Names{{0, "Piano"}, {2, "Strings"}}));
}

TEST_F(DeviceStore, InstrumentsWithoutATypeAreSkippedAndANonElementEndsTheWalk) {
  ComPtr<CInstrument> store = Open();
  EXPECT_EQ(Merge(*store,
                  "<I><Instrument><Type/></Instrument><Instrument><Type><x/></Type>"
                  "</Instrument><Instrument><Type>A</Type></Instrument>Instrument"
                  "<Instrument><Type>B</Type></Instrument></I>"),
            std::vector<std::wstring>{L"A"});
}

TEST_F(DeviceStore, TheFileHoldsEveryDeviceButTheGenericOneInThePrettyForm) {
  {
    ComPtr<CInstrument> store = Open();
    Merge(*store, R"(<I><Instrument><Type>Dev</Type><CC Num="7">Vol &amp; more</CC>
        <Bank Num="0" Name="T"><Patch Num="1">P</Patch><Patch Num="2"></Patch></Bank>
        </Instrument></I>)");
    store->ResetToGenericDevice();
    store->ParseDefinitionText(".Patch Names\n[T]\n3=\n");  // an empty name is lost on reading
    EXPECT_EQ(store->ImportDefinitions(folder.Write("none.INS", "")), S_OK);
  }
  EXPECT_EQ(folder.Read("devices.xml"),
            "<?xml version=\"1.0\" ?>\n"
            "<Instruments>\n"
            "    <Instrument>\n"
            "        <Type>Dev</Type>\n"
            "        <CC Num=\"7\">Vol &amp; more</CC>\n"
            "        <Bank Num=\"0\" Name=\"T\">\n"
            "            <Patch Num=\"1\">P</Patch>\n"
            "            <Patch Num=\"3\"></Patch>\n"
            "        </Bank>\n"
            "    </Instrument>\n"
            "</Instruments>\n");
  ComPtr<CInstrument> again = Open();
  EXPECT_EQ(again->GetDeviceNames(), std::vector<std::wstring>{L"Dev"});
  again->SelectDevice(L"Dev");
  EXPECT_EQ(Walk(*PatchNames(*again, 0)), (Names{{1, "P"}}));
  EXPECT_EQ(Walk(*ControllerNames(*again)), (Names{{7, "Vol & more"}}));
}

TEST_F(DeviceStore, OnlyAnImportOrAClearRewritesTheFile) {
  const std::string broken = "<?xml version=\"1.0\" ?>\n<Instruments><Instrument>";
  folder.Write("devices.xml", broken);
  {
    ComPtr<CInstrument> store = Open();
    EXPECT_TRUE(store->GetDeviceNames().empty()) << "a broken file gives an empty store";
    Merge(*store, kTwoDevices);  // as from a saved state: not for the file
    store->SelectDevice(L"Synth");
  }
  EXPECT_EQ(folder.Read("devices.xml"), broken);
  {
    ComPtr<CInstrument> store = Open();
    store->RemoveAllDevices();
  }
  EXPECT_EQ(folder.Read("devices.xml"), "<?xml version=\"1.0\" ?>\n<Instruments />\n");
}

TEST_F(DeviceStore, OfTwoInstancesThatChangedTheirStoresTheLastDestroyedDecides) {
  ComPtr<CInstrument> first = Open();
  ComPtr<CInstrument> second = Open();
  first->ParseDefinitionText(".Instrument Definitions\n[First]\nPatch[0]=T\n");
  first->ImportDefinitions(folder.Write("empty.ins", ""));
  second->ParseDefinitionText(".Instrument Definitions\n[Second]\nPatch[0]=T\n");
  second->ImportDefinitions(folder.Write("empty.ins", ""));
  second.Reset();
  first.Reset();
  EXPECT_EQ(Open()->GetDeviceNames(), std::vector<std::wstring>{L"First"});
}

TEST_F(DeviceStore, ClearingKeepsControllerTablesOutOfSight) {
  ComPtr<CInstrument> store = Open();
  store->ParseDefinitionText(
      ".Controller Names\n[C]\n1=Mod\n.Instrument Definitions\n[D]\n"
      "Control=C\n");
  store->RemoveAllDevices();
  store->ResetToGenericDevice();
  EXPECT_EQ(store->GetDeviceNames().size(), 1u);
  store->ParseDefinitionText(
      ".Controller Names\n[C]\n2=Breath\n.Instrument Definitions\n"
      "[E]\nControl=C\n");
  store->SelectDevice(L"E");
  EXPECT_EQ(Walk(*ControllerNames(*store)), (Names{{1, "Mod"}, {2, "Breath"}}));
}

TEST_F(DeviceStore, ImportChoosesByExtensionInAnyCase) {
  ComPtr<CInstrument> store = Open();
  EXPECT_EQ(store->ImportDefinitions(folder.Write("a.ins", "")), E_FAIL)
      << "an empty store after the parse";
  EXPECT_EQ(store->ImportDefinitions(folder.File("missing.ins")), E_FAIL);
  EXPECT_EQ(store->ImportDefinitions(folder.Write("b.xml", "<Instruments/>")), E_FAIL)
      << "an XML file must start with its declaration";
  EXPECT_EQ(store->ImportDefinitions(folder.Write("d.XML", "<?xml version=\"1.0\"?><Broken")), S_OK)
      << "a declared XML file that does not parse still counts";
  EXPECT_EQ(
      store->ImportDefinitions(folder.Write(
          "e.Xml", "<?xml?><Instruments><Instrument><Type>X</Type></Instrument></Instruments>")),
      S_OK);
  EXPECT_EQ(store->ImportDefinitions(
                folder.Write("f.InS", ".Instrument Definitions\r\n[Y]\r\nPatch[1]=T\r\n")),
            S_OK);
  EXPECT_EQ(store->GetDeviceNames(), (std::vector<std::wstring>{L"X", L"Y"}));
  EXPECT_EQ(store->ImportDefinitions(folder.File("missing.ins")), S_OK)
      << "with devices in the store, an unreadable file still succeeds";
}

TEST_F(DeviceStore, TheDefaultFileLiesBesideTheModule) {
  EXPECT_EQ(std::filesystem::path(CInstrument::DefaultDevicesFile()),
            std::filesystem::path(ModulePath()).parent_path() / "devices.xml");
}

}  // namespace
