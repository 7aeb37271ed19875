#include "geodesy/oblique_stereographic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/gie_vectors.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Amersfoort / RD New (EPSG:28992), parameters as the EPSG dataset gives them.
const TProjectionParams kRdNew{.lonOrigin = 5.38763888888889, .latOrigin = 52.1561605555556,
                               .scaleFactor = 0.9999079, .falseEasting = 155000,
                               .falseNorthing = 463000};

// PROJ's builtins.gie "sterea" (PROJ @ 52da98bd99), including origins at and next to the
// poles, and the IOGP GIGS 5104 series on RD New (Bessel 1841): forward, inverse and
// round trips at 5 cm.
const test::TGieRow kGieRows[] = {
    {"gie/builtins.gie", {"+proj=sterea +ellps=GRS80"}, test::kGrs80A, test::kGrs80Rf, {}, 8},
    {"gie/builtins.gie", {"+proj=sterea +R=6400000"}, 6400000, 0, {}, 9},
    {"gie/builtins.gie", {"+proj=sterea +ellps=GRS80 +lat_0=90"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = 90}, 4},
    {"gie/builtins.gie", {"+proj=sterea +ellps=GRS80 +lat_0=89"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = 89}, 4},
    {"gie/builtins.gie", {"+proj=sterea +ellps=GRS80 +lat_0=-90"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = -90}, 4},
    {"gie/builtins.gie", {"+proj=sterea +ellps=GRS80 +lat_0=-89"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = -89}, 4},
    {"gie/gigs/5104.gie", {"+proj=pipeline +step +init=epsg:4289 +inv +step +init=epsg:28992"},
     test::kBesselA, test::kBesselRf, kRdNew, 40},
    {"gie/gigs/5104.gie", {"+proj=pipeline +step +init=epsg:28992 +inv +step +init=epsg:4289", true},
     test::kBesselA, test::kBesselRf, kRdNew, 20},
};

TEST(ObliqueStereographic, PublishedAndProjVectors) {
  test::ExpectGieRows<TObliqueStereographic>(kGieRows);
}

// Published points, both ways:
// - IOGP Guidance Note 7-2 (2019), method 9809 example, Amersfoort / RD New: 53 N 6 E ->
//   E 196105.283, N 557057.739.
// - The RD origin, Amersfoort (52°09'22.178" N, 5°23'15.500" E): 155000, 463000 by definition.
TEST(ObliqueStereographic, PublishedPoints) {
  const TObliqueStereographic rd(MakeEllipsoid(test::kBesselA, test::kBesselRf), kRdNew);
  struct TCase {
    double lon, lat, x, y, toleranceMetres;
  };
  const TCase cases[] = {
      {6, 53, 196105.283, 557057.739, 0.0005},
      {5 + 23 / 60.0 + 15.5 / 3600, 52 + 9 / 60.0 + 22.178 / 3600, 155000, 463000, 0.001},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.lon << " " << c.lat);
    test::ExpectPublishedPoint(rd, c.lon, c.lat, c.x, c.y, c.toleranceMetres, test::kBesselA);
  }
}

const test::TProjGridRow kGridRows[] = {
    {test::kBesselA, test::kBesselRf, kRdNew,
     "+proj=sterea +lat_0=52.1561605555556 +lon_0=5.38763888888889 +k=0.9999079 +x_0=155000 "
     "+y_0=463000",
     {-10, 20, 2.5, 40, 65, 2.5}},
    // NAD83(CSRS) / New Brunswick Stereographic (EPSG:2953).
    {test::kGrs80A, test::kGrs80Rf,
     {.lonOrigin = -66.5, .latOrigin = 46.5, .scaleFactor = 0.999912, .falseEasting = 2500000,
      .falseNorthing = 7500000},
     "+proj=sterea +lat_0=46.5 +lon_0=-66.5 +k=0.999912 +x_0=2500000 +y_0=7500000",
     {-90, -40, 2.5, 30, 70, 2.5}},
    {test::kGrs80A, test::kGrs80Rf, {.latOrigin = 90}, "+proj=sterea +lat_0=90",
     {-180, 180, 15, 0, 90, 5}},
    {test::kProjSphereR, 0, {.lonOrigin = -60, .latOrigin = -60}, "+proj=sterea +lat_0=-60 +lon_0=-60",
     {-150, 30, 10, -90, 30, 5}},
    {test::kInternationalA, test::kInternationalRf, {.lonOrigin = 100, .falseEasting = 1e6},
     "+proj=sterea +lon_0=100 +x_0=1000000", {20, 180, 10, -80, 80, 10}},
};

TEST(ObliqueStereographic, AgreesWithProjAcrossItsHemisphere) {
  EXPECT_GT(test::ExpectGridRowsAgreeWithProj<TObliqueStereographic>(kGridRows), 100);
}

// Conformal everywhere, with the scale factor at the origin (where Gauss's sphere touches).
TEST(ObliqueStereographic, IsConformalWithItsScaleFactorAtTheOrigin) {
  const TDatum bessel = MakeEllipsoid(test::kBesselA, test::kBesselRf);
  const TProjectionParams origins[] = {
      {.lonOrigin = 5.38763888888889, .latOrigin = 52.1561605555556, .scaleFactor = 0.9999079},
      {.latOrigin = 90, .scaleFactor = 0.994},
      {.lonOrigin = 30, .latOrigin = -20, .scaleFactor = 1},
  };
  for (const TProjectionParams& params : origins) {
    const TObliqueStereographic sterea(bessel, params);
    test::ExpectConformal(sterea, bessel, params.lonOrigin, params.latOrigin, params.scaleFactor);
    test::ExpectConformal(sterea, bessel, params.lonOrigin - 25, params.latOrigin > 0 ? 40 : -55, 0);
  }
}

TEST(ObliqueStereographic, RefusesWhatHasNoImageAndLeavesTheOutput) {
  const TDatum grs80 = MakeEllipsoid(test::kGrs80A, test::kGrs80Rf);
  const test::TRefusalCase cases[] = {
      {{.latOrigin = 90}, false, 0, -90, "error in Grados_a_ObliqueStereographic"},
      {{}, false, 0, 90.01, "error in Grados_a_ObliqueStereographic"},
      {{}, false, 10, kNaN, "error in Grados_a_ObliqueStereographic"},
      {{}, true, kNaN, 1, "error in ObliqueStereographic_a_Grados"},
      {{}, true, 0, -std::numeric_limits<double>::infinity(), "error in ObliqueStereographic_a_Grados"},
      {{.latOrigin = 91}, false, 0, 0, "error in ObliqueStereographic parameters"},
      {{.scaleFactor = 0}, true, 0, 0, "error in ObliqueStereographic parameters"},
  };
  test::ExpectRefusals<TObliqueStereographic>(grs80, cases);
  // The antipode of the origin, at infinity. On an ellipsoid Gauss's sphere stretches the
  // longitudes by n, so the antipode is plainest on a sphere, where n is 1.
  const test::TRefusalCase antipode[] = {
      {{.lonOrigin = 10, .latOrigin = 30}, false, -170, -30, "error in Grados_a_ObliqueStereographic"},
  };
  test::ExpectRefusals<TObliqueStereographic>(MakeEllipsoid(6400000, 0), antipode);
}

}  // namespace
}  // namespace velantis
