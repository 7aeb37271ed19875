// The contest shapes of the flight optimiser, the result of a search and the
// objective of one candidate.
//
// A shape is chosen by its optimisation type number: 7 is the free distance
// over two turnpoints, 8 the quadrilateral over four, 1 the FAI triangle and
// every other number the flat triangle (3 is the number this system writes).
// The objective (ShapeScore) is measured with the point cache's distance:
// the free distance is the one leg P1-P2, closed shapes score their
// perimeter; an FAI triangle with a leg shorter than kFaiMinLegShare of the
// perimeter scores 0, and so does a quadrilateral that is not convex with one
// orientation or has a leg shorter than kQuadMinLegShare of its perimeter.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "analysis/flight_point_cache.h"

namespace velantis {

// FAI Sporting Code: each leg of an FAI triangle is at least 28 % of the total.
inline constexpr double kFaiMinLegShare = 0.28;
// Each leg of a scored quadrilateral is at least 15 % of its perimeter.
inline constexpr double kQuadMinLegShare = 0.15;

inline constexpr int kOptimizationTypeFai = 1;
inline constexpr int kOptimizationTypeTriangle = 3;
inline constexpr int kOptimizationTypeFree = 7;
inline constexpr int kOptimizationTypeQuad = 8;

inline constexpr int kMaxTurnpoints = 4;
// An index that was not found.
inline constexpr int kNoPoint = -1;

enum class TShapeKind { FreeDistance, Triangle, FaiTriangle, Quadrilateral };

struct TOptimizationShape {
  TShapeKind kind;
  int type;            // the optimisation type number
  int turnpoints;      // K: 2, 3 or 4
  bool faiRule;        // the kFaiMinLegShare rule is on
  std::string_view name;  // the command line's name: "free", "triangle", "fai", "quad"

  bool Closed() const { return turnpoints >= 3; }
};

// The shape of an optimisation type number (any number: unknown ones are the
// flat triangle).
const TOptimizationShape& ShapeForType(int type);
const TOptimizationShape& ShapeForKind(TShapeKind kind);
// The shape of a command-line name; nullptr for an unknown name.
const TOptimizationShape* ShapeForName(std::string_view name);

// The answer of a search. Turnpoints P1 < ... < PK are indices into the track
// (kNoPoint when not found; entries past K stay kNoPoint), start S and finish
// F close the flight (kNoPoint when the closing does not stand).
struct TOptimizationResult {
  int type = kOptimizationTypeFree;
  int turnpointCount = 0;
  std::array<int, kMaxTurnpoints> turnpoints{kNoPoint, kNoPoint, kNoPoint, kNoPoint};
  int start = kNoPoint;
  int finish = kNoPoint;
  // Sum of the legs between the turnpoints (the perimeter for closed shapes),
  // by the point cache's distance.
  double distanceM = 0;
  // The search's objective for the turnpoints (ShapeScore).
  double score = 0;

  bool Found() const { return turnpoints[0] != kNoPoint; }
  std::span<const int> Turnpoints() const { return {turnpoints.data(), static_cast<size_t>(turnpointCount)}; }
};

// The sum of the legs P1-P2-...-PK, closed back to P1 for closed shapes.
// indices holds K = shape.turnpoints indices into the cache.
double ShapeDistance(const TFlightPointCache& cache, const TOptimizationShape& shape, std::span<const int> indices);

// The objective of one candidate: ShapeDistance, or 0 when the shape's rule
// refuses the candidate (FAI legs, quadrilateral convexity and legs).
double ShapeScore(const TFlightPointCache& cache, const TOptimizationShape& shape, std::span<const int> indices);

// True when no leg is shorter than kFaiMinLegShare x the perimeter.
bool PassesFaiLegRule(double leg1, double leg2, double leg3, double perimeter);

// The turn direction at b on the way a -> b -> c: the sign (-1, 0, +1) of the
// cross product of the legs a->b and b->c in a local plane (east scaled by the
// cosine of the mean latitude, north), positive for a left turn.
int TurnDirection(const TFlightPointCache& cache, int a, int b, int c);

// The quadrilateral P1..P4 counts: the turn directions at P2, P3 and P4 are the
// same, and each of the four legs is at least kQuadMinLegShare x the score
// (the perimeter, legs[0] + ... + legs[3]).
bool QuadrilateralCounts(const TFlightPointCache& cache, std::span<const int> indices,
                         const std::array<double, 4>& legs, double score);

}  // namespace velantis
