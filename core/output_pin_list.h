// The filter's output pins in list order. The list holds one reference of each pin, the one
// that does not hold the filter (see CFilterOutputPin), and lets go of it when a pin leaves or
// the list goes. Every operation runs under the instance lock, which the caller holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/filter_pins.h"

class COutputPinList {
 public:
  COutputPinList() = default;
  // [destruction] Lets go of every pin still listed.
  ~COutputPinList();
  COutputPinList(const COutputPinList&) = delete;
  COutputPinList& operator=(const COutputPinList&) = delete;

  // [any thread] A new pin id: process-wide, from 1, never reused.
  static std::uint32_t NextId() noexcept;

  // [instance lock] Takes the list's reference of `pin` and puts it last.
  void Append(CFilterOutputPin& pin);
  // [instance lock] Takes the pin out and lets go of the list's reference; false when no pin
  // has that id.
  bool Remove(std::uint32_t id);
  // [instance lock] Takes out the first pin; false when there is none.
  bool RemoveFirst();

  // [instance lock]
  std::size_t Count() const noexcept { return m_pins.size(); }
  // [instance lock] The pin at `index`, or null past the end.
  CFilterOutputPin* At(std::size_t index) const noexcept;
  // [instance lock] The pin with `id`, or null.
  CFilterOutputPin* Find(std::uint32_t id) const noexcept;
  // [instance lock] How many pins are connected.
  std::int32_t CountConnected() const;
  // [instance lock] The connected pins into `pins`, in list order; at most `capacity`.
  void CollectConnected(CFilterOutputPin** pins, std::int32_t capacity) const;

  auto begin() const noexcept { return m_pins.begin(); }
  auto end() const noexcept { return m_pins.end(); }

 private:
  std::vector<CFilterOutputPin*> m_pins;
};
