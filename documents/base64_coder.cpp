#include "documents/base64_coder.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <typeinfo>
#include <vector>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define TARN_BASE64_SSE2 1
#endif

namespace {

using TempBucket = CBase64Coder::TempBucket;

constexpr unsigned char kNotInAlphabet = 0xFE;
constexpr unsigned char kPad = 0xFF;

// The steps themselves, shared by the virtual operations and the direct path of a plain coder.
// The direct path writes straight to the output: going through a bucket on the stack costs a
// stalled store-to-load forward for each group.
void SplitGroup(TempBucket& out, const TempBucket& in) {
  out.data[0] = static_cast<unsigned char>(in.data[0] >> 2);
  out.data[1] = static_cast<unsigned char>(((in.data[0] & 0x03) << 4) | (in.data[1] >> 4));
  out.data[2] = static_cast<unsigned char>(((in.data[1] & 0x0F) << 2) | (in.data[2] >> 6));
  out.data[3] = static_cast<unsigned char>(in.data[2] & 0x3F);
  out.size = 4;
}

void Pad(unsigned char bytes, unsigned char* out) {
  if (bytes < 3) out[3] = '=';
  if (bytes < 2) out[2] = '=';
}

void WriteCharacters(const TempBucket& values, unsigned char bytes, const char* alphabet,
                     unsigned char* out) {
  for (int i = 0; i < 4; ++i) out[i] = static_cast<unsigned char>(alphabet[values.data[i]]);
  Pad(bytes, out);
}

// Four values a, b, c, d to three bytes, with 8-bit arithmetic.
void JoinInto(const TempBucket& in, unsigned char* out) {
  const unsigned a = in.data[0], b = in.data[1], c = in.data[2], d = in.data[3];
  out[0] = static_cast<unsigned char>((a << 2) | ((b >> 4) & 3));
  out[1] = static_cast<unsigned char>((b << 4) | ((c >> 2) & 15));
  out[2] = static_cast<unsigned char>((c << 6) | (d & 63));
}

void JoinGroup(TempBucket& out, const TempBucket& in) {
  JoinInto(in, out.data);
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

// Whether any of the eight bytes is 32 or below: all that decoding skips are, and text that is
// really base64 holds none. The usual bit trick, exact for "any byte".
bool MayHaveBadMime(std::uint64_t word) {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  return ((word - kOnes * 33) & ~word & (kOnes * 128)) != 0;
}

// Copies the characters that decoding keeps to `out`, which has room for `size` and one more,
// and returns their count. Clean words go across whole.
std::uint32_t CopyKept(const unsigned char* data, std::uint32_t size, unsigned char* out) {
  std::uint32_t kept = 0;
  std::uint32_t i = 0;
#ifdef TARN_BASE64_SSE2
  // Sixteen at a time while all of them are above 32.
  const __m128i above = _mm_set1_epi8(33);
  while (size - i >= 16) {
    const __m128i chars = _mm_loadu_si128(static_cast<const __m128i*>(static_cast<const void*>(data + i)));
    if (_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_max_epu8(chars, above), chars)) != 0xFFFF) break;
    _mm_storeu_si128(static_cast<__m128i*>(static_cast<void*>(out + kept)), chars);
    kept += 16;
    i += 16;
  }
#endif
  std::uint64_t word = 0;
  while (size - i >= sizeof word) {
    std::memcpy(&word, data + i, sizeof word);
    if (!MayHaveBadMime(word)) {
      std::memcpy(out + kept, &word, sizeof word);
      kept += sizeof word;
      i += sizeof word;
      continue;
    }
    for (const std::uint32_t end = i + sizeof word; i < end; ++i) {
      out[kept] = data[i];
      kept += IsBadMime(data[i]) ? 0u : 1u;
    }
  }
  for (; i < size; ++i) {
    out[kept] = data[i];
    kept += IsBadMime(data[i]) ? 0u : 1u;
  }
  // A skipped character may have been written behind the last kept one.
  out[kept] = 0;
  return kept;
}

// The buffer rule without the clearing: room for `size`, in the next multiple of 4096 above it.
void Grow(unsigned char*& buffer, std::uint32_t& capacity, std::uint32_t size) {
  if (size <= capacity) return;
  const std::uint64_t grown = ((std::uint64_t{size} >> 12) + 1) << 12;
  if (grown > UINT32_MAX) throw std::bad_alloc();
  delete[] buffer;
  buffer = nullptr;
  buffer = new unsigned char[grown];
  capacity = static_cast<std::uint32_t>(grown);
}

void Reserve(unsigned char*& buffer, std::uint32_t& capacity, std::uint32_t size) {
  Grow(buffer, capacity, size);
  if (buffer) std::memset(buffer, 0, capacity);
}

// Clears what the buffer holds from `from` on. Filling first and clearing behind leaves what
// clearing first and filling would, for one write of the buffer instead of two.
void ClearFrom(unsigned char* buffer, std::uint32_t capacity, std::uint32_t from) {
  if (buffer && from < capacity) std::memset(buffer + from, 0, capacity - from);
}

// The 8-bit arithmetic of the join only ever uses the low six bits of each value, so it is the
// usual packing of those six bits, and each character's share of the three bytes can be looked
// up ready placed: one table per place in the group, padding already zero in the last two.
struct JoinTables {
  std::uint32_t place[4][256];
};

const JoinTables& Tables(const unsigned char* decode) {
  static const JoinTables tables = [decode] {
    JoinTables t{};
    for (unsigned c = 0; c < 256; ++c) {
      const unsigned head = decode[c] & 63u;
      const unsigned tail = (decode[c] == kPad ? 0u : decode[c]) & 63u;
      const std::uint32_t bytes[4][3] = {
          {head << 2, 0, 0},
          {head >> 4, (head & 15) << 4, 0},
          {0, tail >> 2, (tail & 3) << 6},
          {0, 0, tail},
      };
      for (int p = 0; p < 4; ++p) {
        // In memory order in the word, whatever the machine's byte order.
        std::uint32_t word = 0;
        unsigned char inOrder[4] = {static_cast<unsigned char>(bytes[p][0]),
                                    static_cast<unsigned char>(bytes[p][1]),
                                    static_cast<unsigned char>(bytes[p][2]), 0};
        std::memcpy(&word, inOrder, sizeof word);
        t.place[p][c] = word;
      }
    }
    return t;
  }();
  return tables;
}

// Joins whole groups of four characters into `out`, three bytes each. Each group is stored as a
// word whose fourth byte the next group overwrites; the caller leaves room for it.
unsigned char* JoinGroups(const unsigned char* text, const unsigned char* end,
                          const JoinTables& t, unsigned char* out) {
  for (; text != end; text += 4, out += 3) {
    const std::uint32_t word = t.place[0][text[0]] | t.place[1][text[1]] |
                               t.place[2][text[2]] | t.place[3][text[3]];
    std::memcpy(out, &word, sizeof word);
  }
  return out;
}

// Text is filtered and joined a slice at a time, so the kept characters are joined while they
// are still in the nearest cache rather than after a trip through memory.
constexpr std::uint32_t kDecodeSlice = 4096;

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
      const unsigned a = in.data[0], b = in.data[1], c = in.data[2];
      out[0] = static_cast<unsigned char>(m_Alphabet[a >> 2]);
      out[1] = static_cast<unsigned char>(m_Alphabet[((a & 0x03) << 4) | (b >> 4)]);
      out[2] = static_cast<unsigned char>(m_Alphabet[((b & 0x0F) << 2) | (c >> 6)]);
      out[3] = static_cast<unsigned char>(m_Alphabet[c & 0x3F]);
      Pad(in.size, out);
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
  if (IsPlainCoder()) {
    const std::uint32_t textSize = data ? size : 0;
    Grow(m_encodedBuffer, m_encodedCapacity, textSize);
    Grow(m_decodedBuffer, m_decodedCapacity, size);
    DecodePlain(data, textSize);
    return;
  }
  SetEncodeBuffer(data, size);
  AllocDecode(size);
  DecodeGroups([this](const TempBucket& in, unsigned char* out) { _DecodeToBuffer(in, out); });
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
  if (!size) return;
  if (IsPlainCoder()) {
    m_encodedSize = CopyKept(data, size, m_encodedBuffer);
    return;
  }
  std::uint32_t kept = 0;
  for (std::uint32_t i = 0; i < size; ++i)
    if (!_IsBadMimeChar(data[i])) m_encodedBuffer[kept++] = data[i];
  m_encodedSize = kept;
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

// The loops keep pointers and counts in locals: stores through a byte pointer could alias any
// member, which would force a reload of every one of them for each group.
template <class Step>
void CBase64Coder::EncodeGroups(Step step) {
  const unsigned char* in = m_decodedBuffer;
  const unsigned char* const fullEnd = in + m_decodedSize / 3 * 3;
  const std::uint32_t left = m_decodedSize % 3;
  unsigned char* out = m_encodedBuffer;
  TempBucket bucket;
  bucket.Clear();
  bucket.size = 3;
  for (; in != fullEnd; in += 3, out += 4) {
    bucket.data[0] = in[0];
    bucket.data[1] = in[1];
    bucket.data[2] = in[2];
    step(bucket, out);
  }
  if (left) {
    bucket.Clear();
    for (std::uint32_t j = 0; j < left; ++j) bucket.data[j] = in[j];
    bucket.size = static_cast<unsigned char>(left);
    step(bucket, out);
    out += 4;
  }
  m_encodedSize = static_cast<std::uint32_t>(out - m_encodedBuffer);
}

template <class Step>
void CBase64Coder::DecodeGroups(Step step) {
  const unsigned char* text = m_encodedBuffer;
  const unsigned char* const fullEnd = text + m_encodedSize / 4 * 4;
  const std::uint32_t left = m_encodedSize % 4;
  const unsigned char* table = m_DecodeTable;
  unsigned char* out = m_decodedBuffer;
  // Padding in the last two places, and anywhere in a short tail, counts as zero.
  unsigned char tail[256];
  for (int c = 0; c < 256; ++c) tail[c] = table[c] == kPad ? 0 : table[c];
  TempBucket bucket;
  bucket.size = 4;
  for (; text != fullEnd; text += 4, out += 3) {
    bucket.data[0] = table[text[0]];
    bucket.data[1] = table[text[1]];
    bucket.data[2] = tail[text[2]];
    bucket.data[3] = tail[text[3]];
    step(bucket, out);
  }
  if (left) {
    bucket.Clear();
    for (std::uint32_t j = 0; j < left; ++j) bucket.data[j] = tail[text[j]];
    bucket.size = static_cast<unsigned char>(left);
    step(bucket, out);
    out += left;
  }
  m_decodedSize = static_cast<std::uint32_t>(out - m_decodedBuffer);
}

// The plain coder's decode: what SetEncodeBuffer, AllocDecode and the join of each group
// leave, byte for byte, with the clearing confined to what nothing else writes.
void CBase64Coder::DecodePlain(const unsigned char* data, std::uint32_t size) {
  const JoinTables& tables = Tables(m_DecodeTable);
  unsigned char* const text = m_encodedBuffer;
  unsigned char* const bytes = m_decodedBuffer;
  std::uint32_t i = 0;
  std::uint32_t kept = 0;
  std::uint32_t joined = 0;
  std::uint32_t written = 0;
  for (; i < size; i += kDecodeSlice) {
    kept += CopyKept(data + i, std::min(kDecodeSlice, size - i), text + kept);
    const std::uint32_t whole = (kept - joined) / 4 * 4;
    written = static_cast<std::uint32_t>(
        JoinGroups(text + joined, text + joined + whole, tables, bytes + written) - bytes);
    joined += whole;
  }
  m_decodedSize = written;
  if (const std::uint32_t left = kept - joined) {
    // Missing characters count as zero, as padding does here.
    unsigned char group[4] = {'A', 'A', 'A', 'A'};
    for (std::uint32_t j = 0; j < left; ++j)
      group[j] = m_DecodeTable[text[joined + j]] == kPad ? 'A' : text[joined + j];
    JoinGroups(group, group + 4, tables, bytes + written);
    m_decodedSize += left;
    written += 3;  // a short group still writes all three
  }
  m_encodedSize = kept;
  ClearFrom(m_encodedBuffer, m_encodedCapacity, kept);
  ClearFrom(m_decodedBuffer, m_decodedCapacity, written);
}

bool CBase64Coder::IsOwnBuffer(const unsigned char* data) const {
  const auto within = [data](const unsigned char* buffer, std::uint32_t capacity) {
    const std::less<const unsigned char*> before;
    return buffer && !before(data, buffer) && before(data, buffer + capacity);
  };
  return within(m_encodedBuffer, m_encodedCapacity) || within(m_decodedBuffer, m_decodedCapacity);
}

bool CBase64Coder::IsPlainCoder() const { return typeid(*this) == typeid(CBase64Coder); }
