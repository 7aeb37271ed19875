#include "analysis/flight_optimizer.h"

#include "analysis/search_windows.h"
#include "analysis/turnpoint_search.h"

// Choices the rules leave open:
//
// - Distance. The searches measure with the point cache's haversine on the
//   FAI sphere (R = 6371 km): cheap with the cached cosines and exactly 0
//   for equal points, which the tie rule needs. Rule sets measure the chosen
//   points again on their own model (scoring_rules.h).
// - Type numbers. 7 free distance, 1 FAI triangle, 8 quadrilateral, every
//   other number the flat triangle; 3 is the one written for it.
// - The best starts at score 0 with no turnpoints, so the first candidate
//   of score 0 or more is taken; an FAI triangle refused by the leg rule
//   scores 0 and is compared like any other (it wins only while the best is
//   still 0), while a quadrilateral that does not count is not compared.
// - Turn directions are the signs -1, 0, +1 of the cross products, compared
//   as they are: three straight-on turns (all 0) count as one orientation,
//   which keeps the equal-points case the same for every shape.
// - The fine pass starts afresh in its windows; its windows hold the coarse
//   turnpoints, so it always finds a shape, which replaces the coarse one.
// - A track of fewer points than the shape's turnpoints (at least 2) gives no
//   result, like one of fewer than 2 points; a cancel gives none either.
// - The closing: see flight_closing.cpp.

namespace velantis {

namespace {

constexpr size_t kMinTrackPoints = 2;

int WindowWidth(const TIndexWindow& window) { return window.high >= window.low ? window.high - window.low + 1 : 0; }

bool SearchPass(const TFlightPointCache& cache, const TOptimizationShape& shape, const TSearchWindows& windows,
                int stride, TProgress* progress, TSearchBest& best) {
  ProgressSetTotal(progress, WindowWidth(windows[0]));
  return SearchTurnpoints(cache, shape, windows, stride, progress, best);
}

}  // namespace

bool OptimizeFlight(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                    const TPhaseListener& onPhase, TOptimizationResult& result, TFlightClosing* closing) {
  result = TOptimizationResult{};
  result.type = shape.type;
  result.turnpointCount = shape.turnpoints;
  if (closing) *closing = TFlightClosing{};
  const size_t n = cache.Count();
  if (n < kMinTrackPoints) return true;

  const int stride = CoarseStride(n, shape.turnpoints);
  TSearchBest best;
  if (!SearchPass(cache, shape, WholeTrackWindows(n), stride, progress, best)) return false;
  if (!best.Found()) return true;
  if (stride > 1) {
    TSearchBest refined;
    const std::span<const int> coarse(best.turnpoints.data(), static_cast<size_t>(shape.turnpoints));
    if (!SearchPass(cache, shape, RefinementWindows(coarse, n), 1, progress, refined)) return false;
    // The windows hold the coarse turnpoints, so the fine pass always finds
    // a shape; the test only guards the replacement.
    if (refined.Found()) best = refined;
  }

  if (onPhase) onPhase(kGapPhaseMessage);
  const std::span<const int> turnpoints(best.turnpoints.data(), static_cast<size_t>(shape.turnpoints));
  TFlightClosing measured;
  if (!CloseFlight(cache, turnpoints, progress, measured)) return false;

  result.turnpoints = best.turnpoints;
  result.score = best.score;
  result.distanceM = ShapeDistance(cache, shape, turnpoints);
  if (measured.stands) {
    result.start = measured.start;
    result.finish = measured.finish;
  }
  if (closing) *closing = measured;
  return true;
}

bool DefaultFlightSearch(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                         const TPhaseListener& onPhase, TOptimizationResult& result) {
  return OptimizeFlight(cache, shape, progress, onPhase, result);
}

}  // namespace velantis
