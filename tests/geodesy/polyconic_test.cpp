#include "geodesy/polyconic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "tests/support/gie_vectors.h"
#include "tests/support/proj_reference.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// PROJ's builtins.gie (PROJ @ 52da98bd99) and the IOGP GIGS 5107 series (American
// polyconic, SIRGAS 2000 / Brazil Polyconic: lon0 -54, FE 5000000, FN 10000000, GRS 80).
const TProjectionParams kBrazil{
    .lonOrigin = -54, .falseEasting = 5000000, .falseNorthing = 10000000};

const test::TGieRow kGieRows[] = {
    {"gie/builtins.gie", {"+proj=poly +ellps=GRS80"}, test::kGrs80A, test::kGrs80Rf, {}, 8},
    {"gie/builtins.gie", {"+proj=poly +R=6400000"}, 6400000, 0, {}, 8},
    {"gie/gigs/5107.gie",
     {"+proj=pipeline +step +init=epsg:4674 +inv +step +proj=poly +lat_0=0 +lon_0=-54 +x_0=5000000 "
     "+y_0=10000000 +ellps=GRS80 +towgs84=0,0,0,0,0,0,0 +units=m"},
     test::kGrs80A, test::kGrs80Rf, kBrazil, 26},
    {"gie/gigs/5107.gie",
     {"+proj=pipeline +step +proj=poly +lat_0=0 +lon_0=-54 +x_0=5000000 +y_0=10000000 +ellps=GRS80 "
     "+towgs84=0,0,0,0,0,0,0 +units=m +inv +step +init=epsg:4674", true},
     test::kGrs80A, test::kGrs80Rf, kBrazil, 13},
};

TEST(Polyconic, PublishedAndProjVectors) {
  test::ExpectGieRows<TPolyconic>(kGieRows);
}

// Against PROJ over 90 degrees of longitude about the central meridian, pole to pole:
// forward within 1 mm, our iterative inverse of PROJ's plane point within 1e-8 degrees.
const test::TProjGridRow kGridRows[] = {
    {test::kGrs80A, test::kGrs80Rf, kBrazil, "+proj=poly +lon_0=-54 +x_0=5000000 +y_0=10000000",
     {-99, -9, 2, -90, 90, 2.5}},
    {6378206.4, 294.9786982, {.lonOrigin = -96, .latOrigin = 30}, "+proj=poly +lon_0=-96 +lat_0=30",
     {-141, -51, 3, -88, 88, 4}},  // Clarke 1866, as the USGS used it
    {test::kProjSphereR, 0, {.lonOrigin = 150}, "+proj=poly +lon_0=150", {105, 195, 3, -89, 89, 2}},
};

TEST(Polyconic, AgreesWithProjOverTheMap) {
  EXPECT_GE(test::ExpectGridRowsAgreeWithProj<TPolyconic>(kGridRows), 1000);
}

// Within a degree of a pole the inverse takes its polar iteration; PROJ's own inverse gives
// up there, so PROJ's forward is the reference and the check is the distance on the ground.
// 10 micrometres: PROJ's meridian arc is 1.2 micrometres long at 89.2 degrees (checked
// against a 30-digit quadrature), ours within 0.05.
TEST(Polyconic, InvertsPlanePointsAroundThePoles) {
  const TDatum grs80 = MakeEllipsoid(test::kGrs80A, test::kGrs80Rf);
  const TPolyconic polyconic(grs80, kBrazil);
  const test::TProjReference proj("+proj=poly +lon_0=-54 +x_0=5000000 +y_0=10000000 " +
                                  test::ProjEllipsoid(grs80));
  const double radian = std::numbers::pi / 180;
  for (const double lat : {89.2, 89.9, 89.99999, 90.0, -89.5, -89.999, -90.0}) {
    for (const double lon : {-54.0, -53.0, -24.0, 60.0, 125.0}) {
      SCOPED_TRACE(testing::Message() << lon << " " << lat);
      double x = 0, y = 0;
      ASSERT_TRUE(proj.Forward(lon, lat, x, y));
      TLonLat geo;
      std::string message;
      ASSERT_TRUE(polyconic.Inverse({x, y}, geo, message)) << message;
      const double north = (geo.lat - lat) * radian * grs80.a;
      const double east =
          std::remainder(geo.lon - lon, 360.0) * radian * grs80.a * std::cos(lat * radian);
      EXPECT_LT(std::hypot(north, east), 1e-5);
    }
  }
}

// The length of the meridian quadrant: GRS 80, 10001965.7293 m as published (H. Moritz,
// "Geodetic Reference System 1980", Bull. Géod. 54 (1980)); International 1924, 10002288.299 m
// from a 30-digit quadrature of the meridian radius of curvature (mpmath, outside this code).
TEST(Polyconic, MeridianArcReachesThePublishedQuadrant) {
  const struct {
    double a, rf, quadrant, tolerance;
  } rows[] = {
      {test::kGrs80A, test::kGrs80Rf, 10001965.7293, 0.0005},
      {test::kInternationalA, test::kInternationalRf, 10002288.299, 0.005},
  };
  for (const auto& row : rows) {
    const TPolyconic polyconic(MakeEllipsoid(row.a, row.rf), {});
    EXPECT_NEAR(polyconic.MeridianArc(std::numbers::pi / 2), row.quadrant, row.tolerance) << row.a;
    EXPECT_NEAR(polyconic.MeridianArc(-std::numbers::pi / 2), -row.quadrant, row.tolerance)
        << row.a;
  }
}

struct TFailureRow {
  bool inverse;
  double first, second;
};

const TFailureRow kFailureRows[] = {
    {false, 10, 90.5}, {false, 10, -91}, {false, kNaN, 10}, {false, 10, kNaN},
    // Off the map: more than half a turn from the central meridian.
    {true, 5e7, 1e7}, {true, -3e7, -2e6}, {true, 2.1e7, 0.5e7}, {true, kNaN, 0}, {true, 0, kNaN},
    // No latitude solves the inverse: the bounded iteration gives up.
    {true, 9e6, 1.2e7},
};

TEST(Polyconic, RefusesWhatHasNoImageAndLeavesTheOutput) {
  const TPolyconic polyconic(MakeEllipsoid(test::kGrs80A, test::kGrs80Rf), {});
  for (const TFailureRow& row : kFailureRows) {
    SCOPED_TRACE(testing::Message() << row.inverse << " " << row.first << " " << row.second);
    std::string message;
    if (row.inverse) {
      TLonLat geo{1.5, 2.5};
      EXPECT_FALSE(polyconic.Inverse({row.first, row.second}, geo, message))
          << geo.lon << " " << geo.lat;
      EXPECT_EQ(geo.lon, 1.5);
      EXPECT_EQ(geo.lat, 2.5);
      EXPECT_EQ(message, "error in Policonica_a_Grados");
    } else {
      TPlanePoint plane{1.5, 2.5};
      EXPECT_FALSE(polyconic.Forward({row.first, row.second}, plane, message));
      EXPECT_EQ(plane.x, 1.5);
      EXPECT_EQ(plane.y, 2.5);
      EXPECT_EQ(message, "error in Grados_a_Policonica");
    }
  }
}

}  // namespace
}  // namespace velantis
