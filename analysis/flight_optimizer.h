// The default flight optimisation: the turnpoints of the longest shape by a
// coarse search over a thinned index grid and a fine search in windows
// around its result, then the closing of the flight.
//
// This is a heuristic. The coarse pass may miss the optimum when the best
// turnpoints lie between its grid values and the refinement windows do not
// reach them; it is kept as it is because its results are the ones users
// know. The exact search proves the optimum.
//
// Work: about 100^K / K! candidates in the coarse pass (50^4 / 4! for four
// turnpoints) and at most 101^K (41^4) in the refinement; most of them are
// passed over by upper bounds that prove they cannot reach the best so far,
// and a leg is measured at most once per pass (turnpoint_search.cpp).
#pragma once

#include <functional>
#include <string_view>

#include "analysis/flight_closing.h"
#include "analysis/flight_point_cache.h"
#include "analysis/optimization_shape.h"
#include "core/progress.h"

namespace velantis {

// Told the message of each phase that has one ("Calculating GAP distance").
using TPhaseListener = std::function<void(std::string_view message)>;

// One flight search: fills result (the shape's type and K always; the
// turnpoints, distance, score and closing when found) and returns false only
// when cancelled, with no result then.
using TFlightSearch = std::function<bool(const TFlightPointCache& cache, const TOptimizationShape& shape,
                                         TProgress* progress, const TPhaseListener& onPhase,
                                         TOptimizationResult& result)>;

// The default search. A track of fewer than 2 points (or fewer than K) has no
// result. closing, when given, receives the closing as measured (both pairs,
// whether it stands).
bool OptimizeFlight(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                    const TPhaseListener& onPhase, TOptimizationResult& result, TFlightClosing* closing = nullptr);

// The default search as a TFlightSearch.
bool DefaultFlightSearch(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                         const TPhaseListener& onPhase, TOptimizationResult& result);

}  // namespace velantis
