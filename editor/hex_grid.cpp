#include "editor/hex_grid.h"

void CHexGrid::SetData(std::vector<std::uint8_t>* array) {
  m_array = array;
  Changed();
}

std::span<const std::uint8_t> CHexGrid::Bytes() const noexcept {
  if (!m_array) return {};
  return *m_array;
}

bool CHexGrid::Overwrite(std::size_t index, std::uint8_t value) {
  if (!m_array || index > m_array->size()) return false;
  if (index == m_array->size())
    m_array->push_back(value);
  else
    (*m_array)[index] = value;
  m_modified = true;
  Changed();
  return true;
}

bool CHexGrid::Insert(std::size_t index, std::span<const std::uint8_t> bytes) {
  if (!m_array || index > m_array->size()) return false;
  m_array->insert(m_array->begin() + static_cast<std::ptrdiff_t>(index), bytes.begin(),
                  bytes.end());
  m_modified = true;
  Changed();
  return true;
}

bool CHexGrid::Erase(std::size_t index, std::size_t count) {
  if (!m_array || index > m_array->size() || count > m_array->size() - index) return false;
  const auto first = m_array->begin() + static_cast<std::ptrdiff_t>(index);
  m_array->erase(first, first + static_cast<std::ptrdiff_t>(count));
  m_modified = true;
  Changed();
  return true;
}

void CHexGrid::Changed() {
  if (m_observer) m_observer->OnGridDataChanged();
}
