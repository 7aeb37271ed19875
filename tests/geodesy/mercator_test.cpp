#include "geodesy/mercator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>

#include "tests/support/gie_vectors.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// PROJ's .gie vectors: builtins.gie and 4D-API_cs2cs-style.gie (PROJ @ 52da98bd99), the IOGP
// GIGS 5111 (variant A, Batavia / NEIEZ) and 5112 (variant B, Pulkovo 1942 / Caspian Sea)
// series, whose EPSG parameters are listed in gie/gigs/EPSG_RESOLVED.txt, and the IOGP
// Guidance Note 7-2 examples PROJ keeps for the spherical and pseudo Mercator.
struct TGieRow {
  const char* file;
  test::TGieOperation operation;
  double a, rf;
  TMercatorVariant variant;
  TProjectionParams params;
  int cases;  // how many checks the operation holds, so that none is skipped unseen
};

const TProjectionParams kNeiez{
    .lonOrigin = 110, .scaleFactor = 0.997, .falseEasting = 3900000, .falseNorthing = 900000};
const TProjectionParams kCaspian{.lonOrigin = 51, .latOrigin = 42};

const TGieRow kGieRows[] = {
    {"gie/builtins.gie", {"+proj=merc +ellps=GRS80"}, test::kGrs80A, test::kGrs80Rf,
     TMercatorVariant::Elliptical, {}, 16},
    {"gie/builtins.gie", {"+proj=merc +ellps=GRS80"}, test::kGrs80A, test::kGrs80Rf,
     TMercatorVariant::Mercator, {}, 16},
    {"gie/builtins.gie", {"+proj=merc +R=6400000"}, 6400000, 0, TMercatorVariant::Spherical, {},
     10},
    {"gie/builtins.gie", {"+proj=merc +R=1"}, 1, 0, TMercatorVariant::Spherical, {}, 2},
    {"gie/builtins.gie", {"+proj=merc +R_C +a=6371007 +b=6371007"}, 6371007, 0,
     TMercatorVariant::Spherical, {}, 1},
    {"gie/4D-API_cs2cs-style.gie", {"proj=webmerc +ellps=WGS84"}, test::kWgs84A, test::kWgs84Rf,
     TMercatorVariant::Spherical, {}, 2},
    {"gie/gigs/5111.1.gie",
     {"+proj=pipeline towgs84=0,0,0 +step +init=epsg:4211 +inv +step +init=epsg:3001"},
     test::kBesselA, test::kBesselRf, TMercatorVariant::Elliptical, kNeiez, 70},
    {"gie/gigs/5111.1.gie",
     {"+proj=pipeline towgs84=0,0,0 +step +init=epsg:3001 +inv +step +init=epsg:4211", true},
     test::kBesselA, test::kBesselRf, TMercatorVariant::Elliptical, kNeiez, 35},
    {"gie/gigs/5111.1.gie",
     {"+proj=pipeline towgs84=0,0,0 +step +init=epsg:4211 +inv +step +init=epsg:3001"},
     test::kBesselA, test::kBesselRf, TMercatorVariant::Mercator, kNeiez, 70},
    {"gie/gigs/5112.gie", {"proj=pipeline step init=epsg:4284 inv step init=epsg:3388"},
     test::kKrassowskyA, test::kKrassowskyRf, TMercatorVariant::Mercator, kCaspian, 5},
    {"gie/gigs/5112.gie", {"proj=pipeline step init=epsg:3388 inv step init=epsg:4284", true},
     test::kKrassowskyA, test::kKrassowskyRf, TMercatorVariant::Mercator, kCaspian, 5},
    {"gie/gigs/5112.gie",
     {"proj=pipeline towgs84=0,0,0 step init=epsg:4284 inv step init=epsg:3388"},
     test::kKrassowskyA, test::kKrassowskyRf, TMercatorVariant::Mercator, kCaspian, 5},
};

TEST(Mercator, PublishedAndProjVectors) {
  test::ExpectGieRows(std::span<const TGieRow>(kGieRows), [](const TGieRow& row) {
    return TMercator(MakeEllipsoid(row.a, row.rf), row.params, row.variant);
  });
}

// Against PROJ over the whole map, on several ellipsoids: forward within 1 mm and our inverse
// of PROJ's plane point within 1e-8 degrees.
struct TGridRow {
  double a, rf;
  TMercatorVariant variant;
  TProjectionParams params;
  const char* proj;  // the same projection in PROJ's words, ellipsoid added
};

const TGridRow kGridRows[] = {
    {test::kWgs84A, test::kWgs84Rf, TMercatorVariant::Mercator, {}, "+proj=merc"},
    {test::kKrassowskyA, test::kKrassowskyRf, TMercatorVariant::Mercator,
     {.lonOrigin = 51, .latOrigin = 42, .falseEasting = 500000, .falseNorthing = -1000000},
     "+proj=merc +lat_ts=42 +lon_0=51 +x_0=500000 +y_0=-1000000"},
    {test::kBesselA, test::kBesselRf, TMercatorVariant::Mercator,
     {.lonOrigin = -20, .latOrigin = -35}, "+proj=merc +lat_ts=-35 +lon_0=-20"},
    {test::kClarkeIgnA, test::kClarkeIgnRf, TMercatorVariant::Elliptical,
     {.lonOrigin = -60, .scaleFactor = 0.997, .falseEasting = 3900000, .falseNorthing = 900000},
     "+proj=merc +lon_0=-60 +k_0=0.997 +x_0=3900000 +y_0=900000"},
    {test::kWgs84A, test::kWgs84Rf, TMercatorVariant::Spherical,
     {.lonOrigin = 10, .latOrigin = 33, .scaleFactor = 0.9, .falseEasting = 1000,
      .falseNorthing = 2000},
     "+proj=webmerc +lon_0=10 +x_0=1000 +y_0=2000"},
    {test::kProjSphereR, 0, TMercatorVariant::Elliptical, {.lonOrigin = 100},
     "+proj=merc +lon_0=100"},
};

TEST(Mercator, AgreesWithProjOverTheMap) {
  const test::TGridSpan span{-175, 175, 12.5, -85, 85, 5};
  for (const TGridRow& row : kGridRows) {
    const TDatum ellipsoid = MakeEllipsoid(row.a, row.rf);
    const std::string definition = std::string(row.proj) + " " + test::ProjEllipsoid(ellipsoid);
    SCOPED_TRACE(definition);
    const TMercator mercator(ellipsoid, row.params, row.variant);
    EXPECT_EQ(test::ExpectAgreesWithProj(mercator, definition, span), 29 * 35);
  }
}

// Both parameters of "Mercator" at once: the scale factor scales the variant B map about
// the false origin.
TEST(Mercator, ScaleFactorComposesWithTheLatitudeOfTrueScale) {
  const TDatum bessel = MakeEllipsoid(test::kBesselA, test::kBesselRf);
  const TProjectionParams unscaled{
      .lonOrigin = 5, .latOrigin = 52, .falseEasting = 1e5, .falseNorthing = 2e5};
  TProjectionParams scaled = unscaled;
  scaled.scaleFactor = 0.9996;
  const TMercator one(bessel, unscaled, TMercatorVariant::Mercator);
  const TMercator other(bessel, scaled, TMercatorVariant::Mercator);
  std::string message;
  for (const TLonLat geo : {TLonLat{5, 52}, TLonLat{-40, 70}, TLonLat{120, -33}}) {
    TPlanePoint p, q;
    ASSERT_TRUE(one.Forward(geo, p, message));
    ASSERT_TRUE(other.Forward(geo, q, message));
    EXPECT_NEAR(q.x - 1e5, 0.9996 * (p.x - 1e5), 1e-6);
    EXPECT_NEAR(q.y - 2e5, 0.9996 * (p.y - 2e5), 1e-6);
  }
}

struct TFailureRow {
  TMercatorVariant variant;
  TProjectionParams params;
  bool inverse;
  double first, second;  // lon/lat or x/y
  const char* message;
};

const TFailureRow kFailureRows[] = {
    {TMercatorVariant::Mercator, {}, false, 0, 90, "error in Grados_a_Mercator"},
    {TMercatorVariant::Spherical, {}, false, 10, -90, "error in Grados_a_Mercator"},
    {TMercatorVariant::Elliptical, {}, false, 10, 90.5, "error in Grados_a_Mercator"},
    {TMercatorVariant::Elliptical, {}, false, 10, kNaN, "error in Grados_a_Mercator"},
    {TMercatorVariant::Mercator, {}, false, kNaN, 10, "error in Grados_a_Mercator"},
    {TMercatorVariant::Mercator, {}, true, 0, kNaN, "error in Mercator_a_Grados"},
    {TMercatorVariant::Spherical, {}, true, kNaN, 0, "error in Mercator_a_Grados"},
    {TMercatorVariant::Mercator, {.latOrigin = 90}, false, 0, 0, "error in Mercator parameters"},
    {TMercatorVariant::Mercator, {.latOrigin = -90}, true, 0, 0, "error in Mercator parameters"},
    {TMercatorVariant::Elliptical, {.scaleFactor = 0}, false, 0, 0, "error in Mercator parameters"},
    {TMercatorVariant::Elliptical, {.scaleFactor = -1}, true, 0, 0, "error in Mercator parameters"},
};

TEST(Mercator, RefusesPolesAndBadParametersAndLeavesTheOutput) {
  const TDatum wgs84 = MakeEllipsoid(test::kWgs84A, test::kWgs84Rf);
  for (const TFailureRow& row : kFailureRows) {
    SCOPED_TRACE(testing::Message() << row.message << " " << row.first << " " << row.second);
    const TMercator mercator(wgs84, row.params, row.variant);
    test::ExpectRefusal(mercator, row.inverse, row.first, row.second, row.message);
  }
}

}  // namespace
}  // namespace velantis
