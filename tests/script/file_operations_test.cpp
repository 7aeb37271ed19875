// Name patterns and the text imports (the file operations themselves run
// through the commands, file_commands_test.cpp).
#include <gtest/gtest.h>

#include "script/file_operations.h"
#include "script/text_import.h"

namespace velantis {
namespace {

TEST(FileOperations, NamePatterns) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"day1.TRK", "*.trk", true}, {"day1.trk", "*.wpt", false},   {"a.trk.bak", "*.trk", false},
      {"abc", "a?c", true},        {"ac", "a?c", false},           {"", "*", true},
      {"", "?", false},            {"aXbXc", "a*b*c", true},       {"aXbXd", "a*b*c", false},
      {"mississippi", "*sip*", true}, {"abc", "abcd", false},
  };
  for (const auto& [name, pattern, matches] : cases) EXPECT_EQ(NameMatches(name, pattern), matches) << name << pattern;
}

TEST(TextImport, WaypointAndTrackLines) {
  TWaypoints list;
  std::string error;
  ASSERT_TRUE(ReadWaypointsText("# name lat lon\r\nPeak\t37.05\t-3.31\t3479\tsummit\r\n\r\nHut\t-37.1\t+3.2\t\n",
                                TBalizaDefaults{}, list, error)) << error;
  ASSERT_EQ(list.Count(), 2u);
  const TBaliza &peak = list.Baliza(0), &hut = list.Baliza(1);
  EXPECT_EQ(peak.Name() + peak.Description() + hut.Name(), "PeaksummitHut");
  EXPECT_EQ(std::tuple(peak.Latitude(), peak.Longitude(), peak.Altitude(), hut.Latitude(), hut.Longitude()),
            std::tuple(37.05, -3.31, 3479.0f, -37.1, 3.2));
  EXPECT_FALSE(hut.HasAltitude());
  TTrack track;
  ASSERT_TRUE(ReadTrackText("45.5\t6.25\t1200.5\t2024-07-01 10:20:30\n-45.5\t-6.25\n", track, error)) << error;
  ASSERT_EQ(track.Count(), 2u);
  EXPECT_EQ(std::tuple(track.Point(0).lat, track.Point(1).lon, track.Point(0).altitude), std::tuple(45.5, -6.25, 1200.5f));
  EXPECT_EQ(track.Point(0).time.ToIsoText(), "2024-07-01 10:20:30");
  EXPECT_TRUE(track.Point(1).time.IsNull());
  EXPECT_FALSE(IsKnownAltitude(track.Point(1).altitude));

  // One bad line refuses the file, naming the line; nothing is added.
  const std::pair<std::string, std::string> badWaypoints[] = {
      {"A\t1\t2\nB\t91\t0\n", "Error in line 2"}, {"A\t1\t180.5", "Error in line 1"}, {"A\t1,5\t2", "Error in line 1"},
      {"A\t1", "Error in line 1"}, {"A\t1\t2\tx", "Error in line 1"}, {"A\t1\t2\t3\td\te", "Error in line 1"}};
  for (const auto& [text, message] : badWaypoints) {
    EXPECT_FALSE(ReadWaypointsText(text, TBalizaDefaults{}, list, error)) << text;
    EXPECT_EQ(error, message) << text;
  }
  const std::string badTrack[] = {"1\t2\t3\t2024-13-01 00:00:00", "1\t2\t3\t2024-01-01T00:00:00", "-90.1\t0",
                                  "1\t2\t3\t2024-01-01 00:00:00x", "1", "1\t2\t3\t\t5"};
  for (const std::string& text : badTrack) EXPECT_FALSE(ReadTrackText(text, track, error)) << text;
  EXPECT_EQ(list.Count() + track.Count(), 4u);
}

}  // namespace
}  // namespace velantis
