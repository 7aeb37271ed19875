// The exact flight optimisation: the turnpoints of the highest ShapeScore over
// every tuple of track indices P1 < ... < PK, proven optimal.
//
// Branch and bound over tuples of index ranges. A tuple holds one range per
// turnpoint, each a node of TIndexRangeBoxes; its bound is ShapeUpperBound of
// the largest and smallest legs between consecutive ranges' boxes, and a tuple
// whose ranges cannot hold increasing indices is dropped. Tuples are taken
// best bound first; the widest range of the tuple taken is split in two, and
// a child is kept only when its bound beats the best score found so far. Each
// kept child scores one candidate (the middles of its ranges, made
// increasing), so good scores arrive early and prune. The search ends when no
// tuple left can beat the best: that score is the optimum of the objective the
// default search samples, up to the box bounds' slack of kBoxBoundSlackM.
// Among equal scores the first one found stands.
//
// Progress: the total is kExactProgressUnits, and each tuple dropped or
// settled counts its share of the n^K tuples of the whole space, so the count
// only grows and reaches the total at the end. A cancel is seen within
// kExactCancelCheckTuples tuples; the search then returns false at once and
// leaves the result untouched.
//
// The result carries the turnpoints, ShapeDistance and ShapeScore; the start
// and finish are left to the closing step. A track of fewer than K points
// gives no turnpoints. When no candidate scores above 0 (no FAI triangle in
// the track), the last K indices are returned with score 0, as the default
// search returns the last candidate it visited.
#pragma once

#include <cstdint>

#include "analysis/flight_point_cache.h"
#include "analysis/optimization_shape.h"
#include "core/progress.h"

namespace velantis {

inline constexpr int64_t kExactProgressUnits = 1'000'000;
inline constexpr int kExactCancelCheckTuples = 1024;

// False when cancelled through progress (result untouched); true otherwise.
bool ExactSearch(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                 TOptimizationResult& result);

}  // namespace velantis
