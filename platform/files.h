// Replacing a file whole: a new version is written beside it and moved over it in one step, so
// a reader, or a save that fails halfway, never leaves half a file in its place.
#pragma once

#include <string>

// [any thread] Moves `from` over `to`, replacing a file that is there, in one step of the file
// system. False, with both left as they were, when it cannot (`to` is a folder, say).
bool MoveFileOver(const std::wstring& from, const std::wstring& to);
// [any thread] Deletes the file; false when there was none or it cannot be deleted.
bool DeleteFileAt(const std::wstring& path);
// [any thread] Whether anything, file or folder, stands at `path`.
bool PathExists(const std::wstring& path);
