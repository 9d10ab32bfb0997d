// Position requests passed upstream: an object that answers IMediaSeeking and IMediaPosition on
// behalf of a filter that does not seek by itself, by forwarding every call to the pin connected
// to one of its input pins. It lives inside the filter: its references are the outer object's.
#pragma once

#include <cstdint>

#include "frame/base_pin.h"
#include "interfaces/seeking_interfaces.h"
#include "frame/unknown.h"

class CPositionPassThrough final : public CUnknown, public IMediaSeeking, public IMediaPosition {
 public:
  DECLARE_IUNKNOWN

  // `outer` keeps `input` alive for as long as anyone holds one of these faces.
  CPositionPassThrough(IUnknown* outer, CBasePin& input);

  // Answers IMediaSeeking and IMediaPosition, then CUnknown's.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;

  // [graph thread] Every call below goes to the same call of the upstream pin: its answer, or
  // VFW_E_NOT_CONNECTED while the input is not connected, or E_NOTIMPL when the upstream pin
  // does not offer the interface.
  HRESULT STDMETHODCALLTYPE GetCapabilities(std::uint32_t* capabilities) override;
  HRESULT STDMETHODCALLTYPE CheckCapabilities(std::uint32_t* capabilities) override;
  HRESULT STDMETHODCALLTYPE IsFormatSupported(const GUID* format) override;
  HRESULT STDMETHODCALLTYPE QueryPreferredFormat(GUID* format) override;
  HRESULT STDMETHODCALLTYPE GetTimeFormat(GUID* format) override;
  HRESULT STDMETHODCALLTYPE IsUsingTimeFormat(const GUID* format) override;
  HRESULT STDMETHODCALLTYPE SetTimeFormat(const GUID* format) override;
  HRESULT STDMETHODCALLTYPE GetDuration(std::int64_t* duration) override;
  HRESULT STDMETHODCALLTYPE GetStopPosition(std::int64_t* stop) override;
  HRESULT STDMETHODCALLTYPE GetCurrentPosition(std::int64_t* current) override;
  HRESULT STDMETHODCALLTYPE ConvertTimeFormat(std::int64_t* target, const GUID* targetFormat,
                                              std::int64_t source,
                                              const GUID* sourceFormat) override;
  HRESULT STDMETHODCALLTYPE SetPositions(std::int64_t* current, std::uint32_t currentFlags,
                                         std::int64_t* stop, std::uint32_t stopFlags) override;
  HRESULT STDMETHODCALLTYPE GetPositions(std::int64_t* current, std::int64_t* stop) override;
  HRESULT STDMETHODCALLTYPE GetAvailable(std::int64_t* earliest, std::int64_t* latest) override;
  HRESULT STDMETHODCALLTYPE SetRate(double rate) override;
  HRESULT STDMETHODCALLTYPE GetRate(double* rate) override;
  HRESULT STDMETHODCALLTYPE GetPreroll(std::int64_t* preroll) override;

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(std::uint32_t* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(std::uint32_t index, LCID locale,
                                        ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, wchar_t** names, std::uint32_t count,
                                          LCID locale, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, std::uint16_t flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                   std::uint32_t* argumentError) override;
  HRESULT STDMETHODCALLTYPE get_Duration(REFTIME* length) override;
  HRESULT STDMETHODCALLTYPE put_CurrentPosition(REFTIME time) override;
  HRESULT STDMETHODCALLTYPE get_CurrentPosition(REFTIME* time) override;
  HRESULT STDMETHODCALLTYPE get_StopTime(REFTIME* time) override;
  HRESULT STDMETHODCALLTYPE put_StopTime(REFTIME time) override;
  HRESULT STDMETHODCALLTYPE get_PrerollTime(REFTIME* time) override;
  HRESULT STDMETHODCALLTYPE put_PrerollTime(REFTIME time) override;
  HRESULT STDMETHODCALLTYPE put_Rate(double rate) override;
  HRESULT STDMETHODCALLTYPE get_Rate(double* rate) override;
  HRESULT STDMETHODCALLTYPE CanSeekForward(std::int32_t* canSeek) override;
  HRESULT STDMETHODCALLTYPE CanSeekBackward(std::int32_t* canSeek) override;

 private:
  // Calls `call` with the upstream pin's `Face`, asked for by `iid`.
  template <class Face, class Call>
  HRESULT Upstream(REFIID iid, Call call);

  CBasePin& m_input;
};
