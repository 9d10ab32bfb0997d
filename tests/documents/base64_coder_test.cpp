#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "documents/base64_coder.h"

namespace {

// Shows the buffers and lets a test change one step.
class OpenCoder : public CBase64Coder {
 public:
  std::uint32_t EncodedCapacity() const { return m_encodedCapacity; }
  std::uint32_t DecodedCapacity() const { return m_decodedCapacity; }
  const unsigned char* EncodedBuffer() const { return m_encodedBuffer; }
  bool skipDashes = false;

 protected:
  int _IsBadMimeChar(unsigned char c) override {
    return (skipDashes && c == '-') || CBase64Coder::_IsBadMimeChar(c);
  }
};

std::vector<unsigned char> Decoded(const char* text) {
  CBase64Coder coder;
  coder.Decode(text);
  const auto* bytes = reinterpret_cast<const unsigned char*>(coder.DecodedMessage());
  return {bytes, bytes + coder.DecodedMessageSize()};
}

std::string Encoded(const std::vector<unsigned char>& bytes) {
  CBase64Coder coder;
  coder.Encode(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
  return {coder.EncodedMessage(), coder.EncodedMessageSize()};
}

using Bytes = std::vector<unsigned char>;

TEST(Base64, PadsTheLastGroupByHowManyBytesItHoldsAndNothingGivesNoText) {
  EXPECT_EQ(Encoded({0x41}), "QQ==");
  EXPECT_EQ(Encoded({0x41, 0x42}), "QUI=");
  EXPECT_EQ(Encoded({0x41, 0x42, 0x43}), "QUJD");
  EXPECT_EQ(Encoded({0xFB, 0xFF, 0x00, 0x3E}), "+/8APg==");
  CBase64Coder coder;  // nothing on a fresh coder leaves no text
  coder.Encode(static_cast<const char*>(nullptr));
  coder.Encode("");
  EXPECT_EQ(coder.EncodedMessage(), nullptr);
  EXPECT_EQ(coder.EncodedMessageSize(), 0u);
}

TEST(Base64, DecodedSizeCountsPaddingAndShortTails) {
  EXPECT_EQ(Decoded("QQ=="), (Bytes{0x41, 0x00, 0x00}));
  EXPECT_EQ(Decoded("QUI="), (Bytes{0x41, 0x42, 0x00}));
  EXPECT_EQ(Decoded("QQ"), (Bytes{0x41, 0x00}));
  EXPECT_EQ(Decoded("QUI"), (Bytes{0x41, 0x42, 0x00}));
  EXPECT_EQ(Decoded("QUJDQQ"), (Bytes{0x41, 0x42, 0x43, 0x41, 0x00}));
  CBase64Coder coder;
  coder.Decode("QUJD");
  EXPECT_EQ(coder.DecodedMessage()[3], 0) << "a zero follows the bytes";
}

TEST(Base64, WhitespaceAnywhereIsSkipped) {
  EXPECT_EQ(Decoded(" Q\tU\r\nJ\v D\f\a"), Decoded("QUJD"));
  CBase64Coder coder;
  coder.Decode(" QUJD\n");
  EXPECT_STREQ(coder.EncodedMessage(), "QUJD");
}

TEST(Base64, HighBitCharactersAliasTheAlphabetAndOthersDecodeAsFE) {
  const std::string alphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
  for (std::size_t i = 0; i + 4 <= alphabet.size(); ++i) {
    std::string plain = alphabet.substr(i, 4);
    std::string high = plain;
    for (char& c : high) c = static_cast<char>(static_cast<unsigned char>(c) | 0x80);
    EXPECT_EQ(Decoded(high.c_str()), Decoded(plain.c_str())) << plain;
  }
  EXPECT_EQ(Decoded("!!!!"), (Bytes{0xFB, 0xEF, 0xBE}));
  EXPECT_EQ(Decoded("=="), (Bytes{0x00, 0x00}));
}

TEST(Base64, RoundTripsEveryLengthUpToSomeGroups) {
  for (unsigned size = 0; size < 40; ++size) {
    Bytes bytes(size);
    for (unsigned i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(i * 37 + 200);
    Bytes back = Decoded(Encoded(bytes).c_str());
    ASSERT_EQ(back.size(), (size + 2) / 3 * 3) << size;
    back.resize(size);
    EXPECT_EQ(back, bytes) << size;
  }
}

TEST(Base64, CapacitiesGrowInSteps4096AboveTheRequestAndBuffersAreClearedOnReuse) {
  OpenCoder coder;
  const Bytes big(4096, 0xAA);
  coder.Encode(big.data(), 4096);
  EXPECT_EQ(coder.EncodedCapacity(), 12288u);
  EXPECT_EQ(coder.DecodedCapacity(), 8192u);
  EXPECT_EQ(coder.EncodedMessageSize(), 5464u);

  coder.Encode(big.data(), 3);
  EXPECT_EQ(coder.EncodedCapacity(), 12288u);
  EXPECT_EQ(coder.DecodedCapacity(), 8192u);
  EXPECT_STREQ(coder.EncodedMessage(), "qqqq");
  for (std::uint32_t i = 4; i < coder.EncodedCapacity(); ++i)
    ASSERT_EQ(coder.EncodedBuffer()[i], 0) << i;

  coder.Decode("QUJD");
  EXPECT_EQ(coder.EncodedCapacity(), 12288u);
  EXPECT_EQ(coder.DecodedMessageSize(), 3u);
}

TEST(Base64, ADerivedCoderChangesAStep) {
  OpenCoder coder;
  coder.skipDashes = true;
  coder.Decode("Q-Q-==");
  EXPECT_EQ(std::string(coder.DecodedMessage(), coder.DecodedMessageSize()),
            std::string("A\0\0", 3));
  coder.skipDashes = false;
  coder.Decode("Q-Q-");
  EXPECT_NE(std::string(coder.DecodedMessage(), 1), "A");
}

// Goes the step-by-step road: a derived coder whose steps are the base class's own.
class StepCoder : public OpenCoder {
 public:
  const unsigned char* DecodedBuffer() const { return m_decodedBuffer; }

 protected:
  void _DecodeRaw(TempBucket& out, const TempBucket& in) override {
    CBase64Coder::_DecodeRaw(out, in);
  }
};

// A plain coder decodes through its own faster road; every byte of both buffers, up to their
// capacities, must be what the steps leave, over text of every kind and reused coders.
TEST(Base64, APlainCoderLeavesBothBuffersAsTheStepsDo) {
  const std::string alphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::string odd = std::string("= \t\r\n\x07\x0b\x0c!~\x80\xc1\xe1\xff", 14) + '\0';
  std::uint32_t seed = 7;
  const auto next = [&seed] { return seed = seed * 1664525u + 1013904223u; };
  CBase64Coder plain;
  StepCoder steps;
  for (int round = 0; round < 60; ++round) {
    // Long and short, clean and dirty, so the coders grow, shrink and realign.
    const std::uint32_t length = round % 3 == 0 ? next() % 20000 : next() % 40;
    const std::uint32_t dirt = round % 4 == 0 ? 0 : 1 + next() % 40;  // one odd character in so many
    std::string text;
    for (std::uint32_t i = 0; i < length; ++i) {
      const std::uint32_t r = next() >> 8;
      text += (dirt && r % dirt == 0) ? odd[(r >> 8) % odd.size()] : alphabet[(r >> 8) % 64];
    }
    const auto* data = reinterpret_cast<const unsigned char*>(text.data());
    plain.Decode(data, static_cast<std::uint32_t>(text.size()));
    steps.Decode(data, static_cast<std::uint32_t>(text.size()));
    ASSERT_EQ(plain.EncodedMessageSize(), steps.EncodedMessageSize()) << round;
    ASSERT_EQ(plain.DecodedMessageSize(), steps.DecodedMessageSize()) << round;
    if (!steps.EncodedBuffer()) {
      ASSERT_EQ(plain.EncodedMessage(), nullptr) << round;
      continue;
    }
    ASSERT_EQ(0, std::memcmp(plain.EncodedMessage(), steps.EncodedBuffer(), steps.EncodedCapacity()))
        << round;
    ASSERT_EQ(0, std::memcmp(plain.DecodedMessage(), steps.DecodedBuffer(), steps.DecodedCapacity()))
        << round;
  }
}

}  // namespace
