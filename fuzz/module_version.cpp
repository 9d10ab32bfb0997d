// Any bytes as a module file: the version reader follows offsets and sizes the file states, so
// each must be checked against the file before it is used.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "platform/codepage.h"
#include "platform/module_version.h"

namespace {

// One file per process, gone when the process ends.
struct ScratchFile {
  std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("tarn_fuzz_module_" + std::to_string(getpid()));
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchFile scratch;
  std::ofstream(scratch.path, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  ReadModuleFileVersion(NarrowToWide(scratch.path.string()));
  return 0;
}
