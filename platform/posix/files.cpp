#include <sys/stat.h>

#include <cstdio>

#include "platform/codepage.h"
#include "platform/files.h"

bool MoveFileOver(const std::wstring& from, const std::wstring& to) {
  return std::rename(WideToNarrow(from).c_str(), WideToNarrow(to).c_str()) == 0;
}

bool DeleteFileAt(const std::wstring& path) { return std::remove(WideToNarrow(path).c_str()) == 0; }

bool PathExists(const std::wstring& path) {
  struct stat info {};
  return ::stat(WideToNarrow(path).c_str(), &info) == 0;
}
