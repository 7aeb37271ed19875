// The exhaustive turnpoint search at one stride, one routine per number of
// turnpoints.
//
// Loops are nested in turnpoint order; each later index starts at
// max(previous index + stride, the low end of its window) and runs to the high
// end of its window in steps of stride. A candidate replaces the best when its
// score is greater than or equal to the best so far, so among equal scores
// the last one visited wins (a track of equal points ends on its last
// indices). Scores are the point cache's distances:
// - 2 turnpoints: d(P1, P2);
// - 3: the perimeter; a candidate below the best is skipped before the FAI
//   test, and with the FAI rule on a triangle with a leg under 28 % of the
//   perimeter scores 0;
// - 4: the perimeter, counted only for a convex quadrilateral of one
//   orientation with every leg at least 15 % of the perimeter.
// The progress object advances by the stride for each value of the outermost
// index; a cancel ends the search at once with failure and best undefined.
#pragma once

#include "analysis/flight_point_cache.h"
#include "analysis/optimization_shape.h"
#include "analysis/search_windows.h"
#include "core/progress.h"

namespace velantis {

struct TSearchBest {
  std::array<int, kMaxTurnpoints> turnpoints{kNoPoint, kNoPoint, kNoPoint, kNoPoint};
  double score = 0;

  bool Found() const { return turnpoints[0] != kNoPoint; }
};

// Searches the shape's turnpoints in the windows at the stride, starting from
// best (a fresh TSearchBest: nothing found, score 0). False when cancelled.
bool SearchTurnpoints(const TFlightPointCache& cache, const TOptimizationShape& shape, const TSearchWindows& windows,
                      int stride, TProgress* progress, TSearchBest& best);

}  // namespace velantis
