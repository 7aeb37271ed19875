#include "analysis/flight_closing.h"

#include <algorithm>
#include <array>
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
// them proves this for all of them, for one start or for a run of starts.
// Every pair that could change the result, ties included, is measured with
// the real distance, so the result is the one of measuring all.

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

// Squared-chord bounds of the current best and runner-up gaps; infinite
// while there is none, so that nothing is skipped for it.
struct TClosingScreen {
  double aboveBest = std::numeric_limits<double>::infinity();
  double aboveSecond = std::numeric_limits<double>::infinity();
  double belowSecondMin = ChordBelow(kSecondPairMinGapM);

  void Update(const TFlightClosing& closing) {
    aboveBest = ChordAbove(closing.gapM);
    aboveSecond =
        closing.secondStart == kNoPoint ? std::numeric_limits<double>::infinity() : ChordAbove(closing.secondGapM);
  }
  // True when a pair of this squared chord cannot change the closing.
  bool Skips(double chord) const { return chord > aboveBest && (chord < belowSecondMin || chord > aboveSecond); }
  // True when no pair of squared chord within the range can change it.
  bool SkipsAll(TChordRange range) const {
    return range.low > aboveBest && (range.high < belowSecondMin || range.low > aboveSecond);
  }
};

std::vector<TUnitVector> StrideVectors(const TFlightPointCache& cache, int from, int to, int stride) {
  std::vector<TUnitVector> vectors;
  for (int i = from; i < to; i += stride) vectors.push_back(UnitVectorOf(cache.Record(static_cast<size_t>(i))));
  return vectors;
}

// Starts and finishes are screened in runs of this many: a run of finishes
// far from a start, or from a whole run of starts, is passed over with one
// distance between balls.
constexpr size_t kRunLength = 16;

std::vector<TChordBall> RunBalls(std::span<const TUnitVector> vectors) {
  std::vector<TChordBall> balls;
  for (size_t k = 0; k < vectors.size(); k += kRunLength)
    balls.push_back(BallOf(vectors.subspan(k, std::min(kRunLength, vectors.size() - k))));
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
  const std::vector<TUnitVector> starts = StrideVectors(cache, 0, first, startStride);
  const std::vector<TUnitVector> finishVectors = StrideVectors(cache, last, n, finishStride);
  TUnitVectorColumns finishes;
  for (const TUnitVector& v : finishVectors) finishes.Add(v);
  const std::vector<TChordBall> startBalls = RunBalls(starts);
  const std::vector<TChordBall> balls = RunBalls(finishVectors);
  std::vector<size_t> openRuns;
  openRuns.reserve(balls.size());
  TClosingScreen screen;
  ProgressSetTotal(progress, first);
  std::array<double, kRunLength> chords{};
  for (size_t startRun = 0; startRun < startBalls.size(); ++startRun) {
    // A pair the screen skips now stays skipped: the best and runner-up gaps
    // only shrink. So runs of finishes skipped for the whole run of starts
    // here need no look for each start.
    openRuns.clear();
    for (size_t run = 0; run < balls.size(); ++run)
      if (!screen.SkipsAll(ChordRange(balls[run], startBalls[startRun]))) openRuns.push_back(run);
    const size_t startEnd = std::min(starts.size(), (startRun + 1) * kRunLength);
    for (size_t i = startRun * kRunLength; i < startEnd; ++i) {
      if (!ProgressStep(progress, startStride)) return false;
      const int s = static_cast<int>(i) * startStride;
      const TUnitVector& start = starts[i];
      for (const size_t run : openRuns) {
        if (screen.SkipsAll(ChordRange(balls[run], start))) continue;
        // The run's squared chords at once, and whether any pair is open.
        const size_t begin = run * kRunLength;
        const size_t count = std::min(kRunLength, finishes.Count() - begin);
        bool open = false;
        for (size_t k = 0; k < count; ++k) {
          const double dx = start.x - finishes.x[begin + k];
          const double dy = start.y - finishes.y[begin + k];
          const double dz = start.z - finishes.z[begin + k];
          chords[k] = dx * dx + dy * dy + dz * dz;
          open |= !screen.Skips(chords[k]);
        }
        if (!open) continue;
        for (size_t k = 0; k < count; ++k) {
          if (screen.Skips(chords[k])) continue;
          const int f = last + static_cast<int>(begin + k) * finishStride;
          Consider(s, f, cache.Distance(static_cast<size_t>(s), static_cast<size_t>(f)), closing);
          screen.Update(closing);
        }
      }
    }
  }
  if (closing.start == kNoPoint) return true;

  const double span = cache.Distance(static_cast<size_t>(first), static_cast<size_t>(last));
  closing.stands = closing.gapM < kClosingMaxGapM && closing.gapM <= kClosingSpanShare * span;
  return true;
}

}  // namespace velantis
