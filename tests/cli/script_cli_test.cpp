// Scripts run by the velantis program: the command-line start, the prompts
// on stdin and stderr, the configuration of the user folder.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

namespace fs = std::filesystem;

TEST(ScriptProgram, CommandLineStartAndPrompts) {
  const fs::path dir = ScratchDir("script-start");
  const fs::path user = dir / "user", igc = dir / "a.igc", trk = dir / "a.trk";
  fs::create_directories(user);
  std::ofstream(igc, std::ios::binary) << "AXVLtest\r\nHFDTE050624\r\nB1000000000000N01000000EA0010000120\r\n"
                                          "B1100000000000N01100000EA0010000120\r\n";
  const auto configure = [&](const std::string& command) {
    std::ofstream(user / "gps.ini", std::ios::binary) << "[General]\r\nExecCommand_at_Start=" << command << "\r\n";
  };
  configure("\"convert " + igc.string() + " " + trk.string() + "\"");
  TRunResult run = RunVelantis({"script", "--start"}, "", {}, user.string());
  EXPECT_EQ(run.exitCode, 0) << run.err;

  // The command is script text: its value, not its words, reaches Exec. The
  // track converted by the first command holds both fixes.
  configure("\"info \" + \"" + trk.string() + "\"");
  run = RunVelantis({"script", "--start"}, "", {}, user.string());
  EXPECT_EQ(run.out.substr(0, 28), "kind: track\nname: \ncount: 2\n") << run.err;
  configure("");
  run = RunVelantis({"script", "--start"}, "", {}, user.string());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "velantis: No command in ExecCommand_at_Start\n");

  // On pipes: a message does not wait (the line stays for the question),
  // a last line without its line feed is an answer, end of input a cancel.
  const fs::path script = dir / "ask.vs";
  std::ofstream(script) << "Velantis.MessageBox(\"m\"); a = Velantis.InputUser(\"Name?\", \"peak\");\n"
                           "Config.Proximity_Radius = 75;\n"
                           "r = Velantis.Exec(\"info /none.trk\"); Echo(a + r + Config.Proximity_Radius);\n"
                           "b = Velantis.InputUser(\"Again?\", \"\");";
  run = RunVelantis({"script", script.string()}, "Hut", {}, user.string());
  EXPECT_EQ(run.out, "Hut175");  // the configuration is the user folder's gps.ini
  EXPECT_NE(FileBytes(user / "gps.ini").find("Proximity_Radius=75"), std::string::npos);
  EXPECT_EQ(run.err, "m\nName? [peak]: velantis: Error opening /none.trk\nAgain? []: "
                     "velantis: Script Stopped InputUser\n");
  EXPECT_EQ(run.exitCode, 1);
}

}  // namespace
}  // namespace velantis::test
