// The interface through which a filter registers itself with the filter mapper.
#pragma once

#include "platform/com.h"

// {A3D8CEC0-7E5A-11CF-BBC5-00805F6CEF20}
inline constexpr IID IID_IAMovieSetup =
    MakeGuid(0xA3D8CEC0, 0x7E5A, 0x11CF, 0xBB, 0xC5, 0x00, 0x80, 0x5F, 0x6C, 0xEF, 0x20);

struct IAMovieSetup : IUnknown {
  // [host thread] Lists the filter with the mapper; S_FALSE when it has no setup of its own.
  virtual HRESULT STDMETHODCALLTYPE Register() = 0;
  // [host thread] Removes what Register listed; S_FALSE when it has no setup of its own.
  virtual HRESULT STDMETHODCALLTYPE Unregister() = 0;

 protected:
  ~IAMovieSetup() = default;
};
