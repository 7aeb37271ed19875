// Small constructed flights for the optimiser tests: points placed by metres
// east and north of 45°N 6°E on the FAI sphere.
#pragma once

#include <cmath>
#include <numbers>
#include <vector>

#include "analysis/flight_point_cache.h"

namespace velantis::test {

struct TOffsetM {
  double east;
  double north;
};

inline TFlightPointCache CacheOf(const std::vector<TOffsetM>& offsets) {
  const double metresPerDegree = kFaiSphereRadiusM * std::numbers::pi / 180.0;
  const double metresPerDegreeEast = metresPerDegree * std::cos(std::numbers::pi / 4);
  TFlightPointCache cache;
  for (const TOffsetM& o : offsets) cache.Add(45.0 + o.north / metresPerDegree, 6.0 + o.east / metresPerDegreeEast);
  return cache;
}

}  // namespace velantis::test
