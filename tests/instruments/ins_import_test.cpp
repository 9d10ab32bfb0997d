// Instrument definition files bring device names into the store: real files from other MIDI
// software, and small ones that pin the line rules down.
#include <gtest/gtest.h>

#include <string>

#include "instruments/instrument.h"
#include "tests/instruments/host_reading.h"
#include "tests/support/temp_folder.h"

namespace {

using Names = std::map<std::int32_t, std::string>;

std::wstring SharedIns(const char* name) {
  return std::filesystem::path(TARN_SHARED_DATA).append("ins").append(name).wstring();
}

class DefinitionImport : public ::testing::Test {
 protected:
  DefinitionImport() : store(new CInstrument(folder.File("devices.xml"))) {}

  // Imports `text`, written with CRLF line endings as such files usually are.
  HRESULT ImportText(std::string text) {
    std::string crlf;
    for (char c : text) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return store->ImportDefinitions(folder.Write("own.ins", crlf));
  }

  TempFolder folder;
  ComPtr<CInstrument> store;
};

TEST_F(DefinitionImport, GeneralMidiDevicesWithTheirBanksPatchesAndControllers) {
  ASSERT_EQ(store->ImportDefinitions(SharedIns("GM1_GM2.ins")), S_OK);
  EXPECT_EQ(store->GetDeviceNames(),
            (std::vector<std::wstring>{L"General MIDI Level 1", L"General MIDI Level 1 Drumsets",
                                       L"General MIDI Level 2", L"General MIDI Level 2 Drumsets"}));

  store->SelectDevice(L"General MIDI Level 1");
  EXPECT_EQ(Banks(*store), std::vector<std::int32_t>{0}) << "Patch[*] adds no bank";
  const std::vector<std::string> piano = ByIndex(*PatchNames(*store, 0));
  ASSERT_EQ(piano.size(), 128u);
  EXPECT_EQ(piano.front(), "Acoustic Grand Piano");
  EXPECT_EQ(piano.back(), "Gunshot");
  ComPtr<IMfxNameList> controllers = ControllerNames(*store);
  EXPECT_EQ(Walk(*controllers).size(), 32u) << "RPN and NRPN tables stay out";
  char name[32];
  EXPECT_EQ(controllers->GetNameAt(7, name, sizeof name), S_OK);
  EXPECT_STREQ(name, "Channel Volume");

  store->SelectDevice(L"General MIDI Level 2");
  std::vector<std::int32_t> gm2;
  for (std::int32_t bank = 15488; bank <= 15497; ++bank) gm2.push_back(bank);
  EXPECT_EQ(Banks(*store), gm2);
  EXPECT_EQ(Walk(*PatchNames(*store, 15489)).at(1), "Bright Acoustic Piano (wide)");

  store->SelectDevice(L"General MIDI Level 2 Drumsets");
  EXPECT_EQ(Banks(*store), std::vector<std::int32_t>{15360});
  const Names kits = Walk(*PatchNames(*store, 15360));
  EXPECT_EQ(kits.size(), 9u) << "Key[...] lines and note names stay out";
  EXPECT_EQ(kits.at(56), "SFX");
  const std::vector<std::string> kitsByIndex = ByIndex(*PatchNames(*store, 15360));
  EXPECT_EQ(kitsByIndex.size(), 9u);
  EXPECT_EQ(kitsByIndex[8], "ROOM") << "by index, the holes show and the later kits are missed";
}

TEST_F(DefinitionImport, TwoFilesMergeIntoOneStore) {
  ASSERT_EQ(store->ImportDefinitions(SharedIns("MSGS.ins")), S_OK);
  ASSERT_EQ(store->ImportDefinitions(SharedIns("GM1_GM2.ins")), S_OK);
  EXPECT_EQ(store->GetDeviceNames().size(), 6u);
  store->SelectDevice(L"Microsoft GS Wavetable Synth");
  EXPECT_EQ(Banks(*store), (std::vector<std::int32_t>{0, 128, 256, 384, 512, 640, 768, 896, 1024,
                                                      1152, 2048, 3072, 4096}));
  EXPECT_EQ(Walk(*PatchNames(*store, 128)).at(38), "Synth Bass101");
  const Names controllers = Walk(*ControllerNames(*store));
  EXPECT_EQ(controllers.size(), 23u);
  EXPECT_EQ(controllers.at(7), "Volume");
  store->SelectDevice(L"Microsoft GS Wavetable Synth Drumsets");
  EXPECT_EQ(Banks(*store), std::vector<std::int32_t>{0});
  EXPECT_EQ(Walk(*PatchNames(*store, 0)).at(25), "TR-808");
}

TEST_F(DefinitionImport, BankSelectMethodCountsLaterBanksByTheirMsb) {
  ASSERT_EQ(ImportText(".Patch Names\n[T]\n0=Piano\n"
                       ".Instrument Definitions\n"
                       "[Method One]\nPatch[2]=T\nBankSelMethod=1\nPatch[3]=T\nPatch[300]=T\n"
                       "Patch[*]=T\nPatch[x]=T\n"
                       "[Method Late]\nPatch[2]=T\nBankSelMethod=1\n"
                       "[Method Two]\nBankSelMethod=2\nPatch[2]=T\n"),
            S_OK);
  store->SelectDevice(L"Method One");
  EXPECT_EQ(Banks(*store), (std::vector<std::int32_t>{2, 384, 5632}));
  EXPECT_EQ(Walk(*PatchNames(*store, 5632)), (Names{{0, "Piano"}}));
  store->SelectDevice(L"Method Late");
  EXPECT_EQ(Banks(*store), std::vector<std::int32_t>{2});
  store->SelectDevice(L"Method Two");
  EXPECT_EQ(Banks(*store), std::vector<std::int32_t>{2});
}

TEST_F(DefinitionImport, KeyLinesKeepTheirTextAroundTheEqualsSign) {
  ASSERT_EQ(ImportText(".Patch Names\n5=Before any table\n[[Tones]]\n"
                       "0=Piano\n1 = Spaced\n2=Organ ; not a comment\n12abc=Twelve\nx=Dropped\n"
                       "  3=Indented\t\n"
                       ".patch names\n[Tones]\n9=Unknown section\n"
                       ".Controller Names\n[Ctl]\n7=Volume\n"
                       ".Instrument Definitions\n[Dev]\nPatch[0]=Tones\nPatch[1]=\nControl=Ctl\n"
                       "[No Controls]\nControl=\nPatch[0]=Tones\n"
                       ".RPN Names\n[Tones]\n4=Not a patch\n"),
            S_OK);
  store->SelectDevice(L"Dev");
  EXPECT_EQ(Walk(*PatchNames(*store, 0)), (Names{{0, "Piano"},
                                                 {1, " Spaced"},
                                                 {2, "Organ ; not a comment"},
                                                 {3, "Indented"},
                                                 {12, "Twelve"}}));
  EXPECT_EQ(Walk(*PatchNames(*store, 1)), (Names{{5, "Before any table"}}))
      << "lines before the first table name go under the empty name";
  EXPECT_EQ(Walk(*ControllerNames(*store)), (Names{{7, "Volume"}}));
  store->SelectDevice(L"No Controls");
  EXPECT_TRUE(Walk(*ControllerNames(*store)).empty());
}

TEST_F(DefinitionImport, LongLinesContinueAndAnUnendedLastLineIsLost) {
  const std::string longName(256, 'A');
  const std::string text =
      ".Instrument Definitions\n[D]\nPatch[0]=T\n.Patch Names\n[T]\n20=" + longName +
      "21=Continued\n99=Unended";
  ASSERT_EQ(store->ImportDefinitions(folder.Write("long.ins", text)), S_OK);
  store->SelectDevice(L"D");
  EXPECT_EQ(Walk(*PatchNames(*store, 0)), (Names{{20, longName}, {21, "Continued"}}));
}

TEST_F(DefinitionImport, BrokenInputLosesNothingAlreadyThere) {
  ASSERT_EQ(ImportText(".Instrument Definitions\n[D]\nPatch[0]=T\n.Patch Names\n[T]\n1=One\n"),
            S_OK);
  const char kJunk[] =
      "\0\xff[\n.Patch Names\n[T]\n=\n9999999999=Big\n1\n.\n[]\n]]]\n"
      ".Instrument Definitions\n[D]\nPatch[=\nPatch[99999999999]=X\n\xF0\x90\x80\n";
  EXPECT_EQ(
      store->ImportDefinitions(folder.Write("junk.ins", std::string(kJunk, sizeof kJunk - 1))),
      S_OK);
  store->SelectDevice(L"D");
  EXPECT_EQ(Banks(*store), std::vector<std::int32_t>{0});
  EXPECT_EQ(Walk(*PatchNames(*store, 0)), (Names{{1, "One"}}));
}

}  // namespace
