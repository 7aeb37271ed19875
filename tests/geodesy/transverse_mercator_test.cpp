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

using test::GroundMetres;
using test::MakeEllipsoid;
using P = TProjectionParams;

std::string ProjTmerc(const TDatum& e, const P& p, bool approx) {
  char text[300];
  std::snprintf(text, sizeof text, "+proj=tmerc %s+lat_0=%.17g +lon_0=%.17g +k=%.17g +x_0=%.17g +y_0=%.17g +a=%.17g +rf=%.17g",
                approx ? "+approx " : "", p.latOrigin, p.lonOrigin, p.scaleFactor, p.falseEasting, p.falseNorthing,
                e.a, e.invFlattening);
  return text;
}

// Within 3 degrees of the meridian, 80S..84N, six ellipsoids, four parameter sets:
// PROJ "+approx" (the same series to A⁸; ours stops at A⁶) within 2 mm, PROJ's
// exact series within 5 mm, our inverse of its plane point within 5 mm.
TEST(TransverseMercator, AgreesWithProjWithinTheZone) {
  const double ellipsoids[][2] = {{6378137, 298.257223563}, {6378137, 298.257222101}, {6378388, 297},
                                  {6377397.155, 299.1528128}, {6378249.145, 293.465}, {6377563.396, 299.3249646}};
  const P params[] = {{.lonOrigin = 3, .scaleFactor = 0.9996, .falseEasting = 500000},
                      {.lonOrigin = -2, .latOrigin = 49, .scaleFactor = 0.9996012717, .falseEasting = 400000, .falseNorthing = -100000},
                      {.lonOrigin = 147, .latOrigin = -30, .scaleFactor = 0.9999, .falseEasting = 200000, .falseNorthing = 5000000},
                      {.lonOrigin = -105}};
  int compared = 0;
  for (const auto& [a, rf] : ellipsoids) {
    const TDatum ellipsoid = MakeEllipsoid(a, rf);
    for (const P& p : params) {
      const TTransverseMercator tm(ellipsoid, p);
      const test::TProjReference approx(ProjTmerc(ellipsoid, p, true)), exact(ProjTmerc(ellipsoid, p, false));
      for (double lat = -80; lat <= 84; lat += 4) {
        for (double offset = -3; offset <= 3; offset += 0.75) {
          const TLonLat geo{p.lonOrigin + offset, lat};
          SCOPED_TRACE(testing::Message() << a << " " << p.lonOrigin << " lat " << lat << " offset " << offset);
          TPlanePoint ours;
          TLonLat back{999, 999}, fromExact;
          std::string message;
          double ax, ay, ex, ey;
          ASSERT_TRUE(tm.Forward(geo, ours, message)) << message;
          ASSERT_TRUE(approx.Forward(geo.lon, geo.lat, ax, ay) && exact.Forward(geo.lon, geo.lat, ex, ey));
          EXPECT_LE(std::hypot(ours.x - ax, ours.y - ay), 0.002);
          EXPECT_LE(std::hypot(ours.x - ex, ours.y - ey), 0.005);
          // 1e-8 degrees; near 84 the omitted D⁷·T1³ term of the inverse longitude reaches 0.1 mm.
          ASSERT_TRUE(tm.Inverse(ours, back, message) && tm.Inverse({ex, ey}, fromExact, message)) << message;
          EXPECT_LE(GroundMetres(back, geo, a), 0.0011);
          EXPECT_LE(GroundMetres(fromExact, geo, a), 0.005);
          ++compared;
        }
      }
    }
  }
  EXPECT_EQ(compared, 6 * 4 * 42 * 9);
}

// IOGP GIGS 5101 parts 1 (49N 2W, k0 0.9996012717, WGS 84), 2 (WGS 84 / UTM
// 31N) and 3 (GDA94 / MGA 54 on GRS 1980, southern), points within 3 degrees
// of the central meridian, at the GIGS tolerance.
TEST(TransverseMercator, MatchesTheGigsPointsWithinItsDomain) {
  struct TPart {
    const char* file;
    const char* geographic;
    double rf;
    P params;
    int checked;  // of the file's points, those within 3 degrees
  };
  const TPart parts[] = {
      {"gie/gigs/5101.1-jhs.gie", "epsg:4326", test::kWgs84Rf,
       {.lonOrigin = -2, .latOrigin = 49, .scaleFactor = 0.9996012717, .falseEasting = 400000, .falseNorthing = -100000}, 68},
      {"gie/gigs/5101.2-jhs.gie", "epsg:4326", test::kWgs84Rf, {.lonOrigin = 3, .scaleFactor = 0.9996, .falseEasting = 500000}, 14},
      {"gie/gigs/5101.3-jhs.gie", "epsg:4283", test::kGrs80Rf,
       {.lonOrigin = 141, .scaleFactor = 0.9996, .falseEasting = 500000, .falseNorthing = 10000000}, 14},
  };
  for (const TPart& part : parts) {
    VELANTIS_TESTDATA_OR_SKIP(file, part.file);
    std::vector<test::TGiePair> pairs;
    std::string error, message;
    ASSERT_TRUE(test::ReadGiePairs(file, part.geographic, pairs, error)) << error;
    const TDatum ellipsoid = MakeEllipsoid(test::kWgs84A, part.rf);
    const TTransverseMercator tm(ellipsoid, part.params);
    int checked = 0;
    for (const auto& pair : pairs) {
      const double* geo = pair.fromGeographic ? pair.accept : pair.expect;
      const double* plane = pair.fromGeographic ? pair.expect : pair.accept;
      if (std::fabs(geo[0] - part.params.lonOrigin) > 3) continue;
      TPlanePoint ours;
      TLonLat back;
      ASSERT_TRUE(tm.Forward({geo[0], geo[1]}, ours, message) && tm.Inverse({plane[0], plane[1]}, back, message));
      EXPECT_LE(pair.fromGeographic ? std::hypot(ours.x - plane[0], ours.y - plane[1])
                                    : GroundMetres(back, {geo[0], geo[1]}, ellipsoid.a),
                pair.toleranceM)
          << part.file << ":" << pair.line;
      ++checked;
    }
    EXPECT_EQ(checked, part.checked) << part.file;
  }
}

// Meridian arcs from the equator by GeographicLib's GeodSolve 2.1.2
// ("GeodSolve -i -E -p 6", exact mode); the e⁶ series is good to 1 mm.
// Under 1e-10 rad the arc is exactly 0.
TEST(TransverseMercator, MeridianArcMatchesGeodesicLengths) {
  const double rows[][4] = {{6378137, 298.257223563, 10, 1105854.833234}, {6378137, 298.257223563, -30, -3320113.397940},
                            {6378137, 298.257223563, 90, 10001965.729313}, {6378388, 297, 45, 4985037.137082}};
  for (const auto& [a, rf, latDeg, metres] : rows) {
    const TTransverseMercator tm(MakeEllipsoid(a, rf), {});
    EXPECT_NEAR(tm.MeridianArc(latDeg * std::numbers::pi / 180), metres, 0.001) << latDeg;
  }
  const TTransverseMercator tm(MakeEllipsoid(test::kWgs84A, test::kWgs84Rf), {});
  EXPECT_EQ(tm.MeridianArc(-0.9e-10), 0.0);
  EXPECT_GT(tm.MeridianArc(1.1e-10), 0.0);
}

// Failures return the system's message and leave the output as it was.
TEST(TransverseMercator, FailuresLeaveTheOutputUntouched) {
  const TDatum wgs84 = MakeEllipsoid(test::kWgs84A, test::kWgs84Rf);
  const P utm31{.lonOrigin = 3, .scaleFactor = 0.9996, .falseEasting = 500000};
  const TTransverseMercator tm(wgs84, utm31);
  for (const TPlanePoint plane : {TPlanePoint{500000, 10100000}, TPlanePoint{500000, -10100000},
                                  TPlanePoint{1e8, 1000000}, TPlanePoint{std::nan(""), 0}})
    test::ExpectRefusal(tm, true, plane.x, plane.y, "error in TM_a_Grados");
  // 1 − e²·sin²φ < 0 needs e² > 1, which no real ellipsoid has: an impossible
  // one is made by hand to reach the check.
  TDatum impossible = wgs84;
  impossible.e2 = 1.5;
  test::ExpectRefusal(TTransverseMercator(impossible, utm31), false, 3, 60, "error in Grados_a_TM");
  test::ExpectRefusal(tm, false, 3, std::nan(""), "error in Grados_a_TM");
  test::ExpectRefusal(tm, false, std::nan(""), 10, "error in Grados_a_TM");
}

}  // namespace
}  // namespace velantis
