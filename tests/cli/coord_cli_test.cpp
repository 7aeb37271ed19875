#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <sstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/proj_reference.h"

namespace velantis::test {
namespace {

TEST(CoordCommand, GeographicShiftAgreesWithProjAtTheEquatorAndPrintsNineDecimals) {
  // European 1979: International 1924, dX -86 dY -98 dZ -119 (TR8350.2). At
  // the equator the squared-latitude rule is moot, so PROJ's Molodensky is
  // the reference to the last printed decimal.
  const TRunResult run = RunVelantis({"coord", "--from", "geo:Europeo 1979", "--to", "geo:WGS 84", "0.0001", "10"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  double lon = 10, lat = 0.0001;
  char definition[200];
  std::snprintf(definition, sizeof definition,
                "+proj=molodensky +a=6378388 +rf=297 +da=-251 +df=%.17g +dx=-86 +dy=-98 +dz=-119",
                1 / 298.257223563 - 1 / 297.0);
  TProjReference proj(definition);
  ASSERT_TRUE(proj.Apply(lon, lat));
  std::istringstream out(run.out);
  double gotLat, gotLon;
  ASSERT_TRUE(out >> gotLat >> gotLon) << run.out;
  EXPECT_NEAR(gotLat, lat, 2e-9);
  EXPECT_NEAR(gotLon, lon, 2e-9);
  EXPECT_EQ(run.out.find('.'), run.out.find(' ') - 10) << "nine decimals: " << run.out;
}

TEST(CoordCommand, BatchPrintsOneLinePerInputLineAndGoesOnAfterARefusedLine) {
  const TRunResult run = RunVelantis({"coord", "--from", "geo:WGS 84", "--to", "geo:WGS84"},
                                     "41.5 2.25\nnot a coordinate\n-33.9 -70.7\n");
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out,
            "41.500000000 2.250000000\n"
            "error: Bad coordinate: not a coordinate (LAT LON in degrees expected)\n"
            "-33.900000000 -70.700000000\n");
}

TEST(CoordCommand, RefusalsAndTheirExitCodes) {
  struct TCase {
    std::vector<std::string> args;
    int exitCode;
    std::string err;
    std::string out;
  };
  const TCase cases[] = {
      {{"coord", "--from", "geo:Atlantis 1900", "--to", "geo:WGS 84", "1", "2"}, 1,
       "velantis: Unknown datum: Atlantis 1900\n", ""},
      {{"coord", "--from", "lambert:WGS 84", "--to", "geo:WGS 84", "1", "2"}, 2,
       "velantis: Unknown coordinate system: lambert:WGS 84\n", ""},
      {{"coord", "--from", "geo:WGS 84", "--to", "geo:WGS 84", "91", "2"}, 1, "",
       "error: Coordinate out of range: 91 2\n"},
      {{"coord", "--to", "geo:WGS 84"}, 2, "velantis: --from is required\n", ""},
  };
  for (const TCase& c : cases) {
    const TRunResult run = RunVelantis(c.args);
    EXPECT_EQ(run.exitCode, c.exitCode) << c.args[2];
    EXPECT_EQ(run.err, c.err) << c.args[2];
    EXPECT_EQ(run.out, c.out) << c.args[2];
  }
}

}  // namespace
}  // namespace velantis::test
