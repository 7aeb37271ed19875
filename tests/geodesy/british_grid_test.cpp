#include "geodesy/british_grid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "geodesy/national_grid_letters.h"
#include "tests/support/proj_sweep.h"

namespace velantis {
namespace {

using test::MakeEllipsoid;

constexpr double kAiryA = 6377563.396, kAiryRf = 299.3249646;  // Airy 1830, EPSG 7001
constexpr const char* kProjNationalGrid =
    "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000";

TDatum Airy() { return MakeEllipsoid(kAiryA, kAiryRf); }

// Ordnance Survey, "A guide to coordinate systems in Great Britain", the worked example of its
// transverse Mercator annexe: Caister water tower, OSGB36 52°39'27.2531" N 1°43'4.5177" E <-> E 651409.903,
// N 313177.270. The forward meets the published millimetre; Caister is 3.7 degrees from the
// central meridian, where the transverse Mercator inverse series are 2 mm short.
TEST(BritishNationalGrid, OrdnanceSurveyWorkedExample) {
  const TBritishNationalGrid grid(Airy());
  const double lon = 1 + 43 / 60.0 + 4.5177 / 3600, lat = 52 + 39 / 60.0 + 27.2531 / 3600;
  TPlanePoint plane;
  std::string message;
  ASSERT_TRUE(grid.Forward({lon, lat}, plane, message)) << message;
  EXPECT_NEAR(plane.x, 651409.903, 0.0005);
  EXPECT_NEAR(plane.y, 313177.270, 0.0005);
  test::ExpectPublishedPoint(grid, lon, lat, 651409.903, 313177.270, 0.002, kAiryA, 0.002);
}

// Against PROJ's exact transverse Mercator. Within 3 degrees of the central meridian (5 W to
// 1 E, most of England, Wales and Scotland) the transverse Mercator series meet 1 mm and
// 1e-8 degrees. Further out their truncation shows: up to 5 mm and some 2e-6 degrees
// (a decimetre) at 8.5 W, the Outer Hebrides and St Kilda; that is TTransverseMercator's
// accuracy, checked here so that it cannot grow unseen.
TEST(BritishNationalGrid, AgreesWithProjAcrossGreatBritain) {
  const TDatum airy = Airy();
  const TBritishNationalGrid grid(airy);
  const std::string definition = std::string(kProjNationalGrid) + " " + test::ProjEllipsoid(airy);
  const struct {
    test::TGridSpan span;
    double forwardMetres, inverseDegrees;
  } bands[] = {
      {{-5, 1, 0.25, 49.75, 61, 0.25}, 0.001, 1e-8},
      {{-8.75, 2, 0.25, 49.75, 61, 0.25}, 0.006, 2.5e-6},
  };
  for (const auto& band : bands) {
    SCOPED_TRACE(testing::Message() << band.span.lonFrom << ".." << band.span.lonTo);
    EXPECT_GT(test::ExpectAgreesWithProj(grid, definition, band.span, band.forwardMetres,
                                         band.inverseDegrees),
              1000);
  }
}

// Grid references: published ones, both ways.
// - Caister water tower (OS worked example): 651409.903, 313177.270 is TG 51409 13177.
// - Ben Nevis summit: NN 166 712 is 216600, 771200 (OS, "Using the National Grid").
// - Sullom Voe oil terminal: HU396753 for 439668, 1175316 (OS).
// - NH0325: 3 km east and 25 km north of NH's corner, 203000, 825000 (OS).
// - The corners: SV's south-west is the false origin; HP and JM hold the last squares.
TEST(BritishNationalGrid, FormatsAndParsesPublishedReferences) {
  const test::TGridReferenceCase cases[] = {
      {651409.903, 313177.270, 1, "TG 51409 13177", 651409, 313177},
      {651409.903, 313177.270, 10, "TG 5140 1317", 651400, 313170},
      {651409.903, 313177.270, 100, "TG 514 131", 651400, 313100},
      {651409.903, 313177.270, 1000, "TG 51 13", 651000, 313000},
      {651409.903, 313177.270, 10000, "TG 5 1", 650000, 310000},
      {216600, 771200, 100, "NN 166 712", 216600, 771200},
      {439668, 1175316, 100, "HU 396 753", 439600, 1175300},
      {203000, 825000, 1000, "NH 03 25", 203000, 825000},
      {530470, 180480, 1, "TQ 30470 80480", 530470, 180480},
      {0, 0, 1, "SV 00000 00000", 0, 0},
      {499999.99, 1299999.99, 1, "HP 99999 99999", 499999, 1299999},
      {699999.5, 1299999.5, 10000, "JM 9 9", 690000, 1290000},
      {100000, 500000, 1000, "NW 00 00", 100000, 500000},
  };
  test::ExpectGridReferences(FormatBritishGridReference, ParseBritishGridReference, cases);
}

TEST(BritishNationalGrid, ParsesTheUsualWritings) {
  const struct {
    const char* text;
    double easting, northing;
  } cases[] = {
      {"TQ3047080480", 530470, 180480},   {"tq 30470 80480", 530470, 180480},
      {" TQ 3047080480\t", 530470, 180480}, {"TQ30470 80480", 530470, 180480},
      {"Nn166712", 216600, 771200},       {"SV 0 0", 0, 0},
      {"HU396753", 439600, 1175300},
  };
  for (const auto& c : cases) {
    TPlanePoint grid;
    std::string message;
    ASSERT_TRUE(ParseBritishGridReference(c.text, grid, message)) << c.text << ": " << message;
    EXPECT_EQ(grid.x, c.easting) << c.text;
    EXPECT_EQ(grid.y, c.northing) << c.text;
  }
}

TEST(BritishNationalGrid, RefusesMalformedReferencesAndLeavesTheOutput) {
  // squareLetters empty: a malformed reference, refused with the format message and the text;
  // else a well-formed one whose square is not on the grid.
  const struct {
    const char* text;
    const char* squareLetters;
  } cases[] = {
      {"", ""},
      {"TQ", ""},                 // no digits
      {"T", ""},
      {"TQ 123 45", ""},          // groups of unequal length
      {"TQ 1234567", ""},         // odd digit count
      {"TQ 123456789012", ""},    // six digits each
      {"TQ 12a 345", ""},
      {"T1 23 45", ""},
      {"TQ 30470 80480 1", ""},   // three groups
      {"TQ -3047 8048", ""},
      {"TI 12 34", "TI"},         // no I in the letter matrix
      {"AA 12 34", "AA"},         // west of the grid
      {"ZZ 12 34", "ZZ"},
      {"TX 12 34", "TX"},         // beyond 700 km east
      {"je 12 34", "JE"},
      {"HA 12 34", "HA"},         // beyond 1300 km north
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    TPlanePoint grid{-1, -2};
    std::string message;
    EXPECT_FALSE(ParseBritishGridReference(c.text, grid, message));
    const std::string expected = *c.squareLetters ? std::string(kGridReferenceSquareError) + c.squareLetters
                                                  : std::string(kGridReferenceFormatError) + c.text;
    EXPECT_EQ(message, expected);
    EXPECT_EQ(grid.x, -1);
    EXPECT_EQ(grid.y, -2);
  }
}

TEST(BritishNationalGrid, RefusesToFormatOutsideTheGridOrAtOtherPrecisions) {
  const struct {
    double easting, northing;
    int precision;
    const char* message;
  } cases[] = {
      {530470, 180480, 5, kGridReferencePrecisionError},
      {530470, 180480, 100000, kGridReferencePrecisionError},
      {530470, 180480, 0, kGridReferencePrecisionError},
      {-0.001, 180480, 1, kGridReferenceOutsideError},
      {700000, 180480, 1, kGridReferenceOutsideError},
      {530470, 1300000, 1, kGridReferenceOutsideError},
      {std::numeric_limits<double>::quiet_NaN(), 0, 1, kGridReferenceOutsideError},
  };
  for (const auto& c : cases) {
    std::string text = "unchanged", message;
    EXPECT_FALSE(FormatBritishGridReference({c.easting, c.northing}, c.precision, text, message));
    EXPECT_EQ(message, c.message) << c.easting << " " << c.northing << " " << c.precision;
    EXPECT_EQ(text, "unchanged");
  }
}

// Every 100 km square of the grid: its reference at 1 m parses back to the point truncated,
// and its letters are the ones of the published key (rows from the north).
TEST(BritishNationalGrid, EverySquareRoundTrips) {
  const char* rows[] = {"HL HM HN HO HP JL JM", "HQ HR HS HT HU JQ JR", "HV HW HX HY HZ JV JW",
                        "NA NB NC ND NE OA OB", "NF NG NH NJ NK OF OG", "NL NM NN NO NP OL OM",
                        "NQ NR NS NT NU OQ OR", "NV NW NX NY NZ OV OW", "SA SB SC SD SE TA TB",
                        "SF SG SH SJ SK TF TG", "SL SM SN SO SP TL TM", "SQ SR SS ST SU TQ TR",
                        "SV SW SX SY SZ TV TW"};
  for (int row = 0; row < 13; ++row) {
    for (int column = 0; column < 7; ++column) {
      const double easting = column * 100000 + 12345.6, northing = (12 - row) * 100000 + 67890.1;
      std::string text, message;
      ASSERT_TRUE(FormatBritishGridReference({easting, northing}, 1, text, message)) << message;
      EXPECT_EQ(text.substr(0, 2), std::string(rows[row]).substr(column * 3, 2));
      EXPECT_EQ(text.substr(2), " 12345 67890");
      TPlanePoint grid;
      ASSERT_TRUE(ParseBritishGridReference(text, grid, message)) << message;
      EXPECT_EQ(grid.x, std::floor(easting));
      EXPECT_EQ(grid.y, std::floor(northing));
    }
  }
}

}  // namespace
}  // namespace velantis
