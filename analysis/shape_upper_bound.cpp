#include "analysis/shape_upper_bound.h"

#include <algorithm>

namespace velantis {

namespace {

// Relative room given to the feasibility test below, so that the rounding of
// the leg bounds never refuses a perimeter the rule accepts.
constexpr double kShareTestRelativeSlack = 1e-12;

}  // namespace

// A perimeter S is reachable when S <= sum of maxLegs, share x S <= every
// maxLeg, and the legs can still sum to S while each is at least
// max(minLeg, share x S): sum_j max(minLegs[j], share x S) <= S. The left side
// grows with slope at most K x share < 1 (0.84 for the triangle, 0.6 for the
// quadrilateral), so the reachable perimeters form one interval ending at
// U = min(sum maxLegs, min maxLegs / share); U is the bound when it is
// reachable at all, and nothing is otherwise.
double LegShareBound(std::span<const double> maxLegs, std::span<const double> minLegs, double share) {
  double sum = 0;
  double shortest = maxLegs.empty() ? 0 : maxLegs[0];
  for (const double leg : maxLegs) {
    sum += leg;
    shortest = std::min(shortest, leg);
  }
  const double upper = std::min(sum, shortest / share);
  double needed = 0;
  for (const double leg : minLegs) needed += std::max(leg, share * upper);
  return needed <= upper * (1.0 + kShareTestRelativeSlack) ? upper : 0.0;
}

bool ShapeUsesShortestLegs(const TOptimizationShape& shape) {
  return shape.Closed() && (shape.faiRule || shape.turnpoints == 4);
}

double ShapeUpperBound(const TOptimizationShape& shape, std::span<const double> maxLegs,
                       std::span<const double> minLegs) {
  if (!shape.Closed()) return maxLegs[0];
  if (ShapeUsesShortestLegs(shape))
    return LegShareBound(maxLegs, minLegs, shape.faiRule ? kFaiMinLegShare : kQuadMinLegShare);
  double sum = 0;
  for (const double leg : maxLegs) sum += leg;
  return sum;
}

}  // namespace velantis
