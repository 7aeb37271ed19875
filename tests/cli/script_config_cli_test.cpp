// velantis script with the program's own configuration: a key a script sets
// is in gps.ini of the user folder, and the next run reads it back.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

TEST(ScriptCli, ConfigGoesToTheUserGpsIni) {
  const auto dir = ScratchDir("cli-script-config");
  const std::string user = (dir / "user").string();
  const std::string set = (dir / "set.vs").string(), get = (dir / "get.vs").string();
  std::ofstream(set) << "Config.Proximity_Radius = 75; Echo(\"set\");";
  std::ofstream(get) << "Echo(Config.Proximity_Radius + \" \" + Velantis.IsMovingMapOn());";
  const TRunResult first = RunVelantis({"script", set}, "", {}, user);
  EXPECT_EQ(std::tie(first.exitCode, first.out, first.err), std::make_tuple(0, std::string("set"), std::string()));
  EXPECT_NE(FileBytes(dir / "user" / "gps.ini").find("Proximity_Radius=75"), std::string::npos);
  const TRunResult second = RunVelantis({"script", get}, "", {}, user);
  EXPECT_EQ(second.out, "75 0");
}

}  // namespace
}  // namespace velantis::test
