// The pin base: connection with media type negotiation, pin information and the hooks that
// input and output pins refine. A pin lives inside its filter and shares the filter's lock.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "frame/base_filter.h"
#include "interfaces/graph_interfaces.h"
#include "interfaces/media_type.h"
#include "frame/unknown.h"
#include "platform/com_ptr.h"
#include "platform/lock.h"

class CBasePin : public CUnknown, public IPin {
 public:
  DECLARE_IUNKNOWN

  // `filter` owns the pin and outlives it; `lock` is the filter lock. `phr` follows the frame's
  // convention of reporting construction failures to the caller; nothing here fails, so it is
  // left as it is (it may be null).
  CBasePin(const wchar_t* objectName, CBaseFilter* filter, CCritSec* lock, HRESULT* phr,
           const wchar_t* pinName, PIN_DIRECTION dir);
  ~CBasePin() override;

  // Answers IPin, then CUnknown's.
  HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID iid, void** object) override;
  // By default a pin lives as long as its filter: these count on the filter. A pin that must
  // live by a count of its own overrides both to call CUnknown::NonDelegatingAddRef and
  // CUnknown::NonDelegatingRelease, and is then deleted when its own count falls to 0.
  ULONG STDMETHODCALLTYPE NonDelegatingAddRef() override;
  ULONG STDMETHODCALLTYPE NonDelegatingRelease() override;

  // IPin; see interfaces.h. Connect and ReceiveConnection run CheckConnect, CheckMediaType,
  // SetMediaType and CompleteConnect; on any failure the pin calls BreakConnect and stays
  // unconnected. Disconnect calls BreakConnect. EndOfStream answers S_OK; BeginFlush and EndFlush
  // are left to input and output pins; NewSegment keeps its values (CurrentStartTime...).
  // ConnectedTo takes only the pin's own peer lock, never the filter lock: a neighbour asks it
  // while connecting, under its own filter lock, and the filter lock taken there would invert
  // the order in which two chained filters' locks are taken.
  HRESULT STDMETHODCALLTYPE Connect(IPin* receiver, const CMediaType* type) override;
  HRESULT STDMETHODCALLTYPE ReceiveConnection(IPin* connector, const CMediaType* type) override;
  HRESULT STDMETHODCALLTYPE Disconnect() override;
  HRESULT STDMETHODCALLTYPE ConnectedTo(IPin** pin) override;
  HRESULT STDMETHODCALLTYPE ConnectionMediaType(CMediaType* type) override;
  HRESULT STDMETHODCALLTYPE QueryPinInfo(PIN_INFO* info) override;
  HRESULT STDMETHODCALLTYPE QueryDirection(PIN_DIRECTION* direction) override;
  HRESULT STDMETHODCALLTYPE QueryId(wchar_t** id) override;
  HRESULT STDMETHODCALLTYPE QueryAccept(const CMediaType* type) override;
  HRESULT STDMETHODCALLTYPE EnumMediaTypes(IEnumMediaTypes** types) override;
  HRESULT STDMETHODCALLTYPE QueryInternalConnections(IPin** pins, std::uint32_t* count) override;
  HRESULT STDMETHODCALLTYPE EndOfStream() override;
  HRESULT STDMETHODCALLTYPE NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop,
                                       double rate) override;

  // [graph thread, filter lock; streaming thread for a sample that changes the type] S_OK when
  // the pin takes `type`; anything else refuses it (VFW_E_TYPE_NOT_ACCEPTED is the usual answer).
  virtual HRESULT CheckMediaType(const CMediaType& type) = 0;
  // [graph thread, filter lock] Records the agreed type; S_OK.
  virtual HRESULT SetMediaType(const CMediaType& type);
  // [any thread] The preferred type at `position` (from 0) into `type`: S_OK, or
  // VFW_S_NO_MORE_ITEMS past the last one (the default: no preferences).
  virtual HRESULT GetMediaType(std::int32_t position, CMediaType* type);
  // [graph thread, filter lock] May this pin connect to `pin` at all? By default only to a pin
  // of the other direction (VFW_E_INVALID_DIRECTION).
  virtual HRESULT CheckConnect(IPin* pin);
  // [graph thread, filter lock] The connection stands; last chance to refuse it. S_OK.
  virtual HRESULT CompleteConnect(IPin* receivePin);
  // [graph thread, filter lock] Undo what CheckConnect and CompleteConnect set up. S_OK.
  virtual HRESULT BreakConnect();
  // [graph thread, filter lock] The filter leaves stopped / returns to stopped. S_OK.
  virtual HRESULT Active();
  virtual HRESULT Inactive();

  // [any thread]
  bool IsConnected() const noexcept { return static_cast<bool>(m_connected); }
  // The peer without a reference, or null.
  IPin* GetConnected() const noexcept { return m_connected.Get(); }
  const CMediaType& CurrentMediaType() const noexcept { return m_mt; }
  const wchar_t* Name() const noexcept { return m_name.c_str(); }
  PIN_DIRECTION Direction() const noexcept { return m_dir; }
  bool IsStopped() const noexcept { return m_filter->IsStopped(); }
  CBaseFilter* Filter() const noexcept { return m_filter; }
  // The values of the last NewSegment (0, the largest time and 1.0 before any).
  REFERENCE_TIME CurrentStartTime() const noexcept { return m_tStart; }
  REFERENCE_TIME CurrentStopTime() const noexcept { return m_tStop; }
  double CurrentRate() const noexcept { return m_dRate; }

 protected:
  CBaseFilter* const m_filter;
  CCritSec* const m_lock;
  ComPtr<IPin> m_connected;  // changed under both the filter lock and m_peerLock
  CMediaType m_mt;
  REFERENCE_TIME m_tStart = 0;
  REFERENCE_TIME m_tStop = INT64_MAX;
  double m_dRate = 1.0;

 private:
  HRESULT CanConnectNow() const;
  HRESULT AgreeMediaType(IPin* receiver, const CMediaType* type);
  HRESULT TryMediaTypes(IPin* receiver, const CMediaType* pattern, IEnumMediaTypes* types);
  HRESULT AttemptConnection(IPin* receiver, const CMediaType& type);
  // Checks `peer` and `type` and keeps them as the connection; on failure keeps nothing.
  HRESULT TakeConnection(IPin* peer, const CMediaType& type);
  // BreakConnect, then forgets the peer and the type.
  void DropConnection();

  // Sets the peer, under m_peerLock.
  void SetPeer(IPin* peer);

  const std::wstring m_name;
  const PIN_DIRECTION m_dir;
  mutable std::mutex m_peerLock;  // innermost: held only to copy or change the peer
};
