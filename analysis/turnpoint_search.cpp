#include "analysis/turnpoint_search.h"

#include <algorithm>
#include <array>

#include "analysis/leg_distance_table.h"

namespace velantis {

namespace {

// The legs are looked up in tables measured once per pass
// (leg_distance_table.h); the loops, their order and the tie rule are those
// of measuring in place.
struct TSearchRun {
  const TFlightPointCache& cache;
  const TSearchWindows& windows;
  int stride;
  TProgress* progress;
  TSearchBest& best;
  int gridStep;

  // The first value of turnpoint slot after the previous turnpoint's index.
  int First(size_t slot, int previous) const { return std::max(previous + stride, windows[slot].low); }
  int Last(size_t slot) const { return windows[slot].high; }
  // Table columns advanced per stride.
  int ColumnStep() const { return stride / gridStep; }
  // The leg from slot `from` to the later slot `to`, or back from it.
  TLegDistanceTable Leg(size_t from, size_t to, TLegOrder order) const {
    return TLegDistanceTable(cache, windows[from], windows[to], gridStep, order);
  }

  void Take(std::array<int, kMaxTurnpoints> turnpoints, double score) const {
    best.turnpoints = turnpoints;
    best.score = score;
  }
};

bool SearchTwo(const TSearchRun& run) {
  const TLegDistanceTable d12 = run.Leg(0, 1, TLegOrder::RowToColumn);
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    const double* from1 = d12.Row(p1);
    int c2 = d12.Column(run.First(1, p1));
    for (int p2 = run.First(1, p1); p2 <= run.Last(1); p2 += run.stride, c2 += run.ColumnStep()) {
      const double score = from1[c2];
      if (score >= run.best.score) run.Take({p1, p2, kNoPoint, kNoPoint}, score);
    }
  }
  return true;
}

bool SearchThree(const TSearchRun& run, bool faiRule) {
  const TLegDistanceTable d12 = run.Leg(0, 1, TLegOrder::RowToColumn);
  const TLegDistanceTable d23 = run.Leg(1, 2, TLegOrder::RowToColumn);
  const TLegDistanceTable d31 = run.Leg(0, 2, TLegOrder::ColumnToRow);
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    const double* from1 = d12.Row(p1);
    const double* to1 = d31.Row(p1);
    for (int p2 = run.First(1, p1); p2 <= run.Last(1); p2 += run.stride) {
      const double leg1 = from1[d12.Column(p2)];
      const double* from2 = d23.Row(p2);
      int c3 = d23.Column(run.First(2, p2));
      for (int p3 = run.First(2, p2); p3 <= run.Last(2); p3 += run.stride, c3 += run.ColumnStep()) {
        const double leg2 = from2[c3];
        const double leg3 = to1[c3];
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
  const TLegDistanceTable d12 = run.Leg(0, 1, TLegOrder::RowToColumn);
  const TLegDistanceTable d23 = run.Leg(1, 2, TLegOrder::RowToColumn);
  const TLegDistanceTable d34 = run.Leg(2, 3, TLegOrder::RowToColumn);
  const TLegDistanceTable d41 = run.Leg(0, 3, TLegOrder::ColumnToRow);
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    const double* from1 = d12.Row(p1);
    const double* to1 = d41.Row(p1);
    for (int p2 = run.First(1, p1); p2 <= run.Last(1); p2 += run.stride) {
      const double leg1 = from1[d12.Column(p2)];
      const double* from2 = d23.Row(p2);
      for (int p3 = run.First(2, p2); p3 <= run.Last(2); p3 += run.stride) {
        const double leg2 = from2[d23.Column(p3)];
        const double* from3 = d34.Row(p3);
        int c4 = d34.Column(run.First(3, p3));
        for (int p4 = run.First(3, p3); p4 <= run.Last(3); p4 += run.stride, c4 += run.ColumnStep()) {
          const std::array<double, 4> legs{leg1, leg2, from3[c4], to1[c4]};
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
  const int step = std::max(1, stride);
  const TSearchRun run{cache, windows, step, progress, best, LegGridStep(windows, shape.turnpoints, step)};
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
