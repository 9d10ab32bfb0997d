// The host's view of a device's names: banks, patches and controllers. Operation order is a
// binary contract.
#pragma once

#include <cstdint>

#include "platform/com.h"

struct IMfxNameList;

// {2AC171DF-81E3-496C-BA7A-92EF10B417D9}
inline constexpr IID IID_IMfxInstrument =
    MakeGuid(0x2AC171DF, 0x81E3, 0x496C, 0xBA, 0x7A, 0x92, 0xEF, 0x10, 0xB4, 0x17, 0xD9);

struct IMfxInstrument : IUnknown {
  // [any thread, instrument lock unless noted] The current device's name (no lock).
  virtual HRESULT STDMETHODCALLTYPE GetInstrumentName(char* name, std::uint32_t capacity) = 0;
  // The bank numbers, ascending, in an array the caller frees with CoTaskMemFree.
  virtual HRESULT STDMETHODCALLTYPE GetBanks(std::int32_t** banks, std::int32_t* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE QueryPatchFalse(std::int32_t bank, std::int32_t patch) = 0;
  virtual HRESULT STDMETHODCALLTYPE QueryPatchTrue(std::int32_t bank, std::int32_t patch) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPatchNames(std::int32_t bank, IMfxNameList** names) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedQuery(std::int32_t a, std::int32_t b, void* c) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetControllerNames(IMfxNameList** names) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedListA(void* a) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedListB(void* a) = 0;
};
