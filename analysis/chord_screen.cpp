#include "analysis/chord_screen.h"

#include <cmath>

namespace velantis {

namespace {

// Far above the rounding of both forms (a few 1e-16 relative, a few 1e-22
// absolute for metre-long chords), far below any gap that matters.
constexpr double kChordRelativeMargin = 1e-6;
constexpr double kChordAbsoluteMargin = 1e-18;

double ExactChordSquared(double distanceM) {
  const double halfChord = std::sin(distanceM / (2.0 * kFaiSphereRadiusM));
  return 4.0 * halfChord * halfChord;
}

}  // namespace

TUnitVector UnitVectorOf(const TFlightPointRecord& record) {
  return {record.cosLat * std::cos(record.lonRad), record.cosLat * std::sin(record.lonRad), record.sinLat};
}

double ChordAbove(double distanceM) {
  return ExactChordSquared(distanceM) * (1.0 + kChordRelativeMargin) + kChordAbsoluteMargin;
}

double ChordBelow(double distanceM) {
  return ExactChordSquared(distanceM) * (1.0 - kChordRelativeMargin) - kChordAbsoluteMargin;
}

}  // namespace velantis
