#include "editor/event_bytes.h"

#include "documents/stored_event.h"

std::vector<std::uint8_t> EventToBytes(const CStoredEvent& event) {
  if (event.IsSysex()) return event.GetSysex();
  if (!event.HasMessages()) return {0x00};
  std::vector<std::uint8_t> bytes;
  for (const ShortMessage& m : event.MessagesView()) {
    bytes.push_back(m.Status());
    bytes.push_back(m.Data1());
    bytes.push_back(m.Data2());
  }
  return bytes;
}

namespace {

struct BytePass {
  std::vector<std::uint8_t> sysex;
  ShortMessageList messages;
  std::uint8_t status = 0, data1 = 0, data2 = 0;
  int count = 0;  // bytes of the message in hand
  bool haveMessage = false;
  bool sawSysex = false;
  bool inSysex = false;

  void Take(std::uint8_t b) {
    if (b >= 0x80 && b <= 0xEF) {
      if (count != 0) Flush();
      status = b;
      data1 = data2 = 0;
      count = 1;
      haveMessage = true;
    } else if (b == 0xF0) {
      sawSysex = inSysex = true;
      sysex.push_back(b);
    } else if (!sawSysex) {
      if (count == 1 && b < 0x80) {
        data1 = b;
        count = 2;
      } else if (count == 2 && b < 0x80) {
        data2 = b;
        count = 3;
      }
    } else {
      sysex.push_back(b);
      if (b == 0xF7) inSysex = false;
    }
  }
  void Flush() { messages.push_back(ShortMessage::FromBytes(status, data1, data2)); }
};

}  // namespace

void BytesToEvent(const std::vector<std::uint8_t>& bytes, CStoredEvent& event) {
  BytePass pass;
  for (std::uint8_t b : bytes) pass.Take(b);
  if (pass.sawSysex) {
    if (pass.inSysex) pass.sysex.push_back(0xF7);
    event.SetSysex(std::move(pass.sysex));
    return;
  }
  if (pass.haveMessage) pass.Flush();
  event.SetMessages(std::move(pass.messages));
}
