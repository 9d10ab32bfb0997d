// One plug-in instance: a soft synth to the host, with an audio input and output pins, that
// makes no sound. It composes the soft-synth side, the processing class (whose critical section
// is the instance lock), the filter frame, and the property page, automation and persistence
// facets, all answering through one QueryInterface table.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "automation/media_params.h"
#include "core/dxi.h"
#include "core/filter_pins.h"
#include "core/output_pin_list.h"
#include "interfaces/ole_interfaces.h"
#include "core/soft_synth.h"
#include "interfaces/class_ids.h"
#include "documents/settings_stream.h"
#include "frame/base_filter.h"
#include "interfaces/movie_setup.h"

class CFilter final : public CSoftSynth,
                      public CExternalHardwareProxyDXi,
                      public CBaseFilter,
                      public ISpecifyPropertyPages,
                      public IDispatch,
                      public IPersistStream,
                      public IAMovieSetup {
 public:
  // The factory's creation entry: builds an instance and answers its non-delegating face, with
  // the construction result in `*phr`; null when the allocation fails.
  static CUnknown* CreateInstance(IUnknown* outer, HRESULT* phr);
  ~CFilter() override;

  DECLARE_IUNKNOWN
  // IDispatch, the property pages, persistence and the instance's own interfaces, then the
  // filter frame's.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;

  // --- output pins (CDXiSynthContext); each takes the instance lock --------------------------
  // A null name gives "Output %d" with the one-based count. Ids come from a process-wide
  // counter that starts at 1 and only grows.
  HRESULT AddOutputPin(const wchar_t* name, std::uint32_t* id) override;
  // A connected pin is not removed (E_UNEXPECTED); with no pins at all the answer is E_FAIL.
  HRESULT RemoveOutputPin(std::uint32_t id) override;
  // Stops at the first connected pin, with E_UNEXPECTED.
  HRESULT RemoveAllOutputPins() override;
  CBasePin* FindOutputPin(std::uint32_t id) override;
  std::int32_t GetOutputPinCount() override;
  // The id, or -1 for an index outside the list.
  std::int32_t GetOutputPinId(std::int32_t index) override;

  // --- the audio path, for the pins -----------------------------------------------------------
  // [graph thread] The checks of an audio type for either direction, in order, each refusing
  // with VFW_E_TYPE_NOT_ACCEPTED: major type audio; no temporal compression; a wave format
  // record; PCM or extensible at 16 bits, or floating point at 32; one or two channels; then
  // the processing class's input or output test. Only 32-bit floating point passes them all.
  // The block align is not checked: every copy is bounded by both samples' sizes.
  HRESULT CheckAudioType(const CMediaType& type, PIN_DIRECTION direction);
  // [graph thread, instance lock] Asks the graph to reconnect each connected output pin whose
  // type no longer fits the input's; nothing outside a graph.
  void ReconnectUnfitOutputs();
  // [streaming thread] One input sample: its frames go through the event window and the
  // processing class in segments cut at parameter changes, into a buffer of every connected
  // output pin, which is then delivered (or, when the processing class has no more data, ends
  // the stream); then the MIDI clock, the input position and a flush of the voices follow. 0, or
  // the first failure, which ends the pass without delivering.
  HRESULT ReceiveAudio(IMediaSample* sample);
  // [streaming thread or graph thread, instance lock] The end of the input's stream: each
  // connected output pin is given a buffer of the processing class's last data until it has no
  // more, and then end of stream; with this processing class that is end of stream twice.
  HRESULT EndAudioStream();
  // [graph thread, instance lock] Calls `step` with each connected output pin in list order;
  // the first failure stops it and is the answer.
  template <class Step>
  HRESULT ForEachConnectedOutput(Step step) {
    CAutoLock lock(InstanceLock());
    for (CFilterOutputPin* pin : m_outputPins) {
      if (!pin->IsConnected()) continue;
      const HRESULT hr = step(*pin);
      if (FAILED(hr)) return hr;
    }
    return S_OK;
  }
  CFilterInputPin& InputPin() noexcept { return *m_inputPin; }
  // The automation object; null only when construction failed before it.
  CMediaParams* MediaParams() noexcept { return m_mediaParams; }

  // --- filter frame ---------------------------------------------------------------------------
  // Pin 0 is the input, then the output pins in list order.
  std::int32_t GetPinCount() override;
  CBasePin* GetPin(std::int32_t n) override;
  // [graph thread, instance lock] Pause from stopped starts the output worker; Stop stops it.
  HRESULT STDMETHODCALLTYPE Pause() override;
  HRESULT STDMETHODCALLTYPE Run(REFERENCE_TIME start) override;
  HRESULT STDMETHODCALLTYPE Stop() override;
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) override;

  // --- ISpecifyPropertyPages: exactly one page ----------------------------------------------
  HRESULT STDMETHODCALLTYPE GetPages(CAUUID* pages) override;

  // --- IDispatch: not implemented by design -----------------------------------------------------
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(std::uint32_t*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(std::uint32_t, LCID, ITypeInfo**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, wchar_t**, std::uint32_t, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, std::uint16_t, DISPPARAMS*, VARIANT*,
                                   EXCEPINFO*, std::uint32_t*) override {
    return E_NOTIMPL;
  }

  // --- IPersistStream: the settings stream (documented with CSettingsStream) -------------------
  HRESULT STDMETHODCALLTYPE IsDirty() override { return m_settings.IsDirty(); }
  HRESULT STDMETHODCALLTYPE Load(IStream* stream) override { return m_settings.Load(stream); }
  HRESULT STDMETHODCALLTYPE Save(IStream* stream, std::int32_t clearDirty) override {
    return m_settings.Save(stream, clearDirty != 0);
  }
  HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override {
    return m_settings.GetSizeMax(size);
  }

  // --- IAMovieSetup: the module's registration lists the filter; it has no setup of its own ---
  HRESULT STDMETHODCALLTYPE Register() override { return S_FALSE; }
  HRESULT STDMETHODCALLTYPE Unregister() override { return S_FALSE; }

 private:
  CFilter(IUnknown* outer, HRESULT* phr);
  struct AudioPass;

  void ReportGraphChanged();
  // [streaming thread] For a sample that marks a discontinuity and has a start time: moves the
  // input position to that time and gives it back, to be set on the output samples.
  std::optional<REFERENCE_TIME> TakeDiscontinuity(IMediaSample* sample, std::uint32_t rate);
  // [streaming thread] The sample positions in [from, from + frames) where an automated
  // parameter changes, in order; empty without an envelope. The list keeps its room across
  // buffers, so it allocates only when an envelope outgrows it.
  HRESULT ParameterChanges(std::int64_t from, std::int32_t frames,
                           std::vector<std::int64_t>& changes);
  // [streaming thread] Brings automated parameters up to `position`.
  HRESULT ApplyParameters(std::int64_t position);

  std::unique_ptr<CFilterInputPin> m_inputPin;
  CMediaParams* m_mediaParams = nullptr;  // holds the owner's one reference
  std::vector<std::int64_t> m_paramChanges;  // streaming thread only
  COutputPinList m_outputPins;
  // The sample position of the next input sample: set by the graph thread, moved by the
  // streaming thread.
  std::atomic<std::int64_t> m_inputSample{0};
  CSettingsStream m_settings{*this};
};
