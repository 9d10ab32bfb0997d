// The instance's private interfaces: IMyFilter for the property page, the event editors and the
// closed-loop test; IExternalDeviceProxy3 for hosts that know this plug-in. None of these takes
// the instance lock. Operation order is a binary contract.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/com.h"
#include "platform/notify.h"
#include "interfaces/host_midi_ports.h"

class CStoredEvent;
class CInstrument;

// The property page as the instance sees it: something with a window to post activity to.
struct IEditorWindow {
  virtual NotifyHandle WindowHandle() const = 0;
  // [host or editor thread, during a load] The event list, ports and device changed under the
  // page: it reloads its lists. A page living on another thread posts this to itself.
  virtual void ReloadLists() = 0;

 protected:
  ~IEditorWindow() = default;
};

// {430845FE-D44C-4D47-AD40-2B00B24E83F5}
inline constexpr IID IID_IMyFilter =
    MakeGuid(0x430845FE, 0xD44C, 0x4D47, 0xAD, 0x40, 0x2B, 0x00, 0xB2, 0x4E, 0x83, 0xF5);

struct IMyFilter : IUnknown {
  // [editor thread] Activity goes to `editor`'s window from now on; null stops it.
  virtual HRESULT STDMETHODCALLTYPE SetEditorWindow(IEditorWindow* editor) = 0;
  // [any thread] The host's ports with a reference added; E_POINTER, and null, without them.
  virtual HRESULT STDMETHODCALLTYPE GetPorts(IHostMidiPorts** ports) = 0;
  // [editor thread or host thread] Takes the first port of that exact name and announces its
  // id to a host that offers ids. No match: E_FAIL with the choice unchanged, and a warning box
  // unless the name is empty.
  virtual HRESULT STDMETHODCALLTYPE SelectInputPort(std::wstring name) = 0;
  // [editor thread or host thread] As SelectInputPort, for the output list.
  virtual HRESULT STDMETHODCALLTYPE SelectOutputPort(std::wstring name) = 0;
  // [editor thread or host thread] Stored as given; only 1 to 16 force a channel.
  virtual HRESULT STDMETHODCALLTYPE SetOutputRechannel(std::uint32_t channel) = 0;
  // [any thread] The chosen port's index in the host's list; E_FAIL while none is chosen.
  virtual HRESULT STDMETHODCALLTYPE GetInputPortIndex(std::int32_t* index) = 0;
  // [any thread] As GetInputPortIndex, for the output.
  virtual HRESULT STDMETHODCALLTYPE GetOutputPortIndex(std::int32_t* index) = 0;
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE GetOutputRechannel(std::uint32_t* channel) = 0;
  // [editor thread or host thread] False also forgets the output port's name and index.
  virtual HRESULT STDMETHODCALLTYPE SetOutputEnabled(std::int32_t enabled) = 0;
  // [editor thread or host thread]
  virtual HRESULT STDMETHODCALLTYPE SetMIDISync(std::int32_t enabled) = 0;
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE GetMIDISync(std::int32_t* enabled) = 0;  // not null-tested
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE GetEventCount(std::uint32_t* count) = 0;
  // [editor thread] A pointer into the list itself, valid until the list changes.
  virtual HRESULT STDMETHODCALLTYPE GetEvent(std::uint32_t index, CStoredEvent** event) = 0;
  // [editor thread or host thread] A deep copy goes in before `index`; index == count appends.
  virtual HRESULT STDMETHODCALLTYPE InsertEvent(std::uint32_t index, const CStoredEvent* event) = 0;
  // [editor thread or host thread] E_FAIL for an index past the end.
  virtual HRESULT STDMETHODCALLTYPE RemoveEvent(std::uint32_t index) = 0;
  // [editor thread] Hands out the instance's device store without adding a reference; null
  // when it could not be made.
  virtual HRESULT STDMETHODCALLTYPE GetInstrumentObject(CInstrument** instrument) = 0;
  // [any thread] Queues a copy for the worker; the post's result.
  virtual HRESULT STDMETHODCALLTYPE SendEvent(const CStoredEvent* event) = 0;
  // [any thread] Neither the pointer nor the index is tested.
  virtual HRESULT STDMETHODCALLTYPE GetSysexPrefixByte(std::uint8_t* value, std::int32_t index) = 0;
  // [any thread]
  virtual HRESULT STDMETHODCALLTYPE GetSysexPrefixLength(std::uint32_t* length) = 0;
  // [editor thread or host thread]
  virtual HRESULT STDMETHODCALLTYPE AssignSysexPrefix(std::vector<std::uint8_t> bytes) = 0;
  // [editor thread or host thread] `bytes` may lie inside the old prefix.
  virtual HRESULT STDMETHODCALLTYPE SetSysexPrefix(const std::uint8_t* bytes,
                                                   std::uint32_t count) = 0;
  // [editor thread]
  virtual HRESULT STDMETHODCALLTYPE OpenClosedLoopTest(NotifyHandle window) = 0;
  // [any thread] 1 while the worker runs and output is enabled.
  virtual HRESULT STDMETHODCALLTYPE IsOutputActive(std::uint8_t* active) = 0;
  // [editor thread] Messages in and out since the last clear; `clear` non-zero zeroes both.
  virtual HRESULT STDMETHODCALLTYPE GetEventCounters(std::uint32_t* received, std::uint32_t* sent,
                                                     std::uint8_t clear) = 0;
  // [editor thread] One message to the worker; fails while output is disabled.
  virtual HRESULT STDMETHODCALLTYPE SendTestMessage(std::uint32_t message) = 0;
  // [editor thread] While set, live input is counted and shown but not sent.
  virtual HRESULT STDMETHODCALLTYPE SetClosedLoopTest(std::uint8_t running) = 0;
};

// {08E23FF5-E156-4033-BD35-0FD1DC612FAD}
inline constexpr IID IID_IExternalDeviceProxy =
    MakeGuid(0x08E23FF5, 0xE156, 0x4033, 0xBD, 0x35, 0x0F, 0xD1, 0xDC, 0x61, 0x2F, 0xAD);
// {C3F5E94E-4E02-4A53-85BE-996088142AAC}
inline constexpr IID IID_IExternalDeviceProxy2 =
    MakeGuid(0xC3F5E94E, 0x4E02, 0x4A53, 0x85, 0xBE, 0x99, 0x60, 0x88, 0x14, 0x2A, 0xAC);
// {68EECAC0-4D80-462F-8BD6-5DE041004E76}
inline constexpr IID IID_IExternalDeviceProxy3 =
    MakeGuid(0x68EECAC0, 0x4D80, 0x462F, 0x8B, 0xD6, 0x5D, 0xE0, 0x41, 0x00, 0x4E, 0x76);

struct IExternalDeviceProxy : IUnknown {
  // [any thread] Queues the bytes as one system exclusive event; always 0.
  virtual HRESULT STDMETHODCALLTYPE SendSysexData(std::uint32_t unread, const std::uint8_t* bytes,
                                                  std::uint32_t length) = 0;
  // [any thread] 1 once after each change of the current device, else 0; clears the mark.
  virtual HRESULT STDMETHODCALLTYPE ConsumeInstrumentChanged(std::int32_t* changed) = 0;
  // [any thread] The current device's name and the output port's name, each with its
  // terminator, and the forced channel. E_FAIL when a name does not fit; the device's name is
  // written before the port's is tried, and left out when the store has none to give.
  // E_POINTER for null arguments.
  virtual HRESULT STDMETHODCALLTYPE GetDeviceSummary(wchar_t* name, std::int32_t nameCapacity,
                                                     wchar_t* port, std::int32_t portCapacity,
                                                     std::uint32_t* rechannel) = 0;
};
struct IExternalDeviceProxy2 : IExternalDeviceProxy {
  virtual HRESULT STDMETHODCALLTYPE SetConfigXml(const wchar_t* text) = 0;
};
struct IExternalDeviceProxy3 : IExternalDeviceProxy2 {
  virtual HRESULT STDMETHODCALLTYPE GetConfigXmlSize(std::uint32_t* size,
                                                     std::int32_t includePorts) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetConfigXml(wchar_t* buffer, std::uint32_t capacity,
                                                 std::int32_t includePorts) = 0;
};
