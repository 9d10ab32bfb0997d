// The component model's late-bound interface, IDispatch, on which some published interfaces
// stand. On Windows it comes from the system headers.
#pragma once

#include <cstdint>

#include "platform/com.h"

#ifdef _WIN32
#include <oaidl.h>
#else

struct ITypeInfo;
struct DISPPARAMS;
struct VARIANT;
struct EXCEPINFO;
using DISPID = std::int32_t;
using LCID = std::uint32_t;

inline constexpr IID IID_IDispatch =
    MakeGuid(0x00020400, 0x0000, 0x0000, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);
struct IDispatch : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(std::uint32_t* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(std::uint32_t index, LCID locale,
                                                ITypeInfo** info) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, wchar_t** names,
                                                  std::uint32_t count, LCID locale,
                                                  DISPID* ids) = 0;
  virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale,
                                           std::uint16_t flags, DISPPARAMS* params,
                                           VARIANT* result, EXCEPINFO* exception,
                                           std::uint32_t* argumentError) = 0;
};

#endif  // _WIN32
