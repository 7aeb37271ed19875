// Opening and saving by extension: which extensions each element takes,
// the refusal texts, and the saved state after a save.
#include "formats/file_dispatch.h"

#include <gtest/gtest.h>

#include "app/file_io.h"
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
  struct Case {
    const char* file;
    bool waypoints, route, track;  // whether each kind saves and opens there
  };
  const Case cases[] = {
      {"a.wpt", true, false, false}, {"b.WPT", true, false, false}, {"c.rte", false, true, false},
      {"d.Rte", false, true, false}, {"e.trk", false, false, true}, {"f.TRK", false, false, true},
      {"g.gpx", false, false, false}, {"h.txt", false, false, false}, {"i", false, false, false},
  };
  for (const Case& c : cases) {
    const std::string path = (dir / c.file).string();
    const std::string extension = FileExtension(path);
    const std::string refusal = "Unknown file format: " + extension;
    std::string error;
    EXPECT_EQ(SaveWaypoints(path, list, options, error), c.waypoints) << c.file;
    if (!c.waypoints) {
      EXPECT_EQ(error, refusal);
    }
    EXPECT_EQ(SaveRoute(path, route, options, "", error), c.route) << c.file;
    if (!c.route) {
      EXPECT_EQ(error, refusal);
    }
    EXPECT_EQ(SaveTrack(path, track, options, error), c.track) << c.file;
    if (!c.track) {
      EXPECT_EQ(error, refusal);
    }
    TElementFile file;
    const bool known = c.waypoints || c.route || c.track;
    EXPECT_EQ(OpenElementFile(path, options, file, error), known) << c.file << ": " << error;
    if (!known) {
      EXPECT_EQ(error, refusal);
    }
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

TEST(FileDispatch, SavesClearTheModifiedFlagAndRefusalsKeepIt) {
  const auto dir = test::ScratchDir("dispatch-saved");
  TNativeOptions options;
  TWaypoints list;
  list.Add(TBaliza());
  ASSERT_TRUE(list.Modified());
  std::string error;
  list.SetSaveProhibited(true);
  EXPECT_FALSE(SaveWaypoints((dir / "x.wpt").string(), list, options, error));
  EXPECT_EQ(error, kSaveProhibitedError);
  EXPECT_FALSE(std::filesystem::exists(dir / "x.wpt"));
  EXPECT_TRUE(list.Modified());
  list.SetSaveProhibited(false);
  EXPECT_TRUE(SaveWaypoints((dir / "x.wpt").string(), list, options, error)) << error;
  EXPECT_FALSE(list.Modified());

  TRuta route;
  route.Add(TBaliza());
  EXPECT_FALSE(SaveRoute((dir / "x.rte").string(), route, options, "/mode=1 /subtipo=804", error));
  EXPECT_TRUE(route.Modified());
  EXPECT_TRUE(SaveRoute((dir / "x.rte").string(), route, options, "/mode=1", error)) << error;
  EXPECT_FALSE(route.Modified());
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
