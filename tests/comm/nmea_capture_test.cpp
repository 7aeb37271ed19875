// The real captures of the test data (gpsd's regression logs). Their lines
// through the parser, against the counts of the data's manifest; the first
// fix of one against the report gpsd recorded beside it; three replayed into
// a pseudo-terminal in uneven pieces give the fixes of the file. (Every fix
// is compared with a live gpsd in tests/cli/nmea_gpsd_cli_test.cpp.)
#include <charconv>
#include <numbers>

#include "comm/nmea_live_handler.h"
#include "comm/port_line_source.h"
#include "tests/comm/comm_test_support.h"

namespace velantis {
namespace {

TEST(NmeaCaptures, CountsOfTheManifest) {
  struct TCase {
    const char* capture;
    size_t lines, noDollar, checksumSection, mismatched;  // lines 0: not stated
  };
  const TCase cases[] = {
      {"nmea/ais-nmea.log", 1313 + 183, 183, 0, 0},  // 1313 sentences, 183 AIS lines
      {"nmea/et-332.log", 0, 34, 0, 1},  // 34 lines from the host, one GSA with escape codes
      {"nmea/firefly-II.log", 0, 0, 0, 23},     // all 23 GGA
      {"nmea/garmin-geko201.log", 0, 0, 1, 0},  // "$GPBOD,,T,,M,,*"
      {"nmea/bundg_zeus_9.log", 4999, 0, 0, 0},
      {"nmea/saab-r4.log", 0, 14 + 1, 0, 0},  // 14 AIS lines and one empty line
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.capture);
    VELANTIS_TESTDATA_OR_SKIP(path, c.capture);
    const std::vector<std::string> lines = test::CaptureLines(path);
    size_t noDollar = 0, checksumSection = 0, mismatched = 0;
    TComandaNMEA sentence;
    for (const std::string& line : lines) {
      TErrorSink sink;
      if (sentence.Parse(line, sink)) {
        mismatched += !sentence.ChecksumMatches();
        continue;
      }
      const std::string& message = sink.Records().at(0).message;
      noDollar += message == kNmeaErrorNoDollar;
      checksumSection += message == kNmeaErrorChecksumSection;
    }
    EXPECT_EQ(lines.size(), c.lines ? c.lines : lines.size());
    EXPECT_EQ(noDollar, c.noDollar);
    EXPECT_EQ(checksumSection, c.checksumSection);
    EXPECT_EQ(mismatched, c.mismatched);
  }
}

// A number of a gpsd JSON report ("key":value); NaN when it is not there.
double JsonNumber(std::string_view report, std::string_view key) {
  const size_t at = report.find("\"" + std::string(key) + "\":");
  double value = NAN;
  if (at != std::string_view::npos)
    std::from_chars(report.data() + at + key.size() + 3, report.data() + report.size(), value);
  return value;
}

// The fish finder's first sentence with a position is an RMC with a
// magnetic variation to the west: gpsd's first report and our first fix.
TEST(NmeaCaptures, HumminbirdRmcAsGpsdRecordedIt) {
  VELANTIS_TESTDATA_OR_SKIP(path, "nmea/humminbird-M37.log");
  TNmeaLiveHandler handler;
  TPosicionNMEA fix = test::RecordAtTestNow();
  for (const std::string& line : test::CaptureLines(path))
    if (handler.Handle(line, fix)) break;
  std::string report;
  for (const std::string& line : test::CaptureLines(path.string() + ".chk"))
    if (report.empty() && line.find("\"class\":\"TPV\"") != std::string::npos &&
        line.find("\"lat\":") != std::string::npos)
      report = line;
  ASSERT_FALSE(report.empty());
  EXPECT_EQ(handler.Sentence().Identifier(), "RMC");
  EXPECT_NE(report.find("\"time\":\"" + test::IsoMillis(fix.time) + "Z\""), std::string::npos);
  EXPECT_NEAR(fix.lat, JsonNumber(report, "lat"), 1e-9);
  EXPECT_NEAR(fix.lon, JsonNumber(report, "lon"), 1e-9);
  EXPECT_NEAR(fix.speedKmh / 3.6, JsonNumber(report, "speed"), 0.0006);
  EXPECT_NEAR(fix.courseRad * 180 / std::numbers::pi, JsonNumber(report, "track"), 1e-4);
  EXPECT_NEAR(fix.magneticVariationDeg, JsonNumber(report, "magvar"), 0.05);
  EXPECT_LT(fix.magneticVariationDeg, 0);
}

// The fixes the handling marks new, one text each.
std::vector<std::string> Fixes(const std::vector<std::string>& lines) {
  TNmeaLiveHandler handler;
  TPosicionNMEA fix;
  fix.clock = TNmeaClock::Fixed(TDateTime::FromCalendar(2024, 6, 5));
  std::vector<std::string> fixes;
  for (const std::string& line : lines)
    if (handler.Handle(line, fix))
      fixes.push_back(std::to_string(fix.lat) + " " + std::to_string(fix.lon) + " " +
                      fix.time.ToIsoText() + (fix.valid ? " valid" : " invalid"));
  return fixes;
}

class CaptureReplay : public ::testing::TestWithParam<const char*> {};

TEST_P(CaptureReplay, ThroughAPseudoTerminalAsFromTheFile) {
  VELANTIS_TESTDATA_OR_SKIP(capture, std::string("nmea/") + GetParam());
  const std::string bytes = test::FileBytes(capture);
  std::vector<test::TChunk> pieces;  // 1 to 300 bytes, as a UART hands them over
  for (size_t at = 0, n = 1; at < bytes.size(); at += n, n = n * 7 % 300 + 1)
    pieces.push_back({1, bytes.substr(at, n)});
  test::TPtyPair pty;
  const std::unique_ptr<TSerialPort> port = OpenSerialPort(pty.SlaveName(), 4800);
  test::TReceiver receiver(pty.Master(), pieces);
  TErrorSink errors;
  TPortLineSource source(*port, errors, 500);
  std::vector<std::string> lines;
  for (std::string line; source.ReadLine(line, true) > 0;) lines.push_back(line);
  const std::vector<std::string> fromFile = Fixes(test::CaptureLines(capture));
  ASSERT_FALSE(fromFile.empty());
  EXPECT_EQ(Fixes(lines), fromFile);
}

INSTANTIATE_TEST_SUITE_P(Captures, CaptureReplay,
                         ::testing::Values("neo-m8n.log", "humminbird-M37.log", "triton400.log"),
                         test::TFileParamName());

}  // namespace
}  // namespace velantis
