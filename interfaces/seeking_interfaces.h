// The graph's position interfaces: IMediaSeeking, and the older, late-bound IMediaPosition. A
// filter that does not seek by itself passes both on to the filter upstream of it. Operation
// order is a binary contract.
#pragma once

#include <cstdint>

#include "platform/com.h"
#include "platform/dispatch.h"

// Seconds, as IMediaPosition counts them.
using REFTIME = double;

// {36B73880-C2C8-11CF-8B46-00805F6CEF60}
inline constexpr IID IID_IMediaSeeking =
    MakeGuid(0x36B73880, 0xC2C8, 0x11CF, 0x8B, 0x46, 0x00, 0x80, 0x5F, 0x6C, 0xEF, 0x60);
// {56A868B2-0AD4-11CE-B03A-0020AF0BA770}
inline constexpr IID IID_IMediaPosition =
    MakeGuid(0x56A868B2, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);

// Positions in a time format (by default units of 100 ns). [graph thread] throughout.
struct IMediaSeeking : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetCapabilities(std::uint32_t* capabilities) = 0;
  virtual HRESULT STDMETHODCALLTYPE CheckCapabilities(std::uint32_t* capabilities) = 0;
  virtual HRESULT STDMETHODCALLTYPE IsFormatSupported(const GUID* format) = 0;
  virtual HRESULT STDMETHODCALLTYPE QueryPreferredFormat(GUID* format) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTimeFormat(GUID* format) = 0;
  virtual HRESULT STDMETHODCALLTYPE IsUsingTimeFormat(const GUID* format) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetTimeFormat(const GUID* format) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetDuration(std::int64_t* duration) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetStopPosition(std::int64_t* stop) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetCurrentPosition(std::int64_t* current) = 0;
  virtual HRESULT STDMETHODCALLTYPE ConvertTimeFormat(std::int64_t* target,
                                                      const GUID* targetFormat,
                                                      std::int64_t source,
                                                      const GUID* sourceFormat) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetPositions(std::int64_t* current, std::uint32_t currentFlags,
                                                 std::int64_t* stop, std::uint32_t stopFlags) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPositions(std::int64_t* current, std::int64_t* stop) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetAvailable(std::int64_t* earliest, std::int64_t* latest) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetRate(double rate) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetRate(double* rate) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPreroll(std::int64_t* preroll) = 0;

 protected:
  ~IMediaSeeking() = default;
};

// Positions in seconds, for scripting clients. [graph thread] throughout.
struct IMediaPosition : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Duration(REFTIME* length) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_CurrentPosition(REFTIME time) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_CurrentPosition(REFTIME* time) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_StopTime(REFTIME* time) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_StopTime(REFTIME time) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_PrerollTime(REFTIME* time) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_PrerollTime(REFTIME time) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_Rate(double rate) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Rate(double* rate) = 0;
  virtual HRESULT STDMETHODCALLTYPE CanSeekForward(std::int32_t* canSeek) = 0;
  virtual HRESULT STDMETHODCALLTYPE CanSeekBackward(std::int32_t* canSeek) = 0;

 protected:
  ~IMediaPosition() = default;
};
