#include "host/midi/midi_back_end.h"

#include <algorithm>
#include <cwchar>

HRESULT CopyPortName(const std::wstring& text, wchar_t* name, std::uint32_t capacity) {
  if (!name || capacity == 0) return E_POINTER;
  const std::size_t n = std::min<std::size_t>(text.size(), capacity - 1);
  std::wmemcpy(name, text.data(), n);
  name[n] = L'\0';
  return S_OK;
}

std::size_t ShortMessageLength(std::uint8_t status) {
  switch (status & 0xF0) {
    case 0xC0:
    case 0xD0: return 2;
    case 0xF0:
      if (status == 0xF1 || status == 0xF3) return 2;
      if (status == 0xF2) return 3;
      return 1;
    default: return 3;
  }
}
