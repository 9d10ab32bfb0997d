// One parameter's envelope: scales, every curve, holding between and after segments, what adding
// keeps and drops, what a flush leaves, and segments of no length.
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "automation/param_envelope.h"

namespace {

constexpr std::int32_t kRate = 44100;
constexpr std::int64_t kSecond = 10'000'000;
constexpr std::int64_t kEarliest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();

MP_ENVELOPE_SEGMENT Segment(std::int64_t start, std::int64_t end, float from, float to,
                            std::uint32_t curve = MP_CURVE_LINEAR) {
  return MP_ENVELOPE_SEGMENT{start, end, from, to, curve, 0};
}

// An "Enabled" envelope holding `segments`.
struct Enabled {
  CParamEnvelope envelope{ParamTableRow(0)};

  explicit Enabled(std::vector<MP_ENVELOPE_SEGMENT> segments = {}) { Add(segments); }
  void Add(const std::vector<MP_ENVELOPE_SEGMENT>& segments) {
    envelope.AddSegments(segments.data(), static_cast<std::uint32_t>(segments.size()), kRate);
  }
  float At(std::int64_t t) {
    envelope.Evaluate(t, kRate);
    return envelope.CurrentValue();
  }
};

ParamRow RowOf(std::uint32_t type, float min, float max, float internalMin, float internalMax) {
  ParamRow row{};
  row.info.mpType = type;
  row.info.mpdMinValue = min;
  row.info.mpdMaxValue = max;
  row.internalMin = internalMin;
  row.internalMax = internalMax;
  return row;
}

TEST(ParamScale, BooleansAreOnFromOneHalfAndOtherTypesMapTheirRanges) {
  const ParamRow& enabled = ParamTableRow(0);
  EXPECT_EQ(ToInternal(enabled, 0.49f), 0.0f);
  EXPECT_EQ(ToInternal(enabled, 0.5f), 1.0f);
  EXPECT_EQ(ToExternal(enabled, 0.25f), 0.25f) << "a boolean reads back as it stands";

  const ParamRow real = RowOf(MPT_FLOAT, 0.0f, 10.0f, 100.0f, 200.0f);
  EXPECT_FLOAT_EQ(ToInternal(real, 2.5f), 125.0f);
  EXPECT_FLOAT_EQ(ToExternal(real, 125.0f), 2.5f);
  for (const std::uint32_t type : {MPT_INT, MPT_ENUM}) {
    const ParamRow whole = RowOf(type, 0.0f, 10.0f, 0.0f, 100.0f);
    EXPECT_EQ(ToInternal(whole, 0.25f), 3.0f) << "2.5 rounds half up";
    EXPECT_EQ(ToInternal(whole, 0.24f), 2.0f);
    EXPECT_FLOAT_EQ(ToExternal(whole, 30.0f), 3.0f);
  }
}

TEST(ParamEnvelope, StartsAtItsNeutralValueAsADirectlySetOne) {
  Enabled enabled;
  EXPECT_EQ(enabled.envelope.GetExternal(), 1.0f);
  EXPECT_TRUE(enabled.envelope.Overrides());
  EXPECT_TRUE(enabled.envelope.Steady());
  EXPECT_EQ(enabled.At(5 * kSecond), 1.0f) << "no segments: evaluation changes nothing";
  EXPECT_EQ(enabled.envelope.EvaluatedThrough(), 0);
}

TEST(ParamEnvelope, LinearSegmentIsHalfWayAtItsMiddleAndStepsOneSampleAtATime) {
  Enabled enabled({Segment(0, kSecond, 0.0f, 1.0f)});
  EXPECT_FLOAT_EQ(enabled.At(kSecond / 2), 0.5f);
  EXPECT_DOUBLE_EQ(enabled.envelope.FirstDelta(), 1.0 / kRate);
  EXPECT_EQ(enabled.envelope.SecondDelta(), 0.0);
  EXPECT_FALSE(enabled.envelope.Overrides()) << "the envelope now rules";
  EXPECT_EQ(enabled.envelope.GetExternal(), enabled.envelope.CurrentValue());
  EXPECT_EQ(enabled.envelope.EvaluatedThrough(), kSecond / 2);
}

TEST(ParamEnvelope, JumpAndSquareCurvesFollowTheirFormulas) {
  Enabled jump({Segment(0, kSecond, 1.0f, 0.0f, MP_CURVE_JUMP)});
  EXPECT_EQ(jump.At(kSecond - 1), 1.0f) << "a jump keeps its start value to its end";
  EXPECT_EQ(jump.envelope.FirstDelta(), 0.0);

  const double n = kRate;  // samples in the one-second segment
  Enabled square({Segment(0, kSecond, 0.0f, 1.0f, MP_CURVE_SQUARE)});
  EXPECT_FLOAT_EQ(square.At(kSecond / 2), 0.25f);
  EXPECT_DOUBLE_EQ(square.envelope.SecondDelta(), 2.0 / (n * n));
  EXPECT_DOUBLE_EQ(square.envelope.FirstDelta(), (1.0 + 1.0 / n) / n);
  EXPECT_FLOAT_EQ(square.At(kSecond), 1.0f);

  Enabled inverse({Segment(0, kSecond, 0.0f, 1.0f, MP_CURVE_INVSQUARE)});
  EXPECT_FLOAT_EQ(inverse.At(kSecond / 2), 0.75f);
  EXPECT_DOUBLE_EQ(inverse.envelope.SecondDelta(), -2.0 / (n * n));
  EXPECT_DOUBLE_EQ(inverse.envelope.FirstDelta(), (-1.0 + 1.0 / n) / n * -1.0);
  EXPECT_FLOAT_EQ(inverse.At(0), 0.0f);
}

TEST(ParamEnvelope, SineIsTheCurveHostsKnowNotOneFromStartToEnd) {
  // A linear segment first, so that the sine can be seen to keep the deltas it finds.
  Enabled enabled({Segment(0, kSecond, 0.0f, 1.0f),
                   Segment(kSecond, 2 * kSecond, 1.0f, 0.0f, MP_CURVE_SINE)});
  enabled.At(kSecond / 2);
  const double delta = enabled.envelope.FirstDelta();
  EXPECT_FLOAT_EQ(enabled.At(kSecond + kSecond / 2), -0.5f);
  EXPECT_FALSE(enabled.envelope.Steady());
  EXPECT_EQ(enabled.envelope.FirstDelta(), delta);
  EXPECT_FLOAT_EQ(enabled.At(2 * kSecond), -1.5f);
}

TEST(ParamEnvelope, HoldsEachEndValueUntilTheNextSegmentAndAfterTheLast) {
  Enabled enabled({Segment(kSecond, 2 * kSecond, 0.0f, 1.0f),
                   Segment(3 * kSecond, 4 * kSecond, 1.0f, 0.0f)});
  EXPECT_EQ(enabled.At(0), 1.0f) << "before the first segment the value stays";
  EXPECT_FLOAT_EQ(enabled.At(kSecond + kSecond / 4), 0.25f);
  EXPECT_EQ(enabled.At(2 * kSecond + 1), 1.0f);
  EXPECT_EQ(enabled.envelope.FirstDelta(), 0.0);
  EXPECT_EQ(enabled.At(100 * kSecond), 0.0f);
  EXPECT_EQ(enabled.envelope.FirstDelta(), 0.0);
  EXPECT_TRUE(enabled.envelope.Steady());
}

TEST(ParamEnvelope, FindsTheLastSegmentStartingAtOrBeforeATime) {
  Enabled enabled({Segment(0, 10, 0, 1), Segment(10, 20, 0, 1), Segment(10, 30, 1, 0),
                   Segment(40, 50, 0, 1), Segment(60, 70, 0, 1)});
  CParamEnvelope& envelope = enabled.envelope;
  EXPECT_EQ(envelope.FindSegment(-1), -1);
  EXPECT_EQ(envelope.FindSegment(0), 0);
  EXPECT_EQ(envelope.FindSegment(5), 0);
  EXPECT_EQ(envelope.SegmentCount(), 5u);
  const std::int32_t tied = envelope.FindSegment(10);
  EXPECT_TRUE(tied == 1 || tied == 2) << "either segment starting at 10: " << tied;
  EXPECT_EQ(envelope.FindSegment(39), 2);
  EXPECT_EQ(envelope.FindSegment(45), 3);
  EXPECT_EQ(envelope.FindSegment(kLatest), 4);
  EXPECT_EQ(CParamEnvelope(ParamTableRow(0)).FindSegment(0), -1);
}

TEST(ParamEnvelope, AddingSortsAndDropsOnlyByteForByteRepeats) {
  Enabled enabled({Segment(2 * kSecond, 3 * kSecond, 0, 1), Segment(0, kSecond, 0, 1)});
  enabled.Add({Segment(0, kSecond, 0, 1)});
  EXPECT_EQ(enabled.envelope.SegmentCount(), 2u) << "an identical segment changes nothing";
  enabled.Add({Segment(0, kSecond, 0, 0.5f)});
  MP_ENVELOPE_SEGMENT flagged = Segment(0, kSecond, 0, 1);
  flagged.flags = 1;
  enabled.Add({flagged});
  const auto segments = enabled.envelope.Segments();
  ASSERT_EQ(segments.size(), 4u) << "same start, other value or flags: all kept";
  for (std::size_t i = 0; i + 1 < segments.size(); ++i)
    EXPECT_LE(segments[i].rtStart, segments[i + 1].rtStart);
  EXPECT_EQ(segments.back().rtStart, 2 * kSecond);
}

TEST(ParamEnvelope, AddingBehindWhatWasPlayedDropsTheSegmentsBeforeItsChange) {
  const MP_ENVELOPE_SEGMENT first = Segment(0, kSecond, 0, 1);
  const MP_ENVELOPE_SEGMENT second = Segment(kSecond, 2 * kSecond, 1, 0);
  Enabled enabled({first, second});
  enabled.At(kSecond + kSecond / 2);
  // A start 100 units past a sample rounds down onto it, before the new segment's own start:
  // the search lands on the second segment, which governs that time, and the first goes.
  const MP_ENVELOPE_SEGMENT late = Segment(kSecond + kSecond / 5 + 100, 3 * kSecond, 0, 1);
  enabled.Add({late});
  const auto segments = enabled.envelope.Segments();
  ASSERT_EQ(segments.size(), 2u);
  EXPECT_EQ(segments[0].rtStart, second.rtStart);
  EXPECT_EQ(segments[1].rtStart, late.rtStart);

  Enabled ahead({first});
  ahead.At(kSecond / 2);
  ahead.Add({Segment(2 * kSecond, 3 * kSecond, 0, 1)});
  EXPECT_EQ(ahead.envelope.SegmentCount(), 2u) << "a change still to come drops nothing";
}

TEST(ParamEnvelope, FlushRemovesWhatOverlapsOnTheSampleGridAndLeavesAnOverride) {
  // 100 units is under one sample at 44100 Hz: the range [0, 100) rounds to nothing.
  Enabled snapped({Segment(50, 60, 0, 1)});
  snapped.envelope.Flush(0, 100, kRate);
  EXPECT_EQ(snapped.envelope.SegmentCount(), 1u);

  Enabled enabled({Segment(0, kSecond, 0, 1), Segment(kSecond, 2 * kSecond, 1, 0),
                   Segment(2 * kSecond, 3 * kSecond, 0, 1)});
  enabled.envelope.Flush(kSecond, 2 * kSecond, kRate);
  const auto kept = enabled.envelope.Segments();
  ASSERT_EQ(kept.size(), 2u) << "touching a bound is no overlap";
  EXPECT_EQ(kept[0].rtStart, 0);
  EXPECT_EQ(kept[1].rtStart, 2 * kSecond);

  EXPECT_FLOAT_EQ(enabled.At(kSecond / 4), 0.25f);
  EXPECT_FALSE(enabled.envelope.Overrides());
  enabled.envelope.Flush(kEarliest, kLatest, kRate);
  EXPECT_EQ(enabled.envelope.SegmentCount(), 0u);
  EXPECT_TRUE(enabled.envelope.Overrides());
  EXPECT_FLOAT_EQ(enabled.envelope.OverrideValue(), 0.25f);
  EXPECT_FLOAT_EQ(enabled.envelope.GetExternal(), 0.25f);
  EXPECT_EQ(enabled.envelope.EvaluatedThrough(), 0);
}

TEST(ParamEnvelope, SegmentsOfNoLengthGiveInfinitiesOrNotANumberAndNoFault) {
  for (const std::uint32_t curve :
       {MP_CURVE_JUMP, MP_CURVE_LINEAR, MP_CURVE_SQUARE, MP_CURVE_INVSQUARE, MP_CURVE_SINE}) {
    Enabled enabled({Segment(kSecond, kSecond, 0.0f, 1.0f, curve)});
    const float value = enabled.At(kSecond);
    if (curve == MP_CURVE_JUMP) {
      EXPECT_EQ(value, 0.0f);
    } else {
      EXPECT_TRUE(std::isnan(value)) << "curve " << curve << ": x is 0 / 0";
    }
    if (curve == MP_CURVE_LINEAR) {
      EXPECT_TRUE(std::isinf(enabled.envelope.FirstDelta())) << "one over no samples";
    }
    if (curve == MP_CURVE_SQUARE) {
      EXPECT_TRUE(std::isnan(enabled.envelope.FirstDelta()));
    }
    EXPECT_EQ(enabled.At(kSecond + 1), 1.0f) << "after it, its end value holds";
  }
  // At the far ends of time the arithmetic stays finite or saturates.
  Enabled extreme({Segment(kEarliest, kLatest, 0.0f, 1.0f)});
  EXPECT_FLOAT_EQ(extreme.At(0), 0.5f);
  EXPECT_GE(RoundToSampleGrid(kLatest, kRate), kLatest - kSecond);
  EXPECT_LE(RoundToSampleGrid(kEarliest, kRate), kEarliest + kSecond);
}

}  // namespace
