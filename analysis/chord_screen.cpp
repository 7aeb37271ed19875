#include "analysis/chord_screen.h"

#include <algorithm>
#include <cmath>

namespace velantis {

namespace {

// Far above the rounding of both forms (a few 1e-16 relative, a few 1e-22
// absolute for metre-long chords), far below any gap that matters.
constexpr double kChordRelativeMargin = 1e-6;
constexpr double kChordAbsoluteMargin = 1e-18;
// Absolute widening of a ball's radius, beside kBallRelativeMargin.
constexpr double kBallAbsoluteMargin = 1e-15;

// Half chords up to this use the series bound below; longer ones (legs over
// about 3300 km) the arc sine itself.
constexpr double kSeriesHalfChordLimit = 0.5;
constexpr double kAsinRelativeMargin = 1e-12;
constexpr double kDistanceAbsoluteMarginM = 1e-6;

// asin x = x + x^3 / 6 + (3/40) x^5 + ..., every further coefficient below
// 3/40, so the tail from x^5 on is at most (3/40) x^5 / (1 - x^2), which is
// at most x^5 / 10 while x < 1/2.
double AsinSeriesAbove(double x) {
  const double x2 = x * x;
  return (x + x * x2 * (1.0 / 6.0 + 0.1 * x2)) * (1.0 + kAsinRelativeMargin);
}

double AsinAbove(double x) {
  if (x >= kSeriesHalfChordLimit) return std::asin(std::min(1.0, x)) * (1.0 + kAsinRelativeMargin);
  return AsinSeriesAbove(x);
}

double HalfChordAbove(double chordSquared) {
  return 0.5 * std::sqrt(chordSquared * (1.0 + kChordRelativeMargin) + kChordAbsoluteMargin);
}

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

double ChordAbove(double distanceM) {
  return ExactChordSquared(distanceM) * (1.0 + kChordRelativeMargin) + kChordAbsoluteMargin;
}

double DistanceAbove(double chordSquared) {
  return 2.0 * kFaiSphereRadiusM * AsinAbove(HalfChordAbove(chordSquared)) + kDistanceAbsoluteMarginM;
}

void DistancesAbove(std::span<double> chordsSquared) {
  double largest = 0;
  for (const double chord : chordsSquared) largest = std::max(largest, chord);
  if (HalfChordAbove(largest) >= kSeriesHalfChordLimit) {
    for (double& chord : chordsSquared) chord = DistanceAbove(chord);
    return;
  }
  for (double& chord : chordsSquared)
    chord = 2.0 * kFaiSphereRadiusM * AsinSeriesAbove(HalfChordAbove(chord)) + kDistanceAbsoluteMarginM;
}

double ChordBelow(double distanceM) {
  return ExactChordSquared(distanceM) * (1.0 - kChordRelativeMargin) - kChordAbsoluteMargin;
}

}  // namespace velantis
