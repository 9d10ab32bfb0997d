// The registry of classes: a tree of keys, each holding string values, where the plug-in
// registers its classes and a host discovers soft synths. On Windows it is HKEY_CLASSES_ROOT; on
// Linux a tree of folders under the user's configuration folder
// ($XDG_CONFIG_HOME, or ~/.config, then tarn/registry), one folder per key.
//
// The root can be set explicitly (SetClassRegistryRoot), so that a host's trial or a test never
// touches the user's own registry.
//
// Keys are paths below the root with backslashes between names, as on Windows
// ("CLSID\{D8DF3849-...}\InprocServer32"). Windows matches names without regard to case; Linux
// keeps them as written, so callers use one spelling. All operations are [any thread], but
// writers of one key do not serialise against each other: registration runs on one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// [any thread] Moves the root of every later call. On Linux `root` is a folder (created when a
// key is first written); on Windows a key path below HKEY_CURRENT_USER. Empty text restores the
// default root. Calls already under way finish on the old root.
void SetClassRegistryRoot(std::wstring_view root);

// A named string value; the empty name is the key's default value.
struct RegistryValue {
  std::wstring name;
  std::wstring data;
};

// Creates `key` and any missing parents, then sets each of `values`, replacing values of the
// same name and keeping the others. False when the key cannot be made or a value not written.
bool CreateRegistryKey(std::wstring_view key, std::span<const RegistryValue> values = {});

// Creates `key` as CreateRegistryKey does and sets the string value `name` to the first
// `utf16Bytes` bytes of `data` as UTF-16 text, exactly: no terminator is added, and what a
// length leaves of a character is kept as Windows keeps it (an odd byte is an empty string
// there). Linux stores whole characters only. False when the key or the value cannot be written.
bool SetRegistryStringBytes(std::wstring_view key, std::wstring_view name, const wchar_t* data,
                            std::uint32_t utf16Bytes);

// The value named `name` ("" for the default value) of `key`; nothing when the key or the value
// does not exist.
std::optional<std::wstring> ReadRegistryValue(std::wstring_view key, std::wstring_view name = {});

// Deletes `key` with everything below it. True when the key is gone afterwards, including when
// it never existed; false when something kept it.
bool DeleteRegistryTree(std::wstring_view key);

// The names of the keys directly below `key`, sorted; empty when there are none or no such key.
std::vector<std::wstring> RegistrySubkeys(std::wstring_view key);
