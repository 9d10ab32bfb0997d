// Files that live beside the module are found through its path, whatever the working folder.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/module_path.h"

namespace {

TEST(ModulePath, IsTheAbsolutePathOfTheFileHoldingTheCode) {
  // Linked statically, the code sits in the test program itself.
  const std::filesystem::path path(ModulePath());
  EXPECT_TRUE(path.is_absolute()) << path;
  EXPECT_EQ(path.filename(), "platform_tests");
  EXPECT_TRUE(std::filesystem::is_regular_file(path)) << path;
}

}  // namespace
