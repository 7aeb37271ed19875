// Opening and saving by extension, and what every reader and writer shares:
// the refusal texts, a failed read or save that leaves things as they were,
// progress counted in records, cancels, and the saved state after a save.
#include "formats/file_dispatch.h"

#include <gtest/gtest.h>

#include "app/file_io.h"
#include "tests/formats/element_samples.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

TEST(FileDispatch, ExtensionsEachElementTakes) {
  const auto dir = test::ScratchDir("dispatch-ext");
  TNativeOptions options;
  TWaypoints list;
  TBaliza b;
  b.SetName("Peak");
  list.Add(b);
  TRuta route;
  route.Add(b);
  TTrack track;
  track.Anyade_Punto_Temps(42, 1, 100, TDateTime());
  const struct {
    const char* file;
    bool waypoints, route, track;  // whether each kind saves and opens there
  } cases[] = {
      {"a.wpt", true, false, false}, {"b.WPT", true, false, false}, {"c.rte", false, true, false},
      {"d.Rte", false, true, false}, {"e.trk", false, false, true}, {"f.TRK", false, false, true},
      {"g.gpx", false, false, false}, {"i", false, false, false},
  };
  for (const auto& c : cases) {
    const std::string path = (dir / c.file).string();
    const std::string refusal = "Unknown file format: " + FileExtension(path);
    std::string error;
    EXPECT_EQ(SaveWaypoints(path, list, options, error), c.waypoints) << c.file;
    EXPECT_EQ(error, c.waypoints ? "" : refusal);
    error.clear();
    EXPECT_EQ(SaveRoute(path, route, options, "", error), c.route) << c.file;
    EXPECT_EQ(error, c.route ? "" : refusal);
    error.clear();
    EXPECT_EQ(SaveTrack(path, track, options, error), c.track) << c.file;
    EXPECT_EQ(error, c.track ? "" : refusal);
    error.clear();
    TElementFile file;
    const bool known = c.waypoints || c.route || c.track;
    EXPECT_EQ(OpenElementFile(path, options, file, error), known) << c.file << ": " << error;
    EXPECT_EQ(error, known ? "" : refusal);
  }
  // A waypoint file also opens as ".mrk"; it is never saved as one.
  std::filesystem::copy_file(dir / "a.wpt", dir / "a.mrk");
  TWaypoints marks;
  std::string error;
  EXPECT_TRUE(OpenWaypoints((dir / "a.mrk").string(), options, marks, error)) << error;
  EXPECT_EQ(marks.Count(), 1u);
  EXPECT_FALSE(SaveWaypoints((dir / "a.mrk").string(), marks, options, error));
  EXPECT_EQ(error, "Unknown file format: mrk");
}

using test::OziRoute;
using test::OziWaypoints;

// Every reader by its extension: a refusal gives the system's text and
// leaves the element as it was; a read counts one progress step per record
// (waypoint, route point, track point; an IGC line), as the writers do.
TEST(FileDispatch, ReadersRefuseOrCountTheirRecords) {
  const std::string w = "W  A_____ 1.0\xC2\xBAN 1.0\xC2\xBA" "E 27-MAR-62 00:00:00 0.0 x\r\n";
  // The file, its bytes, the refusal ("": the read succeeds) and the records.
  const std::tuple<const char*, std::string, std::string, int> cases[] = {
      {"a.wpt", "B  UTF-8\r\n" + w + "w  Flag\r\n" + w + "W  Wx_ 1.0\xC2\xBAN 1.0\xC2\xBA" "E\r\n", "Error in WPT file", 0},
      {"a.wpt", "G  Nowhere 1999\r\n", "Unknown datum: Nowhere 1999", 0},
      {"a.wpt", "U  9\r\n", "Unknown coordinate notation: 9", 0},
      {"a.wpt", "W  NAME 41.0 2.0 05-JUN-24 13:07:00 0 x\r\n",
       "Error in format lat/lon NO quadrant leter found: (N,S,E,W)", 0},
      {"a.wpt", "B  UTF-8\r\n" + w + "w Flag\r\n\r\n" + w + "w  Old,1\r\nt \"x\",1,2,3,4, 5\r\n", "", 2},
      {"a.rte", "G  WGS 84\r\n" + w, "No rte sections in this file!", 0},
      {"a.rte", "R  0,r,0,0\r\np  1.0\r\n" + w + "p  nowhere\r\n", "Error in WPT file", 0},
      {"a.rte", "R  0,r,0,0\r\n" + w + "p  1.0\xC2\xBAN 1.0\xC2\xBA" "E 5.0\r\n" + w + w, "", 3},
      {"a.trk", "G  WGS 84\r\nT  1.0\xC2\xBAN 1.0\xC2\xBA" "E 27-MAR-62\r\n", "Error in TRK file", 0},
      {"a.trk", "G  WGS 84\r\nT  1.0\xC2\xBAN 1.0\xC2\xBA" "E 27-MAR-62 00:00:00 N 5.0\r\n"
       "T  1.0\xC2\xBAN 1.0\xC2\xBA" "E 27-MAR-62 00:00:00 N 5.0", "", 2},
      {"a.wpt", OziWaypoints("1,A,1,2\r\n", "European 1950"), "Unknown datum: European 1950", 0},
      {"a.wpt", OziWaypoints("1,A,1,2\r\n2,B,3\r\n"), "Error in WPT file", 0},
      {"a.wpt", OziWaypoints("1,A,north,2\r\n"), "Error in WPT file", 0},
      {"a.wpt", OziWaypoints("1,A,1,2\r\n\r\n2,B,3,4\r\n3,C,5,6\r\n"), "", 3},
      {"a.rte", OziRoute("\r\n\r\nW,0,1,1,A,1,2\r\n"), "No rte sections in this file!", 0},
      {"a.rte", OziRoute("R,0,X\r\nW,0,1,1,A,1\r\n"), "Error in WPT file", 0},
      {"a.rte", OziRoute("R,0,X\r\nW,0,1\r\n"), "Error in WPT file", 0},
      {"a.rte", OziRoute("R,0,X\r\n", "Tokyo"), "Unknown datum: Tokyo", 0},
      {"a.rte", OziRoute("R,0,X,,0\r\nW,0,1,1,A,1,2\r\n"), "", 2},
      {"a.igc", "HFDTE160701\r\nB1000005107121N00249342WA0028000421\r\nLXXX\r\n", "", 3},  // one step a line
  };
  const auto dir = test::ScratchDir("dispatch-read");
  for (const auto& [name, bytes, refusal, records] : cases) {
    SCOPED_TRACE(bytes);
    const auto path = dir / name;
    std::string error;
    ASSERT_TRUE(WriteFileAtomic(path.string(), bytes, error));
    TElementFile file;
    file.waypoints.Add(TBaliza());
    file.route.SetName("kept");
    file.track.Anyade_Punto_Temps(1, 1, 1, TDateTime());
    TProgress progress;
    TNativeOptions options;
    options.progress = &progress;
    EXPECT_EQ(OpenElementFile(path.string(), options, file, error), refusal.empty());
    if (!refusal.empty()) {
      EXPECT_EQ(error, refusal);
      EXPECT_EQ(file.waypoints.Count(), 1u);
      EXPECT_EQ(file.route.Name(), "kept");
      EXPECT_EQ(file.track.Count(), 1u);
      EXPECT_FALSE(file.waypoints.FromOziExplorer());
      continue;
    }
    EXPECT_EQ(progress.Total(), records);
    EXPECT_EQ(progress.Steps(), records);
    progress.Cancel();
    EXPECT_FALSE(OpenElementFile(path.string(), options, file, error));
    EXPECT_EQ(error, kCancelledError);
  }
}

// Every writer: a refused or cancelled save, or one that fails half-way,
// leaves the old file and no temporary one; only a complete save clears the
// modified flag.
TEST(FileDispatch, FailedSavesLeaveTheOldFile) {
  const auto dir = test::ScratchDir("dispatch-saved");
  std::mt19937_64 random(3);
  TNativeOptions options = test::Utf8Options();
  TElementFile files[3];
  files[0].kind = TElementKind::Waypoints;
  files[0].waypoints = test::SampleWaypoints(random, 30, options.defaults);
  files[1].kind = TElementKind::Route;
  files[1].route = test::SampleRoute(random, 10, options.defaults);
  files[2].kind = TElementKind::Track;
  files[2].track = test::SampleTrack(random, 100);
  const char* names[] = {"keep.wpt", "keep.rte", "keep.trk"};
  std::string befores[3];
  for (size_t i = 0; i < 3; ++i) {
    TElementFile& file = files[i];
    const std::string path = (dir / names[i]).string();
    std::string error;
    TProgress counted;
    TNativeOptions withProgress = options;
    withProgress.progress = &counted;
    ASSERT_TRUE(SaveElementFile(path, file, withProgress, error)) << error;
    const int64_t records[] = {30, 10, 100};
    EXPECT_EQ(counted.Total(), records[i]) << "one step per waypoint, route point or track point";
    EXPECT_EQ(counted.Steps(), records[i]);
    EXPECT_FALSE(file.waypoints.Modified() || file.route.Modified() || file.track.Modified());
    const std::string& before = befores[i] = test::FileBytes(path);
    const int64_t zLine = file.track.ZLinePosition();
    TProgress progress;
    progress.Cancel();
    TNativeOptions cancelled = options;
    cancelled.progress = &progress;
    file.waypoints.SetDescription("changed");
    file.route.SetName("changed");
    file.track.SetName("changed");
    EXPECT_FALSE(SaveElementFile(path, file, cancelled, error)) << names[i];
    EXPECT_EQ(error, kCancelledError);
    EXPECT_EQ(file.track.ZLinePosition(), zLine) << "a failed save keeps the file's offsets";
    file.waypoints.SetSaveProhibited(true);
    file.route.SetSaveProhibited(true);
    file.track.SetSaveProhibited(true);
    EXPECT_FALSE(SaveElementFile(path, file, options, error)) << names[i];
    EXPECT_EQ(error, kSaveProhibitedError);
    EXPECT_TRUE(file.waypoints.Modified() || file.route.Modified() || file.track.Modified());
    EXPECT_EQ(test::FileBytes(path), before);
  }
  files[0].waypoints.SetSaveProhibited(false);
  files[0].waypoints.Baliza(3).SetPosition(95, 0);  // no notation prints a latitude beyond the pole
  std::string error;
  EXPECT_FALSE(SaveElementFile((dir / names[0]).string(), files[0], options, error));
  EXPECT_EQ(test::FileBytes(dir / names[0]), befores[0]);
  EXPECT_FALSE(SaveRoute((dir / "x.rte").string(), files[1].route, options, "/mode=1 /subtipo=804", error));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir), std::filesystem::directory_iterator()), 3)
      << "no temporary file is left behind";
}

TEST(FileDispatch, OziExplorerElementsAreNotSavedBackInTheirFormat) {
  VELANTIS_TESTDATA_OR_SKIP(waypoints, "ozi/ozi.wpt");
  VELANTIS_TESTDATA_OR_SKIP(routes, "ozi/ozi.rte");
  const auto dir = test::ScratchDir("dispatch-ozi");
  TNativeOptions options;
  TElementFile file;
  std::string error;
  ASSERT_TRUE(OpenElementFile(waypoints.string(), options, file, error)) << error;
  EXPECT_TRUE(file.waypoints.FromOziExplorer());
  EXPECT_FALSE(SaveElementFile((dir / "copy.wpt").string(), file, options, error));
  EXPECT_EQ(error, kOziWaypointsRefused);
  ASSERT_TRUE(OpenElementFile(routes.string(), options, file, error)) << error;
  EXPECT_FALSE(SaveElementFile((dir / "copy.rte").string(), file, options, error));
  EXPECT_EQ(error, kOziRouteRefused);
  EXPECT_TRUE(std::filesystem::is_empty(dir));
  // Saved under another name, they are written in the native formats.
  PrepareSaveAs(file);
  ASSERT_TRUE(SaveElementFile((dir / "copy.rte").string(), file, options, error)) << error;
  TRuta native;
  ASSERT_TRUE(OpenRoute((dir / "copy.rte").string(), options, native, error)) << error;
  EXPECT_FALSE(native.FromOziExplorer());
  EXPECT_EQ(native.Count(), file.route.Count());
}

}  // namespace
}  // namespace velantis
