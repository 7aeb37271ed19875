#include "analysis/flight_closing.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "analysis/chord_screen.h"

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
//
// Speed: the pairs are screened with the squared chord (chord_screen.h). A
// pair is measured, and offered to Consider in the usual order, unless its
// chord proves that Consider would leave everything as it is: its gap is
// above the best one and either below kSecondPairMinGapM or above the
// runner-up's; runs of finishes are passed over at once when the ball around
// them proves this for all of them. Every pair that could change the result,
// ties included, is measured with the real distance, so the result is the
// one of measuring all.

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

// Squared-chord bounds of the current best and runner-up gaps.
struct TClosingScreen {
  double aboveBest = 0;
  double aboveSecond = 0;
  double belowSecondMin = ChordBelow(kSecondPairMinGapM);

  void Update(const TFlightClosing& closing) {
    aboveBest = ChordAbove(closing.gapM);
    aboveSecond = closing.secondStart == kNoPoint ? 0 : ChordAbove(closing.secondGapM);
  }
  // True when a pair of this squared chord cannot change the closing.
  bool Skips(const TFlightClosing& closing, double chord) const { return SkipsAll(closing, {chord, chord}); }
  // True when no pair of squared chord within the range can change it.
  bool SkipsAll(const TFlightClosing& closing, TChordRange range) const {
    if (closing.start == kNoPoint || range.low <= aboveBest) return false;
    return range.high < belowSecondMin || (closing.secondStart != kNoPoint && range.low > aboveSecond);
  }
};

std::vector<TUnitVector> FinishVectors(const TFlightPointCache& cache, int last, int stride) {
  std::vector<TUnitVector> vectors;
  for (int f = last; f <= static_cast<int>(cache.Count()) - 1; f += stride)
    vectors.push_back(UnitVectorOf(cache.Record(static_cast<size_t>(f))));
  return vectors;
}

// Finishes are screened in runs of this many: a run far from the start is
// passed over with one distance to its ball.
constexpr size_t kFinishRunLength = 16;

std::vector<TChordBall> FinishBalls(std::span<const TUnitVector> finishes) {
  std::vector<TChordBall> balls;
  for (size_t k = 0; k < finishes.size(); k += kFinishRunLength)
    balls.push_back(BallOf(finishes.subspan(k, std::min(kFinishRunLength, finishes.size() - k))));
  return balls;
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
  const std::vector<TUnitVector> finishes = FinishVectors(cache, last, finishStride);
  const std::vector<TChordBall> balls = FinishBalls(finishes);
  TClosingScreen screen;
  ProgressSetTotal(progress, first);
  for (int s = 0; s < first; s += startStride) {
    if (!ProgressStep(progress, startStride)) return false;
    const TUnitVector start = UnitVectorOf(cache.Record(static_cast<size_t>(s)));
    for (size_t run = 0; run < balls.size(); ++run) {
      if (screen.SkipsAll(closing, ChordRange(balls[run], start))) continue;
      const size_t end = std::min(finishes.size(), (run + 1) * kFinishRunLength);
      for (size_t k = run * kFinishRunLength; k < end; ++k) {
        if (screen.Skips(closing, ChordSquared(start, finishes[k]))) continue;
        const int f = last + static_cast<int>(k) * finishStride;
        Consider(s, f, cache.Distance(static_cast<size_t>(s), static_cast<size_t>(f)), closing);
        screen.Update(closing);
      }
    }
  }
  if (closing.start == kNoPoint) return true;

  const double span = cache.Distance(static_cast<size_t>(first), static_cast<size_t>(last));
  closing.stands = closing.gapM < kClosingMaxGapM && closing.gapM <= kClosingSpanShare * span;
  return true;
}

}  // namespace velantis
