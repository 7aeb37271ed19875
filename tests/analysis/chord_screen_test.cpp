// The chord screen's bounds against the point cache's distance, on pairs
// from a metre to several thousand kilometres apart: a bound below the
// distance would let the searches skip the optimum; one far above it would
// make them measure everything.
#include "analysis/chord_screen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "analysis/flight_point_cache.h"

namespace velantis {
namespace {

TEST(ChordScreen, BoundsHoldTheCacheDistance) {
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> lat(-70, 70), lon(-180, 180), exponent(-5, 1.7), sign(-1, 1);
  TFlightPointCache cache;
  for (int i = 0; i < 1000; ++i) {
    const double a = lat(random), b = lon(random);
    cache.Add(a, b);
    cache.Add(a + sign(random) * std::pow(10, exponent(random)), b + sign(random) * std::pow(10, exponent(random)));
  }
  std::vector<double> chords, distances;
  for (size_t i = 0; i < cache.Count(); i += 2) {
    chords.push_back(ChordSquared(UnitVectorOf(cache.Record(i)), UnitVectorOf(cache.Record(i + 1))));
    distances.push_back(cache.Distance(i, i + 1));
  }
  std::vector<double> above = chords;
  DistancesAbove(above);
  for (size_t k = 0; k < chords.size(); ++k) {
    const double d = distances[k];
    SCOPED_TRACE(d);
    // Legs beyond 1000 km take the coarser end of the series; the chord's
    // absolute margin widens the shortest legs by a fraction of a millimetre.
    const double slack = d * (d < 1e6 ? 1e-5 : 2e-3) + 1e-3;
    EXPECT_GE(DistanceAbove(chords[k]), d);
    EXPECT_LE(DistanceAbove(chords[k]), d + slack);
    EXPECT_GE(above[k], d);
    EXPECT_LE(above[k], d + slack);
    // The pair's own chord proves neither more nor less than its distance.
    EXPECT_LE(chords[k], ChordAbove(d));
    EXPECT_GE(chords[k], ChordBelow(d));
  }
}

}  // namespace
}  // namespace velantis
