#include "geodesy/utm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
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
using test::MakeDatum;

// Datums with their NIMA TR8350.2 mean shifts; GRS 1980 with none.
enum : int { kWgs84, kEd50, kNad27, kTokyo, kOsgb36, kGrs80 };
struct TFixture {
  int configured = 0;
  TListaDatums list{configured};
  TFixture() {
    list.Add(MakeDatum("WGS 84", 6378137, 298.257223563, 0, 0, 0));
    list.Add(MakeDatum("European 1950", 6378388, 297, -87, -98, -121));
    list.Add(MakeDatum("NAD27 CONUS", 6378206.4, 294.9786982, -8, 160, 176));
    list.Add(MakeDatum("Tokyo", 6377397.155, 299.1528128, -148, 507, 685));
    list.Add(MakeDatum("Ord Srvy Grt Britn", 6377563.396, 299.3249646, 375, -111, 431));
    list.Add(MakeDatum("GRS 80", 6378137, 298.257222101, 0, 0, 0));
  }
};

std::string ProjUtm(const TDatum& d, const TZonaUTM& zone) {
  char text[200];
  std::snprintf(text, sizeof text, "+proj=utm +zone=%d%s +a=%.17g +rf=%.17g", zone.zone,
                IsSouthernBand(zone.band) ? " +south" : "", d.a, d.invFlattening);
  return text;
}

TEST(Utm, ZoneOfLongitude) {
  // Truncated toward zero and lowered once more for negative longitudes: a
  // negative multiple of 6° falls one zone west of the standard one, and
  // ±180° compute as 61 and 0. Kept as the system has it.
  const std::pair<double, int> rows[] = {
      {0, 31},    {0.5, 31},  {5.999, 31}, {6, 32},      {-0.5, 30},   {-5.999, 30}, {-6, 29},
      {-11.5, 29}, {-12, 28}, {-174, 1},   {-179.9, 1},  {179.9, 60},  {180, 61},    {-180, 0},
  };
  for (const auto& [lon, zone] : rows) EXPECT_EQ(UtmZoneOfLongitude(lon), zone) << lon;
}

TEST(Utm, BandOfLatitude) {
  const std::pair<double, char> rows[] = {
      {84, 'X'},  {84.5, 'Z'}, {90, 'Z'},  {72.0001, 'X'}, {72, 'W'},  {64, 'V'},    {56, 'U'},
      {8.0001, 'P'}, {8, 'N'}, {1e-9, 'N'}, {0, 'M'},      {-7.99, 'M'}, {-8, 'L'},  {-72, 'C'},
      {-79.99, 'C'}, {-80, 'A'}, {-90, 'A'},
  };
  for (const auto& [lat, band] : rows) EXPECT_EQ(UtmBandOfLatitude(lat), band) << lat;
}

TEST(Utm, ZoneParameters) {
  struct TRow {
    TZonaUTM zone;
    double lon0, fn;
  };
  const TRow rows[] = {{{31, 'T'}, 3, 0},    {{31, 'M'}, 3, 10000000}, {{1, 'A'}, -177, 10000000},
                       {{60, 'N'}, 177, 0},  {{30, 'Z'}, -3, 0}};
  for (const auto& row : rows) {
    const TProjectionParams p = UtmZoneParams(row.zone);
    EXPECT_EQ(p.lonOrigin, row.lon0) << FormatUtmZone(row.zone);
    EXPECT_EQ(p.falseNorthing, row.fn) << FormatUtmZone(row.zone);
    EXPECT_EQ(p.latOrigin, 0);
    EXPECT_EQ(p.scaleFactor, 0.9996);
    EXPECT_EQ(p.falseEasting, 500000);
  }
}

TEST(Utm, ZoneTextAndZoneCheck) {
  struct TParseRow {
    const char* text;
    bool ok;
    int zone;
    char band;
  };
  const TParseRow parseRows[] = {
      {"31T", true, 31, 'T'}, {"31", true, 31, 'T'}, {"05M", true, 5, 'M'}, {" 5N", true, 5, 'N'},
      {"31t", true, 31, 't'}, {"31TX", true, 31, 'T'}, {"3", false, 0, 0},  {"", false, 0, 0},
      {"X1", false, 0, 0},    {"3T", false, 0, 0},
  };
  for (const auto& row : parseRows) {
    TZonaUTM zone{7, 'Q'};
    std::string message;
    EXPECT_EQ(ParseUtmZone(row.text, zone, message), row.ok) << row.text;
    if (row.ok) {
      EXPECT_EQ(zone.zone, row.zone) << row.text;
      EXPECT_EQ(zone.band, row.band) << row.text;
    } else {
      EXPECT_EQ(zone.zone, 7) << row.text;
      EXPECT_EQ(message, "Error in the UTM zome. It must be a value between 1 and 60") << row.text;
    }
  }
  EXPECT_EQ(FormatUtmZone({31, 'T'}), "31T");
  EXPECT_EQ(FormatUtmZone({5, 'M'}), "05M");

  // Only the band letter is checked, though the message speaks of the number.
  const std::pair<TZonaUTM, bool> checkRows[] = {
      {{31, 'T'}, true}, {{31, 'A'}, true}, {{31, 'Z'}, true},  {{99, 'T'}, true}, {{0, 'N'}, true},
      {{31, 't'}, false}, {{31, '@'}, false}, {{31, '['}, false}, {{31, '1'}, false}, {{31, 0}, false},
  };
  for (const auto& [zone, ok] : checkRows) {
    std::string message;
    EXPECT_EQ(CheckUtmZone(zone, message), ok) << int(zone.zone) << zone.band;
    if (!ok) {
      EXPECT_EQ(message, "Error in the UTM zome. It must be a value between 1 and 60");
    }
  }
}

// Against PROJ's utm (exact Poder/Engsager transverse Mercator) on five
// ellipsoids over the whole UTM latitude range: 5 mm, the bound of the
// series within a zone (see transverse_mercator_test.cpp). Back to the start
// within 1e-8° (longitude along the parallel).
TEST(Utm, AgreesWithProjOnSeveralEllipsoids) {
  TFixture f;
  int compared = 0;
  for (const int datum : {kWgs84, kEd50, kNad27, kTokyo, kOsgb36}) {
    const TDatum& d = *f.list.Get(datum);
    std::map<std::pair<int, bool>, std::unique_ptr<test::TProjReference>> zones;
    for (double lat = -79.5; lat <= 83.5; lat += 5.25) {
      for (double lon = -178.7; lon <= 179.9; lon += 9.37) {
        const TLonLat geo{lon, lat};
        TUtmPosition utm;
        std::string message;
        ASSERT_TRUE(LatLonToUtm(geo, datum, datum, f.list, utm, message)) << message;
        ASSERT_EQ(utm.zone.zone, UtmZoneOfLongitude(lon));
        ASSERT_EQ(utm.zone.band, UtmBandOfLatitude(lat));
        auto& proj = zones[{utm.zone.zone, IsSouthernBand(utm.zone.band)}];
        if (!proj) proj = std::make_unique<test::TProjReference>(ProjUtm(d, utm.zone));
        double x, y;
        ASSERT_TRUE(proj->Forward(lon, lat, x, y)) << d.name << " " << lat << " " << lon;
        EXPECT_LE(std::hypot(utm.x - x, utm.y - y), 0.005) << d.name << " " << lat << " " << lon;

        TLonLat back;
        ASSERT_TRUE(UtmToLatLon(utm, datum, datum, f.list, back, message)) << message;
        EXPECT_NEAR(back.lat, lat, 1e-8);
        EXPECT_NEAR((back.lon - lon) * std::cos(lat * kDegree), 0, 1e-8);
        TLonLat fromProj;
        ASSERT_TRUE(UtmToLatLon({utm.zone, x, y}, datum, datum, f.list, fromProj, message));
        EXPECT_LE(GroundMetres(fromProj, geo, d.a), 0.005) << d.name << " " << lat << " " << lon;
        ++compared;
      }
    }
  }
  EXPECT_EQ(compared, 5 * 32 * 39);
}

// IOGP GIGS 5101 parts 2 (WGS 84 / UTM 31N) and 3 (GDA94 / MGA 54, a
// southern zone on GRS 1980), in the zone of the test (forced), points
// within 3° of the central meridian, at the GIGS tolerance; both directions.
TEST(Utm, MatchesTheGigsPointsInForcedZones) {
  struct TRow {
    const char* file;
    const char* geographic;
    int datum;
    TZonaUTM zone;
  };
  const TRow rows[] = {{"gie/gigs/5101.2-jhs.gie", "epsg:4326", kWgs84, {31, 'N'}},
                       {"gie/gigs/5101.3-jhs.gie", "epsg:4283", kGrs80, {54, 'H'}}};
  TFixture f;
  for (const auto& row : rows) {
    VELANTIS_TESTDATA_OR_SKIP(file, row.file);
    std::vector<test::TGieBlock> blocks;
    std::string error;
    ASSERT_TRUE(test::ReadGieBlocks(file, {row.geographic}, blocks, error)) << error;
    const double lon0 = UtmZoneParams(row.zone).lonOrigin;
    int forward = 0, inverse = 0;
    for (const auto& block : blocks) {
      for (const auto& pair : block.pairs) {
        const double* geo = block.fromGeographic ? pair.accept : pair.expect;
        const double* plane = block.fromGeographic ? pair.expect : pair.accept;
        if (std::fabs(geo[0] - lon0) > 3) continue;
        std::string message;
        if (block.fromGeographic) {
          TUtmPosition utm{row.zone, 0, 0};
          ASSERT_TRUE(LatLonToUtm({geo[0], geo[1]}, row.datum, row.datum, f.list, utm, message, true));
          EXPECT_NEAR(utm.x, plane[0], pair.toleranceM) << row.file << ":" << pair.line;
          EXPECT_NEAR(utm.y, plane[1], pair.toleranceM) << row.file << ":" << pair.line;
          ++forward;
        } else {
          TLonLat ours;
          ASSERT_TRUE(UtmToLatLon({row.zone, plane[0], plane[1]}, row.datum, row.datum, f.list, ours, message))
              << message;
          EXPECT_LE(GroundMetres(ours, {geo[0], geo[1]}, f.list.Get(row.datum)->a), pair.toleranceM)
              << row.file << ":" << pair.line;
          ++inverse;
        }
      }
    }
    EXPECT_GT(forward, 0) << row.file;
    EXPECT_GT(inverse, 0) << row.file;
    EXPECT_EQ(forward + inverse, 14) << row.file;  // of its 69 points, those within 3°
  }
}

// The inverse limits and the zone check, with their messages; a refused
// position leaves the output as it was. Accepted ones agree with PROJ.
TEST(Utm, InverseLimits) {
  struct TRow {
    TZonaUTM zone;
    double x, y;
    const char* message;  // nullptr: accepted
  };
  const TRow rows[] = {
      {{31, 'N'}, 500000, 9886786, "utm.y superior a 9886785"},
      {{31, 'N'}, 500000, 9886785, nullptr},
      {{31, 'N'}, 500000, -9886786, "utm.y superior a 9886785"},
      {{31, 'L'}, 500000, 9886786, nullptr},
      {{31, 'L'}, 500000, 19773570, nullptr},
      {{31, 'L'}, 500000, 19773571, "utm.y superior a 9886785"},
      {{31, 'N'}, 40000000, 0, "utm.x big out of domail value"},
      {{31, 'N'}, -40000000, 0, "utm.x big out of domail value"},
      {{31, 'N'}, 39999999, 0, "error in TM_a_Grados"},
      {{31, 'n'}, 500000, 0, "Error in the UTM zome. It must be a value between 1 and 60"},
  };
  TFixture f;
  for (const auto& row : rows) {
    const std::string where = FormatUtmZone(row.zone) + " " + std::to_string(row.x) + " " + std::to_string(row.y);
    TLonLat geo{-1.25, 2.5};
    std::string message;
    const bool ok = UtmToLatLon({row.zone, row.x, row.y}, kWgs84, kWgs84, f.list, geo, message);
    if (row.message) {
      EXPECT_FALSE(ok) << where;
      EXPECT_EQ(message, row.message) << where;
      EXPECT_EQ(geo.lon, -1.25) << where;
      EXPECT_EQ(geo.lat, 2.5) << where;
      continue;
    }
    ASSERT_TRUE(ok) << where << ": " << message;
    const test::TProjReference proj(ProjUtm(*f.list.Get(kWgs84), row.zone));
    double lon, lat;
    ASSERT_TRUE(proj.Inverse(row.x, row.y, lon, lat)) << where;
    EXPECT_LE(GroundMetres(geo, {lon, lat}, f.list.Get(kWgs84)->a), 0.005) << where;
  }
}

// With a datum change, projecting equals shifting then projecting on the
// target datum, and inverting equals inverting then shifting.
TEST(Utm, DatumChangeComposesShiftAndProjection) {
  const std::pair<int, int> pairs[] = {{kEd50, kWgs84}, {kWgs84, kNad27}, {kTokyo, kOsgb36}, {kOsgb36, kEd50}};
  TFixture f;
  for (const auto& [from, to] : pairs) {
    for (const TLonLat geo : {TLonLat{2.17, 41.4}, TLonLat{-77.03, 38.89}, TLonLat{139.7, 35.7},
                              TLonLat{-1.5, 52.5}, TLonLat{18.4, -33.9}}) {
      std::string message;
      TUtmPosition direct;
      ASSERT_TRUE(LatLonToUtm(geo, from, to, f.list, direct, message)) << message;
      TLonLat shifted = geo;
      ASSERT_TRUE(f.list.Transforma_Grados_Datum(shifted, from, to, message));
      TUtmPosition twoSteps;
      ASSERT_TRUE(LatLonToUtm(shifted, to, to, f.list, twoSteps, message));
      EXPECT_EQ(direct.zone.zone, twoSteps.zone.zone);
      EXPECT_EQ(direct.zone.band, twoSteps.zone.band);
      EXPECT_EQ(direct.x, twoSteps.x);
      EXPECT_EQ(direct.y, twoSteps.y);

      TLonLat back, backOnSource;
      ASSERT_TRUE(UtmToLatLon(direct, to, from, f.list, back, message));
      ASSERT_TRUE(UtmToLatLon(direct, to, to, f.list, backOnSource, message));
      ASSERT_TRUE(f.list.Transforma_Grados_Datum(backOnSource, to, from, message));
      EXPECT_EQ(back.lon, backOnSource.lon);
      EXPECT_EQ(back.lat, backOnSource.lat);
    }
  }
}

// The same against PROJ: its Molodensky then utm, near the equator where the
// system's W² = 1 − e²·sin(φ²) and PROJ's 1 − e²·sin²φ differ by under
// e²·φ⁴/3 (a few micrometres of shift below 6°); 5 mm for the projection.
TEST(Utm, DatumChangeAgreesWithProjMolodenskyNearTheEquator) {
  TFixture f;
  const TDatum& ed50 = *f.list.Get(kEd50);
  const TDatum& wgs84 = *f.list.Get(kWgs84);
  for (const TLonLat geo : {TLonLat{9.7, 4.1}, TLonLat{31.2, -5.5}, TLonLat{-47.9, -1.4}, TLonLat{103.8, 1.3}}) {
    TUtmPosition utm;
    std::string message;
    ASSERT_TRUE(LatLonToUtm(geo, kEd50, kWgs84, f.list, utm, message)) << message;
    char pipeline[400];
    std::snprintf(pipeline, sizeof pipeline,
                  "+proj=pipeline +step +proj=molodensky +a=%.17g +rf=%.17g +da=%.17g +df=%.17g +dx=%g +dy=%g "
                  "+dz=%g +step %s",
                  ed50.a, ed50.invFlattening, wgs84.a - ed50.a, wgs84.f - ed50.f, ed50.dX - wgs84.dX,
                  ed50.dY - wgs84.dY, ed50.dZ - wgs84.dZ, ProjUtm(wgs84, utm.zone).c_str());
    const test::TProjReference proj(pipeline);
    ASSERT_TRUE(proj.Valid()) << pipeline;
    double x, y;
    ASSERT_TRUE(proj.Forward(geo.lon, geo.lat, x, y));
    EXPECT_LE(std::hypot(utm.x - x, utm.y - y), 0.005) << geo.lat << " " << geo.lon;
  }
}

TEST(Utm, UtmToUtmBetweenDatums) {
  TFixture f;
  std::string message;
  // Same datum, by index or through −1 (the configured one): unchanged, even
  // a position the conversion itself would refuse.
  f.configured = kEd50;
  const std::pair<int, int> sameDatum[] = {{kEd50, kEd50}, {-1, kEd50}, {kWgs84, kWgs84}};
  for (const auto& [from, to] : sameDatum) {
    TUtmPosition utm{{31, 'N'}, 123.5, 99999999};
    EXPECT_TRUE(UtmToUtm(utm, from, to, f.list, message));
    EXPECT_EQ(utm.zone.zone, 31);
    EXPECT_EQ(utm.zone.band, 'N');
    EXPECT_EQ(utm.x, 123.5);
    EXPECT_EQ(utm.y, 99999999);
  }
  f.configured = kWgs84;

  // 45°N 6.0008°E on ED50 is zone 32; on WGS 84 it lies west of 6°: zone 31.
  TUtmPosition utm;
  ASSERT_TRUE(LatLonToUtm({6.0008, 45}, kEd50, kEd50, f.list, utm, message));
  ASSERT_EQ(utm.zone.zone, 32);
  TLonLat shifted{6.0008, 45};
  ASSERT_TRUE(f.list.Transforma_Grados_Datum(shifted, kEd50, kWgs84, message));
  ASSERT_LT(shifted.lon, 6);
  const TUtmPosition start = utm;
  ASSERT_TRUE(UtmToUtm(utm, kEd50, kWgs84, f.list, message)) << message;
  EXPECT_EQ(utm.zone.zone, 31);
  EXPECT_EQ(utm.zone.band, 'T');
  TUtmPosition expected;
  ASSERT_TRUE(LatLonToUtm(shifted, kWgs84, kWgs84, f.list, expected, message));
  // The start went through the inverse and back: the same point within 1 mm.
  EXPECT_NEAR(utm.x, expected.x, 0.001);
  EXPECT_NEAR(utm.y, expected.y, 0.001);

  // A refused position stays as it was.
  TUtmPosition refused = start;
  refused.y = 9886786;
  EXPECT_FALSE(UtmToUtm(refused, kEd50, kWgs84, f.list, message));
  EXPECT_EQ(message, "utm.y superior a 9886785");
  EXPECT_EQ(refused.zone.zone, 32);
  EXPECT_EQ(refused.x, start.x);
  EXPECT_EQ(refused.y, 9886786);
}

TEST(Utm, ForcedZonesAndRefusedPositions) {
  TFixture f;
  std::string message;
  // 8°E, 45°N forced into zone 31 (5° from its meridian) against PROJ.
  TUtmPosition forced{{31, 'T'}, 0, 0};
  ASSERT_TRUE(LatLonToUtm({8, 45}, kWgs84, kWgs84, f.list, forced, message, true));
  EXPECT_EQ(forced.zone.zone, 31);
  const test::TProjReference proj(ProjUtm(*f.list.Get(kWgs84), {31, 'T'}));
  double x, y;
  ASSERT_TRUE(proj.Forward(8, 45, x, y));
  EXPECT_LE(std::hypot(forced.x - x, forced.y - y), 0.005);

  struct TRow {
    const char* what;
    TLonLat geo;
    int to;
    TZonaUTM zone;
    bool force;
    const char* message;
  };
  const TRow rows[] = {
      {"forced band in lower case", {8, 45}, kWgs84, {31, 't'}, true,
       "Error in the UTM zome. It must be a value between 1 and 60"},
      {"latitude beyond the pole", {8, 91}, kWgs84, {31, 'T'}, false, "error in Grados_a_TM"},
      {"longitude not a number", {std::nan(""), 45}, kWgs84, {31, 'T'}, false, "error in Grados_a_TM"},
      {"unknown target datum", {8, 45}, 99, {31, 'T'}, false, "Transforma_Grados_Datum: datum index out of range"},
  };
  for (const auto& row : rows) {
    TUtmPosition utm{row.zone, 11, 22};
    EXPECT_FALSE(LatLonToUtm(row.geo, kWgs84, row.to, f.list, utm, message, row.force)) << row.what;
    EXPECT_EQ(message, row.message) << row.what;
    EXPECT_EQ(utm.x, 11) << row.what;
    EXPECT_EQ(utm.y, 22) << row.what;
    EXPECT_EQ(utm.zone.band, row.zone.band) << row.what;
  }
  TLonLat geo{1, 2};
  EXPECT_FALSE(UtmToLatLon({{31, 'T'}, 500000, 0}, 99, 99, f.list, geo, message));
  EXPECT_EQ(message, "UTM: datum index out of range");
  EXPECT_EQ(geo.lon, 1);
}

}  // namespace
}  // namespace velantis
