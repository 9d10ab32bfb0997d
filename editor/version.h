// The version of a module as its version record states it, for the About box. Exported from
// the module, so that a host or a derived plug-in reads versions the same way.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/com.h"
#include "platform/export.h"

namespace audio {

class TARN_EXPORT CVersion {
 public:
  // [any thread] Reads the file version of the module at `path` from its version record (a
  // version resource on Windows, the ".tarn_version" section of the library elsewhere) into
  // the four numbers. S_OK; E_FAIL with all four 0 when there is no record or its text does
  // not cut into four numbers.
  HRESULT GetDLLVersion(const std::wstring& path, std::uint32_t& a, std::uint32_t& b,
                        std::uint32_t& c, std::uint32_t& d);
  // [any thread] Cuts `text` at "." into four numbers, else at ",". S_OK, or E_FAIL with all
  // four 0 when neither gives four parts.
  HRESULT Parse(std::wstring_view text);

  // The numbers in order, `i` from 0 to 3; 0 past them.
  std::uint32_t Number(std::size_t i) const noexcept { return i < 4 ? m_numbers[i] : 0; }
  HRESULT Result() const noexcept { return m_result; }
  // The text last read or parsed.
  const std::wstring& Text() const noexcept { return m_text; }

 private:
  std::uint32_t m_numbers[4] = {0, 0, 0, 0};
  HRESULT m_result = E_FAIL;
  std::wstring m_text;
};

}  // namespace audio
