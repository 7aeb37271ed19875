#include "geodesy/coordinate_notation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace velantis {
namespace {

// Typed values, then refusals, which keep the outputs and say why.
TEST(CoordinateNotation, ParsesTypedValuesAndRefusesTheRest) {
  struct TCase {
    std::string text;
    double degrees;
    bool isLatitude;
    std::string message = "";  // empty: accepted
  };
  const std::string noQuadrant = "Error in format lat/lon NO quadrant leter found: (N,S,E,W)";
  const std::string notANumber = " is not a valid floating point value";
  const std::string longest(kMaxNotationText, '1');
  const TCase cases[] = {
      {"41 23.5'N", 41 + 23.5 / 60, true},
      {"2 10'30W", -2.175, false},
      {"41.5NW", -41.5, true},    // N and W tested apart: a negative latitude
      {"W 41.5 N", -41.5, true},  // the letters may stand anywhere
      {"  41°23'30\"n  ", 41 + 23.0 / 60 + 30.0 / 3600, true},  // "°", lower case, blanks
      {"41\xBA 23'N", 41 + 23.0 / 60, true},                     // legacy 8-bit "º"
      {"41\xB0 23'S", -(41 + 23.0 / 60), true},                  // legacy 8-bit "°"
      {"50 GR S", -45, true},
      {"400GRW", -360, false},
      {"180E", 180, false},
      {"2.175000\xC2\xBAW", -2.175, false},  // the printed form, read the short way
      // Oddities kept as the system has them: a sign typed on the degrees stays
      // on the degrees, and without an apostrophe "º" is simply dropped.
      {"-2 10'30W", -(-2 + 10.0 / 60 + 30.0 / 3600), false},
      {"41º23.5N", 4123.5, true},
      {"0S", -0.0, true},  // south and west zero is a negative zero
      {"0.000000W", -0.0, false},
      {"0E", 0.0, false},
      {"41.5", 0, true, noQuadrant},
      {"50GR", 0, true, noQuadrant},  // "GR" is no hemisphere
      {"abcN", 0, true, "'ABC'" + notANumber},
      {"33°S", 0, true, "'33°'" + notANumber},            // only "º" is removed
      {"1 2 3 4'N", 0, true, "'1 2 3 4''" + notANumber},  // at most three numbers
      {"GRN", 0, true, "''" + notANumber},
      // The printed form too is no coordinate beyond kMaxNotationText bytes.
      {longest + "\xC2\xBAN", 0, true, "'" + longest + "\xC2\xBAN'" + notANumber},
      {"1..5\xC2\xBAN", 0, true, "'1..5\xC2\xBA'" + notANumber},
  };
  for (const TCase& c : cases) {
    double degrees = 999;
    bool isLatitude = !c.isLatitude;
    std::string message;
    const bool ok = ParseLatLon(c.text, degrees, isLatitude, message);
    EXPECT_EQ(ok ? "" : message, c.message) << c.text;
    if (!ok) {
      EXPECT_TRUE(degrees == 999 && isLatitude != c.isLatitude) << c.text;
      continue;
    }
    EXPECT_NEAR(degrees, c.degrees, 1e-12) << c.text;
    EXPECT_EQ(std::signbit(degrees), std::signbit(c.degrees)) << c.text;
    EXPECT_EQ(isLatitude, c.isLatitude) << c.text;
  }
}

bool Format(double degrees, bool latitude, int notation, std::string& text, std::string& message) {
  return latitude ? FormatLatitude(degrees, notation, text, message) : FormatLongitude(degrees, notation, text, message);
}

TEST(CoordinateNotation, PrintsEachNotation) {
  struct TCase {
    double degrees;
    bool latitude;
    int notation;
    std::string text;  // or the refusal's message
    bool ok = true;
  };
  const TCase cases[] = {
      {41 + 23.5 / 60, true, 0, "41.391667ºN"},
      {41 + 23.5 / 60, true, 1, "41º23.500'N"},
      {41 + 23.5 / 60, true, 2, "41º23'30.0\"N"},
      {41 + 23.5 / 60, true, 3, "45.990741GRN"},
      {-2.175, false, 1, "2º10.500'W"},
      {2.0875, false, 1, "2º05.250'E"},  // minutes keep two digits
      {-0.0, false, 0, "0.000000ºE"},
      {-1e-9, true, 0, "0.000000ºN"},  // rounds to zero: no "S"
      {-90, true, 2, "90º00'00.0\"S"},
      {-180, false, 3, "200.000000GRW"},
      // Carries: 59.9996' and 59.96" round up into the next degree or minute.
      {10 + 59.9996 / 60, true, 1, "11º00.000'N"},
      {10 + 59.9994 / 60, true, 1, "10º59.999'N"},
      {10 + 59.0 / 60 + 59.96 / 3600, true, 2, "11º00'00.0\"N"},
      {-179.99999999, false, 1, "180º00.000'W"},
      {359.5, false, 0, "359.500000ºE"},  // past 180 after a shift: printed as it is
      {1, true, 4, "Unknown coordinate notation: 4", false},
      {90.5, true, 0, "Latitude out of range: 90.5", false},
      {361, false, 1, "Longitude out of range: 361", false},
      {NAN, true, 0, "Latitude out of range: nan", false},
  };
  for (const TCase& c : cases) {
    std::string text = "unchanged", message;
    EXPECT_EQ(Format(c.degrees, c.latitude, c.notation, text, message), c.ok) << c.text;
    EXPECT_EQ(c.ok ? text : message, c.text) << c.degrees << " notation " << c.notation;
    EXPECT_TRUE(c.ok || text == "unchanged") << c.text;
  }
  EXPECT_EQ(NotationName(2), "ddº mm'ss.s");
  EXPECT_EQ(NotationName(3), "gr, France Decimal Degrees");
  EXPECT_EQ(NotationName(4), "");
  EXPECT_EQ(NotationName(1, "°"), "dd° mm.mmm'");
  EXPECT_EQ(HemisphereChoiceLabel('S', "Sur"), "S (Sur)");
}

}  // namespace
}  // namespace velantis
