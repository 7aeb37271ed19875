// IGC flight logs: real logs against the test data manifest and against
// GPSBabel (its decoded reference file and the program itself), the date
// forms, midnight, bad records, the extensions, and the bytes written back.
#include "formats/igc_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <regex>
#include <string>
#include <tuple>
#include <vector>

#include "tests/formats/element_samples.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

std::string Lines(std::initializer_list<std::string_view> lines) {
  std::string text;
  for (std::string_view line : lines) (text += line) += "\r\n";
  return text;
}

std::string Iso(TDateTime t) {
  std::string text = t.ToIsoText();
  if (!text.empty()) text = text.substr(0, 10) + "T" + text.substr(11) + "Z";
  return text;
}

struct TRead {
  bool ok = false;
  TTrack track;
  size_t bad = 0;  // records counted bad
};

TRead Read(std::string_view bytes) {
  TNativeOptions options;
  TNativeHeader header;
  options.header = &header;
  std::string error;
  TRead read;
  read.ok = ReadIgc(bytes, options, read.track, error);
  read.bad = header.badRecords;
  return read;
}

std::string Written(const TTrack& track) {
  std::string text, error;
  EXPECT_TRUE(WriteIgc(track, TNativeOptions(), text, error)) << error;
  return text;
}

// The fixes of the GPX track named name, each as "lat lon ele time".
std::vector<std::string> GpxTrack(const std::string& gpx, const std::string& name) {
  static const std::regex kPoint(
      R"re(<trkpt lat="([-0-9.]+)" lon="([-0-9.]+)">\s*<ele>([-0-9.]+)</ele>\s*<time>([^<]+)</time>)re");
  return test::GpxCaptures(gpx, "<name>" + name + "</name>", "</trk>", kPoint);
}

// Our fixes in GPX's form. GPSBabel's time is a day ahead from shiftFrom on
// (it adds a day whenever the clock goes back; we only when it goes back
// more than 12 hours).
std::vector<std::string> OurFixes(const TTrack& track, bool gnss, size_t shiftFrom = SIZE_MAX) {
  std::vector<std::string> fixes;
  for (size_t i = 0; i < track.Count(); ++i) {
    const TrkPnt& p = track.Point(i);
    char text[80];
    std::snprintf(text, sizeof text, "%.9f %.9f %.3f ", p.lat, p.lon, gnss ? p.altitude : p.altitudeBarometric);
    fixes.push_back(text + Iso(i >= shiftFrom ? p.time.PlusSeconds(kSecondsPerDay) : p.time));
  }
  return fixes;
}

// Fix counts and durations from the test data manifest; every file written
// back gives its own bytes, except that line ends become CR LF (tri.igc has
// none after its last line, discontinuity.igc bare LFs). The fixes of igc2
// against GPSBabel's decoded reference file, and of two more logs against
// the program itself when it is installed. In igc2 the eighth fix
// (16:02:48) comes after 16:03:10: GPSBabel dates it and the next one a day
// later; a logger's out-of-order fix stays on its day.
TEST(IgcFile, RealLogsReadWriteBackAndMatchGpsbabel) {
  const bool gpsbabel = std::system("gpsbabel -V > /dev/null 2>&1") == 0;
  const struct {
    const char* file;
    size_t fixes;
    double hours, tolerance;
    const char* gpx = nullptr;  // GPSBabel's decoded file; "": what the program writes
    size_t shiftFrom = SIZE_MAX;
  } logs[] = {
      {"marcourt.igc", 221, 3.6 / 60, 0.1 / 60, ""},
      {"tri.igc", 4514, 1.25, 0.005},
      {"flat-xcontest-8.01.igc", 2735, 0.76, 0.005},
      {"d3p.igc", 2527, 3.5, 0.05, ""},
      {"discontinuity.igc", 4708, 2.5, 0.05},
      {"line.igc", 8528, 2.4, 0.05},
      {"trifai-xcontest-189.65.igc", 17817, 4.95, 0.005},
      {"trifai-xcontest-307.57.igc", 25809, 7.2, 0.05},
      {"record_de_france.igc", 7292, 10.2, 0.05},
      {"freeflight-xcontest-465.33.igc", 38675, 10.7, 0.05},
      {"9crx3101.igc", 7630, 3.55, 0.005},
      {"01lz1hq1.igc", 4960, 5.5, 0.05},
      // 16:02:40 to 16:02:52, the last two fixes out of order
      {"igc2.igc", 9, 12.0 / 3600, 0.5 / 3600, "igc/igc2_gpx.out", 7},
  };
  for (const auto& log : logs) {
    SCOPED_TRACE(log.file);
    VELANTIS_TESTDATA_OR_SKIP(path, std::string("igc/") + log.file);
    const std::string bytes = test::FileBytes(path);
    const TRead read = Read(bytes);
    const TTrack& track = read.track;
    ASSERT_TRUE(read.ok);
    EXPECT_EQ(read.bad, 0u);
    ASSERT_EQ(track.Count(), log.fixes);
    EXPECT_NEAR(track.Point(0).time.SecondsTo(track.Point(track.Count() - 1).time) / 3600, log.hours, log.tolerance);
    std::string expected;
    for (size_t i = 0; i < bytes.size(); ++i) {
      if (bytes[i] == '\n' && (i == 0 || bytes[i - 1] != '\r')) expected += '\r';
      expected += bytes[i];
    }
    if (!expected.ends_with("\r\n")) expected += "\r\n";
    EXPECT_TRUE(Written(track) == expected) << "the written log differs from the file";
    if (log.gpx == nullptr || (*log.gpx == '\0' && !gpsbabel)) continue;
    std::string gpx = *log.gpx ? test::FileBytes(test::TestDataDir() / log.gpx) : "";
    if (gpx.empty()) {
      FILE* pipe = popen(("gpsbabel -i igc -f '" + path.string() + "' -o gpx -F -").c_str(), "r");
      ASSERT_NE(pipe, nullptr);
      char buffer[65536];
      for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) gpx.append(buffer, n);
      ASSERT_EQ(pclose(pipe), 0);
    }
    EXPECT_EQ(OurFixes(track, true, log.shiftFrom), GpxTrack(gpx, "GNSSALTTRK"));
    EXPECT_EQ(OurFixes(track, false, log.shiftFrom), GpxTrack(gpx, "PRESALTTRK"));
  }
  if (!gpsbabel) GTEST_SKIP() << "gpsbabel not installed: two logs not compared with it";
}

// A fix at 51°07.121'N 2°49.342'W, pressure 280 m, GNSS 421 m.
constexpr std::string_view kFixPosition = "5107121N00249342WA0028000421";

std::string Fix(std::string_view hhmmss, std::string_view rest = kFixPosition) {
  return "B" + std::string(hhmmss) + std::string(rest);
}

TEST(IgcFile, DatesMidnightAndBadRecords) {
  // Why, the log, its bad records and the times of the fixes read.
  const std::tuple<const char*, std::string, size_t, const char*> cases[] = {
      {"short date form", Lines({"AXXXABC", "HFDTE160701", Fix("160240")}), 0, "2001-07-16T16:02:40Z"},
      {"long date form with the flight number", Lines({"HFDTEDATE:260919,02", Fix("135959")}), 0,
       "2019-09-26T13:59:59Z"},
      {"two-digit years below 80 are 20YY", Lines({"HFDTE311279", Fix("120000")}), 0, "2079-12-31T12:00:00Z"},
      {"the first date line dates the fixes", Lines({"HFDTE010203", "HFDTEDATE:020304,01", Fix("120000")}), 0,
       "2003-02-01T12:00:00Z"},
      {"midnight passed: the clock goes back more than 12 h", Lines({"HFDTE311299", Fix("235950"), Fix("000010")}), 0,
       "1999-12-31T23:59:50Z 2000-01-01T00:00:10Z"},
      {"a clock 12 h back has not passed midnight", Lines({"HFDTE160701", Fix("230000"), Fix("110000")}), 0,
       "2001-07-16T23:00:00Z 2001-07-16T11:00:00Z"},
      {"a date line after the fixes still dates them", Lines({Fix("120000"), "HFDTE010203"}), 0,
       "2003-02-01T12:00:00Z"},
      {"without a date the fixes fall on day 0", Lines({Fix("120000")}), 0, "1899-12-30T12:00:00Z"},
      {"a date that does not exist is bad; the next date line counts",
       Lines({"HFDTE300280", "HFDTE010380", Fix("080000")}), 1, "1980-03-01T08:00:00Z"},
      {"bad fixes are skipped and counted",
       Lines({"HFDTE160701", Fix("100000"), Fix("106000"), Fix("240000"), Fix("100001", "5107121X00249342WA0028000421"),
              Fix("100002", "5107121N00249342WZ0028000421"), Fix("100003", "5107121N00249342WA002800042"),
              Fix("100004", "5107121N00249342WA00280004O1"), Fix("100005", "5107121N00249342WA00280-1500"),
              Fix("100006", "9100000N00249342WA0028000421"), Fix("100007", "5160001N00249342WA0028000421"),
              Fix("100008")}),
       9, "2001-07-16T10:00:00Z 2001-07-16T10:00:08Z"},
      {"60.000 minutes with further digits is bad",
       Lines({"HFDTE160701", "I013636LAD", Fix("100000", "5160000N00249342WA00280004215")}), 1, ""},
      {"an I record whose extensions do not start at byte 36 is bad",
       Lines({"HFDTE160701", "I013739FXA", Fix("100000")}), 1, "2001-07-16T10:00:00Z"},
      {"a fix shorter than its extensions is bad", Lines({"HFDTE160701", "I013638FXA", Fix("100000")}), 1, ""},
      {"a bad I record: the bytes after the fixed part are kept with the fix",
       Lines({"HFDTE160701", "I023638FXA39", Fix("100000", std::string(kFixPosition) + "03507")}), 1,
       "2001-07-16T10:00:00Z"},
  };
  for (const auto& [why, text, expectedBad, expectedTimes] : cases) {
    SCOPED_TRACE(why);
    const TRead read = Read(text);
    ASSERT_TRUE(read.ok);
    std::string times;
    for (size_t i = 0; i < read.track.Count(); ++i) times += (times.empty() ? "" : " ") + Iso(read.track.Point(i).time);
    EXPECT_EQ(std::pair(read.bad, times), std::pair(expectedBad, std::string(expectedTimes)));
    EXPECT_EQ(Written(read.track), text);
  }
}

TEST(IgcFile, FixFieldsAndExtensions) {
  const float kNone = kAltitudeUnknownM;
  const struct {
    const char* why;
    std::string iRecord, fix;
    double lat, lon;
    float altitude, barometric, accuracy;
    int satellites;
    const char* property;  // code=value kept with the point, or ""
  } cases[] = {
      {"LAD and LOD add a digit to the minutes; no pressure sensor", "I023636LAD3737LOD",
       "B1339094549172N01145793EA000000071526", 45 + 49.1722 / 60, 11 + 45.7936 / 60, 715, kNone, 0, 0, ""},
      {"FXA and SIU fill accuracy and satellites; ENL is kept by its code", "I033638FXA3940SIU4143ENL",
       "B1602405407121N00249342WA002800042102509020", 54 + 7.121 / 60, -(2 + 49.342 / 60), 421, 280, 25, 9,
       "ENL=020"},
      {"'V' has no GNSS altitude; a pressure altitude below zero", "",
       "B0026053559520S14621495EV-001200000", -(35 + 59.52 / 60), 146 + 21.495 / 60, kNone, -12, 0, 0, ""},
      {"an FXA that is not digits is kept as text", "I013638FXA", "B1602405407121N00249342WA0028000421 x5",
       54 + 7.121 / 60, -(2 + 49.342 / 60), 421, 280, 0, 0, "FXA= x5"},
      {"bytes after the extensions are kept", "I013638FXA", "B1602405407121N00249342WA0028000421035zz",
       54 + 7.121 / 60, -(2 + 49.342 / 60), 421, 280, 35, 0, "B tail=zz"},
      {"zero degrees south and west keep their letters", "", "B1200000000000S00000000WA0000000100", 0, 0, 100, kNone,
       0, 0, ""},
      {"minutes of 60.000 read as the next degree; the record is kept as it was", "",
       "B0224073630099S14560000EA0133901401", -(36 + 30.099 / 60), 146, 1401, 1339, 0, 0,
       "B record=B0224073630099S14560000EA0133901401"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const std::string text = c.iRecord.empty() ? Lines({c.fix}) : Lines({c.iRecord, c.fix});
    const TRead read = Read(text);
    const TTrack& track = read.track;
    ASSERT_EQ(track.Count(), 1u);
    const TrkPnt& p = track.Point(0);
    EXPECT_NEAR(p.lat, c.lat, 1e-12);
    EXPECT_NEAR(p.lon, c.lon, 1e-12);
    EXPECT_EQ(std::tuple(p.altitude, p.altitudeBarometric, p.accuracyM, p.satellites),
              std::tuple(c.altitude, c.barometric, c.accuracy, c.satellites));
    const TPropertyList* properties = track.PointProperties(0);
    std::string kept;
    for (size_t i = 0; properties && i < properties->Count(); ++i)
      kept += properties->Item(i).first + "=" + properties->Item(i).second;
    EXPECT_EQ(kept, c.property);
    EXPECT_EQ(Written(track), text);
  }
}

// A track from elsewhere gets our own header; a read log whose first point
// moved gets its date line from that point; a cancelled save leaves the old
// file (reads count lines: see FileDispatch).
TEST(IgcFile, HeadersWrittenAndACancelledSave) {
  TTrack track;
  TrkPnt p;
  p.lat = -(33 + 1.5 / 60);
  p.lon = 151 + 12.25 / 60;
  p.altitude = 1234;
  p.altitudeBarometric = 1200;
  p.satellites = 7;
  p.time = TDateTime::FromCalendar(2024, 6, 5, 23, 59, 58);
  track.Anyade_Punt(p);
  p.altitude = kAltitudeUnknownM;
  p.time = p.time.PlusSeconds(4);
  track.Anyade_Punt(p);
  p.time = TDateTime();  // written at the time of the point before
  track.Anyade_Punt(p);
  EXPECT_EQ(Written(track), Lines({"AXVLVelantis", "HFDTEDATE:050624,01", "I023638FXA3940SIU",
                                   "B2359583301500S15112250EA012000123400007",
                                   "B0000023301500S15112250EV012000000000007",
                                   "B0000023301500S15112250EV012000000000007"}));

  const std::string text = Lines({"HFDTEDATE:160701,03", Fix("100000"), "LXXX note"});
  TRead read = Read(text);
  const auto file = test::ScratchDir("igc-cancel") / "old.igc";
  std::string error;
  ASSERT_TRUE(WriteIgcFile(file.string(), read.track, TNativeOptions(), error)) << error;
  p = read.track.Point(0);
  p.time = p.time.PlusSeconds(2 * kSecondsPerDay + 1);
  ASSERT_TRUE(read.track.SetPoint(0, p));
  EXPECT_EQ(Written(read.track), Lines({"HFDTEDATE:180701,03", Fix("100001"), "LXXX note"}));
  TProgress progress;
  progress.Cancel();
  TNativeOptions options;
  options.progress = &progress;
  EXPECT_FALSE(WriteIgcFile(file.string(), read.track, options, error));
  EXPECT_EQ(error, kCancelledError);
  EXPECT_EQ(test::FileBytes(file), text);
}

}  // namespace
}  // namespace velantis
