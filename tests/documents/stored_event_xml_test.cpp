// A stored event leaves as one "MIDIMsg" element and comes back through a reader that accepts
// more forms than the writer makes.
#include <gtest/gtest.h>

#include <string>

#include "documents/stored_event.h"
#include "documents/xml.h"

namespace {

ShortMessage M(std::uint8_t status, std::uint8_t d1 = 0, std::uint8_t d2 = 0) {
  return ShortMessage::FromBytes(status, d1, d2);
}

std::string Written(const CStoredEvent& event) {
  TiXmlElement config("Config");
  event.WriteXml(config);
  std::string text;
  text << *config.FirstChildElement();
  return text;
}

CStoredEvent Read(const std::string& text) {
  TiXmlDocument doc;
  doc.Parse(text.c_str());
  EXPECT_FALSE(doc.Error()) << text;
  CStoredEvent event;
  event.SetWait(77);  // a stale pause, to show which forms replace it
  event.ReadXml(*doc.RootElement());
  return event;
}

CStoredEvent RoundTrip(const CStoredEvent& event) { return Read(Written(event)); }

CStoredEvent Named(const wchar_t* name, bool enabled = true) {
  CStoredEvent e;
  e.SetName(name);
  e.SetDescription(L"d");
  e.SetEnabled(enabled);
  return e;
}

TEST(StoredEventXmlWrite, EachKindHasItsOwnExactForm) {
  CStoredEvent wait = Named(L"P");
  wait.SetWait(1000);
  EXPECT_EQ(Written(wait), R"(<MIDIMsg Name="P" Description="d" Enabled="1" Wait="1000" />)");

  CStoredEvent messages = Named(L"B", false);
  messages.SetMessages({M(0xB0, 0, 1), M(0xC3, 127)});
  EXPECT_EQ(Written(messages), R"(<MIDIMsg Name="B" Description="d" Enabled="0">)"
                               R"(<Msg Status="176" Data1="0" Data2="1" />)"
                               R"(<Msg Status="195" Data1="127" Data2="0" /></MIDIMsg>)");

  CStoredEvent sysex = Named(L"S");
  sysex.SetSysex({0xF0, 0xF7});
  EXPECT_EQ(Written(sysex), R"(<MIDIMsg Name="S" Description="d" Enabled="1">8Pc=</MIDIMsg>)");

  CStoredEvent unframed = Named(L"E");
  unframed.SetSysex({0xF0});
  EXPECT_EQ(Written(unframed), R"(<MIDIMsg Name="E" Description="d" Enabled="1" />)");

  CStoredEvent all = Named(L"X");  // only the strongest payload is written
  all.SetWait(5);
  all.SetMessages({M(0x90, 60, 100)});
  all.SetSysex({0xF0, 0x01, 0xF7});
  EXPECT_EQ(Written(all), R"(<MIDIMsg Name="X" Description="d" Enabled="1">8AH3</MIDIMsg>)");
}

TEST(StoredEventXmlWrite, AnUnaskedEmptyNameStaysEmptyAndAnAskedOneIsTheTypeText) {
  CStoredEvent e;
  e.SetMessages({M(0xC0, 5)});
  EXPECT_EQ(Written(e), R"(<MIDIMsg Name="" Description="" Enabled="0">)"
                        R"(<Msg Status="192" Data1="5" Data2="0" /></MIDIMsg>)");
  EXPECT_EQ(Written(RoundTrip(e)), Written(e));
  e.GetName();
  EXPECT_EQ(RoundTrip(e).GetName(), L"Program Change");
}

TEST(StoredEventXmlRoundTrip, KeepsThePayloadThatDecidesTheKind) {
  CStoredEvent wait = Named(L"W");
  wait.SetWait(0xFFFFFFF0u);  // past the signed range: wraps out and back
  const CStoredEvent waitBack = RoundTrip(wait);
  EXPECT_EQ(waitBack.GetWait(), 0xFFFFFFF0u);
  EXPECT_TRUE(waitBack.IsWait());

  CStoredEvent messages = Named(L"M");
  messages.SetMessages({M(0xB0, 7, 100)});
  messages.SetSysex({0xF0, 0x01});  // not a frame: lost
  const CStoredEvent messagesBack = RoundTrip(messages);
  EXPECT_EQ(messagesBack.GetMessages(), ShortMessageList{M(0xB0, 7, 100)});
  EXPECT_EQ(messagesBack.GetSysexSize(), 0u);
  EXPECT_EQ(messagesBack.GetWait(), 77u) << "a pause the reader did not see keeps its value";

  for (std::uint32_t size = 2; size <= 7; ++size) {
    std::vector<std::uint8_t> bytes(size, 0x11);
    bytes.front() = 0xF0;
    bytes.back() = 0xF7;
    CStoredEvent sysex = Named(L"S");
    sysex.SetSysex(bytes);
    EXPECT_EQ(RoundTrip(sysex).GetSysex(), bytes)
        << "padding bytes must not survive, size " << size;
  }

  CStoredEvent empty = RoundTrip(Named(L"E", true));
  EXPECT_TRUE(empty.IsEmpty());
  EXPECT_EQ(empty.GetName(), L"E");
  EXPECT_EQ(empty.GetDescription(), L"d");
  EXPECT_TRUE(empty.IsEnabled());
}

TEST(StoredEventXmlRead, APauseWinsOverEveryOtherForm) {
  const CStoredEvent e =
      Read(R"(<MIDIMsg Enabled="1" Wait="0" Status="144" Data1="1" Data2="2"><Msg Status="1" )"
           R"(Data1="1" Data2="1"/>8Pc=</MIDIMsg>)");
  EXPECT_EQ(e.GetWait(), 0u);
  EXPECT_TRUE(e.GetMessages().empty());
  EXPECT_EQ(Read(R"(<MIDIMsg Wait="-1" />)").GetWait(), 0xFFFFFFFFu);
}

TEST(StoredEventXmlRead, TheDirectSingleMessageForm) {
  EXPECT_EQ(Read(R"(<MIDIMsg Status="400" Data1="-1" Data2="7"><Msg Status="1" Data1="1" )"
                 R"(Data2="1"/></MIDIMsg>)")
                .GetMessages(),
            ShortMessageList{M(0x90, 0xFF, 7)})
      << "values are cut to their low byte, and the children are not read";
  EXPECT_EQ(Read(R"(<MIDIMsg Status="144"><Msg Status="128" Data1="60" Data2="0"/></MIDIMsg>)")
                .GetMessages(),
            ShortMessageList{M(0x80, 60, 0)})
      << "Status alone is not the direct form";
}

TEST(StoredEventXmlRead, TheFirstBadMsgChildEndsTheList) {
  EXPECT_EQ(Read(R"(<MIDIMsg><Msg Status="176" Data1="0" Data2="1"/>)"
                 R"(<Msg Status="176" Data1="32"/><Msg Status="192" Data1="5" Data2="0"/>)"
                 R"(</MIDIMsg>)")
                .GetMessages(),
            ShortMessageList{M(0xB0, 0, 1)});
  EXPECT_EQ(Read(R"(<MIDIMsg><Other/><Msg Status="1" Data1="2" Data2="3"/>)"
                 R"(<Msg Status="4" Data1="5" Data2="6"/></MIDIMsg>)")
                .GetMessages()
                .size(),
            2u)
      << "other children are passed over";
}

TEST(StoredEventXmlRead, SysexTextKeepsFramesAndDropsWhatLiesBetween) {
  // F0 01 F7 | 00 05 | F0 02 F7 | F7: the bytes between frames go, a stray F7 stays.
  const CStoredEvent e = Read("<MIDIMsg>8AH3AAXwAvf3</MIDIMsg>");
  EXPECT_EQ(e.GetSysex(), (std::vector<std::uint8_t>{0xF0, 0x01, 0xF7, 0xF0, 0x02, 0xF7, 0xF7}));
  EXPECT_EQ(Read("<MIDIMsg>AfD3</MIDIMsg>").GetSysexSize(), 0u) << "the first byte must be F0";
  EXPECT_EQ(Read("<MIDIMsg>8AE=</MIDIMsg>").GetSysex(),
            (std::vector<std::uint8_t>{0xF0, 0x01, 0x00}))
      << "without a final F7 the padding byte stays, and the block is no sysex";
  EXPECT_TRUE(Read("<MIDIMsg>8AE=</MIDIMsg>").IsEmpty());
}

TEST(StoredEventXmlRead, AMissingOrBadFlagMeansDisabledAndMissingTextsAreEmpty) {
  EXPECT_FALSE(Read(R"(<MIDIMsg Enabled="yes" />)").IsEnabled());
  EXPECT_TRUE(Read(R"(<MIDIMsg Enabled="-3" />)").IsEnabled());
  CStoredEvent e = Read(R"(<MIDIMsg><Bogus/></MIDIMsg>)");
  EXPECT_FALSE(e.IsEnabled());
  EXPECT_EQ(e.GetName(), L"Wait") << "the stale pause survives a form that matches nothing";
}

}  // namespace
