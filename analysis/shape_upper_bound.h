// The most that a candidate can score when each of its legs is known only to
// lie between a smallest and a largest length: the bound of the exact search
// for a tuple of index ranges.
//
// Leg j runs from turnpoint j to turnpoint j + 1, and for closed shapes the
// last one back to the first. The free distance has one leg and is bounded by
// its largest length; closed shapes by the sum of the largest legs. Where a
// rule asks every leg to be at least a share of the perimeter (the FAI
// triangle's kFaiMinLegShare, the quadrilateral's kQuadMinLegShare) the bound
// also uses the smallest lengths (LegShareBound), which is what removes the
// long thin triangles of a straight flight at once. The quadrilateral's
// convexity is not used: leaving a rule out only loosens the bound.
#pragma once

#include <span>

#include "analysis/optimization_shape.h"

namespace velantis {

// The largest perimeter S with legs x_j in [minLegs[j], maxLegs[j]] and every
// x_j >= share x S; 0 when no such legs exist (every candidate scores 0).
double LegShareBound(std::span<const double> maxLegs, std::span<const double> minLegs, double share);

// True when ShapeUpperBound reads minLegs (the FAI triangle and the
// quadrilateral); the others are bounded by their largest legs alone.
bool ShapeUsesShortestLegs(const TOptimizationShape& shape);

// The bound of the shape for legs in [minLegs[j], maxLegs[j]] (K legs for a
// closed shape of K turnpoints, one for the free distance).
double ShapeUpperBound(const TOptimizationShape& shape, std::span<const double> maxLegs,
                       std::span<const double> minLegs);

}  // namespace velantis
