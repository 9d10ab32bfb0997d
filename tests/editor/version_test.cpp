// The version record of the built module, read back through the module's own export as a host
// or the About box reads it.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "editor/version.h"

#if defined(_WIN32)
#include "platform/module_path.h"
#endif

namespace {

std::wstring BuiltModule() {
#if defined(_WIN32)
  return (std::filesystem::path(ProgramPath()).parent_path() / L"Tarn.dll").wstring();
#else
  return std::filesystem::path(TARN_MODULE_FILE).wstring();
#endif
}

std::wstring Widen(const std::string& text) { return std::wstring(text.begin(), text.end()); }

TEST(ModuleVersion, TheBuiltModuleCarriesTheProjectsVersion) {
  audio::CVersion version;
  std::uint32_t a = 0, b = 0, c = 0, d = 0;
  ASSERT_EQ(version.GetDLLVersion(BuiltModule(), a, b, c, d), S_OK);
  EXPECT_EQ(version.Text(), Widen(TARN_FILE_VERSION));
  const std::wstring numbers = std::to_wstring(a) + L"." + std::to_wstring(b) + L"." +
                               std::to_wstring(c) + L"." + std::to_wstring(d);
  EXPECT_EQ(numbers, Widen(TARN_FILE_VERSION));
}

}  // namespace
