#include "core/output_pin_list.h"

#include <algorithm>
#include <atomic>

COutputPinList::~COutputPinList() {
  for (CFilterOutputPin* pin : m_pins) pin->ReleaseListReference();
}

std::uint32_t COutputPinList::NextId() noexcept {
  static std::atomic<std::uint32_t> next{1};
  return next++;
}

void COutputPinList::Append(CFilterOutputPin& pin) {
  pin.AddListReference();
  m_pins.push_back(&pin);
}

bool COutputPinList::Remove(std::uint32_t id) {
  const auto it = std::find_if(m_pins.begin(), m_pins.end(),
                               [id](const CFilterOutputPin* p) { return p->Id() == id; });
  if (it == m_pins.end()) return false;
  CFilterOutputPin* pin = *it;
  m_pins.erase(it);
  pin->ReleaseListReference();
  return true;
}

bool COutputPinList::RemoveFirst() {
  return !m_pins.empty() && Remove(m_pins.front()->Id());
}

CFilterOutputPin* COutputPinList::At(std::size_t index) const noexcept {
  return index < m_pins.size() ? m_pins[index] : nullptr;
}

CFilterOutputPin* COutputPinList::Find(std::uint32_t id) const noexcept {
  for (CFilterOutputPin* pin : m_pins)
    if (pin->Id() == id) return pin;
  return nullptr;
}

std::int32_t COutputPinList::CountConnected() const {
  return static_cast<std::int32_t>(std::count_if(
      m_pins.begin(), m_pins.end(), [](const CFilterOutputPin* p) { return p->IsConnected(); }));
}

void COutputPinList::CollectConnected(CFilterOutputPin** pins, std::int32_t capacity) const {
  std::int32_t n = 0;
  for (CFilterOutputPin* pin : m_pins)
    if (n < capacity && pin->IsConnected()) pins[n++] = pin;
}
