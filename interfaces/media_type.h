// Media types: what a connection carries. Audio only here: the major type "auds", a subtype per
// sample format, and a wave format record as the format block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/com.h"

// The 18-byte wave format record as it crosses the boundary, packed, standard field order.
#pragma pack(push, 1)
struct WaveFormat {
  std::uint16_t wFormatTag;  // WAVE_FORMAT_*_TAG
  std::uint16_t nChannels;
  std::uint32_t nSamplesPerSec;
  std::uint32_t nAvgBytesPerSec;  // nSamplesPerSec * nBlockAlign
  std::uint16_t nBlockAlign;      // bytes per frame, all channels
  std::uint16_t wBitsPerSample;
  std::uint16_t cbSize;  // bytes of extra format data after the record
};
#pragma pack(pop)
static_assert(sizeof(WaveFormat) == 18);
static_assert(offsetof(WaveFormat, wFormatTag) == 0);
static_assert(offsetof(WaveFormat, nChannels) == 2);
static_assert(offsetof(WaveFormat, nSamplesPerSec) == 4);
static_assert(offsetof(WaveFormat, nAvgBytesPerSec) == 8);
static_assert(offsetof(WaveFormat, nBlockAlign) == 12);
static_assert(offsetof(WaveFormat, wBitsPerSample) == 14);
static_assert(offsetof(WaveFormat, cbSize) == 16);

inline constexpr std::uint16_t WAVE_FORMAT_PCM_TAG = 0x0001;
inline constexpr std::uint16_t WAVE_FORMAT_IEEE_FLOAT_TAG = 0x0003;
inline constexpr std::uint16_t WAVE_FORMAT_EXTENSIBLE_TAG = 0xFFFE;

#ifndef _WIN32
inline constexpr GUID GUID_NULL = MakeGuid(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
#endif
inline constexpr GUID MEDIATYPE_Audio =
    MakeGuid(0x73647561, 0x0000, 0x0010, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71);
inline constexpr GUID MEDIASUBTYPE_PCM =
    MakeGuid(0x00000001, 0x0000, 0x0010, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71);
inline constexpr GUID MEDIASUBTYPE_IEEE_FLOAT =
    MakeGuid(0x00000003, 0x0000, 0x0010, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71);
inline constexpr GUID FORMAT_WaveFormatEx =
    MakeGuid(0x05589F81, 0xC356, 0x11CE, 0xBF, 0x01, 0x00, 0xAA, 0x00, 0x55, 0x59, 0x5A);

// The audio subtype of a format tag: the tag in the first field of the base audio identifier.
constexpr GUID AudioSubtype(std::uint16_t formatTag) noexcept {
  return MakeGuid(formatTag, 0x0000, 0x0010, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71);
}

// A media type with an owned format block. A null identifier (GUID_NULL) in the major type,
// subtype or format type means "any" when the type is used as a pattern (see MatchesPartial).
class CMediaType {
 public:
  GUID majortype = GUID_NULL;
  GUID subtype = GUID_NULL;
  std::int32_t bFixedSizeSamples = 1;
  std::int32_t bTemporalCompression = 0;
  std::uint32_t lSampleSize = 1;  // bytes per sample when fixed-size
  GUID formattype = GUID_NULL;

  CMediaType() = default;
  // A type with only its major type set, e.g. CMediaType(MEDIATYPE_Audio) as a pattern.
  explicit CMediaType(const GUID& major) : majortype(major) {}

  // Equal when every field and the format block's bytes are equal.
  bool operator==(const CMediaType& other) const;

  // Bytes in the format block; 0 when there is none.
  std::uint32_t FormatLength() const noexcept {
    return static_cast<std::uint32_t>(m_format.size());
  }
  // The format block, or null when it is empty.
  const std::uint8_t* Format() const noexcept {
    return m_format.empty() ? nullptr : m_format.data();
  }
  // Replaces the format block with a copy of `length` bytes at `bytes`; a null `bytes` or a 0
  // `length` empties it.
  void SetFormat(const void* bytes, std::uint32_t length);
  // The format block as a wave format record when it is at least 18 bytes long, else null.
  // Points into this object: valid until its format changes or it goes.
  const WaveFormat* WaveFormatPtr() const noexcept;

  // Whether the major type is set, i.e. the type says anything at all.
  bool IsValid() const noexcept;
  // Whether the major type, subtype or format type is left open.
  bool IsPartiallySpecified() const noexcept;
  // Whether this type fits `pattern`: each identifier the pattern sets must be equal; a pattern
  // with a format type and a format block must also match the block.
  bool MatchesPartial(const CMediaType& pattern) const;

 private:
  std::vector<std::uint8_t> m_format;
};

// The audio type of a wave format: major type audio, the subtype of its tag (the extensible tag
// gives the extensible subtype; its sub-format is not in the 18 bytes), fixed-size samples of one
// frame, format type FORMAT_WaveFormatEx and the 18-byte record as the format block.
CMediaType AudioMediaType(const WaveFormat& format);
