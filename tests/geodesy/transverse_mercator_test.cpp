#include "geodesy/transverse_mercator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "tests/support/gie_vectors.h"
#include "tests/support/proj_reference.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

using test::GroundMetres;
using test::MakeEllipsoid;

TProjectionParams Params(double lon0, double lat0, double k0, double fe, double fn) {
  TProjectionParams p;
  p.lonOrigin = lon0;
  p.latOrigin = lat0;
  p.scaleFactor = k0;
  p.falseEasting = fe;
  p.falseNorthing = fn;
  return p;
}

std::string ProjTmerc(const TDatum& e, const TProjectionParams& p, bool approx) {
  char text[300];
  std::snprintf(text, sizeof text,
                "+proj=tmerc %s+lat_0=%.17g +lon_0=%.17g +k=%.17g +x_0=%.17g +y_0=%.17g +a=%.17g +rf=%.17g",
                approx ? "+approx " : "", p.latOrigin, p.lonOrigin, p.scaleFactor, p.falseEasting,
                p.falseNorthing, e.a, e.invFlattening);
  return text;
}

// Ellipsoids of the EPSG dataset.
struct TEllipsoidRow {
  const char* name;
  double a, rf;
};
constexpr TEllipsoidRow kEllipsoids[] = {
    {"WGS 84", 6378137, 298.257223563},       {"GRS 1980", 6378137, 298.257222101},
    {"International 1924", 6378388, 297},     {"Bessel 1841", 6377397.155, 299.1528128},
    {"Clarke 1880 (RGS)", 6378249.145, 293.465}, {"Airy 1830", 6377563.396, 299.3249646},
};

struct TParamsRow {
  const char* name;
  double lon0, lat0, k0, fe, fn;
};
constexpr TParamsRow kParamSets[] = {
    {"UTM 31", 3, 0, 0.9996, 500000, 0},
    {"OSGB-like", -2, 49, 0.9996012717, 400000, -100000},
    {"southern origin", 147, -30, 0.9999, 200000, 5000000},
    {"unit scale", -105, 0, 1, 0, 0},
};

// Bounds within ±3° of the central meridian, 80°S..84°N:
// - PROJ "+approx" evaluates the same power series (with its A⁷/A⁸ terms
//   and an e⁸ meridian arc); ours stops at A⁶ and e⁶, which is worth up to
//   about 1 mm at these distances, so 2 mm;
// - PROJ's default is the exact Poder/Engsager series; the truncation of our
//   series against the exact projection stays under 1 mm here, so 5 mm
//   leaves room for the ellipsoids with the larger flattening;
// - our inverse of our forward returns within 1e-8°, the longitude measured
//   along the parallel (× cos φ): near 84° the omitted D⁷·T1³ term of the
//   inverse longitude reaches 1.04e-8° of longitude, which is 0.1 mm there.
TEST(TransverseMercator, AgreesWithProjWithinThreeDegreesOfTheCentralMeridian) {
  constexpr double kApproxBoundM = 0.002, kExactBoundM = 0.005, kRoundTripDeg = 1e-8;
  int compared = 0;
  for (const auto& ellipsoidRow : kEllipsoids) {
    const TDatum ellipsoid = MakeEllipsoid(ellipsoidRow.a, ellipsoidRow.rf);
    for (const auto& row : kParamSets) {
      const TProjectionParams params = Params(row.lon0, row.lat0, row.k0, row.fe, row.fn);
      const TTransverseMercator tm(ellipsoid, params);
      const test::TProjReference approx(ProjTmerc(ellipsoid, params, true));
      const test::TProjReference exact(ProjTmerc(ellipsoid, params, false));
      ASSERT_TRUE(approx.Valid() && exact.Valid());
      for (double lat = -80; lat <= 84; lat += 4) {
        for (double offset = -3; offset <= 3; offset += 0.75) {
          const TLonLat geo{row.lon0 + offset, lat};
          const std::string where = std::string(ellipsoidRow.name) + " " + row.name + " lat " +
                                    std::to_string(lat) + " offset " + std::to_string(offset);
          TPlanePoint ours;
          std::string message;
          ASSERT_TRUE(tm.Forward(geo, ours, message)) << where << ": " << message;
          double ax, ay, ex, ey;
          ASSERT_TRUE(approx.Forward(geo.lon, geo.lat, ax, ay)) << where;
          ASSERT_TRUE(exact.Forward(geo.lon, geo.lat, ex, ey)) << where;
          EXPECT_LE(std::hypot(ours.x - ax, ours.y - ay), kApproxBoundM) << where;
          EXPECT_LE(std::hypot(ours.x - ex, ours.y - ey), kExactBoundM) << where;

          TLonLat back{999, 999};
          ASSERT_TRUE(tm.Inverse(ours, back, message)) << where << ": " << message;
          EXPECT_NEAR(back.lat, geo.lat, kRoundTripDeg) << where;
          EXPECT_NEAR(std::remainder(back.lon - geo.lon, 360.0) * std::cos(lat * kDegree), 0, kRoundTripDeg)
              << where;

          // Our inverse of PROJ's exact plane point lands within the same 5 mm.
          TLonLat fromExact;
          ASSERT_TRUE(tm.Inverse({ex, ey}, fromExact, message)) << where;
          EXPECT_LE(GroundMetres(fromExact, geo, ellipsoid.a), kExactBoundM) << where;
          ++compared;
        }
      }
    }
  }
  EXPECT_EQ(compared, 6 * 4 * 42 * 9);
}

// Beyond ±3° the series part from the exact projection as about the sixth
// power of the distance; the inverse, truncated at D⁶, faster than the
// forward. Measured worst cases over 80°S..84°N: forward 1.0, 3.3, 11.5 mm
// and inverse 2.7, 13.1, 47.3 mm at 4°, 5° and 6°.
TEST(TransverseMercator, ErrorGrowsBeyondTheZoneAsExpected) {
  const TDatum wgs84 = MakeEllipsoid(test::kWgs84A, test::kWgs84Rf);
  const TProjectionParams params = Params(3, 0, 0.9996, 500000, 0);
  const TTransverseMercator tm(wgs84, params);
  const test::TProjReference exact(ProjTmerc(wgs84, params, false));
  struct TRow {
    double offset, forwardBoundM, inverseBoundM;
  };
  for (const TRow& row : {TRow{4, 0.002, 0.004}, TRow{5, 0.005, 0.015}, TRow{6, 0.015, 0.050}}) {
    double worstForward = 0, worstInverse = 0;
    for (double lat = -80; lat <= 84; lat += 2) {
      const TLonLat geo{3 + row.offset, lat};
      TPlanePoint ours;
      std::string message;
      ASSERT_TRUE(tm.Forward(geo, ours, message));
      double x, y;
      ASSERT_TRUE(exact.Forward(geo.lon, geo.lat, x, y));
      worstForward = std::max(worstForward, std::hypot(ours.x - x, ours.y - y));
      TLonLat back;
      ASSERT_TRUE(tm.Inverse({x, y}, back, message));
      worstInverse = std::max(worstInverse, GroundMetres(back, geo, wgs84.a));
    }
    EXPECT_LE(worstForward, row.forwardBoundM) << "offset " << row.offset;
    EXPECT_LE(worstInverse, row.inverseBoundM) << "offset " << row.offset;
  }
}

// IOGP GIGS test 5101 part 1 (Transverse Mercator on WGS 84: lat0 49N, lon0
// 2W, k0 0.9996012717, FE 400000, FN -100000), through PROJ's .gie file of
// it. Only the points within 3° of the central meridian are run: further out
// the power series leave the GIGS tolerance, as the test above shows.
TEST(TransverseMercator, MatchesTheGigsPointsWithinItsDomain) {
  VELANTIS_TESTDATA_OR_SKIP(file, "gie/gigs/5101.1-jhs.gie");
  std::vector<test::TGieBlock> blocks;
  std::string error;
  ASSERT_TRUE(test::ReadGieBlocks(file, {"epsg:4326"}, blocks, error)) << error;
  const TDatum wgs84 = MakeEllipsoid(test::kWgs84A, test::kWgs84Rf);
  const TTransverseMercator tm(wgs84, Params(-2, 49, 0.9996012717, 400000, -100000));
  int forward = 0, inverse = 0;
  for (const auto& block : blocks) {
    for (const auto& pair : block.pairs) {
      const double* geo = block.fromGeographic ? pair.accept : pair.expect;
      const double* plane = block.fromGeographic ? pair.expect : pair.accept;
      if (std::fabs(geo[0] + 2) > 3) continue;
      std::string message;
      if (block.fromGeographic) {
        TPlanePoint ours;
        ASSERT_TRUE(tm.Forward({geo[0], geo[1]}, ours, message)) << "line " << pair.line;
        EXPECT_NEAR(ours.x, plane[0], pair.toleranceM) << "line " << pair.line;
        EXPECT_NEAR(ours.y, plane[1], pair.toleranceM) << "line " << pair.line;
        ++forward;
      } else {
        TLonLat ours;
        ASSERT_TRUE(tm.Inverse({plane[0], plane[1]}, ours, message)) << "line " << pair.line;
        EXPECT_LE(GroundMetres(ours, {geo[0], geo[1]}, wgs84.a), pair.toleranceM) << "line " << pair.line;
        ++inverse;
      }
    }
  }
  EXPECT_EQ(forward, 34);  // of the file's 177 points, those within 3°
  EXPECT_EQ(inverse, 34);
}

// A central meridian near the antimeridian: the longitude difference is taken
// the short way round, as PROJ does.
TEST(TransverseMercator, ProjectsAcrossTheAntimeridian) {
  const TDatum wgs84 = MakeEllipsoid(test::kWgs84A, test::kWgs84Rf);
  const TProjectionParams params = Params(177, 0, 0.9996, 500000, 0);
  const TTransverseMercator tm(wgs84, params);
  const test::TProjReference exact(ProjTmerc(wgs84, params, false));
  for (const double lon : {179.5, 180.0, -180.0, -179.5}) {
    TPlanePoint ours;
    std::string message;
    ASSERT_TRUE(tm.Forward({lon, -17}, ours, message));
    double x, y;
    ASSERT_TRUE(exact.Forward(lon, -17, x, y));
    EXPECT_LE(std::hypot(ours.x - x, ours.y - y), 0.005) << lon;
    TLonLat back;
    ASSERT_TRUE(tm.Inverse(ours, back, message));
    EXPECT_NEAR(std::remainder(back.lon - lon, 360.0), 0, 1e-8) << lon;
    EXPECT_LE(std::fabs(back.lon), 180) << lon;
  }
}

// Meridian arc lengths from the equator by GeographicLib's GeodSolve 2.1.2
// ("GeodSolve -i -E -p 6", exact mode); the e⁶ series is good to 1 mm.
TEST(TransverseMercator, MeridianArcMatchesGeodesicLengths) {
  struct TRow {
    double a, rf, latDeg, metres;
  };
  const TRow rows[] = {
      {6378137, 298.257223563, 10, 1105854.833234}, {6378137, 298.257223563, 45, 4984944.377978},
      {6378137, 298.257223563, -30, -3320113.397940}, {6378137, 298.257223563, 84, 9331826.561185},
      {6378137, 298.257223563, 90, 10001965.729313}, {6378388, 297, 45, 4985037.137082},
  };
  for (const auto& row : rows) {
    const TTransverseMercator tm(MakeEllipsoid(row.a, row.rf), Params(0, 0, 1, 0, 0));
    EXPECT_NEAR(tm.MeridianArc(row.latDeg * kDegree), row.metres, 0.001) << row.latDeg;
  }
  // Under 1e-10 rad the arc is exactly 0; just above it, it is not.
  const TTransverseMercator tm(MakeEllipsoid(test::kWgs84A, test::kWgs84Rf), Params(0, 0, 1, 0, 0));
  EXPECT_EQ(tm.MeridianArc(0.9e-10), 0.0);
  EXPECT_EQ(tm.MeridianArc(-0.9e-10), 0.0);
  EXPECT_GT(tm.MeridianArc(1.1e-10), 0.0);
}

// Failures return the system's message and leave the output as it was.
TEST(TransverseMercator, FailuresLeaveTheOutputUntouched) {
  const TDatum wgs84 = MakeEllipsoid(test::kWgs84A, test::kWgs84Rf);
  const TTransverseMercator tm(wgs84, Params(3, 0, 0.9996, 500000, 0));
  struct TInverseRow {
    const char* what;
    TPlanePoint plane;
  };
  const TInverseRow inverseRows[] = {
      {"northing beyond the north pole", {500000, 10100000}},
      {"northing beyond the south pole", {500000, -10100000}},
      {"easting far outside", {1e8, 1000000}},
      {"not a number", {std::nan(""), 0}},
  };
  for (const auto& row : inverseRows) {
    TLonLat geo{12.5, -7.25};
    std::string message;
    EXPECT_FALSE(tm.Inverse(row.plane, geo, message)) << row.what;
    EXPECT_EQ(message, "error in TM_a_Grados") << row.what;
    EXPECT_EQ(geo.lon, 12.5) << row.what;
    EXPECT_EQ(geo.lat, -7.25) << row.what;
  }

  // 1 − e²·sin²φ < 0 needs e² > 1, which no real ellipsoid has: an impossible
  // one is made by hand to reach the check.
  TDatum impossible = wgs84;
  impossible.e2 = 1.5;
  const TTransverseMercator broken(impossible, Params(3, 0, 0.9996, 500000, 0));
  struct TForwardRow {
    const char* what;
    const TTransverseMercator* projection;
    TLonLat geo;
  };
  const TForwardRow forwardRows[] = {
      {"1 - e2 sin2 phi below zero", &broken, {3, 60}},
      {"latitude not a number", &tm, {3, std::nan("")}},
      {"longitude not a number", &tm, {std::nan(""), 10}},
  };
  for (const auto& row : forwardRows) {
    TPlanePoint plane{1.5, 2.5};
    std::string message;
    EXPECT_FALSE(row.projection->Forward(row.geo, plane, message)) << row.what;
    EXPECT_EQ(message, "error in Grados_a_TM") << row.what;
    EXPECT_EQ(plane.x, 1.5) << row.what;
    EXPECT_EQ(plane.y, 2.5) << row.what;
  }
}

}  // namespace
}  // namespace velantis
