// The saved state of an instance: its ports, sysex prefix, rechannel setting, MIDI sync flag,
// current device and stored events as one XML document, framed in a stream for the host or
// handed over as text.
//
// Stream frame: the file version as 12 UTF-16LE characters, "00000000000 " (24 bytes); the
// length of the text, 4 bytes little-endian; the text, narrow, no terminator. The text is the
// compact document: a declaration with version "1.0", then "Config" with "Schema" 1 holding, in
// order, "Instrument", "MIDIInputPort", "MIDIOutputPort", "SysexPrefix" (these four only with
// ports included), "MIDIOutputRechannel", "MIDISync", and one "MIDIMsg" per stored event.
//
// Reading is tolerant: only a missing "Config" fails a load, and then nothing has changed.
// Every other element is optional and is applied in a fixed order, whatever its place in the
// text. A load always replaces the event list and the prefix, and ends by sending the enabled
// events. A saved prefix whose length is not a multiple of 3 comes back longer by the zero bytes
// of base64 padding, on every load: the format has always behaved so.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "documents/stored_event.h"
#include "interfaces/host_midi_ports.h"
#include "platform/com.h"
#include "platform/com_ptr.h"
#include "platform/lock.h"
#include "platform/stream.h"

class TiXmlNode;

// A version field that is not a number followed by a blank, tab, CR, LF or zero.
inline constexpr HRESULT VFW_E_INVALID_FILE_FORMAT = hr::Code(0x8004022Fu);

enum class PortDirection { Input, Output };

// What the saved state needs of an instance. The instance implements it; the settings never
// see more of it than this.
class ISettingsSubject {
 public:
  struct PortChoice {
    std::wstring name;   // empty when no port is in use
    std::int32_t index;  // in the host's list, -1 for none
  };

  // [any thread] The instance lock, re-entrant: writing takes it, and so does a stream load
  // for its whole length.
  virtual CCritSec& SettingsLock() = 0;
  // [any thread] The host's port interface with a reference added; null when not connected.
  virtual ComPtr<IHostMidiPorts> SettingsPorts() = 0;

  // --- what is saved -----------------------------------------------------------------------
  // [instance lock] The port chosen in one direction.
  virtual PortChoice SavedPort(PortDirection direction) = 0;
  // [instance lock]
  virtual std::uint32_t SavedRechannel() = 0;
  // [instance lock]
  virtual bool SavedMidiSync() = 0;
  // [instance lock] A copy of the sysex prefix.
  virtual std::vector<std::uint8_t> SavedSysexPrefix() = 0;
  // [instance lock] Calls `visit` with each stored event in list order, while the list holds
  // still; `visit` must not change it.
  virtual void ForEachSavedEvent(const std::function<void(const CStoredEvent&)>& visit) = 0;
  // [instance lock] Appends an "Instrument" element for the current device to `parent`.
  virtual void WriteCurrentDevice(TiXmlNode& parent) = 0;

  // --- what a load applies, in this order --------------------------------------------------
  // [host thread, during a load] Merges every "Instrument" child of `parent` into the device store; their names are
  // appended to `names`.
  virtual void ReadDevices(const TiXmlNode& parent, std::vector<std::wstring>& names) = 0;
  // [host thread, during a load] Makes the device `name` current.
  virtual HRESULT SelectDevice(const std::wstring& name) = 0;
  // [host thread, during a load] Chooses the first port of that exact name; E_FAIL with a warning box and the choice
  // unchanged when there is none.
  virtual HRESULT RestorePort(PortDirection direction, std::wstring name) = 0;
  // [host thread, during a load] Output on or off; off also forgets the output port's name and index.
  virtual void RestoreOutputEnabled(bool enabled) = 0;
  // [host thread, during a load]
  virtual void RestoreRechannel(std::uint32_t channel) = 0;
  // [host thread, during a load]
  virtual void RestoreSysexPrefix(std::vector<std::uint8_t> bytes) = 0;
  // [host thread, during a load]
  virtual void RestoreMidiSync(bool enabled) = 0;
  // [host thread, during a load] Replaces the whole list.
  virtual void RestoreEvents(std::vector<CStoredEvent> events) = 0;
  // [host thread, during a load] Tells an attached property page that its lists changed; nothing without a page.
  virtual void ReloadEditorLists() = 0;
  // [host thread, during a load] Queues every enabled stored event for the device, in list order; 0.
  virtual HRESULT SendEventsAfterLoad() = 0;

 protected:
  ~ISettingsSubject() = default;
};

// [host or editor thread] Appends the state's text to `out`, under the instance lock.
// `includePorts` false leaves out the device, both ports and the prefix; `asDocument` false
// prints "Config" alone, without the declaration; `includeNames` false leaves out the ports'
// "Name", so that only a host's "ID" identifies them (a port without one is then left out).
// Always 0.
HRESULT WriteConfig(ISettingsSubject& subject, std::string& out, bool includePorts,
                    bool asDocument, bool includeNames);
// [host or editor thread] Applies the zero-terminated narrow text. The caller holds the lock
// if it wants one. E_FAIL, with nothing changed, when the text has no "Config" (text that is
// not XML included); else the result of sending the events, 0. Ports come back by the host's
// ID when it offers IDs and the text has one, else by name; an output port that cannot be
// chosen by name turns output off with a second warning box.
HRESULT ReadConfig(ISettingsSubject& subject, const char* text);

// --- the text route --------------------------------------------------------------------------
// [host thread] The wide text through the narrow code page into ReadConfig, without the lock.
// E_POINTER for null.
HRESULT SetConfigXml(ISettingsSubject& subject, const wchar_t* text);
// [host thread] The length of the wide text of "Config" (no declaration, no port names) plus 2.
// E_POINTER for null.
HRESULT GetConfigXmlSize(ISettingsSubject& subject, std::uint32_t* size, bool includePorts);
// [host thread] The same text with its terminator when its length is below `capacity`, else
// E_FAIL with the buffer untouched. E_POINTER for null. The text is built anew on each call.
HRESULT GetConfigXml(ISettingsSubject& subject, wchar_t* buffer, std::uint32_t capacity,
                     bool includePorts);

// The persistence facet of an instance: the stream frame around the document, and the dirty
// flag, which only Save changes.
class CSettingsStream {
 public:
  explicit CSettingsStream(ISettingsSubject& subject) : m_subject(subject) {}

  // [host thread] The version field, then ReadFromStream. A read failure in the version field
  // is the answer; a field that does not end as a number should, or is cut short, gives
  // VFW_E_INVALID_FILE_FORMAT. Either way nothing further is read and nothing changes.
  HRESULT Load(IStream* stream);
  // [host thread] The version field, then WriteToStream; on success the flag becomes dirty
  // when `clearDirty` is 0 and clean otherwise. The first failing write is the answer.
  HRESULT Save(IStream* stream, bool clearDirty);
  // [host thread] SizeMax plus the 24 bytes of the version field: 4 bytes short of what Save
  // writes, which hosts have always been given. E_POINTER for null.
  HRESULT GetSizeMax(ULARGE_INTEGER* size);
  // [any thread] S_OK when dirty, S_FALSE when clean. A new instance is clean.
  HRESULT IsDirty() const noexcept { return m_dirty ? S_OK : S_FALSE; }
  // The version written in the frame: always 0.
  static constexpr std::int32_t GetSoftwareVersion() noexcept { return 0; }

  // [host thread] Length of the full document as saved.
  std::uint32_t SizeMax();
  // [host thread] The length field and the text, without the version field.
  HRESULT WriteToStream(IStream* stream);
  // [host thread] Under the instance lock: the length field, then as much of the text as the
  // stream holds, up to its first zero byte, into ReadConfig. A read that fails, in the length
  // or in the text, is the answer, and nothing changes; a stream that merely ends early gives a
  // shorter text. A length beyond what the stream holds costs no more memory than the stream's
  // bytes.
  HRESULT ReadFromStream(IStream* stream);

 private:
  ISettingsSubject& m_subject;
  std::atomic<bool> m_dirty{false};
};
