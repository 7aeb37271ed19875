#include "geodesy/top50_grid.h"

#include <gtest/gtest.h>

#include "tests/support/proj_sweep.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;

constexpr const char* kProjNztm =
    "+proj=tmerc +lat_0=0 +lon_0=173 +k=0.9996 +x_0=1600000 +y_0=10000000";

// The natural origin, on the equator at 173 E, is 1600000, 10000000 by definition (LINZ);
// the central meridian keeps the scale 0.9996.
TEST(Top50Grid, OriginAndCentralMeridian) {
  const TDatum grs80 = MakeEllipsoid(test::kGrs80A, test::kGrs80Rf);
  const TTop50Grid grid(grs80);
  test::ExpectPublishedPoint(grid, 173, 0, 1600000, 10000000, 1e-6, test::kGrs80A);
  test::ExpectConformal(grid, grs80, 173, -41, 0);
  TPlanePoint a, b;
  std::string message;
  ASSERT_TRUE(grid.Forward({173, -41}, a, message));
  ASSERT_TRUE(grid.Forward({173, -42}, b, message));
  EXPECT_EQ(a.x, 1600000);
  EXPECT_EQ(b.x, 1600000);
}

// Against PROJ's exact transverse Mercator (NZGD2000 / NZTM2000, EPSG:2193). Within 3
// degrees of the central meridian (170 E to 176 E) the transverse Mercator series meet 1 mm
// and 1e-8 degrees. The main islands reach 6.6 degrees from it (Fiordland, East Cape), where
// the truncation of TTransverseMercator's series shows: some 1.4 cm forward and 1.4e-6
// degrees (15 cm) back; checked here so that it cannot grow unseen.
TEST(Top50Grid, AgreesWithProjAcrossNewZealand) {
  const TDatum grs80 = MakeEllipsoid(test::kGrs80A, test::kGrs80Rf);
  const TTop50Grid grid(grs80);
  const std::string definition = std::string(kProjNztm) + " " + test::ProjEllipsoid(grs80);
  const struct {
    test::TGridSpan span;
    double forwardMetres, inverseDegrees;
  } bands[] = {
      {{170, 176, 0.25, -47.5, -34, 0.25}, 0.001, 1e-8},
      {{166.25, 178.75, 0.25, -47.5, -34, 0.25}, 0.015, 1.5e-6},
  };
  for (const auto& band : bands) {
    SCOPED_TRACE(testing::Message() << band.span.lonFrom << ".." << band.span.lonTo);
    EXPECT_GT(test::ExpectAgreesWithProj(grid, definition, band.span, band.forwardMetres,
                                         band.inverseDegrees),
              1000);
  }
}

}  // namespace
}  // namespace velantis
