#include "platform/files.h"
#include "platform/windows/system.h"

bool MoveFileOver(const std::wstring& from, const std::wstring& to) {
  const DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  return MoveFileExW(from.c_str(), to.c_str(), flags) != 0;
}

bool DeleteFileAt(const std::wstring& path) { return DeleteFileW(path.c_str()) != 0; }

bool PathExists(const std::wstring& path) {
  return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}
