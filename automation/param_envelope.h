// One automatable parameter: its row of the parameter table, its value, and the envelope of
// segments a host has added, evaluated at given times. Each envelope carries its own lock, which
// adding, flushing, finding, evaluating and slicing take and which is never held across a call
// out of the envelope. The value, the flags and the deltas are single words that the direct
// setters touch without the lock.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "interfaces/media_params.h"
#include "platform/lock.h"

// A row of the parameter table: the record handed to hosts, then the plug-in's own fields that
// fix the internal scale.
struct ParamRow {
  MP_PARAMINFO info;
  float internalMin;
  float internalMax;
  const ParamChar* enumText;  // comma-separated names, or null
};

// The table: row 0 is "Enabled", a boolean starting at 1.0; row 1 is all zero.
inline constexpr std::uint32_t kParamRows = 2;
const ParamRow& ParamTableRow(std::uint32_t index) noexcept;

// [any thread] A value of the row's own scale in the internal one. Booleans are on from 0.5;
// integers and enumerations round half up; floats map the ranges linearly, in single precision.
float ToInternal(const ParamRow& row, float value) noexcept;
// [any thread] Back to the row's own scale; booleans as they stand.
float ToExternal(const ParamRow& row, float value) noexcept;

// [any thread] Media time in units of 100 ns rounded to the grid of samples at `rate`. Truncates
// to a whole sample first, then back to time, rounding half up; saturates at the ends of 64 bits.
std::int64_t RoundToSampleGrid(std::int64_t time, std::int32_t rate) noexcept;

class CParamEnvelope : public CCritSec {
 public:
  // Copies the row, starts at its neutral value and settles: no segments yet, so the value
  // counts as set directly.
  explicit CParamEnvelope(const ParamRow& row) noexcept;

  const ParamRow& Row() const noexcept { return m_row; }

  // --- direct access, no lock -------------------------------------------------------------------
  // [host thread] The value in the row's scale: the directly set one while it overrides or the
  // user captures the parameter, else the evaluated one.
  float GetExternal() const noexcept;
  // [host thread] Sets the value directly: it overrides, both deltas are zeroed, the segments
  // stay.
  void SetExternal(float value) noexcept;
  // [host thread or editor thread] The user starts or stops dragging the parameter.
  void SetCapture(bool captured) noexcept;

  // --- the envelope, each under its lock ------------------------------------------------------------
  // [any thread] The index of the segment that governs time `t`: the last whose start is not
  // after it, found by a binary search over the segments as they lie; -1 with none.
  std::int32_t FindSegment(std::int64_t t);
  // [streaming thread] Brings the value, its per-sample step (first delta) and the step's change
  // (second delta) to time `t` at `rate` hertz. Nothing changes without segments. Before the
  // first segment the value stays; outside a segment it holds that segment's end value; inside,
  // the segment's curve gives it. A sine is "(sin((x - 1/2) pi) + 1/2) times the value's span",
  // not offset by the start value: that is the curve as hosts know it from this plug-in. A
  // segment of no length divides by zero and yields infinities or not-a-number, unguarded.
  void Evaluate(std::int64_t t, std::int32_t rate);
  // [host thread] Adds `count` segments as given; then drops those before a change that has
  // already been played, sorts by start and removes byte-for-byte repeats. `rate` places the
  // sample grid on which the earliest new start is judged.
  void AddSegments(const MP_ENVELOPE_SEGMENT* segments, std::uint32_t count, std::int32_t rate);
  // [host thread] Removes every segment that overlaps [start, end), each bound rounded to the
  // sample grid unless it is the smallest or largest 64-bit time; evaluation starts afresh, and
  // with no segments left the value counts as set directly.
  void Flush(std::int64_t start, std::int64_t end, std::int32_t rate);
  // [streaming thread] Appends the sample position of every segment start and end at `rate` that
  // lies in [from, to), after making room for `extra` more positions as well: allocates only
  // when `positions` lacks that room. False, with nothing changed, when there are no segments.
  bool AppendSegmentPositions(std::int64_t from, std::int64_t to, std::int32_t rate,
                              std::size_t extra, std::vector<std::int64_t>& positions);
  // [any thread]
  std::size_t SegmentCount();
  // [any thread] A copy of the segments in their order, for inspection.
  std::vector<MP_ENVELOPE_SEGMENT> Segments();

  // --- state, for inspection; [any thread] -----------------------------------------------------------
  float CurrentValue() const noexcept { return m_current.load(std::memory_order_relaxed); }
  float OverrideValue() const noexcept { return m_overrideValue.load(std::memory_order_relaxed); }
  double FirstDelta() const noexcept { return m_firstDelta.load(std::memory_order_relaxed); }
  double SecondDelta() const noexcept { return m_secondDelta.load(std::memory_order_relaxed); }
  bool Steady() const noexcept { return m_steady.load(std::memory_order_relaxed) != 0; }
  bool Overrides() const noexcept { return m_override.load(std::memory_order_relaxed) != 0; }
  bool Captured() const noexcept { return m_capture.load(std::memory_order_relaxed) != 0; }
  std::int64_t EvaluatedThrough();

 private:
  std::int32_t FindLocked(std::int64_t t) const noexcept;
  void SettleLocked() noexcept;
  void ZeroDeltas() noexcept;
  // [lock held] Publishes whether there are segments, after each change of them.
  void NoteSegmentsLocked() noexcept { m_hasSegments.store(!m_segments.empty()); }

  ParamRow m_row;
  std::vector<MP_ENVELOPE_SEGMENT> m_segments;
  // Whether m_segments has any, readable without the lock: a parameter that is not automated
  // costs the streaming thread no lock per buffer.
  std::atomic<bool> m_hasSegments{false};
  std::atomic<float> m_current{0.0f};
  std::atomic<double> m_firstDelta{0.0};
  std::atomic<double> m_secondDelta{0.0};
  std::atomic<std::int32_t> m_steady{1};
  std::atomic<std::int32_t> m_override{0};
  std::atomic<std::int32_t> m_capture{0};
  std::atomic<float> m_overrideValue{0.0f};
  std::int64_t m_evaluatedThrough = 0;
};
