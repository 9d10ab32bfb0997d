#include "automation/param_envelope.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>

namespace {

constexpr std::int64_t kEarliest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();

constexpr ParamRow MakeRow(std::uint32_t type, std::uint32_t caps, float min, float max,
                           float neutral, const char16_t* label, float internalMin,
                           float internalMax) {
  ParamRow row{};
  row.info.mpType = type;
  row.info.mopCaps = caps;
  row.info.mpdMinValue = min;
  row.info.mpdMaxValue = max;
  row.info.mpdNeutralValue = neutral;
  for (std::size_t i = 0; label[i] != u'\0' && i + 1 < std::size(row.info.szLabel); ++i)
    row.info.szLabel[i] = static_cast<ParamChar>(label[i]);
  row.internalMin = internalMin;
  row.internalMax = internalMax;
  return row;
}

constexpr ParamRow kTable[kParamRows] = {
    MakeRow(MPT_BOOL,
            MP_CURVE_JUMP | MP_CURVE_LINEAR | MP_CURVE_SQUARE | MP_CURVE_INVSQUARE, 0.0f, 1.0f,
            1.0f, u"Enabled", 0.0f, 1.0f),
    ParamRow{},
};

// A double as a float, with finite values beyond the float range going to infinity as the
// hardware would round them, so that no conversion is out of range.
float Narrow(double value) noexcept {
  constexpr auto kLargest = static_cast<double>(std::numeric_limits<float>::max());
  if (value > kLargest) return std::numeric_limits<float>::infinity();
  if (value < -kLargest) return -std::numeric_limits<float>::infinity();
  return static_cast<float>(value);
}

// Truncates toward zero, saturating at the ends of 64 bits; not-a-number gives 0.
std::int64_t Truncate(double value) noexcept {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (std::isnan(value)) return 0;
  if (value >= kTwoTo63) return kLatest;
  if (value < -kTwoTo63) return kEarliest;
  return static_cast<std::int64_t>(value);
}

}  // namespace

const ParamRow& ParamTableRow(std::uint32_t index) noexcept {
  return kTable[std::min(index, kParamRows - 1)];
}

float ToInternal(const ParamRow& row, float value) noexcept {
  const MP_PARAMINFO& info = row.info;
  if (info.mpType == MPT_BOOL) return value >= 0.5f ? 1.0f : 0.0f;
  const float scaled = (value - info.mpdMinValue) / (info.mpdMaxValue - info.mpdMinValue) *
                           (row.internalMax - row.internalMin) +
                       row.internalMin;
  if (info.mpType == MPT_INT || info.mpType == MPT_ENUM) return std::floor(scaled + 0.5f);
  return scaled;
}

float ToExternal(const ParamRow& row, float value) noexcept {
  const MP_PARAMINFO& info = row.info;
  if (info.mpType == MPT_BOOL) return value;
  return (value - row.internalMin) / (row.internalMax - row.internalMin) *
             (info.mpdMaxValue - info.mpdMinValue) +
         info.mpdMinValue;
}

std::int64_t RoundToSampleGrid(std::int64_t time, std::int32_t rate) noexcept {
  const double perUnit = rate * 1e-7;
  const double samples = std::trunc(static_cast<double>(time) * perUnit);
  return Truncate(samples / perUnit + 0.5);
}

// --- CParamEnvelope ---------------------------------------------------------------------------------

CParamEnvelope::CParamEnvelope(const ParamRow& row) noexcept : m_row(row) {
  m_current.store(ToInternal(m_row, m_row.info.mpdNeutralValue), std::memory_order_relaxed);
  SettleLocked();  // nobody else can see the envelope yet
}

float CParamEnvelope::GetExternal() const noexcept {
  const bool direct = m_override.load(std::memory_order_relaxed) != 0 ||
                      m_capture.load(std::memory_order_relaxed) != 0;
  const float value = direct ? m_overrideValue.load(std::memory_order_relaxed)
                             : m_current.load(std::memory_order_relaxed);
  return ToExternal(m_row, value);
}

void CParamEnvelope::SetExternal(float value) noexcept {
  m_override.store(1, std::memory_order_relaxed);
  const float internal = ToInternal(m_row, value);
  m_overrideValue.store(internal, std::memory_order_relaxed);
  m_current.store(internal, std::memory_order_relaxed);
  ZeroDeltas();
}

void CParamEnvelope::SetCapture(bool captured) noexcept {
  m_capture.store(captured ? 1 : 0, std::memory_order_relaxed);
}

void CParamEnvelope::ZeroDeltas() noexcept {
  m_firstDelta.store(0.0, std::memory_order_relaxed);
  m_secondDelta.store(0.0, std::memory_order_relaxed);
}

void CParamEnvelope::SettleLocked() noexcept {
  if (!m_segments.empty() || Overrides() || Captured()) return;
  m_overrideValue.store(CurrentValue(), std::memory_order_relaxed);
  m_override.store(1, std::memory_order_relaxed);
}

std::int32_t CParamEnvelope::FindSegment(std::int64_t t) {
  CAutoLock lock(*this);
  return FindLocked(t);
}

// The search halves [low, high) until the middle stops moving, and only then walks down to a
// start not after t, so segments need not be sorted for it to end safely.
std::int32_t CParamEnvelope::FindLocked(std::int64_t t) const noexcept {
  const auto count = static_cast<std::int32_t>(m_segments.size());
  if (count == 0) return -1;
  if (m_segments[static_cast<std::size_t>(count - 1)].rtStart <= t) return count - 1;
  std::int32_t low = 0;
  std::int32_t high = count;
  std::int32_t middle = count / 2;
  for (;;) {
    const std::int64_t start = m_segments[static_cast<std::size_t>(middle)].rtStart;
    if (start == t) break;
    if (start < t)
      low = middle;
    else
      high = middle;
    const std::int32_t next = low + (high - low) / 2;
    if (next == middle) break;
    middle = next;
  }
  while (middle >= 0 && m_segments[static_cast<std::size_t>(middle)].rtStart > t) --middle;
  return middle;
}

void CParamEnvelope::Evaluate(std::int64_t t, std::int32_t rate) {
  if (!m_hasSegments.load()) return;
  CAutoLock lock(*this);
  if (m_segments.empty()) return;
  const std::int32_t index = FindLocked(t);
  m_steady.store(1, std::memory_order_relaxed);
  if (index < 0) {
    ZeroDeltas();
  } else {
    const MP_ENVELOPE_SEGMENT segment = m_segments[static_cast<std::size_t>(index)];
    if (t < segment.rtStart || t > segment.rtEnd) {
      m_current.store(ToInternal(m_row, segment.valEnd), std::memory_order_relaxed);
      ZeroDeltas();
    } else {
      if (Overrides() || Captured()) m_override.store(0, std::memory_order_relaxed);
      // Differences of times in double: the times may lie anywhere in 64 bits.
      const double length = (static_cast<double>(segment.rtEnd) -
                             static_cast<double>(segment.rtStart)) * 1e-7;
      const auto v0 = static_cast<double>(ToInternal(m_row, segment.valStart));
      const auto v1 = static_cast<double>(ToInternal(m_row, segment.valEnd));
      const double span = v1 - v0;
      const double x =
          (static_cast<double>(t) - static_cast<double>(segment.rtStart)) * 1e-7 / length;
      const double samples = rate * length;
      switch (segment.iCurve) {
        case MP_CURVE_JUMP:
          m_current.store(Narrow(v0), std::memory_order_relaxed);
          ZeroDeltas();
          break;
        case MP_CURVE_LINEAR:
          m_secondDelta.store(0.0, std::memory_order_relaxed);
          m_firstDelta.store(span / samples, std::memory_order_relaxed);
          m_current.store(Narrow(x * span + v0), std::memory_order_relaxed);
          break;
        case MP_CURVE_SQUARE:
        case MP_CURVE_INVSQUARE: {
          // The inverse square is the square seen from the segment's end.
          const bool inverse = segment.iCurve == MP_CURVE_INVSQUARE;
          const double d = inverse ? -span : span;
          const double at = inverse ? x - 1.0 : x;
          const double base = inverse ? v1 : v0;
          const double a = 1.0 / samples;
          m_secondDelta.store(2.0 * d / (samples * samples), std::memory_order_relaxed);
          m_firstDelta.store((2.0 * at + a) * a * d, std::memory_order_relaxed);
          m_current.store(Narrow(d * at * at + base), std::memory_order_relaxed);
          break;
        }
        default:
          m_steady.store(0, std::memory_order_relaxed);
          m_current.store(Narrow((std::sin((x - 0.5) * std::numbers::pi) + 0.5) * span),
                          std::memory_order_relaxed);
          break;
      }
    }
  }
  m_evaluatedThrough = std::max(m_evaluatedThrough, t);
}

void CParamEnvelope::AddSegments(const MP_ENVELOPE_SEGMENT* segments, std::uint32_t count,
                                 std::int32_t rate) {
  CAutoLock lock(*this);
  m_segments.reserve(m_segments.size() + count);
  std::int64_t earliest = kLatest;
  for (std::uint32_t i = 0; i < count; ++i) {
    m_segments.push_back(segments[i]);
    earliest = std::min(earliest, RoundToSampleGrid(segments[i].rtStart, rate));
  }
  // What lies before a change that has already been played is dropped.
  const std::int32_t index = FindLocked(earliest);
  if (index > 0 && earliest < m_evaluatedThrough)
    m_segments.erase(m_segments.begin(), m_segments.begin() + index);
  std::stable_sort(m_segments.begin(), m_segments.end(),
                   [](const MP_ENVELOPE_SEGMENT& a, const MP_ENVELOPE_SEGMENT& b) {
                     return a.rtStart < b.rtStart;
                   });
  const auto repeats = std::unique(m_segments.begin(), m_segments.end(),
                                   [](const MP_ENVELOPE_SEGMENT& a, const MP_ENVELOPE_SEGMENT& b) {
                                     return std::memcmp(&a, &b, sizeof a) == 0;
                                   });
  m_segments.erase(repeats, m_segments.end());
  NoteSegmentsLocked();
}

void CParamEnvelope::Flush(std::int64_t start, std::int64_t end, std::int32_t rate) {
  CAutoLock lock(*this);
  if (start != kEarliest && start != kLatest) start = RoundToSampleGrid(start, rate);
  if (end != kEarliest && end != kLatest) end = RoundToSampleGrid(end, rate);
  std::erase_if(m_segments, [start, end](const MP_ENVELOPE_SEGMENT& s) {
    const bool clear = s.rtEnd <= start || s.rtStart >= end;
    return !clear;
  });
  m_evaluatedThrough = 0;
  NoteSegmentsLocked();
  SettleLocked();
}

bool CParamEnvelope::AppendSegmentPositions(std::int64_t from, std::int64_t to, std::int32_t rate,
                                            std::size_t extra,
                                            std::vector<std::int64_t>& positions) {
  if (!m_hasSegments.load()) return false;
  CAutoLock lock(*this);
  if (m_segments.empty()) return false;
  positions.reserve(positions.size() + extra + 2 * m_segments.size());
  const double perUnit = rate * 1e-7;
  for (const MP_ENVELOPE_SEGMENT& segment : m_segments) {
    for (const std::int64_t time : {segment.rtStart, segment.rtEnd}) {
      const std::int64_t position = Truncate(static_cast<double>(time) * perUnit + 0.5);
      if (position >= from && position < to) positions.push_back(position);
    }
  }
  return true;
}

std::size_t CParamEnvelope::SegmentCount() {
  CAutoLock lock(*this);
  return m_segments.size();
}

std::vector<MP_ENVELOPE_SEGMENT> CParamEnvelope::Segments() {
  CAutoLock lock(*this);
  return m_segments;
}

std::int64_t CParamEnvelope::EvaluatedThrough() {
  CAutoLock lock(*this);
  return m_evaluatedThrough;
}
