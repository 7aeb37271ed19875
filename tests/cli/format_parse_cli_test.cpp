#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <tuple>

#include "tests/cli/run_velantis.h"

namespace velantis::test {
namespace {

struct TCliCase {
  std::vector<std::string> args;
  int exitCode;
  std::string out;
  std::string err;  // exact text; "*" for any "velantis: ..." line
};

void Check(const TCliCase& c) {
  const TRunResult run = RunVelantis(c.args);
  const std::string what = c.args.back();
  EXPECT_EQ(run.exitCode, c.exitCode) << what << " " << run.err;
  EXPECT_EQ(run.out, c.out) << what;
  if (c.err == "*") {
    EXPECT_EQ(run.err.rfind("velantis: ", 0), 0u) << what << ": " << run.err;
  } else {
    EXPECT_EQ(run.err, c.err) << what;
  }
}

TEST(FormatCommand, PrintsLatitudeBlankLongitudeInEachNotation) {
  const TCliCase cases[] = {
      {{"format", "--notation", "0", "41.5", "2.25"}, 0, "41.500000ºN 2.250000ºE\n", ""},
      // Negative values are values, not options.
      {{"format", "--notation", "0", "-33.5", "-70.25"}, 0, "33.500000ºS 70.250000ºW\n", ""},
      {{"format", "--notation", "1", "-33.5", "-70.25"}, 0, "33º30.000'S 70º15.000'W\n", ""},
      {{"format", "--notation", "2", "41.391666667", "-2.175"},
       0,
       "41º23'30.0\"N 2º10'30.0\"W\n",
       ""},
      {{"format", "--notation", "3", "45", "-2.25"}, 0, "50.000000GRN 2.500000GRW\n", ""},
      {{"format", "--notation", "0", "-0", "0"}, 0, "0.000000ºN 0.000000ºE\n", ""},
      {{"format", "--notation", "2", "90", "-180"}, 0, "90º00'00.0\"N 180º00'00.0\"W\n", ""},
      {{"format", "--notation", "0", "91", "0"}, 1, "", "velantis: Latitude out of range: 91\n"},
      {{"format", "--notation", "4", "1", "2"}, 2, "", "*"},
      {{"format", "1", "2"}, 2, "", "velantis: --notation is required\n"},
      {{"format", "--notation", "0", "abc", "2"}, 2, "", "*"},
      {{"format", "--notation", "0", "1"}, 2, "", "*"},
  };
  for (const TCliCase& c : cases) Check(c);
}

TEST(ParseCommand, PrintsDegreesAndWhichAxis) {
  const TCliCase cases[] = {
      {{"parse", "41 23.5'N"}, 0, "41.391666667 lat\n", ""},
      {{"parse", "2 10'30W"}, 0, "-2.175000000 lon\n", ""},
      {{"parse", "33ºS"}, 0, "-33.000000000 lat\n", ""},
      {{"parse", "50GRN"}, 0, "45.000000000 lat\n", ""},
      {{"parse", "0S"}, 0, "0.000000000 lat\n", ""},
      {{"parse", "41", "23.5'N"}, 0, "41.391666667 lat\n", ""},  // words joined by a blank
      {{"parse", "-2 10'30W"}, 0, "1.825000000 lon\n", ""},      // the sign stays on the degrees
      {{"parse", "41.5"},
       1,
       "",
       "velantis: Error in format lat/lon NO quadrant leter found: (N,S,E,W)\n"},
      {{"parse", "abcN"}, 1, "", "velantis: 'ABC' is not a valid floating point value\n"},
      {{"parse"}, 2, "", "*"},
  };
  for (const TCliCase& c : cases) Check(c);
}

TEST(FormatParseCommands, WhatFormatPrintsParseReadsBack) {
  const std::pair<double, double> positions[] = {
      {51.477928, -0.001545}, {-89.999999, 179.999999}, {0.0000004, -0.0000004}};
  const double halfUnits[] = {0.5e-6, 0.5 / 60000, 0.5 / 36000, 0.45e-6};
  for (int notation = 0; notation < 4; ++notation) {
    for (const auto& [lat, lon] : positions) {
      char latText[32], lonText[32];
      std::snprintf(latText, sizeof latText, "%.9f", lat);
      std::snprintf(lonText, sizeof lonText, "%.9f", lon);
      const TRunResult formatted =
          RunVelantis({"format", "--notation", std::to_string(notation), latText, lonText});
      ASSERT_EQ(formatted.exitCode, 0) << formatted.err;
      std::istringstream words(formatted.out);
      std::string latWord, lonWord;
      ASSERT_TRUE(words >> latWord >> lonWord) << formatted.out;
      for (const auto& [word, value, axis] :
           {std::tuple{latWord, lat, "lat"}, std::tuple{lonWord, lon, "lon"}}) {
        const TRunResult parsed = RunVelantis({"parse", word});
        ASSERT_EQ(parsed.exitCode, 0) << word << ": " << parsed.err;
        std::istringstream back(parsed.out);
        double degrees = 0;
        std::string gotAxis;
        ASSERT_TRUE(back >> degrees >> gotAxis) << parsed.out;
        EXPECT_EQ(gotAxis, axis) << word;
        EXPECT_NEAR(degrees, value, halfUnits[notation] + 1e-9) << word;
      }
    }
  }
}

}  // namespace
}  // namespace velantis::test
