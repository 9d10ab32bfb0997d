#include "instruments/string_map.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

// Copies at most `length` characters and puts a zero in the last place written.
void CopyCut(const std::string& text, char* buffer, std::size_t length) {
  const std::size_t n = std::min(text.size() + 1, length);
  std::memcpy(buffer, text.c_str(), n);
  buffer[n - 1] = '\0';
}

}  // namespace

CStringMap::CStringMap(const char* title) : m_title(title ? title : "") {}

HRESULT CStringMap::GetTitle(char* title, std::int32_t length) {
  if (!title) return E_POINTER;
  if (length >= 1) CopyCut(m_title, title, static_cast<std::size_t>(length));
  return S_OK;
}

HRESULT CStringMap::GetMaxCount(std::int32_t* count) {
  if (!count) return E_POINTER;
  *count = m_maxCount;
  return S_OK;
}

HRESULT CStringMap::GetNameAt(std::int32_t index, char* name, std::uint32_t length) {
  if (!name) return E_POINTER;
  if (index < 0 || index >= m_maxCount) return E_INVALIDARG;
  if (length == 0) return S_OK;
  const Entry* entry = Find(index);
  CopyCut(entry ? entry->second : std::string(), name, length);
  return S_OK;
}

HRESULT CStringMap::GetCount(std::int32_t* count) {
  if (!count) return E_POINTER;
  *count = static_cast<std::int32_t>(m_names.size());
  return S_OK;
}

HRESULT CStringMap::GetFirstPosition(MfxPosition* position) {
  if (!position) return E_POINTER;
  *position = m_names.empty() ? 0 : 1;
  return S_OK;
}

HRESULT CStringMap::GetNextEntry(MfxPosition* position, std::int32_t* key, char* name,
                                 std::int32_t length) {
  if (!name || !position) return E_POINTER;
  if (*position == 0 || *position > m_names.size()) return S_FALSE;
  const Entry& entry = m_names[*position - 1];
  if (key) *key = entry.first;
  if (length > 0) CopyCut(entry.second, name, static_cast<std::size_t>(length));
  *position = *position < m_names.size() ? *position + 1 : 0;
  return S_OK;
}

HRESULT CStringMap::LookupName(std::int32_t key, char* name, std::int32_t length) {
  if (!name) return E_POINTER;
  const Entry* entry = Find(key);
  if (!entry) return S_FALSE;
  if (length >= 1) CopyCut(entry->second, name, static_cast<std::size_t>(length));
  return S_OK;
}

HRESULT CStringMap::SetName(std::int32_t key, std::string_view text) {
  // Lists are built in ascending order, so the common case appends.
  if (m_names.empty() || m_names.back().first < key) {
    m_names.emplace_back(key, text);
    return S_OK;
  }
  const auto at = std::lower_bound(m_names.begin(), m_names.end(), key,
                                   [](const Entry& e, std::int32_t k) { return e.first < k; });
  if (at != m_names.end() && at->first == key)
    at->second = text;
  else
    m_names.emplace(at, key, text);
  return S_OK;
}

const CStringMap::Entry* CStringMap::Find(std::int32_t key) const noexcept {
  const auto at = std::lower_bound(m_names.begin(), m_names.end(), key,
                                   [](const Entry& e, std::int32_t k) { return e.first < k; });
  return at != m_names.end() && at->first == key ? &*at : nullptr;
}

HRESULT CreateNameList(ComPtr<CStringMap>* target, const char* title) {
  if (!target) return E_POINTER;
  if (*target) return S_OK;
  auto* list = new (std::nothrow) CStringMap(title);
  if (!list) return E_OUTOFMEMORY;
  *target = ComPtr<CStringMap>(list);
  return S_OK;
}
