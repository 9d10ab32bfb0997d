// The registry of classes: a tree of keys, each holding string values, where the plug-in
// registers its classes and a host discovers soft synths. On Windows it is HKEY_CLASSES_ROOT; on
// Linux a tree of folders under the user's configuration folder
// ($XDG_CONFIG_HOME, or ~/.config, then tarn/registry), one folder per key.
//
// Keys are paths below the root with backslashes between names, as on Windows
// ("CLSID\{D8DF3849-...}\InprocServer32"). Windows matches names without regard to case; Linux
// keeps them as written, so callers use one spelling. All operations are [any thread], but
// writers of one key do not serialise against each other: registration runs on one thread.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A named string value; the empty name is the key's default value.
struct RegistryValue {
  std::wstring name;
  std::wstring data;
};

// Creates `key` and any missing parents, then sets each of `values`, replacing values of the
// same name and keeping the others. False when the key cannot be made or a value not written.
bool CreateRegistryKey(std::wstring_view key, std::span<const RegistryValue> values = {});

// The value named `name` ("" for the default value) of `key`; nothing when the key or the value
// does not exist.
std::optional<std::wstring> ReadRegistryValue(std::wstring_view key, std::wstring_view name = {});

// Deletes `key` with everything below it. True when the key is gone afterwards, including when
// it never existed; false when something kept it.
bool DeleteRegistryTree(std::wstring_view key);

// The names of the keys directly below `key`, sorted; empty when there are none or no such key.
std::vector<std::wstring> RegistrySubkeys(std::wstring_view key);
