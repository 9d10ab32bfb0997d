#include "platform/module_version.h"

#include <cwchar>
#include <vector>

#include "platform/windows/system.h"

namespace {

// "\StringFileInfo\<language><code page>\FileVersion" for the record's first translation.
std::wstring FileVersionQuery(const void* record) {
  struct Translation {
    WORD language;
    WORD codePage;
  };
  void* found = nullptr;
  UINT length = 0;
  wchar_t query[64];
  if (VerQueryValueW(record, L"\\VarFileInfo\\Translation", &found, &length) &&
      length >= sizeof(Translation)) {
    const auto* first = static_cast<const Translation*>(found);
    std::swprintf(query, 64, L"\\StringFileInfo\\%04X%04X\\FileVersion", first->language,
                  first->codePage);
  } else {
    std::swprintf(query, 64, L"\\StringFileInfo\\%04X04B0\\FileVersion",
                  static_cast<unsigned>(GetUserDefaultLangID()));
  }
  return query;
}

}  // namespace

std::optional<std::wstring> ReadModuleFileVersion(const std::wstring& path) {
  DWORD unused = 0;
  const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &unused);
  if (size == 0) return std::nullopt;
  std::vector<unsigned char> record(size);
  if (!GetFileVersionInfoW(path.c_str(), 0, size, record.data())) return std::nullopt;
  void* text = nullptr;
  UINT length = 0;
  if (!VerQueryValueW(record.data(), FileVersionQuery(record.data()).c_str(), &text, &length) ||
      length == 0)
    return std::nullopt;
  const auto* characters = static_cast<const wchar_t*>(text);
  return std::wstring(characters, wcsnlen(characters, length));
}
