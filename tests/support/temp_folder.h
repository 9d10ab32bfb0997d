// A fresh folder under the system's temporary folder, removed with everything in it when the
// object goes; for tests that read and write files.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  // The full path of `name` inside the folder.
  std::wstring File(std::string_view name) const;
  // Writes `bytes` exactly (no line ending translation) to `name`; returns its full path.
  std::wstring Write(std::string_view name, std::string_view bytes) const;
  // The text of `name` with the platform's line endings read as "\n"; empty when unreadable.
  std::string Read(std::string_view name) const;

 private:
  std::filesystem::path m_path;
};
