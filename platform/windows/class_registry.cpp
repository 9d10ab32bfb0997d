#include <algorithm>
#include <mutex>

#include "platform/class_registry.h"
#include "platform/windows/system.h"

namespace {

std::mutex g_rootLock;
std::wstring g_explicitRoot;  // below HKEY_CURRENT_USER; empty: HKEY_CLASSES_ROOT

// Where `key` lives: the root key and the terminated path below it.
struct Place {
  HKEY root;
  std::wstring path;
};

Place Locate(std::wstring_view key) {
  std::lock_guard lock(g_rootLock);
  if (g_explicitRoot.empty()) return {HKEY_CLASSES_ROOT, std::wstring(key)};
  return {HKEY_CURRENT_USER, g_explicitRoot + L"\\" + std::wstring(key)};
}

// Owns an open key.
class OpenKey {
 public:
  OpenKey() = default;
  ~OpenKey() {
    if (m_key) RegCloseKey(m_key);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  HKEY* Receive() noexcept { return &m_key; }
  HKEY Get() const noexcept { return m_key; }

 private:
  HKEY m_key = nullptr;
};

bool SetString(HKEY key, const RegistryValue& value) {
  const auto bytes = static_cast<DWORD>((value.data.size() + 1) * sizeof(wchar_t));
  const wchar_t* name = value.name.empty() ? nullptr : value.name.c_str();
  return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.data.c_str()),
                        bytes) == ERROR_SUCCESS;
}

}  // namespace

void SetClassRegistryRoot(std::wstring_view root) {
  std::lock_guard lock(g_rootLock);
  g_explicitRoot = root;
}

bool CreateRegistryKey(std::wstring_view key, std::span<const RegistryValue> values) {
  if (key.empty()) return false;
  const Place place = Locate(key);
  OpenKey opened;
  if (RegCreateKeyExW(place.root, place.path.c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                      nullptr, opened.Receive(), nullptr) != ERROR_SUCCESS)
    return false;
  return std::all_of(values.begin(), values.end(),
                     [&](const RegistryValue& value) { return SetString(opened.Get(), value); });
}

bool SetRegistryStringBytes(std::wstring_view key, std::wstring_view name, const wchar_t* data,
                            std::uint32_t utf16Bytes) {
  if (key.empty()) return false;
  const Place place = Locate(key);
  OpenKey opened;
  if (RegCreateKeyExW(place.root, place.path.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                      opened.Receive(), nullptr) != ERROR_SUCCESS)
    return false;
  const std::wstring valueName(name);
  return RegSetValueExW(opened.Get(), valueName.empty() ? nullptr : valueName.c_str(), 0, REG_SZ,
                        reinterpret_cast<const BYTE*>(data), utf16Bytes) == ERROR_SUCCESS;
}

std::optional<std::wstring> ReadRegistryValue(std::wstring_view key, std::wstring_view name) {
  if (key.empty()) return std::nullopt;
  const Place place = Locate(key);
  const std::wstring valueName(name);
  // A value may change between asking its size and reading it: ask again until it fits.
  for (;;) {
    DWORD bytes = 0;
    if (RegGetValueW(place.root, place.path.c_str(), valueName.c_str(), RRF_RT_REG_SZ, nullptr,
                     nullptr, &bytes) != ERROR_SUCCESS)
      return std::nullopt;
    std::wstring data(bytes / sizeof(wchar_t), L'\0');
    const LSTATUS status = RegGetValueW(place.root, place.path.c_str(), valueName.c_str(),
                                        RRF_RT_REG_SZ, nullptr, data.data(), &bytes);
    if (status == ERROR_MORE_DATA) continue;
    if (status != ERROR_SUCCESS) return std::nullopt;
    data.resize(bytes / sizeof(wchar_t));
    while (!data.empty() && data.back() == L'\0') data.pop_back();
    return data;
  }
}

bool DeleteRegistryTree(std::wstring_view key) {
  if (key.empty()) return false;  // never the whole root
  const Place place = Locate(key);
  const LSTATUS status = RegDeleteTreeW(place.root, place.path.c_str());
  return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

std::vector<std::wstring> RegistrySubkeys(std::wstring_view key) {
  std::vector<std::wstring> names;
  if (key.empty()) return names;
  const Place place = Locate(key);
  OpenKey opened;
  if (RegOpenKeyExW(place.root, place.path.c_str(), 0, KEY_ENUMERATE_SUB_KEYS,
                    opened.Receive()) != ERROR_SUCCESS)
    return names;
  wchar_t name[256];  // the longest key name the system allows, and its terminator
  for (DWORD index = 0;; ++index) {
    DWORD length = 256;
    if (RegEnumKeyExW(opened.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS)
      break;
    names.emplace_back(name, length);
  }
  std::sort(names.begin(), names.end());
  return names;
}
