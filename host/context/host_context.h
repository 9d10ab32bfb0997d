// The host's side of one instance: the object handed to Connect. It answers the tempo map, the
// time converter, the pin observer and the MIDI ports (the back end's, passed through), and it
// is the sink where the instance hands the host every message it sends.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "host/context/host_tempo.h"
#include "host/midi/midi_back_end.h"
#include "interfaces/host_interfaces.h"
#include "platform/com_ptr.h"

class CHostContext final
    : public CUnknownImpl<IHostTempoMap, IHostTimeConverter, IHostPinObserver, IHostMidiPorts2,
                          IHostInputSink> {
 public:
  // [host thread] A context with one reference owned by the caller, reading the run's `tempo`
  // and passing port calls on to `ports` (which it holds).
  static ComPtr<CHostContext> Create(std::shared_ptr<const CHostTempo> tempo,
                                     CMidiBackEnd* ports);

  // --- IHostTempoMap ---------------------------------------------------------------------------
  // [host thread or streaming thread] Durations at the tempo in force, rounded to the nearest
  // unit.
  std::int32_t STDMETHODCALLTYPE TicksToMsecs(std::int32_t ticks) override;
  std::int32_t STDMETHODCALLTYPE MsecsToTicks(std::int32_t msecs) override;
  std::int32_t STDMETHODCALLTYPE GetTicksPerQuarter() override;

  // --- IHostTimeConverter ----------------------------------------------------------------------
  // [host thread or streaming thread] Sample positions to ticks and back along the run's tempo;
  // E_POINTER for null, E_INVALIDARG for a format other than samples or ticks.
  HRESULT STDMETHODCALLTYPE ConvertTime(HostTimeValue* time, std::uint32_t format) override;

  // --- IHostPinObserver ------------------------------------------------------------------------
  // [graph thread or host thread] Every change is allowed; the count is kept.
  HRESULT STDMETHODCALLTYPE OnPinCountChange(std::int32_t phase, IUnknown* filter,
                                             std::int32_t count) override;

  // --- IHostMidiPorts2: the back end's ports. The ports the instance announces are noted: live
  // input goes where it listens, and its handle is found by the id of the output it chose.
  std::int32_t STDMETHODCALLTYPE GetInputPortCount() override;
  HRESULT STDMETHODCALLTYPE Reserved() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetInputPortName(std::int32_t index, wchar_t* name,
                                             std::uint32_t capacity) override;
  std::int32_t STDMETHODCALLTYPE GetOutputPortCount() override;
  HRESULT STDMETHODCALLTYPE GetOutputPortHandle(std::int32_t index,
                                                MidiPortHandle* handle) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortName(std::int32_t index, wchar_t* name,
                                              std::uint32_t capacity) override;
  HRESULT STDMETHODCALLTYPE SendShortMsg(MidiPortHandle handle, std::uint32_t message) override;
  HRESULT STDMETHODCALLTYPE SendSysexMsg(MidiPortHandle handle, const std::uint8_t* bytes,
                                         std::uint32_t length) override;
  HRESULT STDMETHODCALLTYPE GetInputPortId(std::int32_t index, std::int32_t* id) override;
  HRESULT STDMETHODCALLTYPE GetOutputPortId(std::int32_t index, std::int32_t* id) override;
  HRESULT STDMETHODCALLTYPE UseInputPort(std::int32_t id) override;
  HRESULT STDMETHODCALLTYPE UseOutputPort(std::int32_t id) override;

  // --- IHostInputSink --------------------------------------------------------------------------
  // [output worker] Counts the packed message and keeps it among the latest.
  HRESULT STDMETHODCALLTYPE OnSinkEvent(IMfxInputPort* sender,
                                        const HostEventRecord* record) override;

  // [any thread] The latest packed messages handed to the sink, at most kSinkKept, in order: a
  // host that runs for hours keeps no more than these.
  std::vector<std::uint32_t> SinkMessages() const;
  // [any thread] Every message handed to the sink so far.
  std::int64_t SinkCount() const;
  static constexpr std::size_t kSinkKept = 1024;
  // [any thread] The output pin count after the last change.
  std::int32_t PinCount() const noexcept { return m_pinCount.load(); }
  // [any thread] The id of the input port the instance last said it uses, if any: where the
  // host delivers its live input.
  std::optional<std::int32_t> InputPortId() const;

 private:
  CHostContext(std::shared_ptr<const CHostTempo> tempo, CMidiBackEnd* ports)
      : m_tempo(std::move(tempo)), m_ports(ports) {}
  static std::optional<std::int32_t> Noted(const std::atomic<std::int64_t>& id);

  const std::shared_ptr<const CHostTempo> m_tempo;
  const ComPtr<CMidiBackEnd> m_ports;
  static constexpr std::int64_t kNone = INT64_MIN;
  std::atomic<std::int64_t> m_inputPortId{kNone};
  std::atomic<std::int64_t> m_outputPortId{kNone};
  std::atomic<std::int32_t> m_pinCount{1};
  mutable std::mutex m_sinkMutex;
  std::deque<std::uint32_t> m_sink;
  std::int64_t m_sinkCount = 0;
};
