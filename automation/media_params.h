// The automation object of one plug-in instance: it answers the media parameter interfaces and
// the two user-interface callback interfaces for its owner, keeps one envelope per row of the
// parameter table, and tells the processing loop where parameters change inside a buffer.
//
// The instance offers one parameter, "Enabled". Its envelope is evaluated as the audio runs, but
// nothing reads the value: automating it changes what the host reads back, and no MIDI.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "automation/param_envelope.h"
#include "interfaces/media_params.h"
#include "platform/com.h"
#include "platform/lock.h"

class CMediaParams final : public IMediaParams,
                           public IMediaParamInfo,
                           public IMediaParamsSetUICallback,
                           public IMediaParamsUICallback {
 public:
  // How often the processing loop re-evaluates within a buffer, in seconds.
  static constexpr double kSliceInterval = 0.02;
  static constexpr std::int32_t kDefaultSampleRate = 44100;

  // [graph thread] Makes the object for `owner`, the controlling IUnknown of the instance, which
  // it does not count. `*created` holds the one reference of the owner, to be given back with
  // ReleaseOwnerReference. E_POINTER for a null argument, E_OUTOFMEMORY when it cannot be made.
  static HRESULT Create(IUnknown* owner, CMediaParams** created);
  // [graph thread] The owner gives back its reference as it is destroyed; the owner is not
  // touched.
  void ReleaseOwnerReference() noexcept;

  // [any thread] Whether `iid` names one of the four interfaces this object answers.
  static bool IsFacet(REFIID iid) noexcept;
  // [any thread] For the owner's QueryInterface: the facet named by `iid`, with a reference
  // added; E_NOINTERFACE, with `*object` null, for any other identifier.
  HRESULT QueryFacet(REFIID iid, void** object) noexcept;

  // --- IUnknown ---------------------------------------------------------------------------------
  // [any thread] IID_IUnknown gives this object; every other identifier is the owner's answer.
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  // [any thread] The object's own count; each reference held through a facet also holds the
  // owner, so that the owner outlives every facet a host keeps. Returns the new own count.
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  // --- IMediaParams -----------------------------------------------------------------------------
  // [host thread] Indices 0 and 1 are read and set, though only one parameter is told of; 2 and
  // above: E_INVALIDARG. A null `value`: E_POINTER.
  HRESULT STDMETHODCALLTYPE GetParam(std::uint32_t index, MP_DATA* value) override;
  HRESULT STDMETHODCALLTYPE SetParam(std::uint32_t index, MP_DATA value) override;
  // [host thread] Index 0 or kAllParams, both meaning "Enabled"; else E_INVALIDARG. No segments:
  // S_OK at once. A null array: E_POINTER.
  HRESULT STDMETHODCALLTYPE AddEnvelope(std::uint32_t index, std::uint32_t count,
                                        const MP_ENVELOPE_SEGMENT* segments) override;
  // [host thread] Index as for AddEnvelope; `start` after `end`: E_INVALIDARG.
  HRESULT STDMETHODCALLTYPE FlushEnvelope(std::uint32_t index, std::int64_t start,
                                          std::int64_t end) override;
  // [host thread] S_OK for GUID_TIME_REFERENCE, else E_INVALIDARG; nothing is stored.
  HRESULT STDMETHODCALLTYPE SetTimeFormat(GUID format, std::uint32_t data) override;

  // --- IMediaParamInfo ----------------------------------------------------------------------------
  // [host thread] 1.
  HRESULT STDMETHODCALLTYPE GetParamCount(std::uint32_t* count) override;
  // [host thread] Only index 0, else E_INVALIDARG; then E_POINTER for a null record.
  HRESULT STDMETHODCALLTYPE GetParamInfo(std::uint32_t index, MP_PARAMINFO* info) override;
  // [host thread] Only index 0, else E_INVALIDARG; then E_POINTER for null. The block holds the
  // label, a terminator, the unit, a terminator, then for an enumeration its names, each
  // terminated; without one it ends in one character more, left as allocated. E_OUTOFMEMORY
  // when it cannot be allocated.
  HRESULT STDMETHODCALLTYPE GetParamText(std::uint32_t index, ParamChar** text) override;
  // [host thread] 1.
  HRESULT STDMETHODCALLTYPE GetNumTimeFormats(std::uint32_t* count) override;
  // [host thread] E_POINTER for null, then GUID_TIME_REFERENCE at index 0, else E_INVALIDARG.
  HRESULT STDMETHODCALLTYPE GetSupportedTimeFormat(std::uint32_t index, GUID* format) override;
  // [host thread] GUID_TIME_REFERENCE; `data` is not written.
  HRESULT STDMETHODCALLTYPE GetCurrentTimeFormat(GUID* format, std::uint32_t* data) override;

  // --- IMediaParamsSetUICallback --------------------------------------------------------------------
  // [host thread] Keeps a reference to `callback`, or none for null, and lets the old one go.
  HRESULT STDMETHODCALLTYPE SetUICallback(IMediaParamsUICallback* callback) override;

  // --- IMediaParamsUICallback: each forwards to the stored callback and returns its answer, or
  // S_OK without one. Indices outside the table are passed on but change nothing here. A null
  // array with a count: E_POINTER.
  // [host thread or editor thread] Marks each parameter captured, then forwards.
  HRESULT STDMETHODCALLTYPE ParamsBeginCapture(const std::uint32_t* indices,
                                               std::uint32_t count) override;
  // [host thread or editor thread] Sets each value in order; the first failure is the answer and
  // is not forwarded.
  HRESULT STDMETHODCALLTYPE ParamsChanged(const std::uint32_t* indices, std::uint32_t count,
                                          const MP_DATA* values) override;
  // [host thread or editor thread] Clears each capture, then forwards.
  HRESULT STDMETHODCALLTYPE ParamsEndCapture(const std::uint32_t* indices,
                                             std::uint32_t count) override;

  // --- for the processing loop ----------------------------------------------------------------------
  // [graph thread] The stream's sample rate; a rate that is not positive: E_INVALIDARG, and the
  // old one stays.
  HRESULT SetSampleRate(std::int32_t rate) noexcept;
  // [any thread] 44100 until the stream's rate is stored.
  std::int32_t SampleRate() const noexcept { return m_sampleRate.load(std::memory_order_relaxed); }
  // [streaming thread] The sample positions in [start, end) where "Enabled" may change, in
  // ascending order, duplicates kept: every multiple of the slice interval in samples, and each
  // segment's start and end. Empty without segments. `positions` is cleared first and grows only
  // when it lacks room, so a list kept across buffers allocates nothing once it is large enough.
  // With segments, E_INVALIDARG for a range longer than any buffer (over 2^31 - 1 samples).
  HRESULT GetSliceBoundaries(std::int64_t start, std::int64_t end,
                             std::vector<std::int64_t>& positions);
  // [streaming thread] Evaluates the envelope of "Enabled" at sample `position` of the stream.
  HRESULT UpdateValuesForSample(std::int64_t position);

  // [any thread] The envelope of table row `index`, 0 or 1.
  CParamEnvelope& Envelope(std::uint32_t index) noexcept { return m_envelopes[index & 1u]; }
  // [any thread] The object's own reference count.
  ULONG RefCount() const noexcept { return m_refs.load(std::memory_order_relaxed); }

 private:
  explicit CMediaParams(IUnknown* owner) noexcept;
  ~CMediaParams();

  // A counted copy of the stored callback, or null.
  IMediaParamsUICallback* TakeCallback();

  IUnknown* m_owner;
  std::atomic<ULONG> m_refs{0};
  CCritSec m_callbackLock;  // guards only the exchange of m_callback, never a call through it
  IMediaParamsUICallback* m_callback = nullptr;
  CParamEnvelope m_envelopes[kParamRows];
  std::atomic<std::int32_t> m_sampleRate{kDefaultSampleRate};
};
