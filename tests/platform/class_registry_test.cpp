#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "platform/class_registry.h"
#include "platform/codepage.h"

#ifdef _WIN32
#include <process.h>
#else
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;

int ProcessId() {
#ifdef _WIN32
  return _getpid();
#else
  return static_cast<int>(getpid());
#endif
}

// Every test works below a key of its own. On Linux the user's configuration folder is moved to
// a temporary one, so no test touches the real registry tree.
class ClassRegistry : public ::testing::Test {
 protected:
  void SetUp() override {
#ifndef _WIN32
    m_config = fs::temp_directory_path() / ("tarn-registry-" + std::to_string(ProcessId()));
    if (const char* old = std::getenv("XDG_CONFIG_HOME")) m_oldConfig = old;
    setenv("XDG_CONFIG_HOME", m_config.c_str(), 1);
#endif
    ASSERT_TRUE(DeleteRegistryTree(m_root));
  }
  void TearDown() override {
    EXPECT_TRUE(DeleteRegistryTree(m_root));
#ifndef _WIN32
    fs::remove_all(m_config);
    if (m_oldConfig.empty())
      unsetenv("XDG_CONFIG_HOME");
    else
      setenv("XDG_CONFIG_HOME", m_oldConfig.c_str(), 1);
#endif
  }
  std::wstring Key(std::wstring_view below) const { return m_root + L"\\" + std::wstring(below); }

  const std::wstring m_root = L"Tarn.RegistryTest." + std::to_wstring(ProcessId());
  fs::path m_config;
  std::string m_oldConfig;
};

constexpr wchar_t kServer[] = L"CLSID\\{D8DF3849-A01D-4254-A57D-5515BF9E3886}\\InprocServer32";

TEST_F(ClassRegistry, KeepsTheDefaultAndNamedValuesOfANewKeyAndItsParents) {
  const RegistryValue values[] = {{L"", L"C:\\Plug-ins\\Tarn.dll"}, {L"ThreadingModel", L"Both"}};
  ASSERT_TRUE(CreateRegistryKey(Key(kServer), values));
  EXPECT_EQ(ReadRegistryValue(Key(kServer)), L"C:\\Plug-ins\\Tarn.dll");
  EXPECT_EQ(ReadRegistryValue(Key(kServer), L"ThreadingModel"), L"Both");
  EXPECT_EQ(ReadRegistryValue(Key(kServer), L"Missing"), std::nullopt);
  EXPECT_EQ(ReadRegistryValue(Key(L"CLSID"), L""), std::nullopt) << "a parent made on the way";
  EXPECT_EQ(ReadRegistryValue(Key(L"Nowhere")), std::nullopt);
  EXPECT_EQ(RegistrySubkeys(m_root), std::vector<std::wstring>{L"CLSID"});
}

TEST_F(ClassRegistry, WritingAgainReplacesValuesByNameAndKeepsTheOthers) {
  const RegistryValue first[] = {{L"", L"old"}, {L"ThreadingModel", L"Both"}};
  const RegistryValue second[] = {{L"", L"new"}};
  ASSERT_TRUE(CreateRegistryKey(Key(kServer), first));
  ASSERT_TRUE(CreateRegistryKey(Key(kServer), second));
  EXPECT_EQ(ReadRegistryValue(Key(kServer)), L"new");
  EXPECT_EQ(ReadRegistryValue(Key(kServer), L"ThreadingModel"), L"Both");
}

TEST_F(ClassRegistry, DeletingATreeTakesEverythingBelowAndToleratesAGoneKey) {
  ASSERT_TRUE(CreateRegistryKey(Key(kServer)));
  ASSERT_TRUE(CreateRegistryKey(Key(L"MfxSoftSynths\\Tarn")));
  EXPECT_TRUE(DeleteRegistryTree(Key(L"CLSID")));
  EXPECT_EQ(RegistrySubkeys(m_root), std::vector<std::wstring>{L"MfxSoftSynths"});
  EXPECT_TRUE(RegistrySubkeys(Key(L"CLSID")).empty());
  EXPECT_TRUE(DeleteRegistryTree(Key(L"CLSID"))) << "already gone is not a failure";
}

TEST_F(ClassRegistry, NeverTouchesTheRootItself) {
  EXPECT_FALSE(CreateRegistryKey(L""));
  EXPECT_FALSE(DeleteRegistryTree(L""));
  EXPECT_EQ(ReadRegistryValue(L""), std::nullopt);
}

// Names and data with characters that a file tree or a line format could take for its own.
TEST_F(ClassRegistry, NamesAndDataSurviveWhateverTheyContain) {
  const std::vector<std::wstring> names = {L".hidden", L"Caf\u00e9", L"Sorel 1/2", L"a=b%41"};
  const std::wstring data = L"two\nlines = 100%\tand a tab";
  for (const std::wstring& name : names) {
    const RegistryValue values[] = {{L"", data}, {name, name}};
    ASSERT_TRUE(CreateRegistryKey(Key(L"Synths\\" + name), values)) << WideToNarrow(name);
  }
  EXPECT_EQ(RegistrySubkeys(Key(L"Synths")), names);
  for (const std::wstring& name : names) {
    EXPECT_EQ(ReadRegistryValue(Key(L"Synths\\" + name)), data);
    EXPECT_EQ(ReadRegistryValue(Key(L"Synths\\" + name), name), name);
  }
}

#ifndef _WIN32
TEST_F(ClassRegistry, LivesInTheUsersConfigurationFolder) {
  ASSERT_TRUE(CreateRegistryKey(Key(L"MfxSoftSynths")));
  const fs::path root = m_config / "tarn" / "registry" / WideToNarrow(m_root);
  EXPECT_TRUE(fs::is_directory(root / "MfxSoftSynths"));

  // Without XDG_CONFIG_HOME the folder is ~/.config.
  const std::string home = std::getenv("HOME") ? std::getenv("HOME") : "";
  unsetenv("XDG_CONFIG_HOME");
  setenv("HOME", m_config.c_str(), 1);
  EXPECT_EQ(RegistrySubkeys(m_root), std::vector<std::wstring>{});
  ASSERT_TRUE(CreateRegistryKey(Key(L"Elsewhere")));
  EXPECT_TRUE(fs::is_directory(m_config / ".config" / "tarn" / "registry"));
  EXPECT_TRUE(DeleteRegistryTree(m_root));
  setenv("HOME", home.c_str(), 1);
  setenv("XDG_CONFIG_HOME", m_config.c_str(), 1);
}
#endif

}  // namespace
