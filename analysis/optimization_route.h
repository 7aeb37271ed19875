// The optimiser's answer as a route of named points: "Start", "Point 1" ...
// "Point K", "Finish", taken from the track points at S, P1 ... PK and F,
// with the list of indices in the same order.
//
// When the closing does not stand (S = F = -1) the route has no "Start" and
// "Finish" points, while the index list keeps its K + 2 entries with -1 for
// them, so a caller can tell the two cases apart by position. A result
// without turnpoints gives an empty route and an empty list.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "analysis/optimization_shape.h"
#include "core/ruta.h"
#include "core/track.h"

namespace velantis {

inline constexpr std::string_view kStartPointName = "Start";
inline constexpr std::string_view kTurnpointNamePrefix = "Point ";
inline constexpr std::string_view kFinishPointName = "Finish";

struct TOptimizationPoint {
  std::string name;
  int index = kNoPoint;
};

// Start, the turnpoints and finish in route order, with their names (the
// start and finish present even when their index is -1).
std::vector<TOptimizationPoint> OptimizationPoints(const TOptimizationResult& result);

// Builds the route from the track's points; fills indices in route order.
void BuildOptimizationRoute(const TTrack& track, const TOptimizationResult& result, TRuta& route,
                            std::vector<int>& indices);

}  // namespace velantis
