// The general component interfaces an instance offers besides its own: automation (answered
// with E_NOTIMPL throughout), property pages and persistence to a stream. On Windows they come
// from the system headers.
#pragma once

#include <cstdint>

#include "interfaces/graph_interfaces.h"
#include "platform/stream.h"
#include "platform/com.h"
#include "platform/dispatch.h"

#ifdef _WIN32
#include <ocidl.h>
#else

// A counted array of identifiers, allocated with CoTaskMemAlloc and freed by the receiver.
struct CAUUID {
  std::uint32_t cElems;
  GUID* pElems;
};

inline constexpr IID IID_ISpecifyPropertyPages =
    MakeGuid(0xB196B28B, 0xBAB4, 0x101A, 0xB6, 0x9C, 0x00, 0xAA, 0x00, 0x34, 0x1D, 0x07);
struct ISpecifyPropertyPages : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetPages(CAUUID* pages) = 0;
};

inline constexpr IID IID_IPersistStream =
    MakeGuid(0x00000109, 0x0000, 0x0000, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);
struct IPersistStream : IPersist {
  virtual HRESULT STDMETHODCALLTYPE IsDirty() = 0;
  virtual HRESULT STDMETHODCALLTYPE Load(IStream* stream) = 0;
  virtual HRESULT STDMETHODCALLTYPE Save(IStream* stream, std::int32_t clearDirty) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) = 0;
};

#endif  // _WIN32
