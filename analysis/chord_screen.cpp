#include "analysis/chord_screen.h"

#include <algorithm>
#include <cmath>

namespace velantis {

namespace {

// Far above the rounding of both forms (a few 1e-16 relative, a few 1e-22
// absolute for metre-long chords), far below any gap that matters.
constexpr double kChordRelativeMargin = 1e-6;
constexpr double kChordAbsoluteMargin = 1e-18;
// The ball's radius and the distance to its centre are rounded sums of
// squares under a square root: widen them by far more than that rounding.
constexpr double kBallRelativeMargin = 1e-9;
constexpr double kBallAbsoluteMargin = 1e-15;

double ExactChordSquared(double distanceM) {
  const double halfChord = std::sin(distanceM / (2.0 * kFaiSphereRadiusM));
  return 4.0 * halfChord * halfChord;
}

}  // namespace

TUnitVector UnitVectorOf(const TFlightPointRecord& record) {
  return {record.cosLat * std::cos(record.lonRad), record.cosLat * std::sin(record.lonRad), record.sinLat};
}

TChordBall BallOf(std::span<const TUnitVector> vectors) {
  TChordBall ball;
  for (const TUnitVector& v : vectors) {
    ball.centre.x += v.x;
    ball.centre.y += v.y;
    ball.centre.z += v.z;
  }
  const double count = static_cast<double>(vectors.size());
  ball.centre = {ball.centre.x / count, ball.centre.y / count, ball.centre.z / count};
  double farthest = 0;
  for (const TUnitVector& v : vectors) farthest = std::max(farthest, ChordSquared(ball.centre, v));
  ball.radius = std::sqrt(farthest) * (1.0 + kBallRelativeMargin) + kBallAbsoluteMargin;
  return ball;
}

TChordRange ChordRange(const TChordBall& ball, const TUnitVector& point) {
  const double toCentre = std::sqrt(ChordSquared(ball.centre, point));
  const double nearest = std::max(0.0, toCentre * (1.0 - kBallRelativeMargin) - ball.radius);
  const double farthest = toCentre * (1.0 + kBallRelativeMargin) + ball.radius;
  return {nearest * nearest, farthest * farthest};
}

double ChordAbove(double distanceM) {
  return ExactChordSquared(distanceM) * (1.0 + kChordRelativeMargin) + kChordAbsoluteMargin;
}

double ChordBelow(double distanceM) {
  return ExactChordSquared(distanceM) * (1.0 - kChordRelativeMargin) - kChordAbsoluteMargin;
}

}  // namespace velantis
