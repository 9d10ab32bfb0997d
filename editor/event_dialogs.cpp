#include "editor/event_dialogs.h"

#include "documents/stored_event.h"
#include "editor/controller_dialog.h"
#include "editor/editor_messages.h"
#include "editor/program_dialog.h"
#include "editor/wait_dialog.h"

namespace {

// B0 00 msb, B0 20 lsb, C0 program: the one shape the program dialog edits. The looser type
// text "Bank/Program Change" does not look at the controller numbers; this does.
bool IsBankProgramChange(const ShortMessageList& m) {
  return m.size() == 3 && m[0].Kind() == 0xB0 && m[0].Data1() == 0 && m[1].Kind() == 0xB0 &&
         m[1].Data1() == 0x20 && m[2].Kind() == 0xC0;
}

void Refresh(const EventEditHost& host) { PostNotify(host.page, RefreshMessage(), 0, 0); }

void EventEdited(const EventEditHost& host) {
  if (host.fillEventList) host.fillEventList();
}

}  // namespace

void EditProgramEvent(CStoredEvent& event, const EventEditHost& host) {
  if (event.IsSysex() || !IsBankProgramChange(event.MessagesView())) return;
  const ShortMessageList& messages = event.MessagesView();
  std::uint8_t channel = static_cast<std::uint8_t>((messages[2].Status() & 0x0F) + 1);
  std::uint8_t msb = messages[0].Data2();
  std::uint8_t lsb = messages[1].Data2();
  std::uint32_t program = messages[2].Data1();
  std::wstring name = event.GetName();
  std::wstring description = event.GetDescription();
  CPCDialg dialog(host.parent);
  if (dialog.Run(host.filter, channel, msb, lsb, program, name, description) == kDialogOk) {
    const auto ch = static_cast<std::uint8_t>((channel - 1) & 0x0F);
    event.SetMessages({ShortMessage::FromBytes(0xB0 | ch, 0, msb & 0x7F),
                       ShortMessage::FromBytes(0xB0 | ch, 0x20, lsb % 128),
                       ShortMessage::FromBytes(0xC0 | ch, program % 128, 0)});
    event.SetName(std::move(name));
    event.SetDescription(std::move(description));
    EventEdited(host);
  }
  Refresh(host);
}

void EditControllerEvent(CStoredEvent& event, const EventEditHost& host) {
  if (event.IsSysex()) return;
  const ShortMessageList& messages = event.MessagesView();
  if (messages.size() != 1 || messages[0].Kind() != 0xB0) return;
  std::int32_t channel = (messages[0].Status() & 0x0F) + 1;
  std::int32_t controller = messages[0].Data1();
  std::int32_t value = messages[0].Data2();
  std::wstring name = event.GetName();
  std::wstring description = event.GetDescription();
  CCCDialog dialog(host.parent);
  if (dialog.Run(channel, controller, value, name, description) == kDialogOk) {
    const auto ch = static_cast<std::uint8_t>((channel - 1) & 0x0F);
    event.SetMessages({ShortMessage::FromBytes(0xB0 | ch, controller & 0x7F, value & 0x7F)});
    event.SetName(std::move(name));
    event.SetDescription(std::move(description));
    EventEdited(host);
  }
  Refresh(host);
}

// Only a pause takes the new length; another event opened here keeps its contents and takes
// the name and description.
void EditWaitEvent(CStoredEvent& event, const EventEditHost& host) {
  const bool wasWait = event.IsWait();
  float milliseconds = static_cast<float>(event.GetWait());
  std::wstring name = event.GetName();
  std::wstring description = event.GetDescription();
  CWaitDlg dialog(host.parent);
  if (dialog.Run(milliseconds, name, description) == kDialogOk) {
    event.SetName(std::move(name));
    event.SetDescription(std::move(description));
    if (wasWait) event.SetWait(static_cast<std::uint32_t>(milliseconds));
    EventEdited(host);
  }
  Refresh(host);
}
