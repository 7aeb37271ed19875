// velantis optimize end to end on a constructed flight: a closed 10 km FAI
// triangle from a launch inside its first corner.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <numbers>
#include <regex>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

// Points 0 and 1: the launch, 400 m and 200 m inside corner A towards the
// centroid; 2: A; 12: B (10 km east); 22: C; 32: A again, nine points on
// each leg between. Written as a .trk file of the first points points.
std::string WriteFlight(const std::filesystem::path& dir, int points) {
  const double metresPerDegree = 6371000.0 * std::numbers::pi / 180.0;
  const double corners[4][2] = {{0, 0}, {10000, 0}, {5000, 8660.254}, {0, 0}};
  std::string text = "B  UTF-8\r\nG  WGS 84\r\nU  0\r\nN  Triangle\r\n";
  for (int i = 0; i < points; ++i) {
    double east = 0.5 * (400 - 200 * i), north = 0.2887 * (400 - 200 * i);
    if (i >= 2) {
      const int leg = std::min((i - 2) / 10, 2);
      const double t = (i - 2 - 10 * leg) / 10.0;
      east = corners[leg][0] + t * (corners[leg + 1][0] - corners[leg][0]);
      north = corners[leg][1] + t * (corners[leg + 1][1] - corners[leg][1]);
    }
    char line[160];
    std::snprintf(line, sizeof line, "T  %.6f\xC2\xBAN %.6f\xC2\xBA" "E 05-JUN-24 10:%02d:%02d N 1500.000000\r\n",
                  45.0 + north / metresPerDegree, 6.0 + east / (metresPerDegree * std::cos(std::numbers::pi / 4)),
                  i / 60, i % 60);
    text += line;
  }
  const auto path = dir / "flight.trk";
  std::ofstream(path, std::ios::binary) << text;
  return path.string();
}

TEST(OptimizeCommand, ClosedFaiTriangleAsJsonAndText) {
  const auto dir = ScratchDir("cli-optimize");
  const std::string flight = WriteFlight(dir, 33);
  const std::string route = (dir / "result.rte").string();
  const TRunResult run =
      RunVelantis({"optimize", flight, "--type", "fai", "--json", "--save-route", route, "--save-track"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  // Triangles ABC (2, 12, 22) and BCA (12, 22, 32) are equally long; the
  // later one wins the tie. The start is then A itself, 0 m from the finish,
  // which is the last turnpoint. DHV, HG/PG OLC: (perimeter - 0 m gap) x 2
  // points per km.
  const std::regex json(R"(\{"type":"fai","distance_m":([0-9.]+),"score":([0-9.]+),"points":\[)"
                        R"(\{"name":"Start","index":2,"lat":4[^}]*\},\{"name":"Point 1","index":12,[^}]*\},)"
                        R"(\{"name":"Point 2","index":22,[^}]*\},\{"name":"Point 3","index":32,[^}]*\},)"
                        R"(\{"name":"Finish","index":32,[^}]*\}\]\}\n)");
  std::smatch m;
  ASSERT_TRUE(std::regex_match(run.out, m, json)) << run.out;
  const double distance = std::stod(m[1]);
  EXPECT_NEAR(distance, 30000, 30);
  EXPECT_NEAR(std::stod(m[2]), distance / 1000 * 2.0, 0.002);

  const TRunResult info = RunVelantis({"info", "--json", route});
  EXPECT_NE(info.out.find("{\"kind\":\"route\",\"name\":\"result\",\"count\":5,"), std::string::npos) << info.out;
  const std::string trackBytes = FileBytes(flight);
  EXPECT_NE(trackBytes.find("Optimization Rules"), std::string::npos);
  EXPECT_NE(trackBytes.find("Point 3/Finish"), std::string::npos);

  // Text form, another rule set: no deduction, 1.4 points per km.
  const TRunResult text = RunVelantis({"optimize", flight, "--type", "fai", "--rules", "French CFD"});
  ASSERT_EQ(text.exitCode, 0) << text.err;
  const std::regex textForm("^type: fai\nrules: French CFD\ndistance_m: [0-9.]+\nscore: ([0-9.]+)\n(.|\n)*Point 3: 32 ");
  ASSERT_TRUE(std::regex_search(text.out, m, textForm)) << text.out;
  EXPECT_NEAR(std::stod(m[1]), distance / 1000 * 1.4, 0.002);
}

TEST(OptimizeCommand, Refusals) {
  const auto dir = ScratchDir("cli-optimize-refusals");
  const std::string flight = WriteFlight(dir, 33);
  const std::string single = WriteFlight(ScratchDir("cli-optimize-single"), 1);
  const struct {
    std::vector<std::string> args;
    std::string err;
  } cases[] = {
      {{"optimize", flight, "--rules", "XContest"}, "Unknown rule set: XContest"},
      {{"optimize", (dir / "none.trk").string()}, "Error opening " + (dir / "none.trk").string()},
      {{"optimize", (dir / "flight.gpx").string()}, "Unknown file format: gpx"},
      {{"optimize", single}, "No result: the track has too few points for the shape"},
      {{"optimize", flight, "--save-route", (dir / "x.wpt").string()}, "Unknown file format: wpt"},
      {{"optimize", (dir / "flight.igc").string(), "--save-track"},
       "The result can only be stored in a .trk file: convert the flight to .trk first"},
  };
  for (const auto& c : cases) {
    const TRunResult run = RunVelantis(c.args);
    EXPECT_EQ(std::tuple(run.exitCode, run.err, run.out), std::tuple(1, "velantis: " + c.err + "\n", ""));
  }
  EXPECT_EQ(RunVelantis({"optimize", flight, "--type", "square"}).exitCode, 2);
}

}  // namespace
}  // namespace velantis::test
