// The lettered references of the British and Irish national grids: published
// ones both ways (the corner squares of both keys among them), and the refusals.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "geodesy/british_grid.h"
#include "geodesy/irish_grid.h"
#include "geodesy/national_grid_letters.h"
#include "tests/support/proj_sweep.h"

namespace velantis {
namespace {

// OS: Caister (worked example), Ben Nevis and Sullom Voe ("Using the National Grid"),
// the corner squares. Ireland: the true origin, Howth (S. Stewart), "G 03 05".
TEST(GridReferences, PublishedOnesBothWays) {
  const test::TGridReferenceCase british[] = {
      {651409.903, 313177.270, 1, "TG 51409 13177", 651409, 313177},
      {651409.903, 313177.270, 100, "TG 514 131", 651400, 313100},
      {651409.903, 313177.270, 10000, "TG 5 1", 650000, 310000},
      {216600, 771200, 100, "NN 166 712", 216600, 771200},
      {439668, 1175316, 100, "HU 396 753", 439600, 1175300},
      {0, 0, 1, "SV 00000 00000", 0, 0},
      {499999.99, 1299999.99, 1, "HP 99999 99999", 499999, 1299999},
      {699999.5, 1299999.5, 10000, "JM 9 9", 690000, 1290000},
  };
  test::ExpectGridReferences(FormatBritishGridReference, ParseBritishGridReference, british);
  const test::TGridReferenceCase irish[] = {
      {200000, 250000, 100, "N 000 500", 200000, 250000},
      {328512.3, 237688.8, 100, "O 285 376", 328500, 237600},
      {103000, 305000, 1000, "G 03 05", 103000, 305000},
      {315432.1, 234567.8, 1, "O 15432 34567", 315432, 234567},
      {499999.9, 499999.9, 1, "E 99999 99999", 499999, 499999},
  };
  test::ExpectGridReferences(FormatIrishGridReference, ParseIrishGridReference, irish);
  // Other writings: no blanks, lower case, blanks around.
  for (const char* text : {"TQ3047080480", "tq 30470 80480", " TQ30470 80480\t"}) {
    TPlanePoint grid;
    std::string message;
    ASSERT_TRUE(ParseBritishGridReference(text, grid, message)) << text << ": " << message;
    EXPECT_EQ(grid, (TPlanePoint{530470, 180480})) << text;
  }
  TPlanePoint grid;
  std::string message;
  ASSERT_TRUE(ParseIrishGridReference("g0305", grid, message)) << message;
  EXPECT_EQ(grid.y, 305000);
}

// squareLetters empty: a malformed reference, refused with the format
// message and the text; else a well-formed one whose square is off the grid.
TEST(GridReferences, RefusalsLeaveTheOutput) {
  struct TParseCase {
    bool irish;
    const char* text;
    const char* squareLetters;
  };
  const TParseCase parses[] = {
      {false, "", ""},          {false, "TQ", ""},         {false, "TQ 123 45", ""},  // unequal groups
      {false, "TQ 1234567", ""}, {false, "TQ 123456789012", ""}, {false, "TQ 12a 345", ""},
      {false, "T1 23 45", ""},  {false, "TQ 30470 80480 1", ""}, {false, "TQ -3047 8048", ""},
      {false, "TI 12 34", "TI"},  // no I in the letter matrix
      {false, "AA 12 34", "AA"}, {false, "TX 12 34", "TX"}, {false, "je 12 34", "JE"}, {false, "HA 12 34", "HA"},
      {true, "O", ""},          {true, "OO 12 34", ""},    {true, "3 15 34", ""},  {true, "O 123456 123456", ""},
      {true, "i 15 34", "I"},
  };
  for (const TParseCase& c : parses) {
    TPlanePoint grid{-1, -2};
    std::string message;
    EXPECT_FALSE((c.irish ? ParseIrishGridReference : ParseBritishGridReference)(c.text, grid, message, nullptr))
        << c.text;
    EXPECT_EQ(message, *c.squareLetters ? std::string(kGridReferenceSquareError) + c.squareLetters
                                        : std::string(kGridReferenceFormatError) + c.text);
    EXPECT_EQ(grid, (TPlanePoint{-1, -2})) << c.text;
  }
  struct TFormatCase {
    bool irish;
    double easting, northing;
    int precision;
    const char* message;
  };
  const TFormatCase formats[] = {
      {false, 530470, 180480, 5, kGridReferencePrecisionError},
      {false, 530470, 180480, 100000, kGridReferencePrecisionError},
      {false, 530470, 180480, 0, kGridReferencePrecisionError},
      {false, -0.001, 180480, 1, kGridReferenceOutsideError},
      {false, 700000, 180480, 1, kGridReferenceOutsideError},
      {false, 530470, 1300000, 1, kGridReferenceOutsideError},
      {false, std::numeric_limits<double>::quiet_NaN(), 0, 1, kGridReferenceOutsideError},
      {true, 500000, 1000, 1, kGridReferenceOutsideError},
      {true, 1000, 500000, 1, kGridReferenceOutsideError},
      {true, 1000, 1000, 50, kGridReferencePrecisionError},
  };
  for (const TFormatCase& c : formats) {
    std::string text = "unchanged", message;
    EXPECT_FALSE((c.irish ? FormatIrishGridReference : FormatBritishGridReference)({c.easting, c.northing},
                                                                                  c.precision, text, message));
    EXPECT_EQ(message, c.message) << c.easting << " " << c.northing << " " << c.precision;
    EXPECT_EQ(text, "unchanged");
  }
}

}  // namespace
}  // namespace velantis
