// The component model's base types: result codes, identifiers, IUnknown and the task allocator.
// On Windows these names come from the system headers; elsewhere they are defined here with the
// same layout and meaning, so that interface tables match the binary contract on both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#ifdef _WIN32
// Only the component model from the system headers: no min/max macros, no rarely used APIs.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <objbase.h>
#include <unknwn.h>
#else

using HRESULT = std::int32_t;
using ULONG = std::uint32_t;

#define STDMETHODCALLTYPE

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using REFGUID = const GUID&;

inline bool operator==(const GUID& a, const GUID& b) noexcept {
  if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
  for (int i = 0; i < 8; ++i)
    if (a.Data4[i] != b.Data4[i]) return false;
  return true;
}
inline bool IsEqualGUID(REFGUID a, REFGUID b) noexcept { return a == b; }

// The root of every interface: exactly these three operations, in this order, and no virtual
// destructor, so that the table matches the platform's.
struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;

 protected:
  ~IUnknown() = default;
};

// Memory that crosses an interface and is freed by the receiver.
void* CoTaskMemAlloc(std::size_t bytes) noexcept;
void CoTaskMemFree(void* block) noexcept;

constexpr bool SUCCEEDED(HRESULT result) noexcept { return result >= 0; }
constexpr bool FAILED(HRESULT result) noexcept { return result < 0; }

inline constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

#endif  // _WIN32

// Result codes, named once. The casts keep the documented bit patterns on both platforms.
namespace hr {
constexpr HRESULT Code(std::uint32_t bits) noexcept { return static_cast<HRESULT>(bits); }
}  // namespace hr

#ifndef _WIN32
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = hr::Code(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = hr::Code(0x80004002u);
inline constexpr HRESULT E_POINTER = hr::Code(0x80004003u);
inline constexpr HRESULT E_FAIL = hr::Code(0x80004005u);
inline constexpr HRESULT E_UNEXPECTED = hr::Code(0x8000FFFFu);
inline constexpr HRESULT E_OUTOFMEMORY = hr::Code(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = hr::Code(0x80070057u);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = hr::Code(0x80040111u);
#endif
// The streaming graph's codes; these are not in the base system headers.
inline constexpr HRESULT VFW_E_TYPE_NOT_ACCEPTED = hr::Code(0x8004022Au);
inline constexpr HRESULT VFW_E_NOT_CONNECTED = hr::Code(0x80040209u);
inline constexpr HRESULT VFW_E_ALREADY_CONNECTED = hr::Code(0x80040204u);
inline constexpr HRESULT VFW_E_NOT_COMMITTED = hr::Code(0x80040211u);
inline constexpr HRESULT VFW_E_SIZENOTSET = hr::Code(0x80040212u);
inline constexpr HRESULT VFW_E_WRONG_STATE = hr::Code(0x80040227u);
inline constexpr HRESULT VFW_E_NO_ALLOCATOR = hr::Code(0x8004020Au);
inline constexpr HRESULT VFW_E_BUFFER_OVERFLOW = hr::Code(0x8004020Du);
inline constexpr HRESULT VFW_E_SAMPLE_TIME_NOT_SET = hr::Code(0x80040249u);
inline constexpr HRESULT VFW_S_NO_STOP_TIME = hr::Code(0x00040270u);
inline constexpr HRESULT VFW_S_NO_MORE_ITEMS = hr::Code(0x00040103u);

inline constexpr std::int32_t EC_GRAPH_CHANGED = 0x50;

// Parses the braced text form "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", either case.
bool GuidFromString(std::wstring_view text, GUID& out) noexcept;
// Formats the braced text form in upper case.
std::wstring GuidToString(const GUID& guid);

// Makes a GUID at compile time from its parts, for identifier tables.
constexpr GUID MakeGuid(std::uint32_t d1, std::uint16_t d2, std::uint16_t d3, std::uint8_t b0,
                        std::uint8_t b1, std::uint8_t b2, std::uint8_t b3, std::uint8_t b4,
                        std::uint8_t b5, std::uint8_t b6, std::uint8_t b7) noexcept {
  return GUID{d1, d2, d3, {b0, b1, b2, b3, b4, b5, b6, b7}};
}
