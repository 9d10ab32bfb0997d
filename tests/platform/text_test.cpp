#include <gtest/gtest.h>

#include "platform/codepage.h"
#include "platform/com.h"
#include "platform/messages.h"

namespace {

TEST(Guid, ParsesAndFormatsTheBracedForm) {
  GUID g{};
  ASSERT_TRUE(GuidFromString(L"{d8df3849-A01D-4254-a57d-5515BF9E3886}", g));
  EXPECT_EQ(g.Data1, 0xD8DF3849u);
  EXPECT_EQ(g.Data2, 0xA01D);
  EXPECT_EQ(g.Data4[0], 0xA5);
  EXPECT_EQ(g.Data4[7], 0x86);
  EXPECT_EQ(GuidToString(g), L"{D8DF3849-A01D-4254-A57D-5515BF9E3886}");
}

TEST(Guid, RefusesMalformedTextAndLeavesTheOutputAlone) {
  GUID g = IID_IUnknown;
  for (const wchar_t* bad : {L"", L"D8DF3849-A01D-4254-A57D-5515BF9E3886",
                             L"{D8DF3849-A01D-4254-A57D-5515BF9E388}",
                             L"{D8DF3849-A01D-4254-A57D-5515BF9E388G}",
                             L"{D8DF3849+A01D-4254-A57D-5515BF9E3886}"}) {
    EXPECT_FALSE(GuidFromString(bad, g)) << bad;
  }
  EXPECT_EQ(g, IID_IUnknown);
}

// UTF-8 and the Western ANSI code page both hold Latin letters; others may not.
bool HoldsLatinLetters() {
  const std::uint32_t page = NarrowCodePage();
  return page == kUtf8CodePage || page == 1252;
}

TEST(CodePage, RoundTripsTheLettersOfDeviceNames) {
  if (!HoldsLatinLetters()) GTEST_SKIP() << "code page " << NarrowCodePage();
  const std::wstring wide = L"Bank \u00c4\u00df \u00e9\u00f1 \u00a9 end";
  EXPECT_EQ(NarrowToWide(WideToNarrow(wide)), wide);
  EXPECT_EQ(WideToNarrow(L"\u00e9"), NarrowCodePage() == kUtf8CodePage ? "\xC3\xA9" : "\xE9");
}

// The neighbours survive; the character itself comes back whole or as one '?', never as a
// look-alike or as several characters.
TEST(CodePage, WhatTheCodePageCannotHoldBecomesOneQuestionMark) {
  const std::wstring wide = L"a\u4E00b";
  const std::wstring back = NarrowToWide(WideToNarrow(wide));
  EXPECT_TRUE(back == wide || back == L"a?b") << WideToNarrow(back);
  EXPECT_EQ(WideToNarrow(std::wstring{L'a', static_cast<wchar_t>(0xD800), L'b'}), "a?b")
      << "a lone surrogate is no character in any code page";
}

TEST(CodePage, Utf8CarriesEveryPlaneAndDecodesStrictly) {
  if (NarrowCodePage() != kUtf8CodePage) GTEST_SKIP() << "code page " << NarrowCodePage();
  const std::wstring wide = L"\u20ac \U0001F3B9 end";
  EXPECT_EQ(NarrowToWide(WideToNarrow(wide)), wide);
  // A lone continuation byte, a truncated sequence and an overlong slash.
  EXPECT_EQ(NarrowToWide("a\x80z"), L"a\uFFFDz");
  EXPECT_EQ(NarrowToWide("a\xE2\x82"), L"a\uFFFD\uFFFD");
  EXPECT_EQ(NarrowToWide("\xC0\xAF"), L"\uFFFD\uFFFD");
}

TEST(RegisteredMessages, OneNumberPerNameInTheRegisteredRange) {
  const MessageId a = RegisterMessage(L"UWM_TEST_A");
  const MessageId b = RegisterMessage(L"UWM_TEST_B");
  EXPECT_GE(a, 0xC000u);
  EXPECT_NE(a, b);
  EXPECT_EQ(RegisterMessage(L"UWM_TEST_A"), a);
}

}  // namespace
