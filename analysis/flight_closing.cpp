#include "analysis/flight_closing.h"

#include <algorithm>
#include <limits>

// Choices the closing rules leave open:
//
// - Which pair each acceptance test reads. Both read the pair of smallest
//   gap, the one that becomes start and finish: it is dropped when its gap is
//   kClosingMaxGapM or more, and when its gap exceeds half the distance from
//   P1 to the last turnpoint (a "closing" longer than half the flight's span
//   would not close anything; for short flights this test is the tighter
//   one). The runner-up pair is only reported, never output.
// - The runner-up is the smallest gap among all other measured pairs that is
//   kSecondPairMinGapM or more (a pair just beside the best one is no
//   alternative worth keeping).
// - Ties: the first pair measured keeps its place, so among equal gaps the
//   earliest start and then the earliest finish win.
// - The finish runs to n - 1 at most, so a finish index beyond the track,
//   which the last point's index would replace, cannot arise.
// - A flight whose P1 is the track's first point has no start to try: no
//   pair, no closing.

namespace velantis {

namespace {

int ClosingStride(int points) { return std::max(1, points / kClosingSteps); }

void Consider(int s, int f, double gap, TFlightClosing& closing) {
  if (closing.start == kNoPoint || gap < closing.gapM) {
    if (closing.start != kNoPoint && closing.gapM >= kSecondPairMinGapM) {
      closing.secondStart = closing.start;
      closing.secondFinish = closing.finish;
      closing.secondGapM = closing.gapM;
    }
    closing.start = s;
    closing.finish = f;
    closing.gapM = gap;
  } else if (gap >= kSecondPairMinGapM && (closing.secondStart == kNoPoint || gap < closing.secondGapM)) {
    closing.secondStart = s;
    closing.secondFinish = f;
    closing.secondGapM = gap;
  }
}

}  // namespace

bool CloseFlight(const TFlightPointCache& cache, std::span<const int> turnpoints, TProgress* progress,
                 TFlightClosing& closing) {
  closing = TFlightClosing{};
  const int n = static_cast<int>(cache.Count());
  const int first = turnpoints.front();
  const int last = turnpoints.back();
  const int startStride = ClosingStride(first);
  const int finishStride = ClosingStride(n - last);
  ProgressSetTotal(progress, first);
  for (int s = 0; s < first; s += startStride) {
    if (!ProgressStep(progress, startStride)) return false;
    for (int f = last; f <= n - 1; f += finishStride)
      Consider(s, f, cache.Distance(static_cast<size_t>(s), static_cast<size_t>(f)), closing);
  }
  if (closing.start == kNoPoint) return true;

  const double span = cache.Distance(static_cast<size_t>(first), static_cast<size_t>(last));
  closing.stands = closing.gapM < kClosingMaxGapM && closing.gapM <= kClosingSpanShare * span;
  return true;
}

}  // namespace velantis
