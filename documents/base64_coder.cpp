#include "documents/base64_coder.h"

#include <cstring>
#include <new>
#include <functional>
#include <typeinfo>
#include <vector>

namespace {

using TempBucket = CBase64Coder::TempBucket;

constexpr unsigned char kNotInAlphabet = 0xFE;
constexpr unsigned char kPad = 0xFF;

// The steps themselves, shared by the virtual operations and the direct path of a plain coder.
void SplitGroup(TempBucket& out, const TempBucket& in) {
  out.data[0] = static_cast<unsigned char>(in.data[0] >> 2);
  out.data[1] = static_cast<unsigned char>(((in.data[0] & 0x03) << 4) | (in.data[1] >> 4));
  out.data[2] = static_cast<unsigned char>(((in.data[1] & 0x0F) << 2) | (in.data[2] >> 6));
  out.data[3] = static_cast<unsigned char>(in.data[2] & 0x3F);
  out.size = 4;
}

void WriteCharacters(const TempBucket& values, unsigned char bytes, const char* alphabet,
                     unsigned char* out) {
  for (int i = 0; i < 4; ++i) out[i] = static_cast<unsigned char>(alphabet[values.data[i]]);
  if (bytes < 3) out[3] = '=';
  if (bytes < 2) out[2] = '=';
}

void JoinGroup(TempBucket& out, const TempBucket& in) {
  const unsigned a = in.data[0], b = in.data[1], c = in.data[2], d = in.data[3];
  out.data[0] = static_cast<unsigned char>((a << 2) | ((b >> 4) & 3));
  out.data[1] = static_cast<unsigned char>((b << 4) | ((c >> 2) & 15));
  out.data[2] = static_cast<unsigned char>((c << 6) | (d & 63));
  out.data[3] = 0;
  out.size = 3;
}

std::uint32_t WriteBytes(const TempBucket& bytes, unsigned char* out) {
  std::uint32_t below255 = 0;
  for (int i = 0; i < 3; ++i) {
    out[i] = bytes.data[i];
    below255 += bytes.data[i] < 255 ? 1u : 0u;
  }
  return below255;
}

bool IsBadMime(unsigned char c) { return (c >= 7 && c <= 13) || c == 32; }

void Reserve(unsigned char*& buffer, std::uint32_t& capacity, std::uint32_t size) {
  if (size > capacity) {
    const std::uint64_t grown = ((std::uint64_t{size} >> 12) + 1) << 12;
    if (grown > UINT32_MAX) throw std::bad_alloc();
    delete[] buffer;
    buffer = nullptr;
    buffer = new unsigned char[grown];
    capacity = static_cast<std::uint32_t>(grown);
  }
  if (buffer) std::memset(buffer, 0, capacity);
}

}  // namespace

unsigned char CBase64Coder::m_DecodeTable[256];
std::uint32_t CBase64Coder::m_Init = 0;
const char CBase64Coder::m_Alphabet[65] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

CBase64Coder::~CBase64Coder() {
  delete[] m_decodedBuffer;
  delete[] m_encodedBuffer;
}

void CBase64Coder::Encode(const char* text) {
  if (text)
    Encode(reinterpret_cast<const unsigned char*>(text),
           static_cast<std::uint32_t>(std::strlen(text)));
}

void CBase64Coder::Encode(const unsigned char* data, std::uint32_t size) {
  // The text side is asked for twice the size.
  if (size > UINT32_MAX / 2) throw std::bad_alloc();
  if (IsOwnBuffer(data)) {
    const std::vector<unsigned char> copy(data, data + size);
    Encode(copy.data(), size);
    return;
  }
  SetDecodeBuffer(data, size);
  AllocEncode(size * 2);
  if (IsPlainCoder()) {
    EncodeGroups([](const TempBucket& in, unsigned char* out) {
      TempBucket values;
      SplitGroup(values, in);
      WriteCharacters(values, in.size, m_Alphabet, out);
    });
  } else {
    EncodeGroups([this](const TempBucket& in, unsigned char* out) { _EncodeToBuffer(in, out); });
  }
}

void CBase64Coder::Decode(const char* text) {
  if (text)
    Decode(reinterpret_cast<const unsigned char*>(text),
           static_cast<std::uint32_t>(std::strlen(text)));
}

void CBase64Coder::Decode(const unsigned char* data, std::uint32_t size) {
  // Built once, safely when several threads decode for the first time together.
  [[maybe_unused]] static const bool built = (_Init(), true);
  if (IsOwnBuffer(data)) {
    const std::vector<unsigned char> copy(data, data + size);
    Decode(copy.data(), size);
    return;
  }
  SetEncodeBuffer(data, size);
  AllocDecode(size);
  if (IsPlainCoder()) {
    DecodeGroups([](const TempBucket& in, unsigned char* out) {
      TempBucket bytes;
      JoinGroup(bytes, in);
      WriteBytes(bytes, out);
    });
  } else {
    DecodeGroups([this](const TempBucket& in, unsigned char* out) { _DecodeToBuffer(in, out); });
  }
}

const char* CBase64Coder::DecodedMessage() const {
  return reinterpret_cast<const char*>(m_decodedBuffer);
}

const char* CBase64Coder::EncodedMessage() const {
  return reinterpret_cast<const char*>(m_encodedBuffer);
}

std::uint32_t CBase64Coder::DecodedMessageSize() const { return m_decodedSize; }

std::uint32_t CBase64Coder::EncodedMessageSize() const { return m_encodedSize; }

void CBase64Coder::AllocEncode(std::uint32_t size) {
  Reserve(m_encodedBuffer, m_encodedCapacity, size);
  m_encodedSize = 0;
}

void CBase64Coder::AllocDecode(std::uint32_t size) {
  Reserve(m_decodedBuffer, m_decodedCapacity, size);
  m_decodedSize = 0;
}

void CBase64Coder::SetEncodeBuffer(const unsigned char* data, std::uint32_t size) {
  if (!data) size = 0;
  AllocEncode(size);
  if (IsPlainCoder())
    FilterText(data, size, IsBadMime);
  else
    FilterText(data, size, [this](unsigned char c) { return _IsBadMimeChar(c) != 0; });
}

void CBase64Coder::SetDecodeBuffer(const unsigned char* data, std::uint32_t size) {
  if (!data) size = 0;
  AllocDecode(size);
  if (size) std::memcpy(m_decodedBuffer, data, size);
  m_decodedSize = size;
}

void CBase64Coder::_EncodeToBuffer(const TempBucket& in, unsigned char* out) {
  TempBucket values;
  _EncodeRaw(values, in);
  WriteCharacters(values, in.size, m_Alphabet, out);
}

std::uint32_t CBase64Coder::_DecodeToBuffer(const TempBucket& in, unsigned char* out) {
  TempBucket bytes;
  _DecodeRaw(bytes, in);
  return WriteBytes(bytes, out);
}

void CBase64Coder::_EncodeRaw(TempBucket& out, const TempBucket& in) { SplitGroup(out, in); }

void CBase64Coder::_DecodeRaw(TempBucket& out, const TempBucket& in) { JoinGroup(out, in); }

int CBase64Coder::_IsBadMimeChar(unsigned char c) { return IsBadMime(c) ? 1 : 0; }

void CBase64Coder::_Init() {
  std::memset(m_DecodeTable, kNotInAlphabet, sizeof m_DecodeTable);
  for (unsigned char i = 0; i < 64; ++i) {
    const auto c = static_cast<unsigned char>(m_Alphabet[i]);
    m_DecodeTable[c] = i;
    m_DecodeTable[c | 0x80] = i;
  }
  constexpr unsigned char kPadChar = '=';
  m_DecodeTable[kPadChar] = kPad;
  m_DecodeTable[kPadChar | 0x80] = kPad;
  m_Init = 1;
}

template <class Step>
void CBase64Coder::EncodeGroups(Step step) {
  const unsigned char* in = m_decodedBuffer;
  const std::uint32_t size = m_decodedSize;
  TempBucket bucket;
  bucket.Clear();
  std::uint32_t i = 0;
  for (; size - i >= 3; i += 3) {
    bucket.data[0] = in[i];
    bucket.data[1] = in[i + 1];
    bucket.data[2] = in[i + 2];
    bucket.size = 3;
    step(bucket, m_encodedBuffer + m_encodedSize);
    m_encodedSize += 4;
  }
  if (i < size) {
    bucket.Clear();
    for (std::uint32_t j = i; j < size; ++j) bucket.data[j - i] = in[j];
    bucket.size = static_cast<unsigned char>(size - i);
    step(bucket, m_encodedBuffer + m_encodedSize);
    m_encodedSize += 4;
  }
}

template <class Step>
void CBase64Coder::DecodeGroups(Step step) {
  const unsigned char* text = m_encodedBuffer;
  const std::uint32_t size = m_encodedSize;
  const auto lookUp = [](unsigned char c) { return m_DecodeTable[c]; };
  // Padding in the last two places, and anywhere in a short tail, counts as zero.
  const auto lookUpTail = [](unsigned char c) {
    const unsigned char v = m_DecodeTable[c];
    return v == kPad ? static_cast<unsigned char>(0) : v;
  };
  TempBucket bucket;
  std::uint32_t i = 0;
  for (; size - i >= 4; i += 4) {
    bucket.data[0] = lookUp(text[i]);
    bucket.data[1] = lookUp(text[i + 1]);
    bucket.data[2] = lookUpTail(text[i + 2]);
    bucket.data[3] = lookUpTail(text[i + 3]);
    bucket.size = 4;
    step(bucket, m_decodedBuffer + m_decodedSize);
    m_decodedSize += 3;
  }
  if (i < size) {
    bucket.Clear();
    for (std::uint32_t j = i; j < size; ++j) bucket.data[j - i] = lookUpTail(text[j]);
    bucket.size = static_cast<unsigned char>(size - i);
    step(bucket, m_decodedBuffer + m_decodedSize);
    m_decodedSize += size - i;
  }
}

template <class IsBad>
void CBase64Coder::FilterText(const unsigned char* data, std::uint32_t size, IsBad isBad) {
  std::uint32_t kept = 0;
  for (std::uint32_t i = 0; i < size; ++i) {
    m_encodedBuffer[kept] = data[i];
    kept += isBad(data[i]) ? 0u : 1u;
  }
  // The last character may have been written and not kept; the buffer stays zero-terminated.
  if (kept < m_encodedCapacity) m_encodedBuffer[kept] = 0;
  m_encodedSize = kept;
}

bool CBase64Coder::IsOwnBuffer(const unsigned char* data) const {
  const auto within = [data](const unsigned char* buffer, std::uint32_t capacity) {
    const std::less<const unsigned char*> before;
    return buffer && !before(data, buffer) && before(data, buffer + capacity);
  };
  return within(m_encodedBuffer, m_encodedCapacity) || within(m_decodedBuffer, m_decodedCapacity);
}

bool CBase64Coder::IsPlainCoder() const { return typeid(*this) == typeid(CBase64Coder); }
