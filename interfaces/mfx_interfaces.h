// The soft-synth interfaces an instance offers the host. Operation order is a binary contract.
#pragma once

#include <cstdint>

#include "interfaces/host_interfaces.h"
#include "platform/com.h"

struct IMfxInstrument;
struct IMfxNameList;

// {6E88453F-4A85-4159-B658-88C43D288287}
inline constexpr IID IID_IMfxSoftSynth =
    MakeGuid(0x6E88453F, 0x4A85, 0x4159, 0xB6, 0x58, 0x88, 0xC4, 0x3D, 0x28, 0x82, 0x87);
// {5BBDF239-3046-4DAA-8ADD-3B9373545B74}
inline constexpr IID IID_IMfxSoftSynth2 =
    MakeGuid(0x5BBDF239, 0x3046, 0x4DAA, 0x8A, 0xDD, 0x3B, 0x93, 0x73, 0x54, 0x5B, 0x74);
// {753B2366-6CD2-4E61-999B-9128FCDB7BCD}
inline constexpr IID IID_IMfxNotify =
    MakeGuid(0x753B2366, 0x6CD2, 0x4E61, 0x99, 0x9B, 0x91, 0x28, 0xFC, 0xDB, 0x7B, 0xCD);
// {49C2EE08-7DCA-4DF3-9A41-35CFDB44F12E}
inline constexpr IID IID_IMfxInputPort =
    MakeGuid(0x49C2EE08, 0x7DCA, 0x4DF3, 0x9A, 0x41, 0x35, 0xCF, 0xDB, 0x44, 0xF1, 0x2E);

// Every operation runs under the instance lock.
struct IMfxSoftSynth : IUnknown {
  // [host thread] Takes the host's interfaces from `context`. Releases one reference of
  // `context` in every case, though the caller only lent it: hosts count on that.
  virtual HRESULT STDMETHODCALLTYPE Connect(IUnknown* context) = 0;
  // [host thread] Releases the host's interfaces; the worker is not touched.
  virtual HRESULT STDMETHODCALLTYPE Disconnect() = 0;
  // [host thread] Transport. OnStart drops every queued event and starts the stream at `tick`,
  // with the MIDI clock counting from 0; OnLoop moves later events by the jump from `from` to
  // `to`; OnStop drops every queued event and leaves the positions. Each answers 0.
  virtual HRESULT STDMETHODCALLTYPE OnStart(std::int32_t tick) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnLoop(std::int32_t from, std::int32_t to) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnStop(std::uint32_t unread) = 0;
  // [host thread] Timed events of the channel key, converted to stream samples and kept until
  // the audio reaches them, never sent. E_UNEXPECTED before Connect; the list's first failure
  // stops it, keeping what came before.
  virtual HRESULT STDMETHODCALLTYPE OnEvents(std::uint32_t unread1, std::uint32_t unread2,
                                             std::int32_t channelKey, IHostEventList* list) = 0;
};

struct IMfxSoftSynth2 : IMfxSoftSynth {
  // [host thread] Live input: the one road from the host to the hardware port.
  virtual HRESULT STDMETHODCALLTYPE OnInput(std::uint32_t unread, IHostDataList* list) = 0;
  // [host thread] Forwarded to the instrument's operation at the same place.
  virtual HRESULT STDMETHODCALLTYPE GetBanks(std::int32_t** banks, std::int32_t* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE QueryPatchFalse(std::int32_t bank, std::int32_t patch) = 0;
  virtual HRESULT STDMETHODCALLTYPE QueryPatchTrue(std::int32_t bank, std::int32_t patch) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetPatchNames(std::int32_t bank, IMfxNameList** names) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedQuery(std::int32_t a, std::int32_t b, void* c) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetControllerNames(IMfxNameList** names) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedListA(void* a) = 0;
  virtual HRESULT STDMETHODCALLTYPE ReservedListB(void* a) = 0;
  // [host thread] The instrument with a reference added.
  virtual HRESULT STDMETHODCALLTYPE GetInstrumentInterface(std::uint32_t unread,
                                                           IMfxInstrument** instrument) = 0;
};

struct IMfxNotify : IUnknown {
  // [host thread] A ChannelStateMessage: per-key mixing state for the sequenced line. Always 0.
  virtual HRESULT STDMETHODCALLTYPE OnNotify(const void* message) = 0;
};

struct IMfxInputPort : IUnknown {
  // [host thread] Replaces the sink; null is allowed.
  virtual HRESULT STDMETHODCALLTYPE SetInputSink(IHostInputSink* sink) = 0;
  // [host thread] The sink with a reference added and 0, or null and 1 when there is none.
  virtual HRESULT STDMETHODCALLTYPE GetInputSink(IHostInputSink** sink) = 0;
};
