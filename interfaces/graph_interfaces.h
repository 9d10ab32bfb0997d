// The streaming graph's interfaces and records. A graph holds filters; filters expose pins; an
// output pin connects to an input pin with an agreed media type and an agreed allocator, then
// pushes media samples into it on the streaming thread. Each interface lists its operations in
// a fixed order after those of IUnknown: the order is a binary contract and never changes.
//
// Threads named in the tags:
//   graph thread     - whoever drives the graph: connects pins, changes state (Stop/Pause/Run);
//   streaming thread - the thread that pushes samples, end of stream and new segments;
//   any thread       - no restriction;
//   holder           - the one thread that holds the sample at the time.
// "filter lock" means the operation takes the filter's lock itself.
#pragma once

#include <cstddef>
#include <cstdint>

#include "interfaces/media_type.h"
#include "platform/com.h"

// Media time in units of 100 ns.
using REFERENCE_TIME = std::int64_t;

// Result codes of the streaming graph beyond those the platform names.
inline constexpr HRESULT VFW_E_INVALIDMEDIATYPE = hr::Code(0x80040200u);
inline constexpr HRESULT VFW_E_ENUM_OUT_OF_SYNC = hr::Code(0x80040203u);
inline constexpr HRESULT VFW_E_NO_ACCEPTABLE_TYPES = hr::Code(0x80040207u);
inline constexpr HRESULT VFW_E_INVALID_DIRECTION = hr::Code(0x80040208u);
inline constexpr HRESULT VFW_E_BADALIGN = hr::Code(0x8004020Eu);
inline constexpr HRESULT VFW_E_ALREADY_COMMITTED = hr::Code(0x8004020Fu);
inline constexpr HRESULT VFW_E_BUFFERS_OUTSTANDING = hr::Code(0x80040210u);
inline constexpr HRESULT VFW_E_NOT_FOUND = hr::Code(0x80040216u);
inline constexpr HRESULT VFW_E_NOT_STOPPED = hr::Code(0x80040224u);
inline constexpr HRESULT VFW_E_TIMEOUT = hr::Code(0x8004022Eu);
inline constexpr HRESULT VFW_E_MEDIA_TIME_NOT_SET = hr::Code(0x80040251u);

enum PIN_DIRECTION : std::int32_t { PINDIR_INPUT = 0, PINDIR_OUTPUT = 1 };
enum FILTER_STATE : std::int32_t { State_Stopped = 0, State_Paused = 1, State_Running = 2 };

// What an allocator provides: cBuffers buffers of cbBuffer bytes each, every buffer aligned to
// cbAlign bytes and preceded by cbPrefix bytes that the user may write in front of the data.
struct ALLOCATOR_PROPERTIES {
  std::int32_t cBuffers;
  std::int32_t cbBuffer;
  std::int32_t cbAlign;
  std::int32_t cbPrefix;
};
static_assert(sizeof(ALLOCATOR_PROPERTIES) == 16);

// A flag of IMemAllocator::GetBuffer: fail with VFW_E_TIMEOUT instead of waiting.
inline constexpr std::uint32_t AM_GBF_NOWAIT = 4;

inline constexpr std::size_t MAX_PIN_NAME = 128;
inline constexpr std::size_t MAX_FILTER_NAME = 128;

// Copies `source` (null is empty) into a fixed name field, cut to fit and always terminated.
template <std::size_t N>
void CopyName(wchar_t (&target)[N], const wchar_t* source) noexcept {
  std::size_t n = 0;
  for (; source && source[n] != L'\0' && n + 1 < N; ++n) target[n] = source[n];
  target[n] = L'\0';
}

struct IBaseFilter;
struct IFilterGraph;
struct IPin;

// pFilter carries a reference that the receiver releases.
struct PIN_INFO {
  IBaseFilter* pFilter;
  PIN_DIRECTION dir;
  wchar_t achName[MAX_PIN_NAME];  // zero-terminated, cut to fit
};

// pGraph carries a reference (when not null) that the receiver releases.
struct FILTER_INFO {
  wchar_t achName[MAX_FILTER_NAME];  // zero-terminated, cut to fit
  IFilterGraph* pGraph;
};

// Identifiers (the platform's well-known ones).
#ifndef _WIN32  // there the system's component headers declare IPersist
inline constexpr IID IID_IPersist =
    MakeGuid(0x0000010C, 0x0000, 0x0000, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46);
#endif
inline constexpr IID IID_IPin =
    MakeGuid(0x56A86891, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IEnumPins =
    MakeGuid(0x56A86892, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IEnumFilters =
    MakeGuid(0x56A86893, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IBaseFilter =
    MakeGuid(0x56A86895, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IReferenceClock =
    MakeGuid(0x56A86897, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IMediaFilter =
    MakeGuid(0x56A86899, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IMediaSample =
    MakeGuid(0x56A8689A, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IMemAllocator =
    MakeGuid(0x56A8689C, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IMemInputPin =
    MakeGuid(0x56A8689D, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IFilterGraph =
    MakeGuid(0x56A8689F, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IMediaEventSink =
    MakeGuid(0x56A868A2, 0x0AD4, 0x11CE, 0xB0, 0x3A, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70);
inline constexpr IID IID_IEnumMediaTypes =
    MakeGuid(0x89C31040, 0x846B, 0x11CE, 0x97, 0xD3, 0x00, 0xAA, 0x00, 0x55, 0x59, 0x5A);
inline constexpr IID IID_ISampleSilence =
    MakeGuid(0x447DA113, 0x4AC8, 0x4833, 0x84, 0x9A, 0x2B, 0xA2, 0x85, 0xE1, 0xE5, 0x2B);

// Out arguments of enumerators: Next fills up to `count` slots and says how many through
// `fetched`, which may be null only when `count` is 1; S_OK when all were filled, S_FALSE when
// the end came first. A filter whose pins changed since the enumerator was made or reset
// answers VFW_E_ENUM_OUT_OF_SYNC until Reset.

// A media sample: one buffer of data with its marks and times, lent by an allocator. The last
// Release gives it back to the allocator. Held by one thread at a time.
struct IMediaSample : IUnknown {
  // [holder] The start of the data; E_POINTER on a null argument.
  virtual HRESULT STDMETHODCALLTYPE GetPointer(std::uint8_t** buffer) = 0;
  // [holder] The buffer's capacity in bytes.
  virtual std::int32_t STDMETHODCALLTYPE GetSize() = 0;
  // [holder] The stream times: S_OK with both, VFW_S_NO_STOP_TIME with the start only (the stop
  // is then start + 1), VFW_E_SAMPLE_TIME_NOT_SET with neither (arguments untouched).
  virtual HRESULT STDMETHODCALLTYPE GetTime(REFERENCE_TIME* start, REFERENCE_TIME* stop) = 0;
  // [holder] A null `start` clears both times; a null `stop` sets the start only.
  virtual HRESULT STDMETHODCALLTYPE SetTime(const REFERENCE_TIME* start,
                                            const REFERENCE_TIME* stop) = 0;
  // [holder] S_OK when set, S_FALSE when clear; likewise IsPreroll and IsDiscontinuity.
  virtual HRESULT STDMETHODCALLTYPE IsSyncPoint() = 0;
  // [holder] Any non-zero flag sets the mark; likewise the other Set* marks.
  virtual HRESULT STDMETHODCALLTYPE SetSyncPoint(std::int32_t isSyncPoint) = 0;
  // [holder]
  virtual HRESULT STDMETHODCALLTYPE IsPreroll() = 0;
  // [holder]
  virtual HRESULT STDMETHODCALLTYPE SetPreroll(std::int32_t isPreroll) = 0;
  // [holder] Bytes of valid data.
  virtual std::int32_t STDMETHODCALLTYPE GetActualDataLength() = 0;
  // [holder] VFW_E_BUFFER_OVERFLOW above GetSize(), E_INVALIDARG below 0; the length stays.
  virtual HRESULT STDMETHODCALLTYPE SetActualDataLength(std::int32_t length) = 0;
  // [holder] The media type when it changed with this sample: S_OK and a copy in `type`;
  // S_FALSE when it did not change (type untouched).
  virtual HRESULT STDMETHODCALLTYPE GetMediaType(CMediaType* type) = 0;
  // [holder] Marks a type change with this sample; null clears it.
  virtual HRESULT STDMETHODCALLTYPE SetMediaType(const CMediaType* type) = 0;
  // [holder] S_OK when the data does not follow on from the previous sample's.
  virtual HRESULT STDMETHODCALLTYPE IsDiscontinuity() = 0;
  // [holder]
  virtual HRESULT STDMETHODCALLTYPE SetDiscontinuity(std::int32_t isDiscontinuity) = 0;
  // [holder] Media times (e.g. frame numbers): S_OK, or VFW_E_MEDIA_TIME_NOT_SET.
  virtual HRESULT STDMETHODCALLTYPE GetMediaTime(std::int64_t* start, std::int64_t* stop) = 0;
  // [holder] A null `start` clears them.
  virtual HRESULT STDMETHODCALLTYPE SetMediaTime(const std::int64_t* start,
                                                 const std::int64_t* stop) = 0;

 protected:
  ~IMediaSample() = default;
};

// Offered by some hosts' samples beside IMediaSample: a flag saying the data is to be taken as
// silence and was never written. Samples without it carry real bytes only.
struct ISampleSilence : IUnknown {
  // [holder] Non-zero when the sample is silent.
  virtual std::int32_t STDMETHODCALLTYPE GetSilent() = 0;
  // [holder] Sets or clears the flag; S_OK.
  virtual HRESULT STDMETHODCALLTYPE SetSilent(std::int32_t silent) = 0;

 protected:
  ~ISampleSilence() = default;
};

// A pool of samples shared by the two ends of a connection. Buffers exist between Commit and
// Decommit; GetBuffer lends one, and a sample's last Release returns it.
struct IMemAllocator : IUnknown {
  // [graph thread] Asks for `request`; `actual` receives what will be provided. Refused with
  // VFW_E_ALREADY_COMMITTED while committed, VFW_E_BUFFERS_OUTSTANDING while samples are out,
  // VFW_E_BADALIGN for an alignment that is not a power of two, E_INVALIDARG for negative sizes.
  virtual HRESULT STDMETHODCALLTYPE SetProperties(const ALLOCATOR_PROPERTIES* request,
                                                  ALLOCATOR_PROPERTIES* actual) = 0;
  // [any thread] What was last agreed (all zero before SetProperties).
  virtual HRESULT STDMETHODCALLTYPE GetProperties(ALLOCATOR_PROPERTIES* properties) = 0;
  // [graph thread] Allocates the buffers; VFW_E_SIZENOTSET before SetProperties; S_OK when
  // already committed.
  virtual HRESULT STDMETHODCALLTYPE Commit() = 0;
  // [graph thread] Stops lending: waiting and later GetBuffer calls fail with
  // VFW_E_NOT_COMMITTED. The memory goes once every sample is back.
  virtual HRESULT STDMETHODCALLTYPE Decommit() = 0;
  // [streaming thread] Lends a sample with one reference, marks and times clear. Waits while all
  // are out, unless `flags` has AM_GBF_NOWAIT (VFW_E_TIMEOUT). `start` and `stop` are hints and
  // may be null; they are not set on the sample.
  virtual HRESULT STDMETHODCALLTYPE GetBuffer(IMediaSample** sample, REFERENCE_TIME* start,
                                              REFERENCE_TIME* stop, std::uint32_t flags) = 0;
  // [any thread] Takes a sample back; called by the sample itself on its last Release.
  virtual HRESULT STDMETHODCALLTYPE ReleaseBuffer(IMediaSample* sample) = 0;

 protected:
  ~IMemAllocator() = default;
};

// Enumerates media types; see the note on enumerators above. Next assigns copies into
// `types[0..count)`, which the caller owns.
struct IEnumMediaTypes : IUnknown {
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE Next(std::uint32_t count, CMediaType* types,
                                         std::uint32_t* fetched) = 0;
  // [any thread] S_FALSE when fewer than `count` were left (it then stands at the end).
  virtual HRESULT STDMETHODCALLTYPE Skip(std::uint32_t count) = 0;
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  // [any thread] A new enumerator at the same place.
  virtual HRESULT STDMETHODCALLTYPE Clone(IEnumMediaTypes** clone) = 0;

 protected:
  ~IEnumMediaTypes() = default;
};

// A connection point of a filter.
struct IPin : IUnknown {
  // [graph thread, filter lock] Connects this output pin to `receiver`. With a fully specified
  // `type` only that type is tried; with a partial one or null, the receiver's types and then
  // this pin's, keeping those that fit. VFW_E_ALREADY_CONNECTED, VFW_E_NOT_STOPPED,
  // VFW_E_NO_ACCEPTABLE_TYPES, or the refusal of the one type tried.
  virtual HRESULT STDMETHODCALLTYPE Connect(IPin* receiver, const CMediaType* type) = 0;
  // [graph thread, filter lock] Called by a connecting pin on the pin it connects to, with
  // the one type to take: S_OK, VFW_E_ALREADY_CONNECTED, VFW_E_NOT_STOPPED or the refusal.
  virtual HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin* connector, const CMediaType* type) = 0;
  // [graph thread, filter lock] Drops this side of the connection: S_OK, S_FALSE when not
  // connected, VFW_E_NOT_STOPPED unless the filter is stopped.
  virtual HRESULT STDMETHODCALLTYPE Disconnect() = 0;
  // [any thread] The peer with a reference, or VFW_E_NOT_CONNECTED and null.
  virtual HRESULT STDMETHODCALLTYPE ConnectedTo(IPin** pin) = 0;
  // [any thread] A copy of the connection's type, or VFW_E_NOT_CONNECTED and an empty type.
  virtual HRESULT STDMETHODCALLTYPE ConnectionMediaType(CMediaType* type) = 0;
  // [any thread] See PIN_INFO.
  virtual HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO* info) = 0;
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE QueryDirection(PIN_DIRECTION* direction) = 0;
  // [any thread] The pin's name in task memory that the caller frees with CoTaskMemFree.
  virtual HRESULT STDMETHODCALLTYPE QueryId(wchar_t** id) = 0;
  // [any thread] S_OK when the pin would accept `type` now, else S_FALSE.
  virtual HRESULT STDMETHODCALLTYPE QueryAccept(const CMediaType* type) = 0;
  // [any thread] The pin's preferred types.
  virtual HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes** types) = 0;
  // [any thread] Which pins of the same filter this one's data flows to; E_NOTIMPL means all.
  virtual HRESULT STDMETHODCALLTYPE QueryInternalConnections(IPin** pins, std::uint32_t* count) = 0;
  // [streaming thread] No more data follows until the next run or flush.
  virtual HRESULT STDMETHODCALLTYPE EndOfStream() = 0;
  // [graph thread] Discard queued data and refuse new data until EndFlush.
  virtual HRESULT STDMETHODCALLTYPE BeginFlush() = 0;
  // [graph thread] Accept data again.
  virtual HRESULT STDMETHODCALLTYPE EndFlush() = 0;
  // [streaming thread] Samples that follow belong to [start, stop) of the media at `rate`.
  virtual HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop,
                                               double rate) = 0;

 protected:
  ~IPin() = default;
};

// The transport face of an input pin: allocator negotiation and sample delivery.
struct IMemInputPin : IUnknown {
  // [graph thread] The pin's own allocator, made on first demand, with a reference.
  virtual HRESULT STDMETHODCALLTYPE GetAllocator(IMemAllocator** allocator) = 0;
  // [graph thread] Tells the pin which allocator the upstream pin decided on.
  virtual HRESULT STDMETHODCALLTYPE NotifyAllocator(IMemAllocator* allocator,
                                                    std::int32_t readOnly) = 0;
  // [graph thread] What the pin needs of buffers; E_NOTIMPL when it needs nothing in particular.
  virtual HRESULT STDMETHODCALLTYPE GetAllocatorRequirements(ALLOCATOR_PROPERTIES* properties) = 0;
  // [streaming thread] Takes one sample. S_OK; S_FALSE while flushing (send no more until the
  // flush ends); VFW_E_WRONG_STATE when stopped; a failure stops the stream.
  virtual HRESULT STDMETHODCALLTYPE Receive(IMediaSample* sample) = 0;
  // [streaming thread] Receive for each in turn until one answers other than S_OK; `processed`
  // says how many were taken.
  virtual HRESULT STDMETHODCALLTYPE ReceiveMultiple(IMediaSample** samples, std::int32_t count,
                                                    std::int32_t* processed) = 0;
  // [any thread] S_OK when Receive may block, S_FALSE when it never does.
  virtual HRESULT STDMETHODCALLTYPE ReceiveCanBlock() = 0;

 protected:
  ~IMemInputPin() = default;
};

// Enumerates a filter's pins, each with a reference; see the note on enumerators above.
struct IEnumPins : IUnknown {
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE Next(std::uint32_t count, IPin** pins,
                                         std::uint32_t* fetched) = 0;
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE Skip(std::uint32_t count) = 0;
  // [any thread] Also brings the enumerator back in step with the filter's pins.
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE Clone(IEnumPins** clone) = 0;

 protected:
  ~IEnumPins() = default;
};

// The graph's clock.
struct IReferenceClock : IUnknown {
  // [any thread] The current time.
  virtual HRESULT STDMETHODCALLTYPE GetTime(REFERENCE_TIME* time) = 0;
  // [any thread] Signals `event` at base + offset; `cookie` identifies the request.
  virtual HRESULT STDMETHODCALLTYPE AdviseTime(REFERENCE_TIME base, REFERENCE_TIME offset,
                                               std::uintptr_t event, std::uintptr_t* cookie) = 0;
  // [any thread] Releases `semaphore` every `period` from `start`.
  virtual HRESULT STDMETHODCALLTYPE AdvisePeriodic(REFERENCE_TIME start, REFERENCE_TIME period,
                                                   std::uintptr_t semaphore,
                                                   std::uintptr_t* cookie) = 0;
  // [any thread] Cancels a request.
  virtual HRESULT STDMETHODCALLTYPE Unadvise(std::uintptr_t cookie) = 0;

 protected:
  ~IReferenceClock() = default;
};

#ifndef _WIN32
struct IPersist : IUnknown {
  // [any thread] The class identifier of the object.
  virtual HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) = 0;

 protected:
  ~IPersist() = default;
};
#endif

// The state machine of a filter: stopped, paused (ready, holding data), running.
struct IMediaFilter : IPersist {
  // [graph thread, filter lock] To stopped: pins become inactive, allocators decommit.
  virtual HRESULT STDMETHODCALLTYPE Stop() = 0;
  // [graph thread, filter lock] To paused: from stopped, connected pins become active first.
  virtual HRESULT STDMETHODCALLTYPE Pause() = 0;
  // [graph thread, filter lock] To running at stream time `start`, pausing first if stopped.
  virtual HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME start) = 0;
  // [any thread, filter lock] The current state; the wait limit is unused as no transition here
  // is ever pending.
  virtual HRESULT STDMETHODCALLTYPE GetState(std::uint32_t timeoutMs, FILTER_STATE* state) = 0;
  // [graph thread, filter lock] The clock to follow, or null for none.
  virtual HRESULT STDMETHODCALLTYPE SetSyncSource(IReferenceClock* clock) = 0;
  // [any thread, filter lock] The clock with a reference, or null (S_OK either way).
  virtual HRESULT STDMETHODCALLTYPE GetSyncSource(IReferenceClock** clock) = 0;

 protected:
  ~IMediaFilter() = default;
};

struct IBaseFilter : IMediaFilter {
  // [any thread] The pins, from index 0.
  virtual HRESULT STDMETHODCALLTYPE EnumPins(IEnumPins** pins) = 0;
  // [any thread, filter lock] The pin whose QueryId is `id`, or VFW_E_NOT_FOUND and null.
  virtual HRESULT STDMETHODCALLTYPE FindPin(const wchar_t* id, IPin** pin) = 0;
  // [any thread, filter lock] See FILTER_INFO.
  virtual HRESULT STDMETHODCALLTYPE QueryFilterInfo(FILTER_INFO* info) = 0;
  // [graph thread, filter lock] Tells the filter it joined `graph` under `name`, or left it
  // (null). The filter keeps the graph without a reference: the graph owns the filter.
  virtual HRESULT STDMETHODCALLTYPE JoinFilterGraph(IFilterGraph* graph, const wchar_t* name) = 0;
  // [any thread] Vendor text in task memory; E_NOTIMPL when there is none.
  virtual HRESULT STDMETHODCALLTYPE QueryVendorInfo(wchar_t** info) = 0;

 protected:
  ~IBaseFilter() = default;
};

// Enumerates the filters of a graph, each with a reference.
struct IEnumFilters : IUnknown {
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE Next(std::uint32_t count, IBaseFilter** filters,
                                         std::uint32_t* fetched) = 0;
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE Skip(std::uint32_t count) = 0;
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE Clone(IEnumFilters** clone) = 0;

 protected:
  ~IEnumFilters() = default;
};

// The graph as a filter sees it. A filter finds the graph's IMediaEventSink by asking this
// object for it.
struct IFilterGraph : IUnknown {
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE AddFilter(IBaseFilter* filter, const wchar_t* name) = 0;
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE RemoveFilter(IBaseFilter* filter) = 0;
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE EnumFilters(IEnumFilters** filters) = 0;
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE FindFilterByName(const wchar_t* name, IBaseFilter** filter) = 0;
  // [graph thread] Connects two pins with exactly `type` (null: negotiate).
  virtual HRESULT STDMETHODCALLTYPE ConnectDirect(IPin* output, IPin* input,
                                                  const CMediaType* type) = 0;
  // [any thread] Asks the graph to break and remake the connection of `pin`, later, on its own
  // thread; a filter calls this when a connected pin's type no longer fits.
  virtual HRESULT STDMETHODCALLTYPE Reconnect(IPin* pin) = 0;
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE Disconnect(IPin* pin) = 0;
  // [graph thread]
  virtual HRESULT STDMETHODCALLTYPE SetDefaultSyncSource() = 0;

 protected:
  ~IFilterGraph() = default;
};

// Where filters report events to the graph (e.g. EC_GRAPH_CHANGED).
struct IMediaEventSink : IUnknown {
  // [any thread] Queues event `code` with its two parameters for the graph's owner.
  virtual HRESULT STDMETHODCALLTYPE Notify(std::int32_t code, std::intptr_t param1,
                                           std::intptr_t param2) = 0;

 protected:
  ~IMediaEventSink() = default;
};
