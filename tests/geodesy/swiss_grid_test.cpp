#include "geodesy/swiss_grid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/proj_sweep.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double Dms(double degrees, double minutes, double seconds) {
  return degrees + minutes / 60 + seconds / 3600;
}

// The projection as PROJ writes it (the EPSG dataset's CH1903 / LV03, EPSG:21781).
constexpr const char* kProjLv03 =
    "+proj=somerc +lat_0=46.95240555555556 +lon_0=7.439583333333333 +k_0=1 +x_0=600000 "
    "+y_0=200000";

// Published points on CH1903 (Bessel 1841), both ways:
// - swisstopo, "Formulas and constants for the calculation of the Swiss conformal
//   cylindrical projection" (2016), the worked example, Rigi: 47°03'28.95659233" N,
//   8°29'11.11127154" E <-> y 679520.05, x 212273.44 (given to the centimetre).
// - The fundamental point, the old observatory of Bern: 600000, 200000 by definition.
// - S. A. Voser, MapRef "Map Projections of Switzerland" (2001), sample point 1:
//   47°34'6.364313" N, 7°40'10.273359" E <-> 2617300.623, 1268506.596 in LV95, which is
//   LV03 plus 2000000 and 1000000.
TEST(SwissGrid, PublishedPoints) {
  const TSwissGrid swiss(MakeEllipsoid(test::kBesselA, test::kBesselRf));
  struct TCase {
    const char* source;
    double lon, lat, easting, northing, toleranceMetres;
  };
  const TCase cases[] = {
      {"swisstopo Rigi", Dms(8, 29, 11.11127154), Dms(47, 3, 28.95659233), 679520.05, 212273.44, 0.005},
      {"Bern", Dms(7, 26, 22.50), Dms(46, 57, 8.66), 600000, 200000, 1e-6},
      {"MapRef point 1", Dms(7, 40, 10.273359), Dms(47, 34, 6.364313), 617300.623, 268506.596, 0.0005},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.source);
    test::ExpectPublishedPoint(swiss, c.lon, c.lat, c.easting, c.northing, c.toleranceMetres,
                               test::kBesselA);
  }
}

// Against PROJ's somerc over Switzerland and its neighbours, then over most of Europe.
TEST(SwissGrid, AgreesWithProj) {
  const TDatum bessel = MakeEllipsoid(test::kBesselA, test::kBesselRf);
  const TSwissGrid swiss(bessel);
  const std::string definition = std::string(kProjLv03) + " " + test::ProjEllipsoid(bessel);
  const test::TGridSpan spans[] = {{5, 11, 0.25, 45.5, 48.25, 0.25}, {-10, 30, 2.5, 35, 65, 2.5}};
  for (const test::TGridSpan& span : spans) {
    SCOPED_TRACE(testing::Message() << span.lonFrom << ".." << span.lonTo);
    EXPECT_GT(test::ExpectAgreesWithProj(swiss, definition, span), 200);
  }
}

// A conformal projection with scale 1 at Bern.
TEST(SwissGrid, IsConformalWithScaleOneAtBern) {
  const TDatum bessel = MakeEllipsoid(test::kBesselA, test::kBesselRf);
  const TSwissGrid swiss(bessel);
  test::ExpectConformal(swiss, bessel, kSwissLonOriginDeg, kSwissLatOriginDeg, 1);
  test::ExpectConformal(swiss, bessel, 10.5, 46.2, 0);
  test::ExpectConformal(swiss, bessel, -20, 70, 0);
}

TEST(SwissGrid, RefusesWhatHasNoImageAndLeavesTheOutput) {
  const TSwissGrid swiss(MakeEllipsoid(test::kBesselA, test::kBesselRf));
  const struct {
    bool inverse;
    double u, v;
    const char* message;
  } cases[] = {
      {false, 8, 90.5, "error in Grados_a_CH1903"},
      {false, kNaN, 47, "error in Grados_a_CH1903"},
      {false, 8, -std::numeric_limits<double>::infinity(), "error in Grados_a_CH1903"},
      {true, kNaN, 200000, "error in CH1903_a_Grados"},
      {true, 600000, std::numeric_limits<double>::infinity(), "error in CH1903_a_Grados"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.u << " " << c.v);
    test::ExpectRefusal(swiss, c.inverse, c.u, c.v, c.message);
  }
}

}  // namespace
}  // namespace velantis
