#include "geodesy/france_lambert.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "geodesy/lista_datums.h"
#include "tests/geodesy/builtin_datums.h"
#include "tests/support/gie_vectors.h"
#include "tests/support/proj_sweep.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;
using Zone = TFranceLambertZone;

TDatum DatumOf(Zone zone) {
  return zone == Zone::Lambert93 ? MakeEllipsoid(test::kGrs80A, test::kGrs80Rf)
                                 : MakeEllipsoid(test::kClarkeIgnA, test::kClarkeIgnRf);
}

TEST(FranceLambert, CatalogueNamesAndDatums) {
  const struct {
    const char* name;
    bool known;
    Zone zone;
    const char* datum;
  } rows[] = {
      {"France Lambert II", true, Zone::LambertII, "NTF"},
      {"France Lambert III", true, Zone::LambertIII, "NTF"},
      {"France Lambert IV", true, Zone::LambertIV, "NTF"},
      {"Lambert 93", true, Zone::Lambert93, "RGF93"},
      {"Lambert-93", true, Zone::Lambert93, "RGF93"},
      {"France Lambert I", false, Zone::LambertII, ""},
      {"Lambert II", false, Zone::LambertII, ""},
      {"Lambert 2SP", false, Zone::LambertII, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    Zone zone = Zone::LambertIV;
    ASSERT_EQ(FranceLambertZoneOfName(row.name, zone), row.known);
    if (!row.known) continue;
    EXPECT_EQ(zone, row.zone);
    EXPECT_STREQ(FranceLambertDatumName(zone), row.datum);
    Zone again = Zone::LambertIV;
    EXPECT_TRUE(FranceLambertZoneOfName(FranceLambertName(zone), again));
    EXPECT_EQ(again, row.zone);
  }
}

// Against PROJ with the definitions `projinfo -o PROJ EPSG:27572 / 27573 / 27574 / 2154`
// prints (PROJ 9.1.1; the datum shift dropped): PROJ applies the Paris meridian itself.
// Mainland France and Corsica with a margin, forward within 1 mm, inverse within 1e-8°.
TEST(FranceLambert, AgreesWithProjOverFrance) {
  const struct {
    Zone zone;
    const char* proj;
  } rows[] = {
      {Zone::LambertII,
       "+proj=lcc +lat_1=46.8 +lat_0=46.8 +lon_0=0 +k_0=0.99987742 +x_0=600000 +y_0=2200000 "
       "+ellps=clrk80ign +pm=paris"},
      {Zone::LambertIII,
       "+proj=lcc +lat_1=44.1 +lat_0=44.1 +lon_0=0 +k_0=0.999877499 +x_0=600000 +y_0=3200000 "
       "+ellps=clrk80ign +pm=paris"},
      {Zone::LambertIV,
       "+proj=lcc +lat_1=42.165 +lat_0=42.165 +lon_0=0 +k_0=0.99994471 +x_0=234.358 "
       "+y_0=4185861.369 +ellps=clrk80ign +pm=paris"},
      {Zone::Lambert93,
       "+proj=lcc +lat_0=46.5 +lon_0=3 +lat_1=49 +lat_2=44 +x_0=700000 +y_0=6600000 +ellps=GRS80"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.proj);
    const TFranceLambert grid(DatumOf(row.zone), row.zone);
    EXPECT_EQ(test::ExpectAgreesWithProj(grid, row.proj, {-6, 10, 0.5, 41, 52, 0.25}), 33 * 45);
  }
}

// IOGP GIGS 5102 part 2: NTF (Paris) / Lambert zone II (EPSG:27572), angles in grads from
// the Paris meridian, 3 cm both ways and 1000 round trips within 6 mm.
TEST(FranceLambert, GigsLambertTwoEtendu) {
  VELANTIS_TESTDATA_OR_SKIP(path, "gie/gigs/5102.2.gie");
  const TFranceLambert grid(DatumOf(Zone::LambertII), Zone::LambertII);
  const struct {
    const char* operation;
    bool isInverse;
    int cases;
  } rows[] = {
      {"+proj=pipeline +step +proj=unitconvert +xy_in=grad +xy_out=rad +step +init=epsg:4807 +inv "
       "+step +init=epsg:27572",
       false, 38},
      {"+proj=pipeline +step +init=epsg:27572 +inv +step +init=epsg:4807 +step +proj=unitconvert "
       "+xy_in=rad +xy_out=grad",
       true, 19},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.operation);
    test::ExpectGieCases(path, {row.operation, row.isInverse, test::TGieAngles::GradsFromParis},
                         grid, test::kClarkeIgnA, row.cases);
  }
}

// The "point zéro des routes de France" in front of Notre-Dame de Paris: RGF93
// 48°51'12.24845"N 2°20'55.62563"E, Lambert 93 E 652215.52 N 6861681.77 (centimetres), the
// pair quoted with the IGN (ENSG) Lambert 93 formulas given to gvSIG Mobile in August 2010.
constexpr TLonLat kPointZero{2 + 20.0 / 60 + 55.62563 / 3600, 48 + 51.0 / 60 + 12.24845 / 3600};
constexpr TPlanePoint kPointZeroLambert93{652215.52, 6861681.77};

TEST(FranceLambert, PointZeroInLambert93) {
  const TFranceLambert grid(DatumOf(Zone::Lambert93), Zone::Lambert93);
  std::string message;
  TPlanePoint plane;
  ASSERT_TRUE(grid.Forward(kPointZero, plane, message));
  EXPECT_NEAR(plane.x, kPointZeroLambert93.x, 0.005);
  EXPECT_NEAR(plane.y, kPointZeroLambert93.y, 0.005);
  TLonLat geo;
  ASSERT_TRUE(grid.Inverse(kPointZeroLambert93, geo, message));
  EXPECT_NEAR(geo.lon, kPointZero.lon, 1e-7);  // 5 mm
  EXPECT_NEAR(geo.lat, kPointZero.lat, 1e-7);
}

// The way the program builds them: the datum each grid names, found in the built-in list.
TEST(FranceLambert, GridsOnTheirDatumsFromTheBuiltInList) {
  const std::filesystem::path dir = test::MakeDataFolder("france-lambert", {});
  std::filesystem::create_directories(dir / "user");
  int configured = 0;
  TListaDatums datums(configured);
  std::string error;
  ASSERT_TRUE(datums.Load(dir.string(), (dir / "user").string(), error)) << error;
  const struct {
    Zone zone;
    TLonLat geo;
    TPlanePoint plane;
    double tolerance;
  } rows[] = {
      // GIGS 5102.2, first point: 2.9586342556 gon E of Paris, 64.4444444444 gon N.
      {Zone::LambertII, {(2.9586342556 + 2.5969213) * 0.9, 64.4444444444 * 0.9},
       {760724.023, 3457334.864}, 0.03},
      {Zone::Lambert93, kPointZero, kPointZeroLambert93, 0.005},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(FranceLambertName(row.zone));
    const int index = datums.Find(FranceLambertDatumName(row.zone));
    ASSERT_GE(index, 0);
    const TFranceLambert grid(*datums.Get(index), row.zone);
    TPlanePoint plane;
    ASSERT_TRUE(grid.Forward(row.geo, plane, error)) << error;
    EXPECT_NEAR(plane.x, row.plane.x, row.tolerance);
    EXPECT_NEAR(plane.y, row.plane.y, row.tolerance);
  }
}

}  // namespace
}  // namespace velantis
