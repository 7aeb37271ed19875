// velantis info and velantis convert on native files made here and on real
// OziExplorer files.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

// Two points on the equator one degree apart: 111319.491 m on the WGS 84
// ellipsoid (a x pi / 180), in two segments with a third point.
constexpr const char* kTrack =
    "B  UTF-8\r\nG  WGS 84\r\nU  0\r\nN  Equator\r\n"
    "T  0.000000\xC2\xBAN 10.000000\xC2\xBA" "E 05-JUN-24 10:00:00 N 5.000000\r\n"
    "T  0.000000\xC2\xBAN 11.000000\xC2\xBA" "E 05-JUN-24 11:00:00 N 5.000000\r\n"
    "T  1.000000\xC2\xBAS 11.000000\xC2\xBA" "E 05-JUN-24 09:30:00 s 5.000000\r\n";

std::string WriteTrack(const std::filesystem::path& dir) {
  const auto path = dir / "equator.trk";
  std::ofstream(path, std::ios::binary) << kTrack;
  return path.string();
}

TEST(InfoCommand, DescribesATrack) {
  const std::string path = WriteTrack(ScratchDir("cli-info"));
  const TRunResult text = RunVelantis({"info", path});
  EXPECT_EQ(text.exitCode, 0) << text.err;
  EXPECT_EQ(text.out,
            "kind: track\nname: Equator\ncount: 3\nsegments: 2\ndatum: WGS 84\nnotation: 0\n"
            "bounds: -1.000000000 10.000000000 0.000000000 11.000000000\n"
            "start: 2024-06-05T09:30:00Z\nend: 2024-06-05T11:00:00Z\ndistance_m: 111319.491\n");
  const TRunResult json = RunVelantis({"info", "--json", path});
  EXPECT_EQ(json.out,
            "{\"kind\":\"track\",\"name\":\"Equator\",\"count\":3,\"segments\":2,\"datum\":\"WGS 84\",\"notation\":0,"
            "\"bounds\":[-1.000000000,10.000000000,0.000000000,11.000000000],\"start\":\"2024-06-05T09:30:00Z\","
            "\"end\":\"2024-06-05T11:00:00Z\",\"distance_m\":111319.491}\n");
}

TEST(InfoCommand, DescribesOziExplorerWaypoints) {
  VELANTIS_TESTDATA_OR_SKIP(file, "ozi/waypoints_ozi.wpt");
  const TRunResult run = RunVelantis({"info", "--json", file.string()});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out.rfind("{\"kind\":\"waypoints\",\"name\":\"\",\"count\":5,\"datum\":\"WGS 84\",", 0), 0u)
      << run.out;
  EXPECT_NE(run.out.find("\"distance_m\":null}"), std::string::npos);
}

TEST(ConvertCommand, WritesInTheAskedDatumAndNotation) {
  const auto dir = ScratchDir("cli-convert");
  const std::string in = WriteTrack(dir);
  const std::string out = (dir / "ed50.trk").string();
  TRunResult run = RunVelantis({"convert", in, out, "--datum", "European 1950", "--notation", "1"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, "");
  run = RunVelantis({"info", out});
  EXPECT_NE(run.out.find("datum: European 1950\nnotation: 1\n"), std::string::npos) << run.out;
  // Read back to WGS 84 the positions are the same within half the printed
  // unit (a thousandth of a minute).
  const size_t at = run.out.find("bounds: ");
  ASSERT_NE(at, std::string::npos) << run.out;
  std::istringstream bounds(run.out.substr(at + 8));
  const double expected[] = {-1, 10, 0, 11};
  for (const double value : expected) {
    double read = 0;
    ASSERT_TRUE(bounds >> read);
    EXPECT_NEAR(read, value, 0.0005 / 60);
  }
  std::ifstream written(out, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(written)), std::istreambuf_iterator<char>());
  EXPECT_NE(bytes.find("B  Windows-1252\r\nG  European 1950\r\nU  1\r\n"), std::string::npos);
}

TEST(ConvertCommand, Refusals) {
  const auto dir = ScratchDir("cli-convert-refusals");
  const std::string track = WriteTrack(dir);
  const struct {
    std::vector<std::string> args;
    int exitCode;
    std::string err;
  } cases[] = {
      {{"convert", track, (dir / "x.wpt").string()}, 1, "velantis: Unknown file format: wpt\n"},
      {{"convert", track, (dir / "x.gpx").string()}, 1, "velantis: Unknown file format: gpx\n"},
      {{"convert", (dir / "none.trk").string(), (dir / "x.trk").string()}, 1,
       "velantis: Error opening " + (dir / "none.trk").string() + "\n"},
      {{"convert", track, (dir / "x.trk").string(), "--datum", "Nowhere"}, 1, "velantis: Unknown datum: Nowhere\n"},
      {{"info", (dir / "x.doc").string()}, 1, "velantis: Unknown file format: doc\n"},
  };
  for (const auto& c : cases) {
    const TRunResult run = RunVelantis(c.args);
    EXPECT_EQ(run.exitCode, c.exitCode) << c.args[2];
    EXPECT_EQ(run.err, c.err);
  }
  EXPECT_EQ(RunVelantis({"convert", track, (dir / "x.trk").string(), "--notation", "4"}).exitCode, 2);
  EXPECT_FALSE(std::filesystem::exists(dir / "x.trk"));
}

TEST(ConvertCommand, OziExplorerWaypointsBecomeNative) {
  VELANTIS_TESTDATA_OR_SKIP(file, "ozi/ozi1.wpt");
  const auto dir = ScratchDir("cli-convert-ozi");
  const std::string out = (dir / "native.wpt").string();
  const TRunResult run = RunVelantis({"convert", file.string(), out});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const TRunResult info = RunVelantis({"info", out});
  EXPECT_NE(info.out.find("kind: waypoints\nname: \ncount: 11\n"), std::string::npos) << info.out;
  // Its own original is not overwritten in the native format.
  EXPECT_EQ(RunVelantis({"convert", out, out}).exitCode, 0);
}

// Two fixes on the equator one degree apart an hour apart, and a fix whose
// minutes are past 60: skipped and counted.
constexpr const char* kFlight =
    "AXVLtest\r\nHFDTE050624\r\nB1000000000000N01000000EA0010000120\r\n"
    "B1030000060001N01000000EA0010000120\r\nB1100000000000N01100000EA0010000120\r\n";

TEST(InfoCommand, DescribesAFlightLogAndItsBadRecords) {
  const auto path = ScratchDir("cli-info-igc") / "flight.IGC";
  std::ofstream(path, std::ios::binary) << kFlight;
  const TRunResult text = RunVelantis({"info", path.string()});
  EXPECT_EQ(text.exitCode, 0) << text.err;
  EXPECT_EQ(text.out,
            "kind: track\nname: \ncount: 2\nsegments: 1\nbad_records: 1\ndatum: WGS 84\nnotation: 0\n"
            "bounds: 0.000000000 10.000000000 0.000000000 11.000000000\n"
            "start: 2024-06-05T10:00:00Z\nend: 2024-06-05T11:00:00Z\ndistance_m: 111319.491\n");
  const TRunResult json = RunVelantis({"info", "--json", path.string()});
  EXPECT_NE(json.out.find("\"count\":2,\"segments\":1,\"bad_records\":1,\"datum\""), std::string::npos) << json.out;
}

TEST(ConvertCommand, FlightLogsGoThroughTrackFilesAndBack) {
  const auto dir = ScratchDir("cli-convert-igc");
  std::ofstream(dir / "in.igc", std::ios::binary) << kFlight;
  ASSERT_EQ(RunVelantis({"convert", (dir / "in.igc").string(), (dir / "copy.igc").string()}).exitCode, 0);
  EXPECT_EQ(FileBytes(dir / "copy.igc"), kFlight);
  TRunResult run = RunVelantis({"convert", (dir / "in.igc").string(), (dir / "flight.trk").string()});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  run = RunVelantis({"convert", (dir / "flight.trk").string(), (dir / "back.igc").string()});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(FileBytes(dir / "back.igc"),
            "AXVLVelantis\r\nHFDTEDATE:050624,01\r\nB1000000000000N01000000EA0010000120\r\n"
            "B1100000000000N01100000EA0010000120\r\n");
}

}  // namespace
}  // namespace velantis::test
