// The point cache: its distance against GeographicLib on the same sphere, and
// its growth in steps of 1000 records.
#include "analysis/flight_point_cache.h"

#include <GeographicLib/Geodesic.hpp>
#include <gtest/gtest.h>

namespace velantis {
namespace {

TEST(FlightPointCache, DistanceMatchesGeodesicOnTheFaiSphere) {
  struct TCase {
    double lat1, lon1, lat2, lon2;
  };
  const TCase cases[] = {
      {45.0, 6.0, 45.0, 6.0},             // the same point: exactly 0
      {45.0, 6.0, 45.00001, 6.00001},     // about a metre
      {46.5, 7.9, 46.1, 8.6},             // an alpine leg
      {-33.9, 18.4, -34.1, 19.3},         // southern hemisphere
      {10.0, 179.9, 10.2, -179.8},        // across the antimeridian
      {0.0, 0.0, 0.5, 179.5},             // nearly antipodal
  };
  const GeographicLib::Geodesic sphere(kFaiSphereRadiusM, 0.0);
  for (const TCase& c : cases) {
    TFlightPointCache cache;
    cache.Add(c.lat1, c.lon1);
    cache.Add(c.lat2, c.lon2);
    double expected = 0;
    sphere.Inverse(c.lat1, c.lon1, c.lat2, c.lon2, expected);
    EXPECT_NEAR(cache.Distance(0, 1), expected, 1e-6 + expected * 1e-9) << c.lat1 << " " << c.lon1;
    EXPECT_DOUBLE_EQ(cache.Distance(1, 0), cache.Distance(0, 1));
  }
}

TEST(FlightPointCache, GrowsInStepsOfAThousandRecords) {
  TFlightPointCache cache;
  EXPECT_EQ(cache.Capacity(), 0u);
  for (size_t i = 0; i < 2001; ++i) {
    cache.Add(45.0, 6.0 + 1e-5 * static_cast<double>(i));
    const size_t expected = (i / kPointCacheGrowthRecords + 1) * kPointCacheGrowthRecords;
    ASSERT_EQ(cache.Capacity(), expected) << "after " << i + 1 << " records";
  }
  EXPECT_EQ(cache.Count(), 2001u);
  EXPECT_DOUBLE_EQ(cache.Record(2000).lonDeg, 6.02);
}

}  // namespace
}  // namespace velantis
