// Framing and checksum of one line against the published NMEA 0183 examples;
// the sentences the program builds (fields written by hand, checksums from an
// independent XOR of the body) and the moving-map test output.
#include "comm/nmea_checksum.h"
#include "comm/nmea_sentence_tx.h"
#include "comm/nmea_test_output.h"
#include "tests/support/nmea_link.h"

namespace velantis {
namespace {

using test::Nmea;

constexpr std::string_view kGga =
    "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
constexpr std::string_view kRmc =
    "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A\r\n";

TEST(NmeaChecksum, PublishedSentencesAndSignedBytes) {
  const std::pair<std::string, int32_t> cases[] = {
      {"GPGLL,4916.45,N,12311.12,W,225444,A,", 0x1D},  // published with its checksum
      {"GPVTG,054.7,T,034.4,M,005.5,N,010.2,K", 0x48},
      {"\x80", -128},  // a high byte sign-extends
      {"\xC3\x41", -126},
      {"", 0},
  };
  for (const auto& [body, expected] : cases) {
    EXPECT_EQ(NmeaChecksum(body), expected) << testing::PrintToString(body);
    EXPECT_EQ(NmeaChecksum(body.c_str(), -1), expected);  // up to the zero byte
  }
  EXPECT_EQ(NmeaChecksum(std::string("AB\0C", 4).c_str(), 4), 'A' ^ 'B' ^ 'C');
  EXPECT_EQ(NmeaChecksum(nullptr, 3), 0);
  // The eight-bytes-at-a-time fold meets every length in the captures' counts.
}

// One object parses every row in turn: a failure empties it, a short
// sentence after a long one keeps nothing of it.
TEST(NmeaSentence, ParseTable) {
  struct TCase {
    std::string line;
    std::string_view message;  // on failure
    std::string_view identifier, complete;
    size_t fields;
    const char* checksumText;  // null: not checked
    bool matches;
  };
  const std::string_view ok;
  const TCase cases[] = {
      {std::string(kGga), ok, "GGA", "GPGGA", 15, "47", true},
      {std::string(kGga.substr(1)), kNmeaErrorNoDollar, "", "", 0, nullptr, false},
      {"x\x07" + std::string(kGga), ok, "GGA", "GPGGA", 15, "47", true},  // noise before "$"
      {"$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6\r\n",
       kNmeaErrorChecksumSection, "", "", 0, nullptr, false},
      {"$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W\r\n", ok, "RMC",
       "GPRMC", 12, "", false},  // no "*": parses, checksum not matching
      {"$GPBOD,,T,,M,,*\r\n", kNmeaErrorChecksumSection, "", "", 0, nullptr, false},
      {"$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6a7", ok, "RMC",
       "GPRMC", 12, "6a", true},  // lower-case hex, cut to two characters
      {"$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*49\r\n", ok, "VTG", "GPVTG", 9, "49", false},
      {"$GPVTG,054.7,T,034.4,M,005.5,N,010.2,K*\x1b[\r\n", ok, "VTG", "GPVTG", 9, "\x1b[", false},
      {"$GPTXT,A*zz\r\n", ok, "TXT", "GPTXT", 2, "zz", false},  // no hex digits, XOR 0x22
      {Nmea("PMGNWPL,4917.16,N,12310.64,W,0,M,X"), ok, "MGNWPL", "PMGNWPL", 8, nullptr, true},
      {Nmea("PFEC,GPint"), ok, "FEC", "PFEC", 2, nullptr, true},  // only the "P" goes
      {Nmea("TUA,1,2"), ok, "TUA", "TUA", 3, nullptr, true},  // short field 0 kept whole
      {Nmea("GPGSA,A,1,,,,,,,,,,,,,,,"), ok, "GSA", "GPGSA", 18, nullptr, true},
      {"$GPVTG,054.7,T,034\r\n.4,M,005.5,N,010.2,K*48\n", ok, "VTG", "GPVTG", 9, "48", true},
      {"$*00\r\n", ok, "*00", "*00", 1, "", false},  // "*" right after "$" is text
      {"$\r\n", ok, "", "", 1, "", false},
      {"", kNmeaErrorNoDollar, "", "", 0, nullptr, false},
  };
  TComandaNMEA sentence;
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.line);
    TErrorSink sink;
    ASSERT_EQ(sentence.Parse(c.line, sink), c.message.empty());
    std::string reported;
    for (const auto& record : sink.Records()) reported += record.message + "|" + record.detail;
    EXPECT_EQ(reported, c.message.empty() ? "" : std::string(c.message) + "|" + c.line);
    EXPECT_EQ(std::tuple(sentence.Identifier(), sentence.CompleteIdentifier(), sentence.FieldCount(),
                         sentence.ChecksumMatches()), std::tuple(c.identifier, c.complete, c.fields, c.matches));
    EXPECT_EQ(sentence.ChecksumText(), c.checksumText ? c.checksumText : sentence.ChecksumText());
  }
}

// A published RMC's body and numbers; copies and moves of short bodies (held
// inside the string) and long ones keep their own fields when the original changes.
TEST(NmeaSentence, BodyNumbersCopiesAndMoves) {
  const TComandaNMEA rmc = test::Parsed(kRmc);
  EXPECT_EQ(rmc.BodyWithoutChecksum(), "GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W");
  double knots = 0;
  int date = 0;
  EXPECT_TRUE(rmc.FieldReal(7, knots) && rmc.FieldInt(9, date));
  EXPECT_EQ(std::pair(knots, date), std::pair(22.4, 230394));
  EXPECT_FALSE(rmc.FieldReal(2, knots) || rmc.FieldInt(7, date));  // "A", "022.4"
  const auto joined = [](const TComandaNMEA& s) {
    std::string text(s.Identifier());
    for (const std::string_view field : s.Fields()) text.append(",").append(field);
    return text + (s.ChecksumMatches() ? " ok" : " bad");
  };
  for (const std::string& line : {Nmea("D,1,2"), std::string(kRmc)}) {
    TComandaNMEA original = test::Parsed(line), copy(original), moved(std::move(original)), assigned, moveAssigned;
    assigned = moved;
    moveAssigned = std::move(copy);
    original.Parse(Nmea("GPXXX,overwritten,and,longer,than,before,to,force,new,storage"), nullptr);
    for (const TComandaNMEA* s : {&moved, &assigned, &moveAssigned}) EXPECT_EQ(joined(*s), joined(test::Parsed(line)));
    EXPECT_EQ(copy.FieldCount(), 0u);
  }
}

TEST(NmeaSentenceTx, BuildsThePositionSentences) {
  auto point = [](double lat, double lon, TDateTime time) {
    TrkPnt p;
    p.lat = lat, p.lon = lon, p.time = time;
    return p;
  };
  TrkPnt published = point(48 + 7.038 / 60, 11 + 31.0 / 60, TDateTime::FromCalendar(1994, 3, 23, 12, 35, 19));
  published.altitude = 545.4f, published.speedKmh = 22.4f * 1.852f, published.courseDeg = 84.4f;
  published.hdop = 0.9f, published.satellites = 8;
  const TrkPnt southWest = point(-(33 + 52.0 / 60), -(70 + 40.5 / 60), TDateTime::FromCalendar(2024, 1, 2, 3, 4, 5.67));
  // The minutes round up into the next degree; 23:59:59.996 into the next day.
  TrkPnt noTime = point(59.9999999, 179 + 59.99 / 60, TDateTime());
  noTime.speedKmh = 5 * 1.852f, noTime.courseDeg = 5;
  TrkPnt midnight = southWest;
  midnight.time = TDateTime::FromCalendar(2023, 12, 31, 23, 59, 59.996);
  const std::tuple<std::string_view, TrkPnt, int, std::string_view> cases[] = {
      {"GPRMC", published, 3, "$GPRMC,123519.00,A,4807.038,N,01131.000,E,22.4,84.4,230394,,*3F\r\n"},
      {"GPGGA", published, 3, "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,,M,,*7C\r\n"},
      {"GPGGAM", published, 3, "$GPGGAM,123519.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,,M,,,22.4,84.4,230394*1E\r\n"},
      {"GPRMC", southWest, 4, "$GPRMC,030405.67,A,3352.0000,S,07040.5000,W,0.0,000.0,020124,,*3B\r\n"},
      {"GPGGA", southWest, 4, "$GPGGA,030405.67,3352.0000,S,07040.5000,W,1,00,0.0,,M,,M,,*51\r\n"},
      {"GPRMC", noTime, 2, "$GPRMC,,A,6000.00,N,17959.99,E,5.0,5.0,,,*18\r\n"},
      {"GPRMC", midnight, 0, "$GPRMC,000000.00,A,3352,S,07041,W,0.0,000.0,010124,,*3F\r\n"},
      {"GPGLL", published, 4, ""},  // not a kind that is built
  };
  for (const auto& [kind, point, decimals, line] : cases)
    EXPECT_EQ(BuildNmeaSentence(kind, point, decimals), line);
  TComandaNMEA_Tx sentence;
  ASSERT_TRUE(sentence.Build("GPGGA", published, 42));  // at most 9 decimals
  EXPECT_EQ(sentence.Field(4), "01131.000000000");
  EXPECT_EQ(sentence.Identifier(), "GGA");  // once built, it reads like a received one
  EXPECT_TRUE(sentence.ChecksumMatches());
  sentence.Begin("PMGNCMD");
  sentence.AddField("VERSION");
  EXPECT_EQ(sentence.Finish(), "$PMGNCMD,VERSION*28\r\n");
  TComandaNMEA_Tx_Galileo galileo;  // the combined talker for "GP" kinds only
  ASSERT_TRUE(galileo.Build("GPRMC", published, 3));
  EXPECT_EQ(galileo.Line(), "$GNRMC,123519.00,A,4807.038,N,01131.000,E,22.4,84.4,230394,,*21\r\n");
  galileo.Begin("PMGNCMD");
  EXPECT_EQ(galileo.Finish(), "$PMGNCMD*5E\r\n");
}

// GGA (or GGAM) and RMC a point, the pause between points, a damage drawn
// for each sentence when asked: 23 no "$", 55 cut at 30, 93 a wrong checksum.
TEST(NmeaTestOutput, SentencesPausesDamageAndCancel) {
  TTrack track;
  for (int i = 0; i < 3; ++i)
    track.Anyade_Punto_Temps(41.0 + i * 0.001, 2.0, 100, TDateTime::FromCalendar(2024, 5, 17, 10, 0, i));
  struct TSink : TNmeaLineSink {
    void WriteLine(std::string_view line) override { lines.emplace_back(line); }
    std::vector<std::string> lines;
  } port;
  const std::vector<int> draws = {23, 7, 55, 93, 22, 94};
  size_t drawn = 0;
  std::vector<std::chrono::milliseconds> pauses;
  TNmeaTestOutputOptions options;
  options.extendedGga = options.galileo = options.injectErrors = true;
  const auto draw = [&](int bound) {
    EXPECT_EQ(bound, 100);
    return draws.at(drawn++);
  };
  TNmeaTestOutput output(port, options, draw, [&](std::chrono::milliseconds wait) { pauses.push_back(wait); });
  TProgress progress;
  ASSERT_TRUE(output.Send({&track}, &progress));
  std::vector<std::string> expected;
  TComandaNMEA_Tx_Galileo sentence;
  for (const TrkPnt& point : track.Points())
    for (const char* kind : {"GPGGAM", "GPRMC"}) expected.push_back(sentence.Build(kind, point, 4) ? sentence.Line() : "");
  expected[0][0] = 'R';
  expected[2].resize(30);
  expected[3][expected[3].size() - 4] = 'A';
  EXPECT_EQ(port.lines, expected);
  EXPECT_EQ(pauses, std::vector<std::chrono::milliseconds>(2, std::chrono::milliseconds(2000)));
  EXPECT_EQ(progress.Total(), 3);
  EXPECT_EQ(progress.Steps(), 3);

  TNmeaTestOutput plain(port, {}, {}, [&](std::chrono::milliseconds) { progress.Cancel(); });
  port.lines.clear();
  EXPECT_FALSE(plain.Send({&track}, &progress));
  EXPECT_EQ(port.lines, (std::vector<std::string>{BuildNmeaSentence("GPGGA", track.Point(0), 4),
                                                  BuildNmeaSentence("GPRMC", track.Point(0), 4)}));
}

}  // namespace
}  // namespace velantis
