// The published media parameter interfaces through which a host automates a plug-in, with their
// records and curve numbers, and the two user-interface callback interfaces beside them. The
// order of operations in each interface is a binary contract.
//
// Declared here on every system: the cross compiler's own <medparam.h> lists the operations of
// IMediaParams in another order and lacks the callback interfaces, so it must not be included
// beside this header.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/com.h"
#include "platform/unknown_impl.h"

// One character of the records' wide text: 16 bits, as the binary contract has it.
#ifdef _WIN32
using ParamChar = wchar_t;
#else
using ParamChar = char16_t;
#endif
static_assert(sizeof(ParamChar) == 2);

using MP_DATA = float;

// Parameter types.
inline constexpr std::uint32_t MPT_INT = 0;
inline constexpr std::uint32_t MPT_FLOAT = 1;
inline constexpr std::uint32_t MPT_BOOL = 2;
inline constexpr std::uint32_t MPT_ENUM = 3;

// Curve numbers of a segment; the same bits, as capabilities, say which curves a parameter takes.
inline constexpr std::uint32_t MP_CURVE_JUMP = 0x1;
inline constexpr std::uint32_t MP_CURVE_LINEAR = 0x2;
inline constexpr std::uint32_t MP_CURVE_SQUARE = 0x4;
inline constexpr std::uint32_t MP_CURVE_INVSQUARE = 0x8;
inline constexpr std::uint32_t MP_CURVE_SINE = 0x10;

#pragma pack(push, 1)

// What a host learns of one parameter, 148 bytes.
struct MP_PARAMINFO {
  std::uint32_t mpType;  // MPT_...
  std::uint32_t mopCaps;  // MP_CURVE_... bits
  MP_DATA mpdMinValue;
  MP_DATA mpdMaxValue;
  MP_DATA mpdNeutralValue;
  ParamChar szUnitText[32];
  ParamChar szLabel[32];
};

// One stretch of an envelope, 32 bytes. Times are in units of 100 ns.
struct MP_ENVELOPE_SEGMENT {
  std::int64_t rtStart;
  std::int64_t rtEnd;
  MP_DATA valStart;
  MP_DATA valEnd;
  std::uint32_t iCurve;  // MP_CURVE_...
  std::uint32_t flags;   // not looked at
};

#pragma pack(pop)

static_assert(sizeof(MP_PARAMINFO) == 148);
static_assert(offsetof(MP_PARAMINFO, mopCaps) == 4);
static_assert(offsetof(MP_PARAMINFO, mpdMinValue) == 8);
static_assert(offsetof(MP_PARAMINFO, mpdMaxValue) == 12);
static_assert(offsetof(MP_PARAMINFO, mpdNeutralValue) == 16);
static_assert(offsetof(MP_PARAMINFO, szUnitText) == 20);
static_assert(offsetof(MP_PARAMINFO, szLabel) == 84);

static_assert(sizeof(MP_ENVELOPE_SEGMENT) == 32);
static_assert(offsetof(MP_ENVELOPE_SEGMENT, rtEnd) == 8);
static_assert(offsetof(MP_ENVELOPE_SEGMENT, valStart) == 16);
static_assert(offsetof(MP_ENVELOPE_SEGMENT, valEnd) == 20);
static_assert(offsetof(MP_ENVELOPE_SEGMENT, iCurve) == 24);
static_assert(offsetof(MP_ENVELOPE_SEGMENT, flags) == 28);

// The one time format offered: units of 100 ns. {93AD712B-DAA0-4FFE-BC81-B0CE500FCDD9}
inline constexpr GUID GUID_TIME_REFERENCE =
    MakeGuid(0x93AD712B, 0xDAA0, 0x4FFE, 0xBC, 0x81, 0xB0, 0xCE, 0x50, 0x0F, 0xCD, 0xD9);

// Parameter index that addresses every parameter at once, where an operation allows it.
inline constexpr std::uint32_t kAllParams = 0xFFFFFFFF;

// {6D6CBB61-A223-44AA-842F-A2F06750BE6E}
inline constexpr IID IID_IMediaParams =
    MakeGuid(0x6D6CBB61, 0xA223, 0x44AA, 0x84, 0x2F, 0xA2, 0xF0, 0x67, 0x50, 0xBE, 0x6E);
// {6D6CBB60-A223-44AA-842F-A2F06750BE6D}
inline constexpr IID IID_IMediaParamInfo =
    MakeGuid(0x6D6CBB60, 0xA223, 0x44AA, 0x84, 0x2F, 0xA2, 0xF0, 0x67, 0x50, 0xBE, 0x6D);
// {F5011136-C416-48B9-8C35-E7C5F9AA6FDF}
inline constexpr IID IID_IMediaParamsSetUICallback =
    MakeGuid(0xF5011136, 0xC416, 0x48B9, 0x8C, 0x35, 0xE7, 0xC5, 0xF9, 0xAA, 0x6F, 0xDF);
// {B8E0480A-E08D-4A5D-9228-248017032368}
inline constexpr IID IID_IMediaParamsUICallback =
    MakeGuid(0xB8E0480A, 0xE08D, 0x4A5D, 0x92, 0x28, 0x24, 0x80, 0x17, 0x03, 0x23, 0x68);

// Reading, setting and automating parameter values.
struct IMediaParams : IUnknown {
  // [host thread] The parameter's value, in its own scale, into `value`.
  virtual HRESULT STDMETHODCALLTYPE GetParam(std::uint32_t index, MP_DATA* value) = 0;
  // [host thread] Sets the value directly; the envelope's segments stay.
  virtual HRESULT STDMETHODCALLTYPE SetParam(std::uint32_t index, MP_DATA value) = 0;
  // [host thread] Adds `count` segments to the parameter's envelope; kAllParams for all.
  virtual HRESULT STDMETHODCALLTYPE AddEnvelope(std::uint32_t index, std::uint32_t count,
                                                const MP_ENVELOPE_SEGMENT* segments) = 0;
  // [host thread] Removes the segments that overlap [start, end); kAllParams for all.
  virtual HRESULT STDMETHODCALLTYPE FlushEnvelope(std::uint32_t index, std::int64_t start,
                                                  std::int64_t end) = 0;
  // [host thread] Chooses the time format of envelopes; `data` is the format's own word.
  virtual HRESULT STDMETHODCALLTYPE SetTimeFormat(GUID format, std::uint32_t data) = 0;
};

// What the parameters are.
struct IMediaParamInfo : IUnknown {
  // [host thread] How many parameters there are.
  virtual HRESULT STDMETHODCALLTYPE GetParamCount(std::uint32_t* count) = 0;
  // [host thread] The description of one parameter.
  virtual HRESULT STDMETHODCALLTYPE GetParamInfo(std::uint32_t index, MP_PARAMINFO* info) = 0;
  // [host thread] A block of terminated strings: label, unit, then the enumeration's names.
  // Allocated with CoTaskMemAlloc; the caller frees it with CoTaskMemFree.
  virtual HRESULT STDMETHODCALLTYPE GetParamText(std::uint32_t index, ParamChar** text) = 0;
  // [host thread] How many time formats envelopes may use.
  virtual HRESULT STDMETHODCALLTYPE GetNumTimeFormats(std::uint32_t* count) = 0;
  // [host thread] The time format at `index`.
  virtual HRESULT STDMETHODCALLTYPE GetSupportedTimeFormat(std::uint32_t index, GUID* format) = 0;
  // [host thread] The time format in use and its word.
  virtual HRESULT STDMETHODCALLTYPE GetCurrentTimeFormat(GUID* format, std::uint32_t* data) = 0;
};

// Told when the user starts dragging parameters, moves them, and lets go.
struct IMediaParamsUICallback : IUnknown {
  // [host thread or editor thread] The parameters at `indices` are being captured.
  virtual HRESULT STDMETHODCALLTYPE ParamsBeginCapture(const std::uint32_t* indices,
                                                       std::uint32_t count) = 0;
  // [host thread or editor thread] The parameters at `indices` took `values`, one each.
  virtual HRESULT STDMETHODCALLTYPE ParamsChanged(const std::uint32_t* indices,
                                                  std::uint32_t count, const MP_DATA* values) = 0;
  // [host thread or editor thread] The capture of the parameters at `indices` ended.
  virtual HRESULT STDMETHODCALLTYPE ParamsEndCapture(const std::uint32_t* indices,
                                                     std::uint32_t count) = 0;
};
TARN_INTERFACE_ID(IMediaParamsUICallback, IID_IMediaParamsUICallback, IUnknown);

// Where the user-interface callbacks go.
struct IMediaParamsSetUICallback : IUnknown {
  // [host thread] Keeps a reference to `callback` (null for none), giving up the previous one.
  virtual HRESULT STDMETHODCALLTYPE SetUICallback(IMediaParamsUICallback* callback) = 0;
};
