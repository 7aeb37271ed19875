// Rates over a sliding time window: for each sample, the change of a value
// (a distance along the track, an altitude) per second since the latest
// earlier sample at least window seconds before it. Averaging over a window
// rather than between neighbours keeps one noisy fix from making the maximum
// speed or the best climb.
#pragma once

#include <cstddef>
#include <functional>
#include <span>

namespace velantis {

struct TTimedValue {
  double seconds = 0;  // any origin, non-decreasing within a run
  double value = 0;
  size_t index = 0;    // the point the sample came from
};

// Calls rate(index, valuePerSecond) for each sample that has a window behind
// it. A sample whose time is before the previous one starts a new run (a
// clock that jumps back does not mix two runs). A run shorter than the
// window reports one rate, its average, at its last sample (none when the
// run has no duration). Windows are matched with a slack of a millisecond.
void ForEachWindowRate(std::span<const TTimedValue> samples, double windowS,
                       const std::function<void(size_t index, double rate)>& rate);

}  // namespace velantis
