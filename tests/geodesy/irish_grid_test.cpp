#include "geodesy/irish_grid.h"

#include <gtest/gtest.h>

#include <cmath>

#include "geodesy/national_grid_letters.h"
#include "tests/support/proj_sweep.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;

constexpr double kAiryModifiedA = 6377340.189, kAiryModifiedRf = 299.3249646;  // EPSG 7002

TDatum AiryModified() { return MakeEllipsoid(kAiryModifiedA, kAiryModifiedRf); }

// The true origin, 53°30' N 8° W in Lough Ree, is 200000, 250000 by the grid's definition,
// grid reference N 000 500 (OSi/OSNI). The forward puts it there exactly; the inverse's
// footpoint series (to e1^4) land 0.4 mm from it.
TEST(IrishGrid, TrueOriginIsInLoughRee) {
  const TIrishGrid grid(AiryModified());
  TPlanePoint plane;
  std::string message;
  ASSERT_TRUE(grid.Forward({-8, 53.5}, plane, message)) << message;
  EXPECT_NEAR(plane.x, 200000, 1e-6);
  EXPECT_NEAR(plane.y, 250000, 1e-6);
  test::ExpectPublishedPoint(grid, -8, 53.5, 200000, 250000, 0.0005, kAiryModifiedA, 0.0005);
  std::string text;
  ASSERT_TRUE(FormatIrishGridReference({200000, 250000}, 100, text, message)) << message;
  EXPECT_EQ(text, "N 000 500");
}

// Against PROJ's exact transverse Mercator (TM65 / Irish Grid, EPSG:29902) over the island
// and its coastal waters: Ireland lies within 3 degrees of the central meridian.
TEST(IrishGrid, AgreesWithProjAcrossIreland) {
  const TDatum airy = AiryModified();
  const TIrishGrid grid(airy);
  EXPECT_EQ(test::ExpectAgreesWithProj(grid,
                                       "+proj=tmerc +lat_0=53.5 +lon_0=-8 +k=1.000035 +x_0=200000 "
                                       "+y_0=250000 " + test::ProjEllipsoid(airy),
                                       {-11, -5, 0.25, 51, 56, 0.25}),
            25 * 21);
}

// Published Irish references, both ways: the true origin N 000 500; Howth, "O 285 376"
// (S. Stewart, "Information about Grid References"); "G0305", 3 km east and 5 km north of
// square G's corner; "O 15 34" in Dublin.
TEST(IrishGrid, FormatsAndParsesPublishedReferences) {
  const test::TGridReferenceCase cases[] = {
      {200000, 250000, 100, "N 000 500", 200000, 250000},
      {328512.3, 237688.8, 100, "O 285 376", 328500, 237600},
      {103000, 305000, 1000, "G 03 05", 103000, 305000},
      {315000, 234000, 1000, "O 15 34", 315000, 234000},
      {315432.1, 234567.8, 1, "O 15432 34567", 315432, 234567},
      {315432.1, 234567.8, 10000, "O 1 3", 310000, 230000},
      {0, 0, 10, "V 0000 0000", 0, 0},
      {499999.9, 499999.9, 1, "E 99999 99999", 499999, 499999},
  };
  test::ExpectGridReferences(FormatIrishGridReference, ParseIrishGridReference, cases);
  TPlanePoint grid;
  std::string message;
  ASSERT_TRUE(ParseIrishGridReference("G0305", grid, message)) << message;
  EXPECT_EQ(grid.x, 103000);
  EXPECT_EQ(grid.y, 305000);
}

// The 25 squares, rows from the north, as the published key shows them.
TEST(IrishGrid, EverySquareRoundTrips) {
  const char* rows[] = {"ABCDE", "FGHJK", "LMNOP", "QRSTU", "VWXYZ"};
  for (int row = 0; row < 5; ++row) {
    for (int column = 0; column < 5; ++column) {
      const double easting = column * 100000 + 4321.9, northing = (4 - row) * 100000 + 98765.4;
      std::string text, message;
      ASSERT_TRUE(FormatIrishGridReference({easting, northing}, 10, text, message)) << message;
      EXPECT_EQ(text, std::string(1, rows[row][column]) + " 0432 9876");
      TPlanePoint grid;
      ASSERT_TRUE(ParseIrishGridReference(text, grid, message)) << message;
      EXPECT_EQ(grid.x, std::floor(easting / 10) * 10);
      EXPECT_EQ(grid.y, std::floor(northing / 10) * 10);
    }
  }
}

TEST(IrishGrid, RefusesMalformedReferencesAndPointsOutside) {
  const struct {
    const char* text;
    const char* squareLetters;  // empty: refused as malformed
  } cases[] = {
      {"", ""}, {"O", ""}, {"OO 12 34", ""}, {"O 123 45", ""}, {"O 1234 5678 9", ""},
      {"3 15 34", ""}, {"O 15 3x", ""}, {"O 123456 123456", ""}, {"I 15 34", "I"}, {"i 15 34", "I"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    TPlanePoint grid{-1, -2};
    std::string message;
    EXPECT_FALSE(ParseIrishGridReference(c.text, grid, message));
    const std::string expected = *c.squareLetters ? std::string(kGridReferenceSquareError) + c.squareLetters
                                                  : std::string(kGridReferenceFormatError) + c.text;
    EXPECT_EQ(message, expected);
    EXPECT_EQ(grid.x, -1);
    EXPECT_EQ(grid.y, -2);
  }
  const struct {
    double easting, northing;
    int precision;
    const char* message;
  } outside[] = {
      {500000, 1000, 1, kGridReferenceOutsideError},
      {1000, 500000, 1, kGridReferenceOutsideError},
      {-5, 1000, 1000, kGridReferenceOutsideError},
      {1000, 1000, 50, kGridReferencePrecisionError},
  };
  for (const auto& c : outside) {
    std::string text = "unchanged", message;
    EXPECT_FALSE(FormatIrishGridReference({c.easting, c.northing}, c.precision, text, message));
    EXPECT_EQ(message, c.message) << c.easting << " " << c.northing;
    EXPECT_EQ(text, "unchanged");
  }
}

}  // namespace
}  // namespace velantis
