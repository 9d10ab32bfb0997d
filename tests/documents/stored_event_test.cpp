// The kind of a stored event follows from its payloads; its texts follow from its kind.
#include <gtest/gtest.h>

#include "documents/stored_event.h"

namespace {

ShortMessage M(std::uint8_t status, std::uint8_t d1 = 0, std::uint8_t d2 = 0) {
  return ShortMessage::FromBytes(status, d1, d2);
}

CStoredEvent WithSysex(std::vector<std::uint8_t> bytes) {
  CStoredEvent e;
  e.SetSysex(std::move(bytes));
  return e;
}

CStoredEvent WithMessages(ShortMessageList messages) {
  CStoredEvent e;
  e.SetMessages(std::move(messages));
  return e;
}

TEST(StoredEventKind, SysexWinsOverMessagesAndMessagesOverAPause) {
  CStoredEvent e;
  e.SetWait(500);
  EXPECT_TRUE(e.IsWait());
  EXPECT_TRUE(e.IsEmpty()) << "a pure pause counts as empty";
  e.SetMessages({M(0x90, 60, 1)});
  EXPECT_EQ(e.GetWait(), 500u) << "setting messages keeps the pause";
  EXPECT_TRUE(e.HasMessages());
  EXPECT_FALSE(e.IsWait());
  e.SetSysex({0xF0, 0xF7});
  EXPECT_TRUE(e.IsSysex());
  EXPECT_FALSE(e.HasMessages());
  EXPECT_EQ(e.GetMessages().size(), 1u) << "setting sysex keeps the messages";
  e.SetWait(10);
  EXPECT_TRUE(e.IsWait()) << "setting a pause empties both payloads";
  EXPECT_EQ(e.GetSysexSize(), 0u);
}

TEST(StoredEventKind, OnlyAWholeFrameIsSysex) {
  EXPECT_FALSE(WithSysex({0xF0}).IsSysex());
  EXPECT_FALSE(WithSysex({0xF0, 0x00}).IsSysex());
  EXPECT_FALSE(WithSysex({0x00, 0xF7}).IsSysex());
  EXPECT_TRUE(WithSysex({0xF0, 0xF7}).IsSysex());
}

TEST(StoredEventText, TypeTexts) {
  CStoredEvent wait;
  wait.SetWait(1);
  EXPECT_EQ(wait.GetTypeText(), L"Wait");
  EXPECT_EQ(WithSysex({0xF0, 0xF7}).GetTypeText(), L"System Exclusive");
  EXPECT_EQ(WithSysex({0xF0}).GetTypeText(), L"Undefined");
  EXPECT_EQ(WithMessages({M(0xB0, 7), M(0xB1, 10), M(0xC2, 5)}).GetTypeText(),
            L"Bank/Program Change");
  EXPECT_EQ(WithMessages({M(0xB0), M(0xB0)}).GetTypeText(), L"MIDI Data");
  // A single message is named by its status, whatever its channel; a system message is data.
  EXPECT_EQ(WithMessages({M(0x80)}).GetTypeText(), L"Note Off");
  EXPECT_EQ(WithMessages({M(0xEF)}).GetTypeText(), L"Wheel");
  EXPECT_EQ(WithMessages({M(0xF8)}).GetTypeText(), L"MIDI Data");
}

TEST(StoredEventText, InfoTexts) {
  CStoredEvent wait;
  wait.SetWait(250);
  EXPECT_EQ(wait.GetInfoText(), L"250 ms");
  CStoredEvent negative;
  negative.SetWait(static_cast<std::uint32_t>(-16));
  EXPECT_EQ(negative.GetInfoText(), L"-16 ms");
  EXPECT_EQ(WithSysex({0xF0}).GetInfoText(), L"No Data");
  EXPECT_EQ(WithSysex({0xF0, 0xF7}).GetInfoText(), L"2 bytes");
  EXPECT_EQ(WithMessages({M(0xB0, 0, 1), M(0xB0, 0x20, 2), M(0xC0, 5)}).GetInfoText(),
            L"Ch 1 Bnk=130 Prg=5");
  // The type calls this a bank change; the info test is stricter.
  EXPECT_EQ(WithMessages({M(0xB0, 7, 1), M(0xB0, 10, 2), M(0xC0, 5)}).GetInfoText(),
            L"3 message(s)");
  EXPECT_EQ(WithMessages({M(0xC9, 12)}).GetInfoText(), L"Ch 10 Prg 12");
  EXPECT_EQ(WithMessages({M(0xBF, 7, 100)}).GetInfoText(), L"Ch 16 CC 7 = 100");
  EXPECT_EQ(WithMessages({M(0xF8)}).GetInfoText(), L"1 message(s)");
}

TEST(StoredEventName, TheTypeTextSticksOnlyOnceAsked) {
  CStoredEvent asked = WithMessages({M(0x90, 60, 1)});
  CStoredEvent never = asked;
  EXPECT_EQ(asked.GetName(), L"Note On");
  asked.SetMessages({M(0xC0, 1)});
  EXPECT_EQ(asked.GetName(), L"Note On");
  never.SetMessages({M(0xC0, 1)});
  EXPECT_EQ(never.GetName(), L"Program Change");
}

TEST(ShortMessageList, CopiesAndMovesKeepEveryMessageInlineOrNot) {
  ShortMessageList small{M(0x90, 1), M(0x90, 2)};
  ShortMessageList big;
  for (std::uint8_t i = 0; i < 20; ++i) big.push_back(M(0xB0, i));
  ShortMessageList copy = big;
  EXPECT_EQ(copy, big);
  copy = small;
  EXPECT_EQ(copy, small);
  ShortMessageList moved = std::move(big);
  EXPECT_EQ(moved.size(), 20u);
  EXPECT_EQ(moved[19].Data1(), 19);
  EXPECT_TRUE(big.empty());  // NOLINT(bugprone-use-after-move): the moved-from state is defined
  moved = std::move(small);
  EXPECT_EQ(moved.size(), 2u);
  EXPECT_EQ(moved[1].Data1(), 2);
}

}  // namespace
