// How one input buffer is cut into segments at the sample positions where automated parameters
// change, so that each segment is processed with the parameters of its own start.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "platform/com.h"

// Walks `frames` frames from `position`, cutting at each of `changes` in order. For each change
// the parameters are first applied up to the current position (steps.Apply(position)); a change
// ahead of the current position ends a segment there (steps.Segment(frames, from)), cut to the
// frames left and skipped when none are. A change at or behind the current position processes
// nothing. After the last change the rest, if any, is applied for once more and processed as one
// segment, unless the processing of the last segment failed (steps.LastFailed()). A negative
// answer of Apply or Segment ends the walk and is its result; else 0.
template <class Steps>
HRESULT CutAtChanges(std::span<const std::int64_t> changes, std::int64_t position,
                     std::int32_t frames, Steps& steps) {
  std::int32_t left = frames;
  for (const std::int64_t change : changes) {
    HRESULT hr = steps.Apply(position);
    if (FAILED(hr)) return hr;
    const auto n = static_cast<std::int32_t>(std::clamp<std::int64_t>(change - position, 0, left));
    if (n == 0) continue;
    hr = steps.Segment(n, position);
    if (FAILED(hr)) return hr;
    left -= n;
    position = change;
  }
  if (left == 0 || steps.LastFailed()) return S_OK;
  const HRESULT hr = steps.Apply(position);
  return FAILED(hr) ? hr : steps.Segment(left, position);
}
