// Small constructed flights for the optimiser tests: points placed by metres
// east and north of a reference on the FAI sphere.
#pragma once

#include <cmath>
#include <initializer_list>
#include <numbers>
#include <utility>

#include "analysis/flight_point_cache.h"

namespace velantis::test {

inline constexpr double kSampleLatDeg = 45.0;
inline constexpr double kSampleLonDeg = 6.0;

struct TOffsetM {
  double east;
  double north;
};

// Degrees of the point east/north metres from (kSampleLatDeg, kSampleLonDeg).
inline std::pair<double, double> OffsetToDegrees(TOffsetM offset) {
  const double metresPerDegree = kFaiSphereRadiusM * std::numbers::pi / 180.0;
  const double lat = kSampleLatDeg + offset.north / metresPerDegree;
  const double lon = kSampleLonDeg + offset.east / (metresPerDegree * std::cos(kSampleLatDeg * std::numbers::pi / 180.0));
  return {lat, lon};
}

template <typename TOffsets>
TFlightPointCache CacheOf(const TOffsets& offsets) {
  TFlightPointCache cache;
  for (const TOffsetM& offset : offsets) {
    const auto [lat, lon] = OffsetToDegrees(offset);
    cache.Add(lat, lon);
  }
  return cache;
}

inline TFlightPointCache CacheOf(std::initializer_list<TOffsetM> offsets) {
  return CacheOf<std::initializer_list<TOffsetM>>(offsets);
}

}  // namespace velantis::test
