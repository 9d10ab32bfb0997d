#include <filesystem>

#include <gtest/gtest.h>

#include "platform/module_path.h"

namespace {

// Files that travel with the plug-in are found beside this path.
TEST(ModulePath, NamesTheFileThisCodeWasLoadedFrom) {
  const std::filesystem::path path(ModulePath());
  EXPECT_TRUE(path.is_absolute()) << path;
  EXPECT_EQ(path.stem(), "platform_tests");
  EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
}

}  // namespace
