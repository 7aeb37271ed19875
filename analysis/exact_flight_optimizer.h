// The exact flight optimisation as a whole: the proven-optimal turnpoints of
// ExactSearch, then the same closing of the flight as the default search
// (CloseFlight, announced by kGapPhaseMessage), in the same result.
//
// Use it where the default search's coarse stride and capped refinement
// windows may settle below the optimum (long flights); it costs more on
// long, straight flights, where many shapes come close to the best.
#pragma once

#include "analysis/flight_closing.h"
#include "analysis/flight_optimizer.h"

namespace velantis {

// As OptimizeFlight: false only when cancelled, with no result then; a track
// of fewer than K points has no result. closing, when given, receives the
// closing as measured.
bool OptimizeFlightExact(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                         const TPhaseListener& onPhase, TOptimizationResult& result,
                         TFlightClosing* closing = nullptr);

// The exact search as a TFlightSearch.
bool ExactFlightSearch(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                       const TPhaseListener& onPhase, TOptimizationResult& result);

}  // namespace velantis
