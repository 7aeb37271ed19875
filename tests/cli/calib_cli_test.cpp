#include <gtest/gtest.h>

#include <fstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

// A latitude/longitude map of 1000 × 1000 pixels over 2°E..3°E, 41°N..42°N.
std::string WriteMap() {
  const auto path = ScratchDir("calib-cli") / "square.imp";
  std::ofstream(path) << "Velantis MAP File\r\n<Header>\r\nProjection=1,Lat/Long,\r\n"
                         "Coordinates=1\r\nDatum=WGS 84\r\n</Header>\r\n<Map>\r\n"
                         "Bitmap=square.png\r\nBitmapWidth=1000\r\nBitmapHeight=1000\r\n"
                         "</Map>\r\n<Calibration>\r\nP0=0,0,A,2,42\r\nP1=1000,0,A,3,42\r\n"
                         "P2=0,1000,A,2,41\r\n</Calibration>\r\n";
  return path.string();
}

TEST(CalibCommand, ConvertsOneValueOrEveryLineOfStdin) {
  const std::string map = WriteMap();
  const TRunResult toEd50 = RunVelantis(
      {"coord", "--from", "geo:WGS 84", "--to", "geo:European 1950", "41.5", "2.5"});
  struct TCase {
    std::vector<std::string> args;
    std::string input;
    std::string output;
  };
  const TCase cases[] = {
      {{"--pixel", "500", "500"}, "", "41.500000000 2.500000000\n"},
      {{"--coord", "41.25", "2.75"}, "", "750.000 750.000\n"},
      {{"--pixel", "500", "500", "--datum", "European 1950"}, "", toEd50.out},
      {{"--pixel"}, "0 0\nnorth\n1000 1000\n",
       "42.000000000 2.000000000\nerror: Bad coordinate: north (X Y in pixels expected)\n"
       "41.000000000 3.000000000\n"},
      {{"--coord"}, "41 3\n", "1000.000 1000.000\n"},
  };
  for (const TCase& c : cases) {
    std::vector<std::string> args = {"calib", map};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const TRunResult run = RunVelantis(args, c.input);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, c.output) << c.args[0];
  }
}

TEST(CalibCommand, InfoTellsWhatTheCalibrationSays) {
  const TRunResult run = RunVelantis({"info", WriteMap()});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out,
            "kind: map\nname: \ncount: 3\ndatum: WGS 84\nprojection: 1,Lat/Long,\n"
            "image: square.png 1000x1000\n"
            "bounds: 41.000000000 2.000000000 42.000000000 3.000000000\n");
}

TEST(CalibCommand, RefusalsAndBadUsage) {
  const std::string map = WriteMap();
  struct TCase {
    std::vector<std::string> args;
    int exitCode;
    std::string err;
  };
  const TCase cases[] = {
      {{"calib", "/no/such/map.map", "--pixel", "1", "2"}, 1, "velantis: Map file not found.\n"},
      {{"calib", "/no/such/map.kml", "--pixel", "1", "2"}, 1, "velantis: Unknown file format: kml\n"},
      {{"calib", map, "--pixel", "1", "2", "--datum", "Atlantis"}, 1,
       "velantis: Unknown datum: Atlantis\n"},
      {{"calib", map}, 2, "velantis: one of --pixel or --coord is required\n"},
      {{"calib", map, "--pixel", "1"}, 2, "velantis: --pixel takes two values or none\n"},
  };
  for (const TCase& c : cases) {
    const TRunResult run = RunVelantis(c.args);
    EXPECT_EQ(run.exitCode, c.exitCode) << c.args[1];
    EXPECT_EQ(run.err, c.err) << c.args[1];
  }
}

}  // namespace
}  // namespace velantis::test
