#include "analysis/turnpoint_search.h"

#include <algorithm>
#include <array>

namespace velantis {

namespace {

struct TSearchRun {
  const TFlightPointCache& cache;
  const TSearchWindows& windows;
  int stride;
  TProgress* progress;
  TSearchBest& best;

  double D(int a, int b) const { return cache.Distance(static_cast<size_t>(a), static_cast<size_t>(b)); }
  // The first value of turnpoint slot after the previous turnpoint's index.
  int First(size_t slot, int previous) const { return std::max(previous + stride, windows[slot].low); }
  int Last(size_t slot) const { return windows[slot].high; }

  void Take(std::array<int, kMaxTurnpoints> turnpoints, double score) const {
    best.turnpoints = turnpoints;
    best.score = score;
  }
};

bool SearchTwo(const TSearchRun& run) {
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    for (int p2 = run.First(1, p1); p2 <= run.Last(1); p2 += run.stride) {
      const double score = run.D(p1, p2);
      if (score >= run.best.score) run.Take({p1, p2, kNoPoint, kNoPoint}, score);
    }
  }
  return true;
}

bool SearchThree(const TSearchRun& run, bool faiRule) {
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    for (int p2 = run.First(1, p1); p2 <= run.Last(1); p2 += run.stride) {
      const double leg1 = run.D(p1, p2);
      for (int p3 = run.First(2, p2); p3 <= run.Last(2); p3 += run.stride) {
        const double leg2 = run.D(p2, p3);
        const double leg3 = run.D(p3, p1);
        double score = leg1 + leg2 + leg3;
        if (score < run.best.score) continue;
        if (faiRule && !PassesFaiLegRule(leg1, leg2, leg3, score)) score = 0;
        if (score >= run.best.score) run.Take({p1, p2, p3, kNoPoint}, score);
      }
    }
  }
  return true;
}

bool SearchFour(const TSearchRun& run) {
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    for (int p2 = run.First(1, p1); p2 <= run.Last(1); p2 += run.stride) {
      const double leg1 = run.D(p1, p2);
      for (int p3 = run.First(2, p2); p3 <= run.Last(2); p3 += run.stride) {
        const double leg2 = run.D(p2, p3);
        for (int p4 = run.First(3, p3); p4 <= run.Last(3); p4 += run.stride) {
          const std::array<double, 4> legs{leg1, leg2, run.D(p3, p4), run.D(p4, p1)};
          const double score = legs[0] + legs[1] + legs[2] + legs[3];
          const std::array<int, kMaxTurnpoints> candidate{p1, p2, p3, p4};
          if (!QuadrilateralCounts(run.cache, candidate, legs, score)) continue;
          if (score >= run.best.score) run.Take(candidate, score);
        }
      }
    }
  }
  return true;
}

}  // namespace

bool SearchTurnpoints(const TFlightPointCache& cache, const TOptimizationShape& shape, const TSearchWindows& windows,
                      int stride, TProgress* progress, TSearchBest& best) {
  const TSearchRun run{cache, windows, std::max(1, stride), progress, best};
  switch (shape.turnpoints) {
    case 2:
      return SearchTwo(run);
    case 3:
      return SearchThree(run, shape.faiRule);
    default:
      return SearchFour(run);
  }
}

}  // namespace velantis
