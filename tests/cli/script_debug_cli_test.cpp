// velantis script --debug driven through stdin: the keys typed, what the
// debugger shows on stderr, the script's own output on stdout.
#include <gtest/gtest.h>

#include <fstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

TEST(ScriptDebugCli, KeysAndWhatTheyShow) {
  const auto dir = ScratchDir("cli-script-debug");
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
    const std::string path = (dir / "debugged.vs").string();
    std::ofstream(path, std::ios::binary) << c.script;
    const TRunResult run = RunVelantis({"script", "--debug", path}, c.keys);
    const std::string head = "VelanScript Debugger " + path + "\nEnter: step, c: continue, q: stop\n";
    EXPECT_EQ(std::tie(run.exitCode, run.out, run.err), std::make_tuple(c.exitCode, c.out, head + c.err))
        << c.script;
  }
}

}  // namespace
}  // namespace velantis::test
