#include "tests/support/temp_folder.h"

#include <fstream>
#include <random>
#include <sstream>

TempFolder::TempFolder() {
  std::random_device random;
  do {
    m_path = std::filesystem::temp_directory_path() / ("tarn-test-" + std::to_string(random()));
  } while (!std::filesystem::create_directory(m_path));
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::wstring TempFolder::File(std::string_view name) const { return (m_path / name).wstring(); }

std::wstring TempFolder::Write(std::string_view name, std::string_view bytes) const {
  std::ofstream(m_path / name, std::ios::binary)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return File(name);
}

std::string TempFolder::Read(std::string_view name) const {
  std::ifstream file(m_path / name);  // text mode: the store writes the platform's line endings
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}
