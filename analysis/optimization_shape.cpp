#include "analysis/optimization_shape.h"

#include <cmath>
#include <numbers>

namespace velantis {

namespace {

constexpr std::array<TOptimizationShape, 4> kShapes{{
    {TShapeKind::FreeDistance, kOptimizationTypeFree, 2, false, "free"},
    {TShapeKind::Triangle, kOptimizationTypeTriangle, 3, false, "triangle"},
    {TShapeKind::FaiTriangle, kOptimizationTypeFai, 3, true, "fai"},
    {TShapeKind::Quadrilateral, kOptimizationTypeQuad, 4, false, "quad"},
}};

int Sign(double value) { return (value > 0) - (value < 0); }

// A longitude difference brought into [-pi, pi], so a leg across the
// antimeridian points the short way.
double WrappedLonDifference(double fromRad, double toRad) {
  double d = toRad - fromRad;
  if (d > std::numbers::pi) d -= 2.0 * std::numbers::pi;
  if (d < -std::numbers::pi) d += 2.0 * std::numbers::pi;
  return d;
}

struct TPlaneVector {
  double east;
  double north;
};

// The leg a->b in radians of arc: the east part scaled by the mean of the two
// latitudes' cosines (an equirectangular plane local to the leg).
TPlaneVector PlaneLeg(const TFlightPointCache& cache, int a, int b) {
  const TFlightPointRecord& from = cache.Record(static_cast<size_t>(a));
  const TFlightPointRecord& to = cache.Record(static_cast<size_t>(b));
  return {WrappedLonDifference(from.lonRad, to.lonRad) * 0.5 * (from.cosLat + to.cosLat), to.latRad - from.latRad};
}

}  // namespace

const TOptimizationShape& ShapeForType(int type) {
  for (const TOptimizationShape& shape : kShapes)
    if (shape.type == type) return shape;
  return ShapeForKind(TShapeKind::Triangle);
}

const TOptimizationShape& ShapeForKind(TShapeKind kind) {
  for (const TOptimizationShape& shape : kShapes)
    if (shape.kind == kind) return shape;
  return kShapes[1];
}

const TOptimizationShape* ShapeForName(std::string_view name) {
  for (const TOptimizationShape& shape : kShapes)
    if (shape.name == name) return &shape;
  return nullptr;
}

double ShapeDistance(const TFlightPointCache& cache, const TOptimizationShape& shape, std::span<const int> indices) {
  double sum = 0;
  for (size_t i = 1; i < indices.size(); ++i)
    sum += cache.Distance(static_cast<size_t>(indices[i - 1]), static_cast<size_t>(indices[i]));
  if (shape.Closed() && !indices.empty())
    sum += cache.Distance(static_cast<size_t>(indices.back()), static_cast<size_t>(indices.front()));
  return sum;
}

double ShapeScore(const TFlightPointCache& cache, const TOptimizationShape& shape, std::span<const int> indices) {
  const auto leg = [&](size_t a, size_t b) {
    return cache.Distance(static_cast<size_t>(indices[a]), static_cast<size_t>(indices[b]));
  };
  switch (shape.turnpoints) {
    case 2:
      return leg(0, 1);
    case 3: {
      const double l1 = leg(0, 1), l2 = leg(1, 2), l3 = leg(2, 0);
      const double perimeter = l1 + l2 + l3;
      if (shape.faiRule && !PassesFaiLegRule(l1, l2, l3, perimeter)) return 0;
      return perimeter;
    }
    default: {
      const std::array<double, 4> legs{leg(0, 1), leg(1, 2), leg(2, 3), leg(3, 0)};
      const double perimeter = legs[0] + legs[1] + legs[2] + legs[3];
      return QuadrilateralCounts(cache, indices, legs, perimeter) ? perimeter : 0;
    }
  }
}

bool PassesFaiLegRule(double leg1, double leg2, double leg3, double perimeter) {
  const double minimum = kFaiMinLegShare * perimeter;
  return !(leg1 < minimum || leg2 < minimum || leg3 < minimum);
}

int TurnDirection(const TFlightPointCache& cache, int a, int b, int c) {
  const TPlaneVector in = PlaneLeg(cache, a, b);
  const TPlaneVector out = PlaneLeg(cache, b, c);
  return Sign(in.east * out.north - in.north * out.east);
}

bool QuadrilateralCounts(const TFlightPointCache& cache, std::span<const int> indices,
                         const std::array<double, 4>& legs, double score) {
  const int turnAtP2 = TurnDirection(cache, indices[0], indices[1], indices[2]);
  const int turnAtP3 = TurnDirection(cache, indices[1], indices[2], indices[3]);
  const int turnAtP4 = TurnDirection(cache, indices[2], indices[3], indices[0]);
  if (turnAtP3 != turnAtP2 || turnAtP4 != turnAtP2) return false;
  const double minimum = kQuadMinLegShare * score;
  for (double leg : legs)
    if (leg < minimum) return false;
  return true;
}

}  // namespace velantis
