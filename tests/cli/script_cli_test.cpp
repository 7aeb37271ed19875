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

std::string Trimmed(std::string text) { return text.erase(text.find_last_not_of(' ') + 1); }

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

  // Each output holds what its input holds, read back by the readers.
  const std::pair<const char*, const char*> outputs[] = {
      {"tri.igc", "tri.trk"}, {"9crx3101.igc", "9crx3101.trk"}, {"ozi1.wpt", "ozi1.wpt"}, {"ozi.rte", "ozi.rte"}};
  for (const auto& [in, out] : outputs) {
    SCOPED_TRACE(out);
    TElementFile original, converted;
    std::string error;
    ASSERT_TRUE(OpenElementFile((dir / "in" / in).string(), TNativeOptions{}, original, error)) << error;
    ASSERT_TRUE(OpenElementFile((dir / "out" / out).string(), TNativeOptions{}, converted, error)) << error;
    ASSERT_EQ(converted.kind, original.kind);
    switch (original.kind) {
      case TElementKind::Track:
        ASSERT_EQ(converted.track.Count(), original.track.Count());
        ASSERT_GT(original.track.Count(), 100u);
        for (size_t i : {size_t{0}, original.track.Count() / 2, original.track.Count() - 1}) {
          EXPECT_NEAR(converted.track.Point(i).lat, original.track.Point(i).lat, 1e-6);
          EXPECT_NEAR(converted.track.Point(i).lon, original.track.Point(i).lon, 1e-6);
          EXPECT_EQ(converted.track.Point(i).time.ToIsoText(), original.track.Point(i).time.ToIsoText());
        }
        break;
      case TElementKind::Waypoints:
        ASSERT_EQ(converted.waypoints.Count(), 11u);
        ASSERT_EQ(original.waypoints.Count(), 11u);
        for (size_t i = 0; i < 11; ++i) {
          // The native file pads names to six characters.
          EXPECT_EQ(Trimmed(converted.waypoints.Baliza(i).Name()), original.waypoints.Baliza(i).Name());
          EXPECT_NEAR(converted.waypoints.Baliza(i).Latitude(), original.waypoints.Baliza(i).Latitude(), 1e-6);
          EXPECT_NEAR(converted.waypoints.Baliza(i).Longitude(), original.waypoints.Baliza(i).Longitude(), 1e-6);
        }
        EXPECT_FALSE(converted.waypoints.FromOziExplorer()) << "written as a native file";
        break;
      default:
        ASSERT_EQ(converted.route.Count(), 2u);
        ASSERT_EQ(original.route.Count(), 2u);
        for (size_t i = 0; i < 2; ++i) {
          EXPECT_NEAR(converted.route.Point(i).baliza.Latitude(), original.route.Point(i).baliza.Latitude(), 1e-6);
          EXPECT_NEAR(converted.route.Point(i).baliza.Longitude(), original.route.Point(i).baliza.Longitude(), 1e-6);
        }
        EXPECT_FALSE(converted.route.FromOziExplorer()) << "written as a native file";
    }
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

  const fs::path script = dir / "ask.vs";
  std::ofstream(script) << "a = Velantis.InputUser(\"Name?\", \"peak\"); Velantis.Warning(\"w\");\n"
                           "r = Velantis.Exec(\"info /none.trk\"); Echo(a + r);\n"
                           "b = Velantis.InputUser(\"Again?\", \"\");";
  run = RunVelantis({"script", script.string()}, "\n", {}, user.string());
  EXPECT_EQ(run.out, "peak1");
  EXPECT_EQ(run.err, "Name? [peak]: Warning: w\nvelantis: Error opening /none.trk\nAgain? []: "
                     "velantis: Script Stopped InputUser\n");
  EXPECT_EQ(run.exitCode, 1);
}

}  // namespace
}  // namespace velantis::test
