#include "platform/module_version.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

#include "platform/codepage.h"

// A 64-bit little-endian ELF file is read just far enough to find one section by name. Every
// offset and size comes from the file, so each is checked against the file's length before use.
namespace {

constexpr std::string_view kSectionName = ".tarn_version";
constexpr std::string_view kKey = "FileVersion";
constexpr std::uint64_t kMaxTableBytes = 1u << 20;  // far beyond any real header table

class ElfFile {
 public:
  explicit ElfFile(const std::filesystem::path& path)
      : m_file(path, std::ios::binary | std::ios::ate) {
    if (m_file) m_length = static_cast<std::uint64_t>(m_file.tellg());
  }

  // `size` bytes at `offset`, or nothing when they do not lie within the file or the limit.
  std::optional<std::vector<char>> Read(std::uint64_t offset, std::uint64_t size) {
    if (!m_file || size > kMaxTableBytes || offset > m_length || size > m_length - offset)
      return std::nullopt;
    std::vector<char> bytes(static_cast<std::size_t>(size));
    m_file.seekg(static_cast<std::streamoff>(offset));
    if (!m_file.read(bytes.data(), static_cast<std::streamsize>(size))) return std::nullopt;
    return bytes;
  }

 private:
  std::ifstream m_file;
  std::uint64_t m_length = 0;
};

template <class T>
T Load(const std::vector<char>& bytes, std::size_t offset) {
  T value{};
  if (offset <= bytes.size() && sizeof(T) <= bytes.size() - offset)
    std::memcpy(&value, bytes.data() + offset, sizeof(T));
  return value;  // the host is little-endian, as the files it reads
}

std::optional<std::vector<char>> FindSection(ElfFile& elf) {
  const auto header = elf.Read(0, 64);
  if (!header || std::memcmp(header->data(), "\x7F" "ELF", 4) != 0 || (*header)[4] != 2 ||
      (*header)[5] != 1)
    return std::nullopt;
  const auto tableOffset = Load<std::uint64_t>(*header, 0x28);
  const auto entrySize = Load<std::uint16_t>(*header, 0x3A);
  const auto count = Load<std::uint16_t>(*header, 0x3C);
  const auto namesIndex = Load<std::uint16_t>(*header, 0x3E);
  if (entrySize < 64 || namesIndex >= count) return std::nullopt;
  const auto table = elf.Read(tableOffset, std::uint64_t{entrySize} * count);
  if (!table) return std::nullopt;
  auto sectionAt = [&](std::size_t i) {
    const std::size_t at = i * entrySize;
    return elf.Read(Load<std::uint64_t>(*table, at + 0x18), Load<std::uint64_t>(*table, at + 0x20));
  };
  const auto names = sectionAt(namesIndex);
  if (!names) return std::nullopt;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t nameOffset = Load<std::uint32_t>(*table, i * entrySize);
    if (nameOffset >= names->size()) continue;
    const char* name = names->data() + nameOffset;
    if (std::string_view(name, strnlen(name, names->size() - nameOffset)) == kSectionName)
      return sectionAt(i);
  }
  return std::nullopt;
}

// The value after the key in a run of NUL-ended strings.
std::optional<std::string> ValueOf(const std::vector<char>& record, std::string_view key) {
  std::vector<std::string_view> strings;
  for (std::size_t at = 0; at < record.size();) {
    const std::size_t length = strnlen(record.data() + at, record.size() - at);
    strings.emplace_back(record.data() + at, length);
    at += length + 1;
  }
  for (std::size_t i = 0; i + 1 < strings.size(); i += 2)
    if (strings[i] == key) return std::string(strings[i + 1]);
  return std::nullopt;
}

}  // namespace

std::optional<std::wstring> ReadModuleFileVersion(const std::wstring& path) {
  ElfFile elf{std::filesystem::path(WideToNarrow(path))};
  const auto section = FindSection(elf);
  if (!section) return std::nullopt;
  const auto value = ValueOf(*section, kKey);
  if (!value) return std::nullopt;
  return NarrowToWide(*value);
}
