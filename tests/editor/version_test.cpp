// The version record of the built module, read back through the module's own export as a host
// or the About box reads it.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

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

// Cut short before its record, the file has none, and reading it never goes past its end.
TEST(ModuleVersion, ATruncatedModuleHasNoVersion) {
  const std::filesystem::path source(BuiltModule());
  std::ifstream in(source, std::ios::binary);
  std::ostringstream whole;
  whole << in.rdbuf();
  const std::string bytes = whole.str();
  ASSERT_GT(bytes.size(), 4096u);
  const std::filesystem::path cut =
      std::filesystem::temp_directory_path() / ("tarn_cut_" + std::to_string(bytes.size()));
  std::vector<std::size_t> lengths{3, 64, 600, 4096};
#if !defined(_WIN32)
  lengths.push_back(bytes.size() / 2);  // a library's section table lies at its end
#endif
  for (const std::size_t length : lengths) {
    std::ofstream(cut, std::ios::binary | std::ios::trunc).write(bytes.data(),
                                                                 static_cast<std::streamsize>(length));
    audio::CVersion version;
    std::uint32_t a = 1, b = 1, c = 1, d = 1;
    EXPECT_EQ(version.GetDLLVersion(cut.wstring(), a, b, c, d), E_FAIL) << length;
    EXPECT_EQ(a + b + c + d, 0u);
  }
  std::filesystem::remove(cut);
}

}  // namespace
