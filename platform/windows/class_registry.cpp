#include <algorithm>

#include "platform/class_registry.h"
#include "platform/windows/system.h"

namespace {

// The API takes terminated strings; views are copied once here.
std::wstring Terminated(std::wstring_view text) { return std::wstring(text); }

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

bool CreateRegistryKey(std::wstring_view key, std::span<const RegistryValue> values) {
  if (key.empty()) return false;
  OpenKey opened;
  if (RegCreateKeyExW(HKEY_CLASSES_ROOT, Terminated(key).c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                      nullptr, opened.Receive(), nullptr) != ERROR_SUCCESS)
    return false;
  return std::all_of(values.begin(), values.end(),
                     [&](const RegistryValue& value) { return SetString(opened.Get(), value); });
}

std::optional<std::wstring> ReadRegistryValue(std::wstring_view key, std::wstring_view name) {
  if (key.empty()) return std::nullopt;
  const std::wstring path = Terminated(key);
  const std::wstring valueName = Terminated(name);
  // A value may change between asking its size and reading it: ask again until it fits.
  for (;;) {
    DWORD bytes = 0;
    if (RegGetValueW(HKEY_CLASSES_ROOT, path.c_str(), valueName.c_str(), RRF_RT_REG_SZ, nullptr,
                     nullptr, &bytes) != ERROR_SUCCESS)
      return std::nullopt;
    std::wstring data(bytes / sizeof(wchar_t), L'\0');
    const LSTATUS status = RegGetValueW(HKEY_CLASSES_ROOT, path.c_str(), valueName.c_str(),
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
  const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, Terminated(key).c_str());
  return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

std::vector<std::wstring> RegistrySubkeys(std::wstring_view key) {
  std::vector<std::wstring> names;
  OpenKey opened;
  if (key.empty() || RegOpenKeyExW(HKEY_CLASSES_ROOT, Terminated(key).c_str(), 0,
                                   KEY_ENUMERATE_SUB_KEYS, opened.Receive()) != ERROR_SUCCESS)
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
