// A cheap stand-in for the point cache's distance when many pairs are ranked:
// the squared chord between the points' unit vectors on the sphere.
//
// The squared chord is 4 h of the haversine form, so it orders pairs like the
// great-circle distance and costs a few multiply-adds instead of two sines,
// a square root and an arc sine. It is computed another way, so its rounding
// differs from the distance's: callers never decide on it alone near a
// threshold. ChordAbove and ChordBelow give squared-chord bounds with a wide
// margin (relative 1e-6, absolute 1e-18, about 6 mm) against every rounding
// of either form, so "squared chord beyond the bound" proves the real
// distance lies beyond the threshold.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "analysis/flight_point_cache.h"

namespace velantis {

struct TUnitVector {
  double x = 0;
  double y = 0;
  double z = 0;
};

// The point's position as a unit vector from the earth's centre.
TUnitVector UnitVectorOf(const TFlightPointRecord& record);

// Unit vectors kept one array per coordinate, so that loops over many of
// them vectorise.
struct TUnitVectorColumns {
  std::vector<double> x, y, z;

  void Clear() {
    x.clear();
    y.clear();
    z.clear();
  }
  void Add(const TUnitVector& v) {
    x.push_back(v.x);
    y.push_back(v.y);
    z.push_back(v.z);
  }
  size_t Count() const { return x.size(); }
};

inline double ChordSquared(const TUnitVector& a, const TUnitVector& b) {
  const double dx = a.x - b.x;
  const double dy = a.y - b.y;
  const double dz = a.z - b.z;
  return dx * dx + dy * dy + dz * dz;
}

// A squared chord greater than this proves the distance is greater than
// distanceM.
double ChordAbove(double distanceM);
// A squared chord less than this proves the distance is less than distanceM.
double ChordBelow(double distanceM);
// Metres that no pair of this squared chord exceeds by the cache's distance:
// a cheap upper bound (a square root and a short series instead of the arc
// sine) for pruning searches; above the true distance by at most about 1e-6
// relative for legs up to a few hundred kilometres.
double DistanceAbove(double chordSquared);
// DistanceAbove of each squared chord, in place (vectorised while every
// chord is below the series' limit).
void DistancesAbove(std::span<double> chordsSquared);

// A ball around a run of unit vectors (consecutive track points lie close
// together): by the triangle inequality every squared chord from a point to
// the run lies in ChordRange, so a whole run can be screened at once.
struct TChordBall {
  TUnitVector centre;
  double radius = 0;
};

struct TChordRange {
  double low = 0;
  double high = 0;
};

// The ball around the vectors (not empty), its radius widened against
// rounding.
TChordBall BallOf(std::span<const TUnitVector> vectors);
// The ball's radius and the distance to its centre are rounded sums of
// squares under a square root: they are widened by far more than that
// rounding.
inline constexpr double kBallRelativeMargin = 1e-9;

// Squared chords from anything in one ball to anything in the other.
inline TChordRange ChordRange(const TChordBall& ball, const TChordBall& other) {
  const double toCentre = std::sqrt(ChordSquared(ball.centre, other.centre));
  const double radii = ball.radius + other.radius;
  const double nearest = std::max(0.0, toCentre * (1.0 - kBallRelativeMargin) - radii);
  const double farthest = toCentre * (1.0 + kBallRelativeMargin) + radii;
  return {nearest * nearest, farthest * farthest};
}
// Squared chords from the point to anything in the ball lie within this.
inline TChordRange ChordRange(const TChordBall& ball, const TUnitVector& point) {
  return ChordRange(ball, TChordBall{point, 0.0});
}

}  // namespace velantis
