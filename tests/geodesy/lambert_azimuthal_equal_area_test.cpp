#include "geodesy/lambert_azimuthal_equal_area.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "tests/support/gie_vectors.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// ETRS89-extended / LAEA Europe (EPSG:3035): the GIGS 5110 and Guidance Note 7-2 grid.
const TProjectionParams kLaeaEurope{.lonOrigin = 10, .latOrigin = 52, .falseEasting = 4321000,
                                    .falseNorthing = 3210000};

// PROJ's builtins.gie (PROJ @ 52da98bd99) and the IOGP GIGS 5110 series, which PROJ itself
// keeps as failing because its inverse series drift in the 1000-fold round trips; the
// exact inverse here must pass them all.
const test::TGieRow kGieRows[] = {
    {"gie/builtins.gie", {"+proj=laea +ellps=GRS80"}, test::kGrs80A, test::kGrs80Rf, {}, 12},
    {"gie/builtins.gie", {"+proj=laea +R=6400000"}, 6400000, 0, {}, 9},
    {"gie/builtins.gie", {"+proj=laea +R=1 +lat_0=45"}, 1, 0, {.latOrigin = 45}, 7},
    {"gie/builtins.gie", {"+proj=laea +ellps=GRS80 +lat_0=45"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = 45}, 7},
    {"gie/builtins.gie", {"+proj=laea +R=1 +lat_0=-90"}, 1, 0, {.latOrigin = -90}, 6},
    {"gie/builtins.gie", {"+proj=laea +ellps=GRS80 +lat_0=-90"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = -90}, 7},
    {"gie/builtins.gie", {"+proj=laea +R=1 +lat_0=90"}, 1, 0, {.latOrigin = 90}, 6},
    {"gie/builtins.gie", {"+proj=laea +ellps=GRS80 +lat_0=90"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = 90}, 6},
    {"gie/builtins.gie", {"+proj=laea +ellps=GRS80 +lat_0=91"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = 91}, 1},
    {"gie/gigs/5110.gie.failing",
     {"+proj=pipeline +step +init=epsg:4258 +inv +step +init=epsg:3035"}, test::kGrs80A,
     test::kGrs80Rf, kLaeaEurope, 22},
    {"gie/gigs/5110.gie.failing",
     {"+proj=pipeline +step +init=epsg:3035 +inv +step +init=epsg:4258", true}, test::kGrs80A,
     test::kGrs80Rf, kLaeaEurope, 11},
};

TEST(LambertAzimuthalEqualArea, PublishedAndProjVectors) {
  test::ExpectGieRows<TLambertAzimuthalEqualArea>(kGieRows);
}

// IOGP Guidance Note 7-2 (2019), method 9820 worked example, ETRS89 / LAEA Europe:
// 50°N 5°E -> E 3962799.45, N 2999718.85 (given to the centimetre).
TEST(LambertAzimuthalEqualArea, GuidanceNoteExampleBothWays) {
  const TLambertAzimuthalEqualArea laea(MakeEllipsoid(test::kGrs80A, test::kGrs80Rf), kLaeaEurope);
  TPlanePoint plane;
  std::string message;
  ASSERT_TRUE(laea.Forward({5, 50}, plane, message)) << message;
  EXPECT_NEAR(plane.x, 3962799.45, 0.005);
  EXPECT_NEAR(plane.y, 2999718.85, 0.005);
  TLonLat geo;
  ASSERT_TRUE(laea.Inverse({3962799.45, 2999718.85}, geo, message)) << message;
  // 5 mm on the ground is about 5e-8 degrees.
  EXPECT_NEAR(geo.lon, 5, 1e-7);
  EXPECT_NEAR(geo.lat, 50, 1e-7);
}

// Against PROJ over each aspect's hemisphere: forward within 1 mm, our inverse of PROJ's plane
// point within 1e-8 degrees.
const test::TProjGridRow kGridRows[] = {
    {test::kGrs80A, test::kGrs80Rf, kLaeaEurope,
     "+proj=laea +lat_0=52 +lon_0=10 +x_0=4321000 +y_0=3210000", {-30, 50, 5, 25, 80, 5}},
    {test::kWgs84A, test::kWgs84Rf, {.lonOrigin = -40, .latOrigin = 90},
     "+proj=laea +lat_0=90 +lon_0=-40", {-180, 180, 15, 0, 90, 5}},
    {test::kWgs84A, test::kWgs84Rf, {.lonOrigin = 0, .latOrigin = -90, .falseEasting = 1e6},
     "+proj=laea +lat_0=-90 +x_0=1000000", {-180, 180, 15, -90, 0, 5}},
    {test::kInternationalA, test::kInternationalRf, {.lonOrigin = -100},
     "+proj=laea +lon_0=-100", {-180, -20, 10, -80, 80, 10}},
    {test::kProjSphereR, 0, {.lonOrigin = -100, .latOrigin = 45},
     "+proj=laea +lat_0=45 +lon_0=-100", {-170, -30, 10, -10, 85, 5}},
    {test::kBesselA, test::kBesselRf, {.lonOrigin = 25, .latOrigin = -30, .falseNorthing = 1e7},
     "+proj=laea +lat_0=-30 +lon_0=25 +y_0=10000000", {-20, 70, 5, -75, 15, 5}},
};

TEST(LambertAzimuthalEqualArea, AgreesWithProjOverItsHemisphere) {
  EXPECT_GT(test::ExpectGridRowsAgreeWithProj<TLambertAzimuthalEqualArea>(kGridRows), 150);
}

// The hard places of the inverse: a hair from a polar origin, a hair from the pole with an
// oblique origin, an origin a hair from the pole, and points far round the globe, where the
// plane crowds towards the rim.
TEST(LambertAzimuthalEqualArea, RoundTripsWhereTheInverseIsDelicate) {
  struct TCase {
    TProjectionParams params;
    double lon, lat;
    double toleranceDeg;
  };
  const TCase cases[] = {
      {{.latOrigin = 90}, 30, 90 - 1e-9, 1e-12},
      {{.latOrigin = 90}, -150, -89.9, 1e-9},
      {{.latOrigin = -90}, 10, -90 + 1e-7, 1e-12},
      {{.latOrigin = 52}, 123, 90 - 1e-9, 1e-9},
      {{.latOrigin = 52}, 10, 89.999999, 1e-10},
      {{.latOrigin = 90 - 1e-8}, 45, 80, 1e-10},
      {{.latOrigin = 52, .falseEasting = 4321000}, -150, -60, 1e-9},
      {{.latOrigin = 0}, 100, 45, 1e-10},
      {{.latOrigin = 0}, 0, -89.99999, 1e-10},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "origin " << c.params.latOrigin << " point " << c.lon << " " << c.lat);
    const TLambertAzimuthalEqualArea laea(MakeEllipsoid(test::kGrs80A, test::kGrs80Rf), c.params);
    TPlanePoint plane;
    TLonLat back;
    std::string message;
    ASSERT_TRUE(laea.Forward({c.lon, c.lat}, plane, message)) << message;
    ASSERT_TRUE(laea.Inverse(plane, back, message)) << message;
    EXPECT_NEAR(back.lat, c.lat, c.toleranceDeg);
    // Longitude errors shrink by cos(lat) on the ground.
    EXPECT_NEAR(std::remainder(back.lon - c.lon, 360.0) * std::cos(c.lat * kRadiansPerDegree), 0,
                c.toleranceDeg);
  }
}

TEST(LambertAzimuthalEqualArea, RefusesWhatHasNoImageAndLeavesTheOutput) {
  const TDatum grs80 = MakeEllipsoid(test::kGrs80A, test::kGrs80Rf);
  struct TCase {
    TProjectionParams params;
    bool inverse;
    double u, v;  // lon lat, or x y for the inverse
    const char* message;
  };
  const TCase cases[] = {
      {{}, false, 180, 0, "error in Grados_a_LambertAzimuthal"},          // the antipode
      {{.lonOrigin = 10, .latOrigin = 52}, false, -170, -52, "error in Grados_a_LambertAzimuthal"},
      {{.latOrigin = 90}, false, 0, -90, "error in Grados_a_LambertAzimuthal"},  // opposite pole
      {{.latOrigin = -90}, false, 20, 90, "error in Grados_a_LambertAzimuthal"},
      {{}, false, 0, 90.5, "error in Grados_a_LambertAzimuthal"},
      {{}, false, kNaN, 10, "error in Grados_a_LambertAzimuthal"},
      {{}, true, 13000000, 0, "error in LambertAzimuthal_a_Grados"},        // beyond the rim
      {{.latOrigin = 90}, true, 0, -13000000, "error in LambertAzimuthal_a_Grados"},
      {{}, true, kNaN, 0, "error in LambertAzimuthal_a_Grados"},
      {{.latOrigin = 91}, false, 0, 0, "error in LambertAzimuthal parameters"},
      {{.latOrigin = -90.5}, true, 0, 0, "error in LambertAzimuthal parameters"},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.params.latOrigin << (c.inverse ? " inverse " : " forward ")
                                    << c.u << " " << c.v);
    const TLambertAzimuthalEqualArea laea(grs80, c.params);
    std::string message;
    if (c.inverse) {
      TLonLat geo{-1, -2};
      EXPECT_FALSE(laea.Inverse({c.u, c.v}, geo, message));
      EXPECT_EQ(geo.lon, -1);
      EXPECT_EQ(geo.lat, -2);
    } else {
      TPlanePoint plane{-1, -2};
      EXPECT_FALSE(laea.Forward({c.u, c.v}, plane, message));
      EXPECT_EQ(plane.x, -1);
      EXPECT_EQ(plane.y, -2);
    }
    EXPECT_EQ(message, c.message);
  }
}

}  // namespace
}  // namespace velantis
