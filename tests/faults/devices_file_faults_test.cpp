// "devices.xml" that cannot be read, is cut short, or cannot be written when the store goes: the
// store is empty or unchanged as documented, a good file is never replaced by a broken one, and
// a file that could not be read is kept aside rather than lost.
#include <filesystem>
#include <string>

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#endif

#include <gtest/gtest.h>

#include "instruments/instrument.h"
#include "tests/faults/fault_tally.h"
#include "tests/support/temp_folder.h"

namespace {

constexpr std::string_view kDefinitions =
    "<?xml version=\"1.0\" ?>\n<Instruments><Instrument><Type>Synth</Type>"
    "<CC Num=\"7\">Volume</CC><Bank Num=\"0\" Name=\"Tones\"><Patch Num=\"1\">Piano</Patch>"
    "<Patch Num=\"2\">Organ</Patch></Bank></Instrument></Instruments>\n";

std::vector<std::wstring> Devices(const std::wstring& file) {
  ComPtr<CInstrument> store(new CInstrument(file));
  return store->GetDeviceNames();
}

// Makes a good "devices.xml" in `folder` by importing definitions, as a user does.
std::string GoodStore(const TempFolder& folder) {
  const std::wstring imported = folder.Write("import.xml", kDefinitions);
  {
    ComPtr<CInstrument> store(new CInstrument(folder.File("devices.xml")));
    EXPECT_EQ(store->ImportDefinitions(imported), S_OK);
  }
  return folder.Read("devices.xml");
}

// A store that imports the definitions again and is destroyed, which writes its file.
void ImportAndDestroy(const TempFolder& folder) {
  ComPtr<CInstrument> store(new CInstrument(folder.File("devices.xml")));
  EXPECT_EQ(store->ImportDefinitions(folder.Write("import.xml", kDefinitions)), S_OK);
}

std::vector<std::string> Leftovers(const TempFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
    if (entry.path().extension() == ".saving") names.push_back(entry.path().filename().string());
  return names;
}

TEST(DevicesFileFaults, AFileCutShortGivesAnEmptyStoreAndIsKeptAsideWhenReplaced) {
  TempFolder folder;
  const std::string good = GoodStore(folder);
  ASSERT_EQ(Devices(folder.File("devices.xml")), std::vector<std::wstring>{L"Synth"});
  const std::string cut = good.substr(0, good.size() / 2);
  folder.Write("devices.xml", cut);
  CountFaults();
  EXPECT_TRUE(Devices(folder.File("devices.xml")).empty());
  EXPECT_EQ(folder.Read("devices.xml"), cut) << "a store that did not change writes nothing";

  ImportAndDestroy(folder);
  EXPECT_EQ(folder.Read("devices.xml"), good);
  EXPECT_EQ(folder.Read("devices.xml.unread"), cut) << "what could not be read is kept";
}

TEST(DevicesFileFaults, AFileThatCannotBeReadGivesAnEmptyStoreAndIsNotLost) {
  TempFolder folder;
  std::filesystem::create_directory(folder.Path() / "devices.xml");  // no file can be read there
  std::filesystem::create_directory(folder.Path() / "devices.xml" / "inside");
  CountFaults();
  EXPECT_TRUE(Devices(folder.File("devices.xml")).empty());
  ImportAndDestroy(folder);
  EXPECT_TRUE(std::filesystem::is_directory(folder.Path() / "devices.xml.unread" / "inside"));
  EXPECT_EQ(Devices(folder.File("devices.xml")), std::vector<std::wstring>{L"Synth"});
  EXPECT_TRUE(Leftovers(folder).empty());
}

TEST(DevicesFileFaults, AFolderThatIsGoneAtDestructionLosesOnlyTheUnsavedChange) {
  TempFolder folder;
  const std::filesystem::path gone = folder.Path() / "gone";
  std::filesystem::create_directory(gone);
  {
    ComPtr<CInstrument> store(new CInstrument((gone / "devices.xml").wstring()));
    ASSERT_EQ(store->ImportDefinitions(folder.Write("import.xml", kDefinitions)), S_OK);
    std::filesystem::remove_all(gone);
    CountFaults();
  }
  EXPECT_FALSE(std::filesystem::exists(gone));
}

#ifndef _WIN32
// The disk fills while the store is written: the good file stays as it was, byte for byte, and
// the half-written one is taken away.
TEST(DevicesFileFaults, AWriteThatFailsHalfwayNeverReplacesAGoodFile) {
  TempFolder folder;
  const std::string good = GoodStore(folder);
  std::string bigger(kDefinitions);
  const std::string device = "<Instrument><Type>Pad</Type></Instrument>";
  bigger.insert(bigger.find("</Instruments>"), device);
  const std::wstring imported = folder.Write("bigger.xml", bigger);

  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);  // a write past the limit fails instead
  {
    ComPtr<CInstrument> store(new CInstrument(folder.File("devices.xml")));
    ASSERT_EQ(store->ImportDefinitions(imported), S_OK);
    rlimit limit = before;
    limit.rlim_cur = good.size() / 2;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    CountFaults();
  }
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, oldHandler);
  EXPECT_EQ(folder.Read("devices.xml"), good);
  EXPECT_TRUE(Leftovers(folder).empty());
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "devices.xml.unread"));
}
#endif

}  // namespace
