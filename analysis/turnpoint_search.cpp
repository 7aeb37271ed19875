#include "analysis/turnpoint_search.h"

#include <algorithm>
#include <array>
#include <vector>

#include "analysis/leg_distance_table.h"

namespace velantis {

namespace {

// The legs are looked up in tables measured at most once per pass
// (leg_distance_table.h); the loops, their order and the tie rule are those
// of measuring in place.
//
// Before a loop level runs, the sum of upper bounds of the legs it and the
// levels inside it can reach (taken in the order the score adds the legs) is
// compared with the best score so far: when it is strictly below, no
// candidate of that level can reach the best, so none could replace it (a
// candidate below the best is never taken, whatever the shape's rule says),
// and the level is passed over. Equal bounds still run, as equal scores
// replace. The progress steps of the outermost loop are made as before.

// What a pass keeps in memory: the window vectors and up to four leg tables.
struct TSearchStorage {
  std::array<TUnitVectorColumns, kMaxTurnpoints> vectors;
  std::array<TLegTableStorage, kMaxTurnpoints> tables;
};

struct TSearchRun {
  const TFlightPointCache& cache;
  const TSearchWindows& windows;
  int stride;
  TProgress* progress;
  TSearchBest& best;
  int gridStep;
  TSearchStorage& storage;

  // The first value of turnpoint slot after the previous turnpoint's index.
  int First(size_t slot, int previous) const { return std::max(previous + stride, windows[slot].low); }
  int Last(size_t slot) const { return windows[slot].high; }
  bool Empty(size_t slot, int previous) const { return First(slot, previous) > Last(slot); }
  // Table columns advanced per stride.
  int ColumnStep() const { return stride / gridStep; }
  // The leg from slot `from` to the later slot `to`, or back from it, in
  // table storage `table` (one per leg of the pass).
  TLegDistanceTable Leg(size_t from, size_t to, TLegOrder order, size_t table) const {
    return TLegDistanceTable(cache, windows[from], windows[to], storage.vectors[from], storage.vectors[to], gridStep,
                             order, storage.tables[table]);
  }
  bool Below(double bound) const { return bound < best.score; }

  void Take(std::array<int, kMaxTurnpoints> turnpoints, double score) const {
    best.turnpoints = turnpoints;
    best.score = score;
  }
};

// For each row, the largest row bound of it and every later row: a bound of
// the leg over every row a loop can still reach.
std::vector<double> LaterRowBounds(const TLegDistanceTable& table, const TIndexWindow& rows, int gridStep) {
  const int count = rows.high < rows.low ? 0 : (rows.high - rows.low) / gridStep + 1;
  std::vector<double> bounds(static_cast<size_t>(count), 0.0);
  double largest = 0;
  for (int row = count - 1; row >= 0; --row) {
    largest = std::max(largest, table.RowBound(row));
    bounds[static_cast<size_t>(row)] = largest;
  }
  return bounds;
}

bool SearchTwo(TSearchRun& run) {
  TLegDistanceTable d12 = run.Leg(0, 1, TLegOrder::RowToColumn, 0);
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    const int r1 = d12.Row(p1);
    if (run.Empty(1, p1) || run.Below(d12.RowBound(r1))) continue;
    const double* bound12 = d12.Bounds(r1);
    int c2 = d12.Column(run.First(1, p1));
    for (int p2 = run.First(1, p1); p2 <= run.Last(1); p2 += run.stride, c2 += run.ColumnStep()) {
      if (run.Below(bound12[c2])) continue;
      const double score = d12.Distance(r1, c2);
      if (score >= run.best.score) run.Take({p1, p2, kNoPoint, kNoPoint}, score);
    }
  }
  return true;
}

// With the FAI rule on, a candidate that can replace a best above 0 passes
// the rule, so its score is at most any of its legs / kFaiMinLegShare (the
// rule compares each leg with kFaiMinLegShare x score; the margin covers
// that product's rounding). While the best is still 0 no bound is below it.
constexpr double kFaiShareRoundingMargin = 1e-9;
constexpr double kFaiScorePerLeg = (1.0 / kFaiMinLegShare) * (1.0 + kFaiShareRoundingMargin);

// The bound of a triangle from bounds of its legs, in the order the score
// adds them.
template <bool kFai>
double TriangleBound(double leg1, double leg2, double leg3) {
  const double sum = leg1 + leg2 + leg3;
  if constexpr (kFai) return std::min(sum, kFaiScorePerLeg * std::min({leg1, leg2, leg3}));
  return sum;
}

// Columns of the innermost loop screened together.
constexpr int kBlockColumns = 8;

template <bool kFai>
bool SearchThree(TSearchRun& run) {
  TLegDistanceTable d12 = run.Leg(0, 1, TLegOrder::RowToColumn, 0);
  TLegDistanceTable d23 = run.Leg(1, 2, TLegOrder::RowToColumn, 1);
  TLegDistanceTable d31 = run.Leg(0, 2, TLegOrder::ColumnToRow, 2);
  const std::vector<double> later23 = LaterRowBounds(d23, run.windows[1], run.gridStep);
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    // d12 and d31 share their rows (the first slot's window).
    const int r1 = d12.Row(p1);
    if (run.Empty(1, p1) || run.Empty(2, run.First(1, p1))) continue;
    const double leg3Bound = d31.RowBound(r1);
    const double leg2Bound = later23[static_cast<size_t>(d23.Row(run.First(1, p1)))];
    if (run.Below(TriangleBound<kFai>(d12.RowBound(r1), leg2Bound, leg3Bound))) continue;
    // Per-pair bounds are converted only once a best above 0 can prune (an
    // FAI search may find none for long).
    const double* bound12 = nullptr;
    const double* bound31 = nullptr;
    for (int p2 = run.First(1, p1); p2 <= run.Last(1); p2 += run.stride) {
      if (run.Empty(2, p2)) break;
      const int c2 = d12.Column(p2);
      const int r2 = d23.Row(p2);
      const bool screened = run.best.score > 0;
      if (screened) {
        if (bound12 == nullptr) bound12 = d12.Bounds(r1);
        if (run.Below(TriangleBound<kFai>(bound12[c2], d23.RowBound(r2), leg3Bound))) continue;
      }
      const double leg1 = d12.Distance(r1, c2);
      if (run.Below(TriangleBound<kFai>(leg1, d23.RowBound(r2), leg3Bound))) continue;
      const auto visit = [&](int p3, int c3) {
        const double leg2 = d23.Distance(r2, c3);
        const double leg3 = d31.Distance(r1, c3);
        double score = leg1 + leg2 + leg3;
        if (score < run.best.score) return;
        if (kFai && !PassesFaiLegRule(leg1, leg2, leg3, score)) score = 0;
        if (score >= run.best.score) run.Take({p1, p2, p3, kNoPoint}, score);
      };
      int p3 = run.First(2, p2);
      int c3 = d23.Column(p3);
      // While the best is 0 no bound is below it.
      for (; p3 <= run.Last(2) && run.best.score <= 0; p3 += run.stride, c3 += run.ColumnStep()) visit(p3, c3);
      if (p3 > run.Last(2)) continue;
      const double* bound23 = d23.Bounds(r2);
      if (bound31 == nullptr) bound31 = d31.Bounds(r1);
      while (p3 <= run.Last(2)) {
        // Blocks of columns all below the best are passed over at once.
        if (run.ColumnStep() == 1 && p3 + (kBlockColumns - 1) * run.stride <= run.Last(2)) {
          bool reaches = false;
          for (int k = 0; k < kBlockColumns; ++k)
            reaches |= !run.Below(TriangleBound<kFai>(leg1, bound23[c3 + k], bound31[c3 + k]));
          if (!reaches) {
            p3 += kBlockColumns * run.stride;
            c3 += kBlockColumns;
            continue;
          }
        }
        const int blockEnd = std::min(run.Last(2), p3 + (kBlockColumns - 1) * run.stride);
        for (; p3 <= blockEnd; p3 += run.stride, c3 += run.ColumnStep()) {
          if (!run.Below(TriangleBound<kFai>(leg1, bound23[c3], bound31[c3]))) visit(p3, c3);
        }
      }
    }
  }
  return true;
}

bool SearchFour(TSearchRun& run) {
  TLegDistanceTable d12 = run.Leg(0, 1, TLegOrder::RowToColumn, 0);
  TLegDistanceTable d23 = run.Leg(1, 2, TLegOrder::RowToColumn, 1);
  TLegDistanceTable d34 = run.Leg(2, 3, TLegOrder::RowToColumn, 2);
  TLegDistanceTable d41 = run.Leg(0, 3, TLegOrder::ColumnToRow, 3);
  const std::vector<double> later23 = LaterRowBounds(d23, run.windows[1], run.gridStep);
  const std::vector<double> later34 = LaterRowBounds(d34, run.windows[2], run.gridStep);
  const auto later = [](const std::vector<double>& bounds, int row) { return bounds[static_cast<size_t>(row)]; };
  for (int p1 = run.windows[0].low; p1 <= run.Last(0); p1 += run.stride) {
    if (!ProgressStep(run.progress, run.stride)) return false;
    // d12 and d41 share their rows (the first slot's window).
    const int r1 = d12.Row(p1);
    const int firstP2 = run.First(1, p1);
    if (run.Empty(1, p1) || run.Empty(2, firstP2) || run.Empty(3, run.First(2, firstP2))) continue;
    const double leg4Bound = d41.RowBound(r1);
    if (run.Below(d12.RowBound(r1) + later(later23, d23.Row(firstP2)) +
                  later(later34, d34.Row(run.First(2, firstP2))) + leg4Bound))
      continue;
    const double* bound12 = d12.Bounds(r1);
    const double* bound41 = nullptr;
    for (int p2 = firstP2; p2 <= run.Last(1); p2 += run.stride) {
      if (run.Empty(2, p2) || run.Empty(3, run.First(2, p2))) break;
      const int c2 = d12.Column(p2);
      const int r2 = d23.Row(p2);
      const double leg34Bound = later(later34, d34.Row(run.First(2, p2)));
      if (run.Below(bound12[c2] + d23.RowBound(r2) + leg34Bound + leg4Bound)) continue;
      const double leg1 = d12.Distance(r1, c2);
      const double* bound23 = d23.Bounds(r2);
      for (int p3 = run.First(2, p2); p3 <= run.Last(2); p3 += run.stride) {
        if (run.Empty(3, p3)) break;
        const int c3 = d23.Column(p3);
        const int r3 = d34.Row(p3);
        if (run.Below(leg1 + bound23[c3] + d34.RowBound(r3) + leg4Bound)) continue;
        const double leg2 = d23.Distance(r2, c3);
        const double leg12 = leg1 + leg2;
        if (run.Below(leg12 + d34.RowBound(r3) + leg4Bound)) continue;
        const double* bound34 = d34.Bounds(r3);
        if (bound41 == nullptr) bound41 = d41.Bounds(r1);
        int c4 = d34.Column(run.First(3, p3));
        for (int p4 = run.First(3, p3); p4 <= run.Last(3); p4 += run.stride, c4 += run.ColumnStep()) {
          if (run.Below(leg12 + bound34[c4] + bound41[c4])) continue;
          const std::array<double, 4> legs{leg1, leg2, d34.Distance(r3, c4), d41.Distance(r1, c4)};
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
  const int gridStep = LegGridStep(windows, shape.turnpoints, step);
  // Kept per thread from search to search: the tables of a pass reach a few
  // hundred kilobytes, which a fresh allocation would have the system map
  // and zero again on every pass.
  thread_local TSearchStorage storage;
  TSearchRun run{cache, windows, step, progress, best, gridStep, storage};
  for (size_t slot = 0; slot < static_cast<size_t>(shape.turnpoints); ++slot) {
    // The coarse pass gives every slot the whole track: its vectors once.
    const bool sameAsFirst = slot > 0 && windows[slot].low == windows[0].low && windows[slot].high == windows[0].high;
    if (sameAsFirst)
      storage.vectors[slot] = storage.vectors[0];
    else
      LoadWindowVectors(cache, windows[slot], gridStep, storage.vectors[slot]);
  }
  switch (shape.turnpoints) {
    case 2:
      return SearchTwo(run);
    case 3:
      return shape.faiRule ? SearchThree<true>(run) : SearchThree<false>(run);
    default:
      return SearchFour(run);
  }
}

}  // namespace velantis
