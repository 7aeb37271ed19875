#include "geodesy/mgrs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

const TDatum kWgs84 = test::MakeEllipsoid(test::kWgs84A, test::kWgs84Rf);

// GeographicLib writes zones 1..9 with a leading zero; we do not.
std::string WithoutLeadingZero(const std::string& text) {
  return !text.empty() && text[0] == '0' ? text.substr(1) : text;
}

// Within 5 mm of the central meridian's 3 degrees, the bound of our series,
// or 5 cm in the widened zones of Norway and Svalbard (see
// transverse_mercator.h); UPS is a closed form: 1 mm.
double ReadBackBoundMetres(const TLonLat& geo) {
  if (geo.lat < -80 || geo.lat >= 84) return 0.001;
  const double centralMeridian = 6.0 * MgrsZoneOfPosition(geo) - 183;
  return std::fabs(std::remainder(geo.lon - centralMeridian, 360.0)) > 3 ? 0.05 : 0.005;
}

// GeoConvert 2.1.2 (geographiclib-tools), WGS 84, at precisions below the sweep's
// (truncated, not rounded): "GeoConvert -m -p (DIGITS-5)" gives the reference,
// "GeoConvert -p 4" its centre.
TEST(Mgrs, MatchesGeoConvertVectors) {
  struct TVector {
    double lat, lon;
    int digits;
    const char* reference;
    double centreLat, centreLon;
  };
  const TVector vectors[] = {
      {21.3069, -157.8583, 4, "04QFJ18415654", 21.306923105, -157.858319972},  // a leading zero
      {59.9, 2.9, 3, "31VDG944402", 59.899742652, 2.900797812},  // southern Norway: 32V from 3E
      {-12.04, -77.03, 0, "18LTM", -12.202447408, -77.297711332},  // the centre of a 100 km square
      {-85, 120, 0, "BGK", -85.365749543, 119.054604099},          // and of a polar one
  };
  for (const TVector& v : vectors) {
    std::string text, message;
    ASSERT_TRUE(LatLonToMgrs({v.lon, v.lat}, kWgs84, v.digits, text, message)) << v.reference << ": " << message;
    EXPECT_EQ(text, WithoutLeadingZero(v.reference));
    // Read back, as written by GeoConvert and as written by us.
    for (const std::string& reference : {std::string(v.reference), text}) {
      TLonLat centre;
      ASSERT_TRUE(MgrsToLatLon(reference, kWgs84, centre, message, true)) << reference << ": " << message;
      EXPECT_LE(test::GroundMetres(centre, {v.centreLon, v.centreLat}, kWgs84.a), ReadBackBoundMetres({v.lon, v.lat}))
          << reference;
    }
  }
}

// "4QFJ12345678", the example of NGA's MGRS descriptions (10 m), in any layout:
// column F is the sixth of zone 4's set A..H, row J in an even zone 2300 km,
// first cycle in band Q.
TEST(Mgrs, ReadsTheLiteratureExampleInAnyLayout) {
  for (const char* text : {"4QFJ12345678", "04QFJ12345678", "4q fj 1234 5678"}) {
    TUtmPosition utm;
    std::string message;
    ASSERT_TRUE(MgrsToUtm(text, kWgs84, utm, message)) << text << ": " << message;
    EXPECT_EQ(std::tie(utm.zone, utm.x, utm.y), std::make_tuple(TZonaUTM{4, 'Q'}, 612340.0, 2356780.0)) << text;
  }
}

TEST(Mgrs, RefusesMalformedReferencesAndPositions) {
  const std::pair<const char*, const char*> rows[] = {
      {"", kMgrsZoneError},
      {"61TCF", kMgrsZoneError},
      {"31", kMgrsBandError},
      {"31ICF", kMgrsBandError},
      {"31ZAA", kMgrsPolarZoneError},
      {"31T", kMgrsSquareError},
      {"31TCW", kMgrsSquareError},  // rows stop at V
      {"31TJF", kMgrsColumnError},  // zone 31 uses A..H
      {"32TAF", kMgrsColumnError},  // zone 32 uses J..R
      {"ZKA", kMgrsSquareError},  // Z uses columns ABCFGHJ
      {"YAA", kMgrsSquareError},  // Y uses RSTUXYZ
      {"AAA", kMgrsSquareError},  // A uses JKLPQRSTUXYZ
      {"BSA", kMgrsSquareError},  // B uses ABCFGHJKLPQR
      {"ZAQ", kMgrsSquareError},  // northern rows stop at P
      {"ZAH123", kMgrsDigitsError},
      {"31TCF123", kMgrsDigitsError},
      {"31TCF12345678901", kMgrsDigitsError},
      {"31TCF12a4", kMgrsCharacterError},
      {"31TEV", kMgrsOutsideBandError},  // row V lies 1000 km north of band T
      {"31NAV", kMgrsOutsideBandError},
  };
  for (const auto& [text, expected] : rows) {
    TLonLat geo{7, 8};
    TMgrsReference syntax;
    std::string message;
    EXPECT_EQ(ParseMgrs(text, syntax, message), expected == std::string(kMgrsOutsideBandError)) << text;
    EXPECT_FALSE(MgrsToLatLon(text, kWgs84, geo, message)) << text;
    EXPECT_EQ(message, expected) << text;
    EXPECT_EQ(std::tie(geo.lon, geo.lat), std::make_tuple(7.0, 8.0)) << text;
  }
  struct TRow {
    TLonLat geo;
    int digits;
    const char* message;
  };
  for (const TRow& row : {TRow{{3, 45}, 6, kMgrsPrecisionError}, TRow{{3, 45}, -1, kMgrsPrecisionError},
                          TRow{{181, 45}, 5, kMgrsPositionError}, TRow{{3, std::nan("")}, 5, kMgrsPositionError}}) {
    std::string text = "unchanged", message;
    EXPECT_FALSE(LatLonToMgrs(row.geo, kWgs84, row.digits, text, message)) << row.geo.lat;
    EXPECT_EQ(message, row.message) << row.geo.lat;
    EXPECT_EQ(text, "unchanged");
  }
  // A polar reference has no UTM zone to give.
  TUtmPosition utm{{31, 'T'}, 1, 2};
  std::string message;
  EXPECT_FALSE(MgrsToUtm("ZAH0000000000", kWgs84, utm, message));
  EXPECT_EQ(message, kMgrsPolarUtmError);
  EXPECT_EQ(utm.x, 1);
}

// The row letters of the first 100 km north of the equator: "A" in odd
// zones and "F" in even ones on modern ellipsoids, "L" and "R" on Clarke
// 1866, Clarke 1880 and Bessel 1841 (NGA/DMA TM 8358.1).
TEST(Mgrs, RowLettersFollowTheEllipsoidsScheme) {
  const std::tuple<double, double, const char*> rows[] = {{6378137, 298.257223563, "31NEA 32NNF"},
                                                          {6378388, 297, "31NEA 32NNF"},
                                                          {6378206.4, 294.9786982, "31NEL 32NNR"},
                                                          {6377397.155, 299.1528128, "31NEL 32NNR"}};
  for (const auto& [a, rf, squares] : rows) {
    const TDatum ellipsoid = test::MakeEllipsoid(a, rf);
    std::string odd, even, message;  // zone 31 column E, zone 32 column N
    TLonLat back;
    ASSERT_TRUE(LatLonToMgrs({3, 0.2}, ellipsoid, 5, odd, message) && LatLonToMgrs({9, 0.2}, ellipsoid, 5, even, message));
    EXPECT_EQ(odd.substr(0, 5) + " " + even.substr(0, 5), squares);
    ASSERT_TRUE(MgrsToLatLon(odd, ellipsoid, back, message, true)) << a;
    EXPECT_NEAR(back.lat, 0.2, 1e-5) << a;
  }
}

// GeoConvert both ways on 2000 random points and the polar edges and poles,
// 1 m references. Our series and GeographicLib's exact projection differ by
// millimetres, so a point that close to a metre line may truncate to the
// next metre (rarely, 1.5 m at most); the centres within the read-back bound.
TEST(Mgrs, AgreesWithGeoConvertOnRandomPoints) {
  if (std::system("command -v GeoConvert > /dev/null 2>&1") != 0)
    GTEST_SKIP() << "GeoConvert (geographiclib-tools) is not installed";
  const auto dir = test::ScratchDir("mgrs_geoconvert");
  std::mt19937_64 random(84);
  std::uniform_real_distribution<double> lat(-90, 90), lon(-180, 180);
  std::vector<TLonLat> points = {{3, 84},       {-3, 83.9999999}, {0, 90},        {0, -90},         {-1e-7, 89.9},
                                 {1e-7, -89.9}, {45, -80},        {-45, -80.0000001}, {179.9, 84.0001}, {-179.9, -80.0001},
                                 {5, 60},       {-30, 83.9999},   {-0.0001, 0}, {3, -0.00001}, {8.9, 78}, {41.9, 78},
                                 {180, 0.5}};  // the equator, Svalbard's 31X and 37X, 180E in zone 1
  while (points.size() < 2000) points.push_back({lon(random), lat(random)});
  std::vector<std::string> ours(points.size());
  {
    std::ofstream in(dir / "points.txt"), refs(dir / "ours.txt");
    for (size_t i = 0; i < points.size(); ++i) {
      char line[64];
      std::snprintf(line, sizeof line, "%.10f %.10f\n", points[i].lat, points[i].lon);
      in << line;
      std::string message;
      ASSERT_TRUE(LatLonToMgrs(points[i], kWgs84, 5, ours[i], message)) << line << message;
      refs << ours[i] << "\n";
    }
  }
  const std::string d = dir.string();
  for (const std::string& command : {"GeoConvert -m -p 0 < '" + d + "/points.txt' > '" + d + "/mgrs.txt'",
                                    "GeoConvert -g -p 6 < '" + d + "/ours.txt' > '" + d + "/geo.txt'"})
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
  std::ifstream theirMgrs(dir / "mgrs.txt"), theirGeo(dir / "geo.txt");
  int exact = 0, polar = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    polar += points[i].lat < -80 || points[i].lat >= 84;
    std::string theirs, message;
    TLonLat mine, theirCorner, theirCentre, mineCentre;
    ASSERT_TRUE(std::getline(theirMgrs, theirs) && theirGeo >> theirCentre.lat >> theirCentre.lon) << ours[i];
    ASSERT_TRUE(MgrsToLatLon(ours[i], kWgs84, mineCentre, message, true)) << ours[i] << message;
    EXPECT_LE(test::GroundMetres(mineCentre, theirCentre, kWgs84.a), ReadBackBoundMetres(points[i])) << ours[i];
    if (ours[i] == WithoutLeadingZero(theirs)) {
      ++exact;
      continue;
    }
    ASSERT_TRUE(MgrsToLatLon(ours[i], kWgs84, mine, message)) << ours[i];
    ASSERT_TRUE(MgrsToLatLon(theirs, kWgs84, theirCorner, message)) << theirs;
    EXPECT_LE(test::GroundMetres(mine, theirCorner, kWgs84.a), 1.5) << ours[i] << " " << theirs;
  }
  EXPECT_GE(exact, 1980);
  EXPECT_GE(polar, 150);
}

}  // namespace
}  // namespace velantis
