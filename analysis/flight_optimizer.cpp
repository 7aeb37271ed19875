#include "analysis/flight_optimizer.h"

#include "analysis/search_windows.h"
#include "analysis/turnpoint_search.h"

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
