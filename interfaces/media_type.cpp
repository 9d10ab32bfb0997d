#include "interfaces/media_type.h"

#include <algorithm>

bool CMediaType::operator==(const CMediaType& other) const {
  return majortype == other.majortype && subtype == other.subtype &&
         bFixedSizeSamples == other.bFixedSizeSamples &&
         bTemporalCompression == other.bTemporalCompression && lSampleSize == other.lSampleSize &&
         formattype == other.formattype && m_format == other.m_format;
}

void CMediaType::SetFormat(const void* bytes, std::uint32_t length) {
  if (!bytes || length == 0) {
    m_format.clear();
    return;
  }
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  m_format.assign(first, first + length);
}

const WaveFormat* CMediaType::WaveFormatPtr() const noexcept {
  // The record is packed (alignment 1), so any byte address holds one.
  return m_format.size() >= sizeof(WaveFormat)
             ? reinterpret_cast<const WaveFormat*>(m_format.data())
             : nullptr;
}

bool CMediaType::IsValid() const noexcept { return majortype != GUID_NULL; }

bool CMediaType::IsPartiallySpecified() const noexcept {
  return majortype == GUID_NULL || subtype == GUID_NULL || formattype == GUID_NULL;
}

bool CMediaType::MatchesPartial(const CMediaType& pattern) const {
  const auto fits = [](const GUID& want, const GUID& have) {
    return want == GUID_NULL || want == have;
  };
  if (!fits(pattern.majortype, majortype) || !fits(pattern.subtype, subtype) ||
      !fits(pattern.formattype, formattype))
    return false;
  return pattern.formattype == GUID_NULL || pattern.m_format.empty() ||
         pattern.m_format == m_format;
}

CMediaType AudioMediaType(const WaveFormat& format) {
  CMediaType type(MEDIATYPE_Audio);
  type.subtype = AudioSubtype(format.wFormatTag);
  type.bFixedSizeSamples = 1;
  type.bTemporalCompression = 0;
  type.lSampleSize = format.nBlockAlign;
  type.formattype = FORMAT_WaveFormatEx;
  type.SetFormat(&format, sizeof(WaveFormat));
  return type;
}
