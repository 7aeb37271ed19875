// Folder scans, copies, splits, deletes, temporary names and the text imports.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "script/file_operations.h"
#include "script/text_import.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

namespace fs = std::filesystem;

void Write(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

TEST(FileOperations, NamePatterns) {
  struct TCase {
    const char* name;
    const char* pattern;
    bool matches;
  } const cases[] = {
      {"day1.TRK", "*.trk", true},  {"day1.trk", "*.wpt", false}, {"a.trk.bak", "*.trk", false},
      {"abc", "a?c", true},         {"ac", "a?c", false},         {"abc", "*", true},
      {"", "*", true},              {"", "?", false},             {"aXbXc", "a*b*c", true},
      {"aXbXd", "a*b*c", false},    {"mississippi", "*sip*", true}, {"abc", "abcd", false},
  };
  for (const TCase& c : cases) EXPECT_EQ(NameMatches(c.name, c.pattern), c.matches) << c.name << " ~ " << c.pattern;
}

TEST(FileOperations, ScanCopyDeleteAndSplit) {
  const fs::path dir = test::ScratchDir("file-ops");
  fs::create_directories(dir / "in/sub");
  Write(dir / "in/b.trk", "bb");
  Write(dir / "in/A.TRK", "a");
  Write(dir / "in/c.wpt", "c");
  Write(dir / "in/sub/d.trk", "ddd");
  std::vector<std::string> paths;
  std::string error;
  ASSERT_TRUE(ScanFolder((dir / "in").string(), "*.trk", paths, error)) << error;
  EXPECT_EQ(paths, (std::vector<std::string>{(dir / "in/A.TRK").string(), (dir / "in/b.trk").string()}));
  EXPECT_FALSE(ScanFolder((dir / "none").string(), "*", paths, error));

  size_t count = 0;
  ASSERT_TRUE(CopyFolder((dir / "in").string(), (dir / "out").string(), count, error)) << error;
  EXPECT_EQ(count, 4u);
  EXPECT_EQ(test::FileBytes(dir / "out/sub/d.trk"), "ddd");
  EXPECT_FALSE(CopyFolder((dir / "none").string(), (dir / "out2").string(), count, error));

  ASSERT_TRUE(CopyOneFile((dir / "in/b.trk").string(), (dir / "out/c.wpt").string(), error)) << error;
  EXPECT_EQ(test::FileBytes(dir / "out/c.wpt"), "bb");
  EXPECT_FALSE(CopyOneFile((dir / "in/none").string(), (dir / "out/x").string(), error));

  EXPECT_TRUE(DeleteOneFile((dir / "out/c.wpt").string(), error));
  EXPECT_FALSE(fs::exists(dir / "out/c.wpt"));
  EXPECT_FALSE(DeleteOneFile((dir / "out/c.wpt").string(), error));
  EXPECT_FALSE(DeleteOneFile((dir / "out/sub").string(), error)) << "a folder is not a file";

  Write(dir / "big", "0123456789");
  ASSERT_TRUE(SplitFile((dir / "big").string(), 4, count, error)) << error;
  EXPECT_EQ(count, 3u);
  EXPECT_EQ(test::FileBytes(dir / "big.001") + "|" + test::FileBytes(dir / "big.002") + "|" +
                test::FileBytes(dir / "big.003"),
            "0123|4567|89");
  EXPECT_FALSE(fs::exists(dir / "big.004"));
  ASSERT_TRUE(SplitFile((dir / "big").string(), 10, count, error));
  EXPECT_EQ(count, 1u);
  EXPECT_FALSE(SplitFile((dir / "big").string(), 0, count, error));
}

TEST(FileOperations, TemporaryNamesAreNewFiles) {
  std::string a, b, error;
  ASSERT_TRUE(NewTemporaryFile(".trk", a, error)) << error;
  ASSERT_TRUE(NewTemporaryFile(".trk", b, error)) << error;
  EXPECT_NE(a, b);
  EXPECT_EQ(fs::path(a).extension(), ".trk");
  EXPECT_EQ(fs::path(a).parent_path(), fs::temp_directory_path());
  EXPECT_TRUE(fs::is_regular_file(a) && fs::file_size(a) == 0);
  fs::remove(a);
  fs::remove(b);
}

TEST(TextImport, WaypointLines) {
  TWaypoints list;
  std::string error;
  ASSERT_TRUE(ReadWaypointsText("# name lat lon\r\nPeak\t37.05\t-3.31\t3479\tsummit\r\n\r\nHut\t-37.1\t+3.2\t\n"
                                "Spring\t1\t2",
                                TBalizaDefaults{}, list, error))
      << error;
  ASSERT_EQ(list.Count(), 3u);
  EXPECT_EQ(list.Baliza(0).Name(), "Peak");
  EXPECT_EQ(list.Baliza(0).Description(), "summit");
  EXPECT_DOUBLE_EQ(list.Baliza(0).Latitude(), 37.05);
  EXPECT_DOUBLE_EQ(list.Baliza(0).Longitude(), -3.31);
  EXPECT_FLOAT_EQ(list.Baliza(0).Altitude(), 3479);
  EXPECT_DOUBLE_EQ(list.Baliza(1).Longitude(), 3.2);
  EXPECT_FALSE(list.Baliza(1).HasAltitude());
  EXPECT_EQ(list.Baliza(2).Name(), "Spring");

  const std::pair<std::string, std::string> refused[] = {
      {"A\t1\t2\nB\t91\t0\n", "Error in line 2"},  {"A\t1\t180.5", "Error in line 1"},
      {"A\t1,5\t2", "Error in line 1"},            {"A\t1", "Error in line 1"},
      {"A\t1\t2\tx", "Error in line 1"},           {"A\t1\t2\t3\td\te", "Error in line 1"},
  };
  for (const auto& [text, message] : refused) {
    EXPECT_FALSE(ReadWaypointsText(text, TBalizaDefaults{}, list, error)) << text;
    EXPECT_EQ(error, message) << text;
  }
  EXPECT_EQ(list.Count(), 3u) << "a refused import adds nothing";
}

TEST(TextImport, TrackLines) {
  TTrack track;
  std::string error;
  ASSERT_TRUE(ReadTrackText("45.5\t6.25\t1200.5\t2024-07-01 10:20:30\n-45.5\t-6.25\n45\t6\t\t\n", track, error))
      << error;
  ASSERT_EQ(track.Count(), 3u);
  EXPECT_DOUBLE_EQ(track.Point(0).lat, 45.5);
  EXPECT_DOUBLE_EQ(track.Point(1).lon, -6.25);
  EXPECT_FLOAT_EQ(track.Point(0).altitude, 1200.5f);
  EXPECT_FALSE(IsKnownAltitude(track.Point(2).altitude));
  EXPECT_EQ(track.Point(0).time.ToIsoText(), "2024-07-01 10:20:30");
  EXPECT_TRUE(track.Point(1).time.IsNull());
  const std::string refused[] = {"1\t2\t3\t2024-13-01 00:00:00", "1\t2\t3\t2024-01-01T00:00:00",
                                 "1\t2\t3\t2024-01-01 00:00:00x", "1", "-90.1\t0", "1\t2\t3\t\t5"};
  for (const std::string& text : refused) {
    EXPECT_FALSE(ReadTrackText(text, track, error)) << text;
    EXPECT_EQ(error, "Error in line 1");
  }
  EXPECT_EQ(track.Count(), 3u);
}

}  // namespace
}  // namespace velantis
