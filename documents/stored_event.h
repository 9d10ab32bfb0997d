// One stored event: what an instance sends to its device when its state loads or when the user
// asks. It has no type field; its kind follows from which payload is filled, in a fixed order:
// a framed system exclusive block wins over short messages, and messages win over a pause.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "documents/short_message.h"
#include "platform/com.h"

class TiXmlElement;
class TiXmlNode;

// The contents a new event starts from in the event editors.
enum class NewEventKind { SystemExclusive, MidiData, Wait, BankProgramChange, ControllerChange };

class CStoredEvent {
 public:
  // Two empty strings, disabled, no pause, no payload.
  CStoredEvent() = default;

  // A new, enabled event named and filled for `kind` ("System Exclusive" holds F0 F7, "Wait"
  // 1000 ms, "Bank/Program Change" B0 00 00, B0 20 00, C0 00 00, "Controller Change" B0 00 00,
  // "MIDI Data" nothing).
  static CStoredEvent MakeNew(NewEventKind kind);
  // An enabled event carrying one message, as live input and the clock queue it.
  static CStoredEvent FromMessage(ShortMessage message);

  // --- classification, in the order that decides the kind ---------------------------------
  // At least two bytes, F0 first and F7 last.
  bool IsSysex() const noexcept;
  // Not sysex, and at least one message.
  bool HasMessages() const noexcept { return !IsSysex() && !m_messages.empty(); }
  // Not sysex and no messages. A pure pause counts as empty too, on purpose.
  bool IsEmpty() const noexcept { return !IsSysex() && m_messages.empty(); }
  // Not sysex, no messages, and a pause longer than zero.
  bool IsWait() const noexcept { return IsEmpty() && m_waitMs != 0; }

  // --- accessors -------------------------------------------------------------------------
  // Returns the name; an empty name first becomes the type text, which then sticks.
  std::wstring GetName();
  void SetName(std::wstring name) { m_name = std::move(name); }
  const std::wstring& GetDescription() const noexcept { return m_description; }
  void SetDescription(std::wstring text) { m_description = std::move(text); }
  bool IsEnabled() const noexcept { return m_enabled; }
  void SetEnabled(bool enabled) noexcept { m_enabled = enabled; }

  std::uint32_t GetWait() const noexcept { return m_waitMs; }
  // Empties the sysex and the messages, then stores the pause.
  void SetWait(std::uint32_t ms);

  std::vector<std::uint8_t> GetSysex() const { return m_sysex; }
  std::span<const std::uint8_t> SysexView() const noexcept { return m_sysex; }
  std::uint32_t GetSysexSize() const noexcept { return static_cast<std::uint32_t>(m_sysex.size()); }
  // Replaces the sysex bytes and nothing else; a framed block then wins over the rest.
  void SetSysex(std::vector<std::uint8_t> bytes) { m_sysex = std::move(bytes); }

  ShortMessageList GetMessages() const { return m_messages; }
  const ShortMessageList& MessagesView() const noexcept { return m_messages; }
  // Empties the sysex and the messages, then stores `messages`; the pause stays.
  void SetMessages(ShortMessageList messages);

  // The event list's "Type" and "Info" columns.
  std::wstring GetTypeText() const;
  std::wstring GetInfoText() const;

  // --- XML form: one "MIDIMsg" element ------------------------------------------------------
  // Appends a "MIDIMsg" element to `parent` with "Name", "Description" and "Enabled", then the
  // strongest payload only: a "Wait" attribute, one "Msg" child per message ("Status", "Data1",
  // "Data2"), or the sysex as one base64 text child; an empty event is an empty tag. The name is
  // written as it stands, even when empty. Always S_OK.
  HRESULT WriteXml(TiXmlNode& parent) const;
  // Replaces the contents from a "MIDIMsg" element. Accepted forms, first match wins: "Wait"
  // (any integer, wrapped into the unsigned field); "Status", "Data1", "Data2" on the element
  // itself; "Msg" children, up to the first one that lacks a number; a base64 text child that
  // decodes to F0 first, of which only framed sysex bytes are kept. Matching no form leaves an
  // empty event with its name, description and flag; an absent or bad "Enabled" means
  // disabled. A pause that is not read keeps its old value. Never fails.
  void ReadXml(const TiXmlElement& element);

  friend bool operator==(const CStoredEvent&, const CStoredEvent&) = default;

 private:
  std::wstring m_name;
  std::wstring m_description;
  bool m_enabled = false;
  std::uint32_t m_waitMs = 0;
  std::vector<std::uint8_t> m_sysex;
  ShortMessageList m_messages;
};
