// CBase64Coder: binary MIDI data to base64 text and back, for the XML documents.
//
// The coder owns both its buffers. After Encode or Decode the caller reads the result through
// the accessors, which stay valid until the next call or the coder's destruction. Encoding
// writes the standard alphabet with "=" padding in one unbroken run. Decoding is forgiving and
// deliberately inexact about lengths: the decoded size counts padding as bytes, so "QQ=="
// decodes to 41 00 00 with size 3. The saved state's readers are built around that.
//
// Each step is virtual so that a derived coder can change it. Coders are not shared between
// threads; every use has a local coder. The input of a call may be the coder's own result.
#pragma once

#include <cstdint>

#include "platform/export.h"

class TARN_EXPORT CBase64Coder {
 public:
  // One group in flight: up to 3 bytes on the way to text, up to 4 six-bit values on the way
  // to binary.
  struct TempBucket {
    unsigned char data[4];
    unsigned char size;

    void Clear() { data[0] = data[1] = data[2] = data[3] = size = 0; }
  };

  CBase64Coder() = default;
  // Copying would share the buffers and free them twice, so a coder cannot be copied.
  CBase64Coder(const CBase64Coder&) = delete;
  CBase64Coder& operator=(const CBase64Coder&) = delete;
  virtual ~CBase64Coder();

  // Encodes a zero-terminated string; a null pointer does nothing.
  virtual void Encode(const char* text);
  // Encodes `size` bytes: the text side gets 4 characters for each started group of 3 bytes,
  // padded with "=", and a terminating zero. The bytes are also kept on the binary side.
  virtual void Encode(const unsigned char* data, std::uint32_t size);
  // Decodes a zero-terminated string; a null pointer does nothing.
  virtual void Decode(const char* text);
  // Decodes `size` characters. Blanks, tabs and line endings (values 7 to 13 and 32) are
  // skipped; every other character counts, and one outside the alphabet decodes with the value
  // 0xFE rather than failing. Each full group of 4 gives 3 bytes, padding included, and 1 to 3
  // characters left over give that many bytes. A zero byte follows the result.
  virtual void Decode(const unsigned char* data, std::uint32_t size);

  // The binary side; null before any data was held.
  virtual const char* DecodedMessage() const;
  // The text side, zero-terminated; null after encoding nothing on a fresh coder.
  virtual const char* EncodedMessage() const;
  // Bytes on the binary side, and characters on the text side, after the last call.
  virtual std::uint32_t DecodedMessageSize() const;
  virtual std::uint32_t EncodedMessageSize() const;

 protected:
  // Make room for `size` bytes on one side: a request above the capacity replaces the buffer
  // with one of the next multiple of 4096 strictly above `size`. Either way the whole buffer is
  // zeroed and the side's size set to 0. Capacities only grow.
  virtual void AllocEncode(std::uint32_t size);
  virtual void AllocDecode(std::uint32_t size);
  // Fill one side from the input: the text side keeps only the characters that
  // _IsBadMimeChar accepts; the binary side copies all `size` bytes.
  virtual void SetEncodeBuffer(const unsigned char* data, std::uint32_t size);
  virtual void SetDecodeBuffer(const unsigned char* data, std::uint32_t size);
  // Writes the 4 characters of one group of `in.size` bytes, with "=" for the missing ones.
  virtual void _EncodeToBuffer(const TempBucket& in, unsigned char* out);
  // Writes the 3 bytes of one group of six-bit values; returns how many are below 255.
  virtual std::uint32_t _DecodeToBuffer(const TempBucket& in, unsigned char* out);
  // Splits 3 bytes into four six-bit values, most significant first.
  virtual void _EncodeRaw(TempBucket& out, const TempBucket& in);
  // Joins four values a, b, c, d into three bytes with 8-bit arithmetic.
  virtual void _DecodeRaw(TempBucket& out, const TempBucket& in);
  // True for the characters that decoding skips.
  virtual int _IsBadMimeChar(unsigned char c);

  // Builds the decode table: 0xFE for characters outside the alphabet, each alphabet
  // character's value also under its code with the top bit set, 0xFF for "=".
  static void _Init();

  unsigned char* m_decodedBuffer = nullptr;
  unsigned char* m_encodedBuffer = nullptr;
  std::uint32_t m_decodedCapacity = 0;
  std::uint32_t m_encodedCapacity = 0;
  std::uint32_t m_decodedSize = 0;
  std::uint32_t m_encodedSize = 0;

  static unsigned char m_DecodeTable[256];
  static std::uint32_t m_Init;
  static const char m_Alphabet[65];

 private:
  template <class Step>
  void EncodeGroups(Step step);
  template <class Step>
  void DecodeGroups(Step step);
  // Decode of a plain CBase64Coder, whose buffers have room for `size` already.
  void DecodePlain(const unsigned char* data, std::uint32_t size);
  // Whether `data` lies in one of this coder's buffers, which a call clears before reading.
  bool IsOwnBuffer(const unsigned char* data) const;
  // Whether this object is a plain CBase64Coder, whose steps can be called directly.
  bool IsPlainCoder() const;
};
