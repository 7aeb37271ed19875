#include "analysis/exact_flight_optimizer.h"

#include "analysis/exact_search.h"

namespace velantis {

bool OptimizeFlightExact(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                         const TPhaseListener& onPhase, TOptimizationResult& result, TFlightClosing* closing) {
  TOptimizationResult found;
  if (!ExactSearch(cache, shape, progress, found)) return false;
  if (closing) *closing = TFlightClosing{};
  if (!found.Found()) {
    result = found;
    return true;
  }
  if (onPhase) onPhase(kGapPhaseMessage);
  TFlightClosing measured;
  if (!CloseFlight(cache, found.Turnpoints(), progress, measured)) return false;
  if (measured.stands) {
    found.start = measured.start;
    found.finish = measured.finish;
  }
  if (closing) *closing = measured;
  result = found;
  return true;
}

bool ExactFlightSearch(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                       const TPhaseListener& onPhase, TOptimizationResult& result) {
  return OptimizeFlightExact(cache, shape, progress, onPhase, result);
}

}  // namespace velantis
