// Scripts run by the velantis program: the command-line start, the prompts,
// the user folder's configuration; --debug driven through stdin.
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

TEST(ScriptDebugCli, KeysAndWhatTheyShow) {
  const std::string path = (ScratchDir("cli-script-debug") / "debugged.vs").string();
  const std::string head = "VelanScript Debugger " + path + "\nEnter: step, c: continue, q: stop\n";
  const struct {
    std::string script, keys;
    int exitCode;
    std::string out, err;  // err: after the caption line and the keys line
  } cases[] = {
      // Enter steps to the next node, " c " runs to the end.
      {"a = \"x\";\nEcho(a);\n", "\n c \n", 0, "x",
       "1: a = \"x\";\n   ^~~~~~~\n2: Echo(a);\n   ^~~~~~~\nDebug End\n"},
      // An unknown key shows the keys again; q ends a loop that never would.
      {"n = 0;\n\twhile (1) n++;", "\nx\nq\n", 0, "",
       "1: n = 0;\n   ^~~~~\n2: \twhile (1) n++;\n   \t      ^~~\nEnter: step, c: continue, q: stop\nDebug End\n"},
      // The end of the input continues; the error is shown at its place; a
      // node over two lines is marked to the end of the first.
      {"Echo(\"x\"\n);\n  y = z;", "", 1, "x",
       "1: Echo(\"x\"\n   ^~~~~~~~\n3:   y = z;\n         ^\nvelantis: Unknown variable 'z'\nDebug End\n"},
  };
  for (const auto& c : cases) {
    std::ofstream(path, std::ios::binary) << c.script;
    const TRunResult run = RunVelantis({"script", "--debug", path}, c.keys);
    EXPECT_EQ(std::tie(run.exitCode, run.out, run.err), std::make_tuple(c.exitCode, c.out, head + c.err))
        << c.script;
  }
}

}  // namespace
}  // namespace velantis::test
