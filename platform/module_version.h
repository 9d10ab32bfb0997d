// The version record of a module file, read by path without loading the module: a version
// resource on Windows; on other systems the ".tarn_version" section of the library, which holds
// NUL-ended key and value pairs ("FileVersion", "2.4.0.400").
#pragma once

#include <optional>
#include <string>

// [any thread] The record's "FileVersion" text. On Windows it is asked under the record's first
// translation, or with none under the user's default language and Unicode. Nothing when the
// file cannot be read, is no module of this system's kind, or has no such record.
std::optional<std::wstring> ReadModuleFileVersion(const std::wstring& path);
