// The interfaces that the host offers an instance through the context given to Connect, and the
// lists and sink it hands over. Operation order is a binary contract.
#pragma once

#include "interfaces/host_records.h"
#include "platform/com.h"
#include "platform/unknown_impl.h"

struct IMfxInputPort;

// {FF76F7C3-F166-11D1-A8E0-0000A0090DAF}
inline constexpr IID IID_IHostTempoMap =
    MakeGuid(0xFF76F7C3, 0xF166, 0x11D1, 0xA8, 0xE0, 0x00, 0x00, 0xA0, 0x09, 0x0D, 0xAF);
struct IHostTempoMap : IUnknown {
  // [host thread or streaming thread, instance lock]
  virtual std::int32_t STDMETHODCALLTYPE TicksToMsecs(std::int32_t ticks) = 0;
  virtual std::int32_t STDMETHODCALLTYPE MsecsToTicks(std::int32_t msecs) = 0;
  virtual std::int32_t STDMETHODCALLTYPE GetTicksPerQuarter() = 0;
};
TARN_INTERFACE_ID(IHostTempoMap, IID_IHostTempoMap, IUnknown);

// {FF94ABA0-4DF9-4120-947D-5E303E49B81F}
inline constexpr IID IID_IHostTimeConverter =
    MakeGuid(0xFF94ABA0, 0x4DF9, 0x4120, 0x94, 0x7D, 0x5E, 0x30, 0x3E, 0x49, 0xB8, 0x1F);
struct IHostTimeConverter : IUnknown {
  // [host thread or streaming thread, instance lock] Rewrites `time` in place into `format`.
  virtual HRESULT STDMETHODCALLTYPE ConvertTime(HostTimeValue* time, std::uint32_t format) = 0;
};
TARN_INTERFACE_ID(IHostTimeConverter, IID_IHostTimeConverter, IUnknown);

// {439E1EF6-2CBA-48F8-A857-51C5724A4F6C}
inline constexpr IID IID_IHostPinObserver =
    MakeGuid(0x439E1EF6, 0x2CBA, 0x48F8, 0xA8, 0x57, 0x51, 0xC5, 0x72, 0x4A, 0x4F, 0x6C);
struct IHostPinObserver : IUnknown {
  // [graph thread or host thread, instance lock] Phase 1 before a change of the output pin count, which a negative answer
  // refuses; phase 2 after it.
  virtual HRESULT STDMETHODCALLTYPE OnPinCountChange(std::int32_t phase, IUnknown* filter,
                                                     std::int32_t count) = 0;
};
TARN_INTERFACE_ID(IHostPinObserver, IID_IHostPinObserver, IUnknown);

// Where the worker hands every short message it sends, besides the hardware port.
struct IHostInputSink : IUnknown {
  // [output worker] Only offsets 4 to 13 of `record` are meaningful; the time is not filled.
  virtual HRESULT STDMETHODCALLTYPE OnSinkEvent(IMfxInputPort* sender,
                                                const HostEventRecord* record) = 0;
};

// The timed events of one OnEvents call.
struct IHostEventList : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Unused() = 0;  // never called; keeps its place
  virtual HRESULT STDMETHODCALLTYPE GetItemCount(std::int32_t* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetItem(std::int32_t index, HostEventRecord* record) = 0;
};

// The live messages of one OnInput call.
struct IHostDataList : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Unused() = 0;  // never called; keeps its place
  virtual HRESULT STDMETHODCALLTYPE GetItemCount(std::int32_t* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetItem(std::int32_t index, HostDataRecord* record) = 0;
};
