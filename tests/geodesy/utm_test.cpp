#include "geodesy/utm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/proj_reference.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::GroundMetres;
using test::MakeDatum;

// Datums with their NIMA TR8350.2 mean shifts.
enum : int { kWgs84, kEd50, kNad27, kTokyo, kOsgb36 };
struct TFixture {
  int configured = 0;
  TListaDatums list{configured};
  TFixture() {
    list.Add(MakeDatum("WGS 84", 6378137, 298.257223563, 0, 0, 0));
    list.Add(MakeDatum("European 1950", 6378388, 297, -87, -98, -121));
    list.Add(MakeDatum("NAD27 CONUS", 6378206.4, 294.9786982, -8, 160, 176));
    list.Add(MakeDatum("Tokyo", 6377397.155, 299.1528128, -148, 507, 685));
    list.Add(MakeDatum("Ord Srvy Grt Britn", 6377563.396, 299.3249646, 375, -111, 431));
  }
};

std::string ProjUtm(const TDatum& d, const TZonaUTM& zone) {
  char text[200];
  std::snprintf(text, sizeof text, "+proj=utm +zone=%d%s +a=%.17g +rf=%.17g", zone.zone,
                IsSouthernBand(zone.band) ? " +south" : "", d.a, d.invFlattening);
  return text;
}

// The zone is truncated toward zero and lowered once more for negative longitudes
// (-6 falls one zone west, ±180 give 61 and 0); a band holds its upper bound.
TEST(Utm, ZoneAndBandRules) {
  const std::pair<double, int> zones[] = {{0, 31},  {5.999, 31}, {6, 32},    {-0.5, 30},  {-6, 29},
                                          {-174, 1}, {179.9, 60}, {180, 61}, {-180, 0}};
  for (const auto& [lon, zone] : zones) EXPECT_EQ(UtmZoneOfLongitude(lon), zone) << lon;
  const std::pair<double, char> bands[] = {{84, 'X'}, {84.5, 'Z'}, {72.0001, 'X'}, {72, 'W'}, {8.0001, 'P'},
                                           {8, 'N'},  {1e-9, 'N'}, {0, 'M'},       {-72, 'C'}, {-79.99, 'C'},
                                           {-80, 'A'}};
  for (const auto& [lat, band] : bands) EXPECT_EQ(UtmBandOfLatitude(lat), band) << lat;
}

TEST(Utm, ZoneTextAndZoneCheck) {
  // Each text parsed and printed again; a refused one leaves the zone as it was, 07Q.
  const std::pair<const char*, const char*> parseRows[] = {{"31T", "31T"}, {"31", "31T"}, {"05M", "05M"},
                                                           {" 5N", "05N"}, {"31t", "31t"}, {"3", "07Q"},
                                                           {"X1", "07Q"},  {"3T", "07Q"}};
  for (const auto& [text, printed] : parseRows) {
    TZonaUTM zone{7, 'Q'};
    std::string message;
    const bool ok = ParseUtmZone(text, zone, message);
    EXPECT_EQ(ok, printed != std::string("07Q")) << text;
    EXPECT_EQ(FormatUtmZone(zone), printed) << text;
    EXPECT_EQ(message, ok ? "" : kUtmZoneError) << text;
  }
  EXPECT_EQ(FormatUtmZone({0, 'A'}), "00A");  // -180 computes as zone 0
  // Only the band letter is checked, though the message speaks of the number.
  const std::pair<TZonaUTM, bool> checkRows[] = {{{31, 'A'}, true},   {{31, 'Z'}, true},  {{99, 'T'}, true},
                                                 {{31, 't'}, false}, {{31, '@'}, false}, {{31, '['}, false}};
  for (const auto& [zone, ok] : checkRows) {
    std::string message;
    EXPECT_EQ(CheckUtmZone(zone, message), ok) << zone.band;
    EXPECT_EQ(message, ok ? "" : kUtmZoneError);
  }
}

// Against PROJ's utm (exact Poder/Engsager transverse Mercator) on five
// ellipsoids over the whole UTM latitude range: 5 mm, the bound of the
// series within a zone. Back to the start within 1e-8 degrees.
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
        TLonLat back, fromProj;
        std::string message;
        ASSERT_TRUE(LatLonToUtm(geo, datum, datum, f.list, utm, message)) << message;
        ASSERT_EQ(utm.zone.zone, UtmZoneOfLongitude(lon));
        ASSERT_EQ(utm.zone.band, UtmBandOfLatitude(lat));
        auto& proj = zones[{utm.zone.zone, IsSouthernBand(utm.zone.band)}];
        if (!proj) proj = std::make_unique<test::TProjReference>(ProjUtm(d, utm.zone));
        double x, y;
        ASSERT_TRUE(proj->Forward(lon, lat, x, y)) << d.name << " " << lat << " " << lon;
        EXPECT_LE(std::hypot(utm.x - x, utm.y - y), 0.005) << d.name << " " << lat << " " << lon;
        ASSERT_TRUE(UtmToLatLon(utm, datum, datum, f.list, back, message)) << message;
        EXPECT_LE(GroundMetres(back, geo, d.a), 0.001) << d.name << " " << lat << " " << lon;
        ASSERT_TRUE(UtmToLatLon({utm.zone, x, y}, datum, datum, f.list, fromProj, message));
        EXPECT_LE(GroundMetres(fromProj, geo, d.a), 0.005) << d.name << " " << lat << " " << lon;
        ++compared;
      }
    }
  }
  EXPECT_EQ(compared, 5 * 32 * 39);
}

// The inverse limits and the checks, with their messages; a refused position
// leaves the output as it was. Accepted ones agree with PROJ.
TEST(Utm, InverseLimits) {
  struct TRow {
    TZonaUTM zone;
    double x, y;
    const char* message;  // nullptr: accepted
    int datum = kWgs84;
  };
  const TRow rows[] = {
      {{31, 'N'}, 500000, 9886786, kUtmNorthingError},   {{31, 'N'}, 500000, 9886785, nullptr},
      {{31, 'N'}, 500000, -9886786, kUtmNorthingError},  {{31, 'L'}, 500000, 19773570, nullptr},
      {{31, 'L'}, 500000, 19773571, kUtmNorthingError},  {{31, 'N'}, 40000000, 0, kUtmEastingError},
      {{31, 'N'}, -40000000, 0, kUtmEastingError},       {{31, 'N'}, 39999999, 0, "error in TM_a_Grados"},
      {{31, 'n'}, 500000, 0, kUtmZoneError},             {{31, 'T'}, 500000, 0, kUtmDatumError, 99},
  };
  TFixture f;
  for (const TRow& row : rows) {
    const std::string where = FormatUtmZone(row.zone) + " " + std::to_string(row.x) + " " + std::to_string(row.y);
    TLonLat geo{-1.25, 2.5};
    std::string message;
    const bool ok = UtmToLatLon({row.zone, row.x, row.y}, row.datum, row.datum, f.list, geo, message);
    if (row.message) {
      EXPECT_FALSE(ok) << where;
      EXPECT_EQ(message, row.message) << where;
      EXPECT_EQ(std::tie(geo.lon, geo.lat), std::make_tuple(-1.25, 2.5)) << where;
      continue;
    }
    ASSERT_TRUE(ok) << where << ": " << message;
    double lon, lat;
    ASSERT_TRUE(test::TProjReference(ProjUtm(*f.list.Get(kWgs84), row.zone)).Inverse(row.x, row.y, lon, lat));
    EXPECT_LE(GroundMetres(geo, {lon, lat}, f.list.Get(kWgs84)->a), 0.005) << where;
  }
}

// A datum change: PROJ's Molodensky then utm near the equator (where sin(φ²) and
// sin²φ part by micrometres), 5 mm. UtmToUtm below holds the inverse's shift.
TEST(Utm, DatumChangeAgreesWithProjMolodenskyNearTheEquator) {
  TFixture f;
  const TDatum& ed50 = *f.list.Get(kEd50);
  const TDatum& wgs84 = *f.list.Get(kWgs84);
  for (const TLonLat geo : {TLonLat{9.7, 4.1}, TLonLat{31.2, -5.5}, TLonLat{-47.9, -1.4}}) {
    TUtmPosition utm;
    std::string message;
    ASSERT_TRUE(LatLonToUtm(geo, kEd50, kWgs84, f.list, utm, message)) << message;
    char pipeline[400];
    std::snprintf(pipeline, sizeof pipeline,
                  "+proj=pipeline +step +proj=molodensky +a=%.17g +rf=%.17g +da=%.17g +df=%.17g +dx=%g +dy=%g "
                  "+dz=%g +step %s",
                  ed50.a, ed50.invFlattening, wgs84.a - ed50.a, wgs84.f - ed50.f, ed50.dX - wgs84.dX,
                  ed50.dY - wgs84.dY, ed50.dZ - wgs84.dZ, ProjUtm(wgs84, utm.zone).c_str());
    double x, y;
    ASSERT_TRUE(test::TProjReference(pipeline).Forward(geo.lon, geo.lat, x, y)) << pipeline;
    EXPECT_LE(std::hypot(utm.x - x, utm.y - y), 0.005) << geo.lat << " " << geo.lon;
  }
}

// UtmToUtm: the same datum (or −1, the configured one) leaves the position as it is;
// 45N 6.0008E on ED50 (32T) is 31T on WGS 84; a refusal keeps it. A forced zone vs PROJ.
TEST(Utm, UtmToUtmForcedZonesAndRefusals) {
  TFixture f;
  std::string message;
  f.configured = kEd50;
  for (const auto& [from, to] : {std::pair<int, int>{kEd50, kEd50}, {-1, kEd50}}) {
    TUtmPosition utm{{31, 'N'}, 123.5, 99999999};
    EXPECT_TRUE(UtmToUtm(utm, from, to, f.list, message));
    EXPECT_EQ(utm.y, 99999999);
  }
  TUtmPosition utm, expected;
  TLonLat shifted{6.0008, 45};
  ASSERT_TRUE(LatLonToUtm(shifted, kEd50, kEd50, f.list, utm, message) && utm.zone.zone == 32);
  ASSERT_TRUE(f.list.Transforma_Grados_Datum(shifted, kEd50, kWgs84, message));
  ASSERT_TRUE(LatLonToUtm(shifted, kWgs84, kWgs84, f.list, expected, message));
  TUtmPosition refused = utm;
  ASSERT_TRUE(UtmToUtm(utm, kEd50, kWgs84, f.list, message)) << message;
  EXPECT_EQ(FormatUtmZone(utm.zone), "31T");
  EXPECT_LE(std::hypot(utm.x - expected.x, utm.y - expected.y), 0.001);
  refused.y = 9886786;
  EXPECT_FALSE(UtmToUtm(refused, kEd50, kWgs84, f.list, message));
  EXPECT_EQ(message, kUtmNorthingError);
  EXPECT_EQ(refused.zone.zone, 32);

  TUtmPosition forced{{31, 'T'}, 0, 0};
  double x, y;
  ASSERT_TRUE(LatLonToUtm({8, 45}, kWgs84, kWgs84, f.list, forced, message, true));
  ASSERT_TRUE(test::TProjReference(ProjUtm(*f.list.Get(kWgs84), {31, 'T'})).Forward(8, 45, x, y));
  EXPECT_EQ(forced.zone.zone, 31);
  EXPECT_LE(std::hypot(forced.x - x, forced.y - y), 0.005);
  const std::tuple<TLonLat, int, char, bool, const char*> rows[] = {
      {{8, 45}, kWgs84, 't', true, kUtmZoneError},
      {{8, 91}, kWgs84, 'T', false, "error in Grados_a_TM"},
      {{8, 45}, 99, 'T', false, "Transforma_Grados_Datum: datum index out of range"},
  };
  for (const auto& [geo, to, band, force, text] : rows) {
    TUtmPosition kept{{31, band}, 11, 22};
    EXPECT_FALSE(LatLonToUtm(geo, kWgs84, to, f.list, kept, message, force)) << text;
    EXPECT_EQ(message, text);
    EXPECT_EQ(kept.x, 11) << text;
    EXPECT_EQ(kept.zone.band, band) << text;
  }
}

}  // namespace
}  // namespace velantis
