// The real captures of the test data (gpsd's regression logs): every line
// goes through the parser and the live handling. The fixes are compared with
// a real gpsd's reports in tests/cli/nmea_gpsd_cli_test.cpp; here only the
// first one of a capture is, against the report gpsd recorded beside it.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <map>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include "comm/nmea_live_handler.h"
#include "tests/comm/nmea_test_support.h"

namespace velantis {
namespace {

const char* const kCaptures[] = {
    "nmea/GPSmap-76S.log",  "nmea/ais-nmea.log",      "nmea/bundg_zeus_9.log",
    "nmea/et-332.log",      "nmea/firefly-II.log",    "nmea/garmin-geko201.log",
    "nmea/gp-320fw-2019-04-07-coldboot.log",          "nmea/hemi.log",
    "nmea/humminbird-M37.log", "nmea/neo-m8n.log",    "nmea/saab-r4.log",
    "nmea/sounder.log",     "nmea/triton400.log",     "nmea/ublox-neo-m9n-nmea.log",
};

struct TLineCounts {
  size_t lines = 0;
  size_t noDollar = 0;
  size_t checksumSection = 0;
  size_t mismatched = 0;
  std::map<std::string, size_t> mismatchedByIdentifier;
};

TLineCounts CountLines(const std::vector<std::string>& lines) {
  TLineCounts counts;
  TComandaNMEA sentence;
  TErrorSink sink;
  for (const std::string& line : lines) {
    ++counts.lines;
    sink.Clear();
    if (!sentence.Parse(line, sink)) {
      const std::string& message = sink.Records().at(0).message;
      if (message == kNmeaErrorNoDollar) ++counts.noDollar;
      else if (message == kNmeaErrorChecksumSection) ++counts.checksumSection;
      else ADD_FAILURE() << "unexpected message " << message << " for " << line;
      continue;
    }
    if (!sentence.ChecksumMatches()) {
      ++counts.mismatched;
      ++counts.mismatchedByIdentifier[std::string(sentence.Identifier())];
    }
  }
  return counts;
}

TEST(NmeaCaptures, EveryLineParsesOrFailsWithOneOfTheTwoMessages) {
  for (const char* capture : kCaptures) {
    SCOPED_TRACE(capture);
    VELANTIS_TESTDATA_OR_SKIP(path, capture);
    const std::vector<std::string> lines = test::CaptureLines(path);
    ASSERT_FALSE(lines.empty());
    const TLineCounts counts = CountLines(lines);
    EXPECT_EQ(counts.lines, lines.size());
  }
}

// The counts the test data's manifest gives for these captures.
TEST(NmeaCaptures, CountsOfTheManifest) {
  struct TCase {
    const char* capture;
    size_t lines;  // 0: not stated
    size_t noDollar;
    size_t checksumSection;
    size_t mismatched;
  };
  const TCase cases[] = {
      {"nmea/ais-nmea.log", 1313 + 183, 183, 0, 0},  // 1313 sentences, 183 AIS lines
      {"nmea/et-332.log", 0, 34, 0, 1},  // 34 lines from the host, one GSA with escape codes
      {"nmea/firefly-II.log", 0, 0, 0, 23},               // all 23 GGA
      {"nmea/garmin-geko201.log", 0, 0, 1, 0},            // "$GPBOD,,T,,M,,*"
      {"nmea/ublox-neo-m9n-nmea.log", 1403, 0, 0, 0},
      {"nmea/bundg_zeus_9.log", 4999, 0, 0, 0},
      {"nmea/saab-r4.log", 0, 14 + 1, 0, 0},  // 14 AIS lines and one empty line
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.capture);
    VELANTIS_TESTDATA_OR_SKIP(path, c.capture);
    const TLineCounts counts = CountLines(test::CaptureLines(path));
    if (c.lines != 0) {
      EXPECT_EQ(counts.lines, c.lines);
    }
    EXPECT_EQ(counts.noDollar, c.noDollar);
    EXPECT_EQ(counts.checksumSection, c.checksumSection);
    EXPECT_EQ(counts.mismatched, c.mismatched);
  }
}

TEST(NmeaCaptures, FireflyGgaChecksumsAreAllWrong) {
  VELANTIS_TESTDATA_OR_SKIP(path, "nmea/firefly-II.log");
  const TLineCounts counts = CountLines(test::CaptureLines(path));
  EXPECT_EQ(counts.mismatched, 23u);
  EXPECT_EQ(counts.mismatchedByIdentifier, (std::map<std::string, size_t>{{"GGA", 23}}));
}

// One fix as the live handling left the record after a sentence that
// marked it new.
struct TFix {
  TDateTime time;
  std::string_view identifier;
  bool valid;
  double lat, lon;
  float altitude;
  double speedKmh, courseRad, magneticVariationDeg;
  bool carriesVariation;  // an RMC with fields 10 and 11 (gpsd fills its own model's value in)
};

std::vector<TFix> LiveFixes(const std::vector<std::string>& lines,
                            std::vector<std::string>& identifiers) {
  TNmeaLiveHandler handler;
  TPosicionNMEA record = test::RecordAtTestNow();
  std::vector<TFix> fixes;
  identifiers.reserve(lines.size());
  for (const std::string& line : lines) {
    if (!handler.Handle(line, record)) continue;
    const TComandaNMEA& sentence = handler.Sentence();
    identifiers.emplace_back(sentence.Identifier());
    fixes.push_back({record.time, identifiers.back(), record.valid, record.lat, record.lon,
                     record.altitude, record.speedKmh, record.courseRad,
                     record.magneticVariationDeg,
                     identifiers.back() == "RMC" && !sentence.Field(10).empty()});
    record.newData = false;
  }
  return fixes;
}

// A number of a gpsd JSON report ("key":value), when it is there.
std::optional<double> JsonNumber(std::string_view report, std::string_view key) {
  const std::string quoted = "\"" + std::string(key) + "\":";
  const size_t at = report.find(quoted);
  if (at == std::string_view::npos) return std::nullopt;
  const char* begin = report.data() + at + quoted.size();
  double value = 0;
  const auto [end, ec] = std::from_chars(begin, report.data() + report.size(), value);
  if (ec != std::errc()) return std::nullopt;
  return value;
}

std::string JsonText(std::string_view report, std::string_view key) {
  const std::string quoted = "\"" + std::string(key) + "\":\"";
  const size_t at = report.find(quoted);
  if (at == std::string_view::npos) return {};
  const size_t start = at + quoted.size();
  return std::string(report.substr(start, report.find('"', start) - start));
}

// The fish finder's first sentence with a position is an RMC with a
// magnetic variation to the west: gpsd's first report and our first fix.
TEST(NmeaCaptures, HumminbirdRmcAsGpsdReportsIt) {
  VELANTIS_TESTDATA_OR_SKIP(path, "nmea/humminbird-M37.log");
  std::vector<std::string> identifiers;
  const std::vector<TFix> fixes = LiveFixes(test::CaptureLines(path), identifiers);
  ASSERT_FALSE(fixes.empty());
  const TFix& fix = fixes.front();
  std::string report;
  for (const std::string& line : test::CaptureLines(path.string() + ".chk")) {
    if (line.find("\"class\":\"TPV\"") != std::string::npos && JsonNumber(line, "lat")) {
      report = line;
      break;
    }
  }
  ASSERT_FALSE(report.empty());
  EXPECT_EQ(fix.identifier, "RMC");
  EXPECT_EQ(test::IsoMillis(fix.time) + "Z", JsonText(report, "time"));
  EXPECT_NEAR(fix.lat, *JsonNumber(report, "lat"), 1e-9);
  EXPECT_NEAR(fix.lon, *JsonNumber(report, "lon"), 1e-9);
  EXPECT_NEAR(fix.speedKmh / 3.6, *JsonNumber(report, "speed"), 0.0006);
  EXPECT_NEAR(fix.courseRad * 180 / std::numbers::pi, *JsonNumber(report, "track"), 1e-4);
  EXPECT_NEAR(fix.magneticVariationDeg, *JsonNumber(report, "magvar"), 0.05);
  EXPECT_LT(fix.magneticVariationDeg, 0);
}

}  // namespace
}  // namespace velantis
