// The host's view of a device's names: banks, patches and controllers, and the name lists it
// reads them from. Operation order is a binary contract.
#pragma once

#include <cstdint>

#include "platform/com.h"
#include "platform/unknown_impl.h"

// {857F3281-02A9-11D2-A8E0-0000A0090B97}
inline constexpr IID IID_IMfxNameList =
    MakeGuid(0x857F3281, 0x02A9, 0x11D2, 0xA8, 0xE0, 0x00, 0x00, 0xA0, 0x09, 0x0B, 0x97);
// {BADA6CF9-77A5-4F48-B6FA-66154E4B163B}
inline constexpr IID IID_IMfxNameList2 =
    MakeGuid(0xBADA6CF9, 0x77A5, 0x4F48, 0xB6, 0xFA, 0x66, 0x15, 0x4E, 0x4B, 0x16, 0x3B);

// An opaque place in a list's walk; 0 stands for none.
using MfxPosition = std::uintptr_t;

// A title and a sparse map from a number to a name, in narrow text. A list never changes once
// it is handed out, so a reader may keep it past a change of device. Names that do not fit a
// buffer are cut, and a buffer written to always ends with a zero.
// Threads: [any thread]; AddRef and Release on one thread at a time.
struct IMfxNameList : IUnknown {
  // The title, cut to `length`. E_POINTER for a null buffer; S_OK, with nothing written, for a
  // length below 1.
  virtual HRESULT STDMETHODCALLTYPE GetTitle(char* title, std::int32_t length) = 0;
  // Always 128, whatever the list holds: the range of GetNameAt. E_POINTER for null.
  virtual HRESULT STDMETHODCALLTYPE GetMaxCount(std::int32_t* count) = 0;
  // The name whose key is `index`, or an empty string for a hole; S_OK either way.
  // E_INVALIDARG for an index outside 0 to 127 (keys from 128 up are reached by the walk or
  // LookupName only), E_POINTER for a null buffer.
  virtual HRESULT STDMETHODCALLTYPE GetNameAt(std::int32_t index, char* name,
                                              std::uint32_t length) = 0;
};
TARN_INTERFACE_ID(IMfxNameList, IID_IMfxNameList, IUnknown);

struct IMfxNameList2 : IMfxNameList {
  // The number of names held, not the highest key. E_POINTER for null.
  virtual HRESULT STDMETHODCALLTYPE GetCount(std::int32_t* count) = 0;
  // The place of the first entry in ascending key order (0 for an empty list). E_POINTER for
  // null.
  virtual HRESULT STDMETHODCALLTYPE GetFirstPosition(MfxPosition* position) = 0;
  // The entry at `*position`: its key into `key` unless that is null, its name cut to `length`
  // unless that is below 1; then moves `*position` on (0 after the last). S_FALSE for a zero or
  // spent position; E_POINTER for a null buffer or position argument.
  virtual HRESULT STDMETHODCALLTYPE GetNextEntry(MfxPosition* position, std::int32_t* key,
                                                 char* name, std::int32_t length) = 0;
  // The name under `key`, any key. S_FALSE with the buffer untouched when there is none;
  // S_OK with nothing written for a length below 1; E_POINTER for a null buffer.
  virtual HRESULT STDMETHODCALLTYPE LookupName(std::int32_t key, char* name,
                                               std::int32_t length) = 0;
};
TARN_INTERFACE_ID(IMfxNameList2, IID_IMfxNameList2, IMfxNameList);

// {2AC171DF-81E3-496C-BA7A-92EF10B417D9}
inline constexpr IID IID_IMfxInstrument =
    MakeGuid(0x2AC171DF, 0x81E3, 0x496C, 0xBA, 0x7A, 0x92, 0xEF, 0x10, 0xB4, 0x17, 0xD9);

// The current device's names. Bank numbers are the 14-bit value of the bank select pair.
struct IMfxInstrument : IUnknown {
  // [any thread] The current device's name with its terminator. E_POINTER for a null buffer or
  // one without room for the terminator.
  virtual HRESULT STDMETHODCALLTYPE GetInstrumentName(char* name, std::uint32_t capacity) = 0;
  // [any thread, instrument lock] The current device's bank numbers, ascending, in an array the
  // caller frees with CoTaskMemFree. E_POINTER for null arguments, E_OUTOFMEMORY.
  virtual HRESULT STDMETHODCALLTYPE GetBanks(std::int32_t** banks, std::int32_t* count) = 0;
  // [any thread, instrument lock] Range tests only: E_INVALIDARG for a bank outside -1 to
  // 16383 or a patch outside -1 to 127; otherwise S_FALSE and S_OK respectively, for any patch.
  virtual HRESULT STDMETHODCALLTYPE QueryPatchFalse(std::int32_t bank, std::int32_t patch) = 0;
  virtual HRESULT STDMETHODCALLTYPE QueryPatchTrue(std::int32_t bank, std::int32_t patch) = 0;
  // [any thread, instrument lock] The bank's patch list with a reference added. E_INVALIDARG
  // for a bank outside -1 to 16383, E_POINTER for null, E_FAIL when no list was built for it.
  virtual HRESULT STDMETHODCALLTYPE GetPatchNames(std::int32_t bank, IMfxNameList** names) = 0;
  // [any thread] E_NOTIMPL.
  virtual HRESULT STDMETHODCALLTYPE ReservedQuery(std::int32_t a, std::int32_t b, void* c) = 0;
  // [any thread, instrument lock] The controller list with a reference added. E_POINTER for
  // null, E_FAIL before a device was selected.
  virtual HRESULT STDMETHODCALLTYPE GetControllerNames(IMfxNameList** names) = 0;
  // [any thread] E_NOTIMPL.
  virtual HRESULT STDMETHODCALLTYPE ReservedListA(void* a) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedListB(void* a) = 0;
};
TARN_INTERFACE_ID(IMfxInstrument, IID_IMfxInstrument, IUnknown);
