#include "frame/position_pass_through.h"

#include "platform/com_ptr.h"

CPositionPassThrough::CPositionPassThrough(IUnknown* outer, CBasePin& input)
    : CUnknown(L"Position pass-through", outer), m_input(input) {}

HRESULT CPositionPassThrough::NonDelegatingQueryInterface(REFIID iid, void** object) {
  if (object && iid == IID_IMediaSeeking)
    return GetInterface(static_cast<IMediaSeeking*>(this), object);
  if (object && iid == IID_IMediaPosition)
    return GetInterface(static_cast<IMediaPosition*>(this), object);
  return CUnknown::NonDelegatingQueryInterface(iid, object);
}

template <class Face, class Call>
HRESULT CPositionPassThrough::Upstream(REFIID iid, Call call) {
  ComPtr<IPin> upstream;
  if (FAILED(m_input.ConnectedTo(upstream.Receive()))) return VFW_E_NOT_CONNECTED;
  ComPtr<Face> face;
  if (FAILED(face.QueryFrom(upstream.Get(), iid))) return E_NOTIMPL;
  return call(*face);
}

#define TARN_SEEKING(call) \
  Upstream<IMediaSeeking>(IID_IMediaSeeking, [&](IMediaSeeking& s) { return s.call; })
#define TARN_POSITION(call) \
  Upstream<IMediaPosition>(IID_IMediaPosition, [&](IMediaPosition& p) { return p.call; })

HRESULT CPositionPassThrough::GetCapabilities(std::uint32_t* capabilities) {
  return TARN_SEEKING(GetCapabilities(capabilities));
}
HRESULT CPositionPassThrough::CheckCapabilities(std::uint32_t* capabilities) {
  return TARN_SEEKING(CheckCapabilities(capabilities));
}
HRESULT CPositionPassThrough::IsFormatSupported(const GUID* format) {
  return TARN_SEEKING(IsFormatSupported(format));
}
HRESULT CPositionPassThrough::QueryPreferredFormat(GUID* format) {
  return TARN_SEEKING(QueryPreferredFormat(format));
}
HRESULT CPositionPassThrough::GetTimeFormat(GUID* format) {
  return TARN_SEEKING(GetTimeFormat(format));
}
HRESULT CPositionPassThrough::IsUsingTimeFormat(const GUID* format) {
  return TARN_SEEKING(IsUsingTimeFormat(format));
}
HRESULT CPositionPassThrough::SetTimeFormat(const GUID* format) {
  return TARN_SEEKING(SetTimeFormat(format));
}
HRESULT CPositionPassThrough::GetDuration(std::int64_t* duration) {
  return TARN_SEEKING(GetDuration(duration));
}
HRESULT CPositionPassThrough::GetStopPosition(std::int64_t* stop) {
  return TARN_SEEKING(GetStopPosition(stop));
}
HRESULT CPositionPassThrough::GetCurrentPosition(std::int64_t* current) {
  return TARN_SEEKING(GetCurrentPosition(current));
}
HRESULT CPositionPassThrough::ConvertTimeFormat(std::int64_t* target, const GUID* targetFormat,
                                                std::int64_t source, const GUID* sourceFormat) {
  return TARN_SEEKING(ConvertTimeFormat(target, targetFormat, source, sourceFormat));
}
HRESULT CPositionPassThrough::SetPositions(std::int64_t* current, std::uint32_t currentFlags,
                                           std::int64_t* stop, std::uint32_t stopFlags) {
  return TARN_SEEKING(SetPositions(current, currentFlags, stop, stopFlags));
}
HRESULT CPositionPassThrough::GetPositions(std::int64_t* current, std::int64_t* stop) {
  return TARN_SEEKING(GetPositions(current, stop));
}
HRESULT CPositionPassThrough::GetAvailable(std::int64_t* earliest, std::int64_t* latest) {
  return TARN_SEEKING(GetAvailable(earliest, latest));
}
HRESULT CPositionPassThrough::SetRate(double rate) { return TARN_SEEKING(SetRate(rate)); }
HRESULT CPositionPassThrough::GetRate(double* rate) { return TARN_SEEKING(GetRate(rate)); }
HRESULT CPositionPassThrough::GetPreroll(std::int64_t* preroll) {
  return TARN_SEEKING(GetPreroll(preroll));
}

HRESULT CPositionPassThrough::GetTypeInfoCount(std::uint32_t* count) {
  return TARN_POSITION(GetTypeInfoCount(count));
}
HRESULT CPositionPassThrough::GetTypeInfo(std::uint32_t index, LCID locale, ITypeInfo** info) {
  return TARN_POSITION(GetTypeInfo(index, locale, info));
}
HRESULT CPositionPassThrough::GetIDsOfNames(REFIID iid, wchar_t** names, std::uint32_t count,
                                            LCID locale, DISPID* ids) {
  return TARN_POSITION(GetIDsOfNames(iid, names, count, locale, ids));
}
HRESULT CPositionPassThrough::Invoke(DISPID id, REFIID iid, LCID locale, std::uint16_t flags,
                                     DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                     std::uint32_t* argumentError) {
  return TARN_POSITION(Invoke(id, iid, locale, flags, params, result, exception, argumentError));
}
HRESULT CPositionPassThrough::get_Duration(REFTIME* length) {
  return TARN_POSITION(get_Duration(length));
}
HRESULT CPositionPassThrough::put_CurrentPosition(REFTIME time) {
  return TARN_POSITION(put_CurrentPosition(time));
}
HRESULT CPositionPassThrough::get_CurrentPosition(REFTIME* time) {
  return TARN_POSITION(get_CurrentPosition(time));
}
HRESULT CPositionPassThrough::get_StopTime(REFTIME* time) {
  return TARN_POSITION(get_StopTime(time));
}
HRESULT CPositionPassThrough::put_StopTime(REFTIME time) {
  return TARN_POSITION(put_StopTime(time));
}
HRESULT CPositionPassThrough::get_PrerollTime(REFTIME* time) {
  return TARN_POSITION(get_PrerollTime(time));
}
HRESULT CPositionPassThrough::put_PrerollTime(REFTIME time) {
  return TARN_POSITION(put_PrerollTime(time));
}
HRESULT CPositionPassThrough::put_Rate(double rate) { return TARN_POSITION(put_Rate(rate)); }
HRESULT CPositionPassThrough::get_Rate(double* rate) { return TARN_POSITION(get_Rate(rate)); }
HRESULT CPositionPassThrough::CanSeekForward(std::int32_t* canSeek) {
  return TARN_POSITION(CanSeekForward(canSeek));
}
HRESULT CPositionPassThrough::CanSeekBackward(std::int32_t* canSeek) {
  return TARN_POSITION(CanSeekBackward(canSeek));
}

#undef TARN_SEEKING
#undef TARN_POSITION
