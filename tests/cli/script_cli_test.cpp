// Scripts run by the velantis program: a script that scans a folder of real
// files and converts each one, checked with the file readers; the
// command-line start; the prompts on stdin and stderr.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "formats/file_dispatch.h"
#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

namespace fs = std::filesystem;

// One text line per point: position to 1e-6 degrees, name or time.
std::vector<std::string> Points(const TElementFile& file) {
  std::vector<std::string> lines;
  const auto add = [&lines](double lat, double lon, std::string more) {
    char text[64];
    std::snprintf(text, sizeof text, "%.6f %.6f ", lat, lon);
    lines.push_back(text + more.erase(more.find_last_not_of(' ') + 1));
  };
  for (const TBaliza& w : file.waypoints.Balizas()) add(w.Latitude(), w.Longitude(), w.Name());
  for (size_t i = 0; i < file.route.Count(); ++i)
    add(file.route.Point(i).baliza.Latitude(), file.route.Point(i).baliza.Longitude(), file.route.Point(i).baliza.Name());
  for (const TrkPnt& p : file.track.Points()) add(p.lat, p.lon, p.time.ToIsoText());
  return lines;
}

// Flight logs become native tracks; waypoint and route files become native
// files of their own kind.
constexpr const char* kConvertFolder = R"(files = Velantis.DirScan(in, "*");
for (i = 0; i < files.Count(); i++) {
  f = files[i];
  x = f.FileNameEx();
  x = x.SubString(x.strlen() - 4, 4);
  if (x == ".igc") { x = ".trk"; };
  Velantis.Convert(f, out + "/" + f.FileNameNoEx() + x);
  Echo(f.FileNameEx() + "\n");
};
)";

TEST(ScriptProgram, ConvertsEveryFileOfAFolder) {
  const char* const names[] = {"igc/tri.igc", "igc/9crx3101.igc", "ozi/ozi1.wpt", "ozi/ozi.rte"};
  const fs::path dir = ScratchDir("script-convert-folder");
  fs::create_directories(dir / "in");
  fs::create_directories(dir / "out");
  for (const char* name : names) {
    VELANTIS_TESTDATA_OR_SKIP(file, name);
    fs::copy_file(file, dir / "in" / file.filename());
  }
  const fs::path script = dir / "convert.vs";
  std::ofstream(script) << "in = \"" << (dir / "in").generic_string() << "\"; out = \""
                        << (dir / "out").generic_string() << "\";\n"
                        << kConvertFolder;
  const TRunResult run = RunVelantis({"script", script.string()});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, "9crx3101.igc\nozi.rte\nozi1.wpt\ntri.igc\n");
  EXPECT_EQ(run.err, "");

  // Each output holds the positions (and track times) of its input, read
  // back by the readers; names lose the native file's padding to six.
  for (const auto& [in, out] : {std::pair{"tri.igc", "tri.trk"}, {"9crx3101.igc", "9crx3101.trk"},
                                {"ozi1.wpt", "ozi1.wpt"}, {"ozi.rte", "ozi.rte"}}) {
    TElementFile a, b;
    std::string error;
    ASSERT_TRUE(OpenElementFile((dir / "in" / in).string(), TNativeOptions{}, a, error)) << error;
    ASSERT_TRUE(OpenElementFile((dir / "out" / out).string(), TNativeOptions{}, b, error)) << error;
    EXPECT_EQ(Points(b), Points(a)) << out;
    EXPECT_GE(Points(a).size(), 2u) << out;
    EXPECT_FALSE(b.waypoints.FromOziExplorer() || b.route.FromOziExplorer()) << "written as native files";
  }
}

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
  TElementFile converted;
  std::string error;
  ASSERT_TRUE(OpenElementFile(trk.string(), TNativeOptions{}, converted, error)) << error;
  EXPECT_EQ(converted.track.Count(), 2u);

  // The command is script text: its value, not its words, reaches Exec.
  configure("\"info \" + \"" + trk.string() + "\"");
  run = RunVelantis({"script", "--start"}, "", {}, user.string());
  EXPECT_EQ(run.out.substr(0, 18), "kind: track\nname: ") << run.err;
  configure("");
  run = RunVelantis({"script", "--start"}, "", {}, user.string());
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "velantis: No command in ExecCommand_at_Start\n");
  EXPECT_EQ(RunVelantis({"script"}).exitCode, 2);

  // On pipes: a message does not wait (the line stays for the question),
  // a last line without its line feed is an answer, end of input a cancel.
  const fs::path script = dir / "ask.vs";
  std::ofstream(script) << "Velantis.MessageBox(\"m\"); a = Velantis.InputUser(\"Name?\", \"peak\");\n"
                           "r = Velantis.Exec(\"info /none.trk\"); Echo(a + r);\n"
                           "b = Velantis.InputUser(\"Again?\", \"\");";
  run = RunVelantis({"script", script.string()}, "Hut", {}, user.string());
  EXPECT_EQ(run.out, "Hut1");
  EXPECT_EQ(run.err, "m\nName? [peak]: velantis: Error opening /none.trk\nAgain? []: "
                     "velantis: Script Stopped InputUser\n");
  EXPECT_EQ(run.exitCode, 1);
}

}  // namespace
}  // namespace velantis::test
