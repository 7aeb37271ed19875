// A real program: a script scans a folder of real files and converts each
// one; the outputs are read back with the file readers.
#include <gtest/gtest.h>

#include <filesystem>

#include "formats/file_dispatch.h"
#include "tests/script/script_outcome.h"
#include "tests/support/testdata.h"

namespace velantis {
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
  const fs::path dir = test::ScratchDir("script-convert-folder");
  fs::create_directories(dir / "in");
  fs::create_directories(dir / "out");
  for (const char* name : names) {
    VELANTIS_TESTDATA_OR_SKIP(file, name);
    fs::copy_file(file, dir / "in" / file.filename());
  }
  const std::string folders = "in = \"" + (dir / "in").generic_string() + "\"; out = \"" +
                              (dir / "out").generic_string() + "\";\n";
  EXPECT_EQ(Outcome(folders + kConvertFolder), "9crx3101.igc\nozi.rte\nozi1.wpt\ntri.igc\n");

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

}  // namespace
}  // namespace velantis
