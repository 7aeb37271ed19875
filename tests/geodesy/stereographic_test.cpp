#include "geodesy/stereographic.h"

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
constexpr double kClarke1866A = 6378206.4, kClarke1866Rf = 294.9786982;  // EPSG 7008

// WGS 84 / UPS North (EPSG:32661): polar stereographic variant A, k0 0.994.
const TProjectionParams kUpsNorth{.latOrigin = 90, .scaleFactor = 0.994, .falseEasting = 2000000,
                                  .falseNorthing = 2000000};
// Snyder's example grid: Clarke 1866, origin 40 N 100 W, k0 0.9999.
const TProjectionParams kSnyderOblique{.lonOrigin = -100, .latOrigin = 40, .scaleFactor = 0.9999};

// PROJ's builtins.gie (PROJ @ 52da98bd99): the oblique and equatorial "stere" and its polar
// variant A; the variant B operations (lat_ts) have no counterpart among our parameters.
const test::TGieRow kGieRows[] = {
    {"gie/builtins.gie", {"+proj=stere +ellps=GRS80"}, test::kGrs80A, test::kGrs80Rf, {}, 8},
    {"gie/builtins.gie", {"+proj=stere +R=6400000"}, 6400000, 0, {}, 8},
    {"gie/builtins.gie", {"+proj=stere +ellps=GRS80 +lat_0=-90 +k_0=0.97"}, test::kGrs80A, test::kGrs80Rf,
     {.latOrigin = -90, .scaleFactor = 0.97}, 4},
    {"gie/builtins.gie", {"+proj=stere +R=6378137 +lat_0=-90 +k_0=0.9698463103929542"}, 6378137, 0,
     {.latOrigin = -90, .scaleFactor = 0.9698463103929542}, 4},
};

TEST(Stereographic, ProjGieVectors) {
  test::ExpectGieRows<TStereographic>(kGieRows);
}

// Published points, both ways:
// - IOGP Guidance Note 7-2 (2019), method 9810 example, WGS 84 / UPS North: 73 N 44 E ->
//   E 3320416.75, N 632668.43.
// - J. P. Snyder, "Map Projections: A Working Manual" (1987), the numerical example of the
//   ellipsoidal oblique stereographic: 30 N 90 W -> x 971630.8, y -1063049.3 (to the decimetre).
// - PROJ's cs2cs test "stere without lat_ts" (test_cs2cs_various.yaml), WGS 84, origin 40 N
//   10 E: 45 N 20 E -> 789468.08 602385.33.
TEST(Stereographic, PublishedPoints) {
  struct TCase {
    const char* source;
    double a, rf;
    TProjectionParams params;
    double lon, lat, x, y, toleranceMetres;
  };
  const TCase cases[] = {
      {"GN 7-2 UPS North", test::kWgs84A, test::kWgs84Rf, kUpsNorth, 44, 73, 3320416.75, 632668.43,
       0.005},
      {"Snyder example", kClarke1866A, kClarke1866Rf, kSnyderOblique, -90, 30, 971630.8, -1063049.3,
       0.05},
      {"PROJ cs2cs #147", test::kWgs84A, test::kWgs84Rf, {.lonOrigin = 10, .latOrigin = 40}, 20, 45,
       789468.08, 602385.33, 0.005},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.source);
    const TDatum ellipsoid = MakeEllipsoid(c.a, c.rf);
    const TStereographic stere(ellipsoid, c.params);
    test::ExpectPublishedPoint(stere, c.lon, c.lat, c.x, c.y, c.toleranceMetres, c.a);
  }
}

const test::TProjGridRow kGridRows[] = {
    {test::kWgs84A, test::kWgs84Rf, kUpsNorth,
     "+proj=stere +lat_0=90 +k_0=0.994 +x_0=2000000 +y_0=2000000", {-180, 180, 15, -30, 90, 5}},
    {test::kBesselA, test::kBesselRf, {.lonOrigin = 30, .latOrigin = -90},
     "+proj=stere +lat_0=-90 +lon_0=30", {-180, 180, 15, -90, 30, 5}},
    {kClarke1866A, kClarke1866Rf, kSnyderOblique, "+proj=stere +lat_0=40 +lon_0=-100 +k_0=0.9999",
     {-160, -40, 10, -10, 85, 5}},
    {test::kInternationalA, test::kInternationalRf, {.lonOrigin = 20, .falseEasting = 5e5},
     "+proj=stere +lon_0=20 +x_0=500000", {-60, 100, 10, -80, 80, 10}},
    {test::kGrs80A, test::kGrs80Rf, {.lonOrigin = 160, .latOrigin = -75, .falseNorthing = 1e6},
     "+proj=stere +lat_0=-75 +lon_0=160 +y_0=1000000", {80, 240, 10, -90, -20, 5}},
    {test::kProjSphereR, 0, {.lonOrigin = -45, .latOrigin = 60},
     "+proj=stere +lat_0=60 +lon_0=-45", {-120, 30, 10, 0, 90, 5}},
};

TEST(Stereographic, AgreesWithProjAcrossItsHemisphere) {
  EXPECT_GT(test::ExpectGridRowsAgreeWithProj<TStereographic>(kGridRows), 200);
}

// Conformal: at every point the scale is the same along the meridian and the parallel, and
// at the origin it is the scale factor. (No false origin here: metres of difference measured
// a metre from a pole would drown in the rounding of 2000 km.)
TEST(Stereographic, IsConformalWithItsScaleFactorAtTheOrigin) {
  const TDatum clarke = MakeEllipsoid(kClarke1866A, kClarke1866Rf);
  const TProjectionParams origins[] = {kSnyderOblique,
                                       {.latOrigin = 90, .scaleFactor = 0.994},
                                       {.latOrigin = -90, .scaleFactor = 0.97}};
  for (const TProjectionParams& params : origins) {
    const TStereographic stere(clarke, params);
    test::ExpectConformal(stere, clarke, params.lonOrigin, params.latOrigin, params.scaleFactor);
    test::ExpectConformal(stere, clarke, params.lonOrigin + 20, params.latOrigin > 0 ? 50 : -50, 0);
  }
}

TEST(Stereographic, RefusesWhatHasNoImageAndLeavesTheOutput) {
  const TDatum grs80 = MakeEllipsoid(test::kGrs80A, test::kGrs80Rf);
  const test::TRefusalCase cases[] = {
      {{.latOrigin = 90}, false, 10, -90, "error in Grados_a_Stereographic"},  // opposite pole
      {{.latOrigin = -90}, false, 10, 90, "error in Grados_a_Stereographic"},
      {{}, false, 180, 0, "error in Grados_a_Stereographic"},  // antipode of the origin
      {{.lonOrigin = -100, .latOrigin = 40}, false, 80, -40, "error in Grados_a_Stereographic"},
      {{}, false, 0, -91, "error in Grados_a_Stereographic"},
      {{}, false, kNaN, 0, "error in Grados_a_Stereographic"},
      {{}, true, kNaN, 0, "error in Stereographic_a_Grados"},
      {{.latOrigin = 90}, true, 0, std::numeric_limits<double>::infinity(),
       "error in Stereographic_a_Grados"},
      {{.latOrigin = 95}, false, 0, 0, "error in Stereographic parameters"},
      {{.scaleFactor = 0}, true, 0, 0, "error in Stereographic parameters"},
      {{.scaleFactor = -1}, false, 0, 0, "error in Stereographic parameters"},
  };
  test::ExpectRefusals<TStereographic>(grs80, cases);
}

}  // namespace
}  // namespace velantis
