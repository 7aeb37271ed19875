// velantis coord with every coordinate-system form, checked against PROJ and
// published points; each row is a case that once went wrong somewhere.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/proj_reference.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

struct TUtmText {
  int zone;
  std::string band;
  double x, y;
};

TUtmText ReadUtm(const std::string& line) {
  TUtmText utm{};
  std::istringstream in(line);
  in >> utm.zone >> utm.band >> utm.x >> utm.y;
  return utm;
}

TEST(CoordForms, GeographicToUtmPicksTheZoneAndBandByTheProgramsRules) {
  struct TCase {
    double lat, lon;
    int zone;
    const char* band;
  };
  // Truncation toward zero, then one less for every negative longitude:
  // exactly -6 is zone 29. Bands: 84 is X, 0 is M, -80 is A, above 84 Z.
  const TCase cases[] = {
      {0.5, 0, 31, "N"},    {0.5, -0.5, 30, "N"}, {10, -6, 29, "P"},  {10, -12, 28, "P"},
      {84, 10, 32, "X"},    {0, 10, 32, "M"},     {-80, 10, 32, "A"}, {84.5, 10, 32, "Z"},
      {-33.9, 151.2, 56, "H"},
  };
  for (const TCase& c : cases) {
    char values[64];
    std::snprintf(values, sizeof values, "%.9f %.9f", c.lat, c.lon);
    const TRunResult run = RunVelantis({"coord", "--from", "geo:WGS 84", "--to", "utm:WGS 84"}, values);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const TUtmText utm = ReadUtm(run.out);
    EXPECT_EQ(utm.zone, c.zone) << values;
    EXPECT_EQ(utm.band, c.band) << values;
    const bool south = std::string("ABCDEFGHJKLM").find(c.band) != std::string::npos;
    TProjReference proj("+proj=utm +zone=" + std::to_string(c.zone) + (south ? " +south" : "") +
                        " +ellps=WGS84");
    double x, y;
    ASSERT_TRUE(proj.Forward(c.lon, c.lat, x, y));
    EXPECT_NEAR(utm.x, x, 0.01) << values;
    EXPECT_NEAR(utm.y, y, 0.01) << values;
  }
}

TEST(CoordForms, UtmLimitsAndGarbageGiveTheSystemsMessages) {
  const TRunResult run = RunVelantis({"coord", "--from", "utm:WGS 84", "--to", "geo:WGS 84"},
                                     "31 N 500000 9886786\n"
                                     "31 L 500000 9886786\n"
                                     "31T 40000000 1\n"
                                     "31 t 500000 1000\n"
                                     "garbage\n");
  ASSERT_EQ(run.exitCode, 0) << run.err;
  std::istringstream lines(run.out);
  std::string line;
  std::getline(lines, line);
  EXPECT_EQ(line, "error: utm.y superior a 9886785");
  std::getline(lines, line);
  EXPECT_EQ(line.rfind("-1.0", 0), 0u) << "a southern band takes the same northing: " << line;
  std::getline(lines, line);
  EXPECT_EQ(line, "error: utm.x big out of domail value");
  std::getline(lines, line);
  EXPECT_EQ(line, "error: Error in the UTM zome. It must be a value between 1 and 60");
  std::getline(lines, line);
  EXPECT_EQ(line, "error: Bad coordinate: garbage (ZONE BAND EASTING NORTHING expected)");
}

TEST(CoordForms, UtmToUtmKeepsTheZoneOnTheSameDatum) {
  // A point of zone 31 written in zone 30 stays in zone 30.
  const TRunResult run = RunVelantis({"coord", "--from", "utm:WGS 84", "--to", "utm:WGS84"},
                                     "30 T 740000 4600000\n");
  EXPECT_EQ(run.out, "30 T 740000.000 4600000.000\n") << run.err;
}

TEST(CoordForms, FixedGridsMatchTheirPublishedPoints) {
  struct TCase {
    std::vector<std::string> args;
    std::string values;
    double x, y, tolerance;
  };
  const TCase cases[] = {
      // Ordnance Survey's worked example (Caister water tower), OSGB36.
      {{"--from", "geo:Ord Srvy Grt Britn", "--to", "bng"}, "52.657570306 1.717921583", 651409.903, 313177.270, 0.002},
      // The same through the full catalogue name.
      {{"--from", "geo:OSGB36", "--to", "BGN (British National Grid)"}, "52.657570306 1.717921583", 651409.903, 313177.270, 0.002},
      // The Swiss grid's origin at the old observatory of Bern, 46°57'08.66"N
      // 7°26'22.50"E on CH1903 (swisstopo).
      {{"--from", "geo:CH-1903", "--to", "swiss"}, "46.952405556 7.439583333", 600000, 200000, 0.01},
  };
  for (const TCase& c : cases) {
    std::vector<std::string> args = {"coord"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const TRunResult run = RunVelantis(args, c.values + "\n");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    double x, y;
    std::istringstream in(run.out);
    ASSERT_TRUE(in >> x >> y) << run.out;
    EXPECT_NEAR(x, c.x, c.tolerance) << c.args[3];
    EXPECT_NEAR(y, c.y, c.tolerance) << c.args[3];
  }
}

TEST(CoordForms, ProjectionFileAgreesWithProjAndRoundTrips) {
  const auto dir = ScratchDir("coord-proj-file");
  const std::string file = (dir / "gk3.prj").string();
  std::ofstream(file, std::ios::binary)
      << "VERSION=1\r\nNAME=Gauss-Kruger zone 3\r\nPROJECTION=Transversal Mercator\r\n"
         "LON_ORIGIN=9\r\nLAT_ORIGIN=0\r\nSCALE_FACTOR=1\r\nFE=3500000\r\nFN=0\r\n"
         "PREFERED_DATUM=Potsdam Rauenberg DHDN\r\n";
  const TRunResult run = RunVelantis({"coord", "--from", "geo:DHDN", "--to", "proj:" + file}, "50.1 8.7\n");
  ASSERT_EQ(run.exitCode, 0) << run.err;
  double x, y, refX, refY;
  std::istringstream in(run.out);
  ASSERT_TRUE(in >> x >> y) << run.out;
  TProjReference proj("+proj=tmerc +lon_0=9 +k=1 +x_0=3500000 +ellps=bessel");
  ASSERT_TRUE(proj.Forward(8.7, 50.1, refX, refY));
  EXPECT_NEAR(x, refX, 0.002);
  EXPECT_NEAR(y, refY, 0.002);

  // Back within what the 1 mm printed precision allows (about 1e-8 degrees).
  const TRunResult back = RunVelantis({"coord", "--from", "proj:" + file, "--to", "geo:DHDN"}, run.out);
  double lat, lon;
  std::istringstream backIn(back.out);
  ASSERT_TRUE(backIn >> lat >> lon) << back.out << back.err;
  EXPECT_NEAR(lat, 50.1, 1e-8);
  EXPECT_NEAR(lon, 8.7, 1e-8);

  const TRunResult missing = RunVelantis({"coord", "--from", "proj:/nonexistent.prj", "--to", "geo:WGS 84", "1", "2"});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.err.rfind("velantis: ", 0), 0u);
}

TEST(CoordForms, MgrsRoundTripsThroughGeographic) {
  const TRunResult run = RunVelantis({"coord", "--from", "geo:WGS 84", "--to", "mgrs:WGS 84"}, "41.4 2.17\n");
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out.substr(0, 5), "31TDF");
  const TRunResult back = RunVelantis({"coord", "--from", "mgrs:WGS 84", "--to", "geo:WGS 84"}, run.out);
  double lat, lon;
  std::istringstream in(back.out);
  ASSERT_TRUE(in >> lat >> lon) << back.out << back.err;
  // A 1 m reference names the south-west corner of its square metre.
  EXPECT_NEAR(lat, 41.4, 2e-5);
  EXPECT_NEAR(lon, 2.17, 2e-5);
}

}  // namespace
}  // namespace velantis::test
