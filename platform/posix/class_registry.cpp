#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <system_error>

#include "platform/class_registry.h"
#include "platform/codepage.h"

// Each key is a folder; its values are lines "name=data" in the file ".values" inside it. Names
// and data are stored escaped (%XX), so that a name cannot climb the tree, hide as a dot file,
// or break a line.

namespace {

namespace fs = std::filesystem;
using ValueMap = std::map<std::string, std::string>;

constexpr const char* kValuesFile = ".values";

std::mutex g_rootLock;
fs::path g_explicitRoot;  // empty: the user's configuration folder

fs::path RegistryRoot() {
  {
    std::lock_guard lock(g_rootLock);
    if (!g_explicitRoot.empty()) return g_explicitRoot;
  }
  const char* config = std::getenv("XDG_CONFIG_HOME");
  if (config && config[0] == '/') return fs::path(config) / "tarn" / "registry";
  const char* home = std::getenv("HOME");
  if (home && home[0] == '/') return fs::path(home) / ".config" / "tarn" / "registry";
  return {};
}

bool NeedsEscape(unsigned char c, std::size_t at) {
  return c < 0x20 || c == '%' || c == '/' || c == '=' || c == 0x7F || (at == 0 && c == '.');
}

std::string Escape(std::wstring_view text) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  const std::string utf8 = WideToNarrow(text);
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto c = static_cast<unsigned char>(utf8[i]);
    if (NeedsEscape(c, i)) {
      out += '%';
      out += kHex[c >> 4];
      out += kHex[c & 0xF];
    } else {
      out += utf8[i];
    }
  }
  return out;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Undoes Escape; a malformed escape is kept as it stands.
std::wstring Unescape(std::string_view text) {
  std::string utf8;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      const int high = HexDigit(text[i + 1]);
      const int low = HexDigit(text[i + 2]);
      if (high >= 0 && low >= 0) {
        utf8 += static_cast<char>(high * 16 + low);
        i += 2;
        continue;
      }
    }
    utf8 += text[i];
  }
  return NarrowToWide(utf8);
}

// The folder of `key`; empty for the root itself, an empty name, or no configuration folder.
fs::path KeyFolder(std::wstring_view key) {
  fs::path folder = RegistryRoot();
  if (key.empty() || folder.empty()) return {};
  for (std::size_t start = 0;;) {
    const std::size_t end = std::min(key.find(L'\\', start), key.size());
    if (end == start) return {};
    folder /= Escape(key.substr(start, end - start));
    if (end == key.size()) return folder;
    start = end + 1;
  }
}

ValueMap ReadValues(const fs::path& folder) {
  ValueMap values;
  std::ifstream in(folder / kValuesFile);
  for (std::string line; std::getline(in, line);) {
    const std::size_t equals = line.find('=');
    if (equals != std::string::npos) values[line.substr(0, equals)] = line.substr(equals + 1);
  }
  return values;
}

// Writes a new file and renames it over the old, so a reader never sees half a file.
bool WriteValues(const fs::path& folder, const ValueMap& values) {
  const fs::path temporary = folder / ".values.new";
  {
    std::ofstream out(temporary, std::ios::trunc);
    for (const auto& [name, data] : values) out << name << '=' << data << '\n';
    if (!out.flush()) return false;
  }
  std::error_code error;
  fs::rename(temporary, folder / kValuesFile, error);
  return !error;
}

}  // namespace

void SetClassRegistryRoot(std::wstring_view root) {
  fs::path folder = root.empty() ? fs::path() : fs::path(WideToNarrow(root));
  std::lock_guard lock(g_rootLock);
  g_explicitRoot = std::move(folder);
}

bool CreateRegistryKey(std::wstring_view key, std::span<const RegistryValue> values) {
  const fs::path folder = KeyFolder(key);
  if (folder.empty()) return false;
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) return false;
  if (values.empty()) return true;
  ValueMap stored = ReadValues(folder);
  for (const RegistryValue& value : values) stored[Escape(value.name)] = Escape(value.data);
  return WriteValues(folder, stored);
}

bool SetRegistryStringBytes(std::wstring_view key, std::wstring_view name, const wchar_t* data,
                            std::uint32_t utf16Bytes) {
  // Registry text is UTF-16 on the wire; here a character of the BMP is one wchar_t.
  std::wstring text(data ? data : L"", data ? utf16Bytes / 2 : 0);
  while (!text.empty() && text.back() == L'\0') text.pop_back();
  const RegistryValue value{std::wstring(name), std::move(text)};
  return CreateRegistryKey(key, std::span(&value, 1));
}

std::optional<std::wstring> ReadRegistryValue(std::wstring_view key, std::wstring_view name) {
  const fs::path folder = KeyFolder(key);
  if (folder.empty()) return std::nullopt;
  const ValueMap values = ReadValues(folder);
  const auto it = values.find(Escape(name));
  if (it == values.end()) return std::nullopt;
  return Unescape(it->second);
}

bool DeleteRegistryTree(std::wstring_view key) {
  const fs::path folder = KeyFolder(key);
  std::error_code error;
  if (folder.empty()) return false;
  fs::remove_all(folder, error);
  return !error;
}

std::vector<std::wstring> RegistrySubkeys(std::wstring_view key) {
  std::vector<std::wstring> names;
  const fs::path folder = KeyFolder(key);
  std::error_code error;
  if (folder.empty()) return names;
  for (const auto& entry : fs::directory_iterator(folder, error))
    if (entry.is_directory()) names.push_back(Unescape(entry.path().filename().string()));
  std::sort(names.begin(), names.end());
  return names;
}
