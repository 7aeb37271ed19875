// One line's framing and checksum, the field readers, the position rules and
// the interpretation outside the live loop on the published NMEA 0183
// examples and receivers' edge cases; the record's settings, clock and datum
// (against PROJ); the sentences the program builds (fields written by hand,
// checksums from an independent XOR of the body) and the moving-map test output.
#include <cfloat>
#include <ctime>
#include <numbers>

#include "app/config.h"
#include "comm/nmea_checksum.h"
#include "comm/nmea_fields.h"
#include "comm/nmea_live_handler.h"
#include "comm/nmea_position_rules.h"
#include "comm/nmea_sentence_tx.h"
#include "comm/nmea_test_output.h"
#include "comm/speed_unit.h"
#include "core/waypoints.h"
#include "geodesy/lista_datums.h"
#include "tests/support/nmea_link.h"
#include "tests/support/proj_reference.h"
#include "tests/support/proj_sweep.h"

namespace velantis {
namespace {

using test::Nmea;
using test::Parsed;

constexpr std::string_view kGga =
    "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
constexpr std::string_view kRmc =
    "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A\r\n";

TEST(NmeaChecksum, PublishedSentencesAndSignedBytes) {
  const std::pair<std::string, int32_t> cases[] = {
      {"GPGLL,4916.45,N,12311.12,W,225444,A,", 0x1D},  // published with its checksum
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
  // Once built, it reads like a received one.
  EXPECT_EQ(std::tuple(sentence.Field(4), sentence.Identifier(), sentence.ChecksumMatches()),
            std::tuple("01131.000000000", "GGA", true));
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
  test::TMemoryPort port({});
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
  EXPECT_EQ(port.written, expected);
  EXPECT_EQ(pauses, std::vector<std::chrono::milliseconds>(2, std::chrono::milliseconds(2000)));
  EXPECT_EQ(std::pair(progress.Total(), progress.Steps()), (std::pair<int64_t, int64_t>(3, 3)));

  TNmeaTestOutput plain(port, {}, {}, [&](std::chrono::milliseconds) { progress.Cancel(); });
  port.written.clear();
  EXPECT_FALSE(plain.Send({&track}, &progress));
  EXPECT_EQ(port.written, (std::vector<std::string>{BuildNmeaSentence("GPGGA", track.Point(0), 4),
                                                  BuildNmeaSentence("GPRMC", track.Point(0), 4)}));
}

std::string Gga(std::string_view quality, std::string_view sats = "08",
                std::string_view altitude = "545.4", std::string_view unit = "M",
                std::string_view separation = "46.9") {
  return Nmea("GPGGA,123519,4807.038,N,01131.000,E," + std::string(quality) + "," +
              std::string(sats) + ",0.9," + std::string(altitude) + "," + std::string(unit) + "," +
              std::string(separation) + ",M,,");
}
std::string Rmc(std::string_view status, std::string_view date = "230394",
                std::string_view course = "084.4", std::string_view variation = "003.1,W") {
  return Nmea("GPRMC,123519," + std::string(status) + ",4807.038,N,01131.000,E,022.4," +
              std::string(course) + "," + std::string(date) + "," + std::string(variation));
}

// The record in one line: valid, differential, date present; latitude,
// longitude, altitude, satellites, HDOP, time, km/h, course, variation.
std::string Summary(const TPosicionNMEA& r) {
  char text[256];
  std::snprintf(text, sizeof text, "%c%c%c %.9f %.9f %g %u %.1f %s %.3f %.1f %.1f",
                r.valid ? 'V' : '-', r.differential ? 'D' : '-', r.datePresent ? 'T' : '-', r.lat,
                r.lon, r.altitude, static_cast<unsigned>(r.satellites), r.hdop, test::IsoMillis(r.time).c_str(),
                r.speedKmh, r.courseRad * 180 / std::numbers::pi, r.magneticVariationDeg);
  return text;
}

using TRule = bool (*)(const TComandaNMEA&, TPosicionNMEA&, const TNmeaReceiverSettings&);

// Each row on a record at 1 N 2 E, 100 m, 3 satellites, course 1 rad (57.3
// degrees); "before" goes first through the interpretation. A null expected
// summary: not a position, nothing changed.
TEST(NmeaPositionRules, Table) {
  const TRule gga = ApplyGgaRule, rmc = ApplyRmcRule, gll = ApplyGllRule, ggam = ApplyGgamRule;
  using test::Settings;
  const TNmeaReceiverSettings none, minSats4 = Settings([](auto& s) { s.minSatellites = 4; });
  const TNmeaReceiverSettings offset = Settings([](auto& s) { s.altitudeOffsetM = 10; });
  const TNmeaReceiverSettings geoid = Settings([](auto& s) { s.geoidCorrection = true; });
  const TNmeaReceiverSettings both = Settings([](auto& s) { s.geoidCorrection = true, s.altitudeOffsetM = 10; });
  const std::string dated = Nmea("GPGGAM,123519,4807.038,N,01131.000,E,2,08,0.9,545.4,M,,M,,,022.4,180.0,230394");
  auto heldRmc = [](const char* time) {
    return Nmea(std::string("GPRMC,") + time + ",A,4807.038,N,01131.000,E,0,0,230324,,");
  };
  auto heldGga = [](const char* time) {
    return Nmea(std::string("GPGGA,") + time + ",4807.038,N,01131.000,E,1,08,0.9,1,M,,M,,");
  };
  struct TCase {
    TRule rule;
    TNmeaReceiverSettings settings;
    std::string before, line;
    const char* expected;
  };
  const TCase cases[] = {
      {gga, none, "", Gga("1"), "V-- 48.117300000 11.516666667 545.4 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, none, "", Gga("0"), "--- 1.000000000 2.000000000 545.4 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, none, "", Gga("2"), "VD- 48.117300000 11.516666667 545.4 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, minSats4, "", Gga("1", "03"), "--- 1.000000000 2.000000000 545.4 3 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, minSats4, "", Gga("1", "04"), "V-- 48.117300000 11.516666667 545.4 4 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, Settings([](auto& s) { s.minSatellites = 1; }), "", Gga("1", ""), "--- 1.000000000 2.000000000 545.4 0 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, none, "", Gga("1", "08", "0.0"), "V-- 48.117300000 11.516666667 -9999 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, none, "", Gga("1", "08", "0.001"), "V-- 48.117300000 11.516666667 0.001 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, offset, "", Gga("1", "08", "0"), "V-- 48.117300000 11.516666667 -9999 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, offset, "", Gga("1"), "V-- 48.117300000 11.516666667 555.4 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, both, "", Gga("1"), "V-- 48.117300000 11.516666667 508.5 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, geoid, "", Gga("1", "08", "1200", "F", "100"), "V-- 48.117300000 11.516666667 335.28 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      // No separation: the geoid model's at the fix (lat - lon here).
      {gga, geoid, "", Gga("1", "08", "545.4", "M", "0.0004"), "V-- 48.117300000 11.516666667 508.799 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, none, "", Nmea("GPGGA,123519,,,,,1,08,0.9,545.4,M,46.9,M,,"), "V-- 1.000000000 2.000000000 545.4 8 0.9 2024-05-17T12:35:19.000 0.000 57.3 0.0"},
      {gga, none, "", Nmea("GPGGA,000000,3352.0000,S,07040.5000,W,1,05,1.0,12.0,M,,M,,"), "V-- -33.866666667 -70.675000000 12 5 1.0 2024-05-17T00:00:00.000 0.000 57.3 0.0"},
      {gga, none, "", Nmea("GPGGA,123519,4807.038,N,01131.000,E"), nullptr},  // 6 fields
      {gga, none, "", Nmea("GPGGA,123519,4861.000,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"), nullptr},
      // On the date held from an RMC: just after midnight is the next day.
      {gga, none, heldRmc("235959"), heldGga("000001"), "V-T 48.117300000 11.516666667 1 8 0.9 2024-03-24T00:00:01.000 0.000 0.0 0.0"},
      {gga, none, heldRmc("000001"), heldGga("235959"), "V-T 48.117300000 11.516666667 1 8 0.9 2024-03-22T23:59:59.000 0.000 0.0 0.0"},
      {gga, none, heldRmc("120000"), heldGga("120001.25"), "V-T 48.117300000 11.516666667 1 8 0.9 2024-03-23T12:00:01.250 0.000 0.0 0.0"},
      {rmc, none, "", Rmc("A"), "V-T 48.117300000 11.516666667 -9999 3 0.0 1994-03-23T12:35:19.000 41.485 84.4 -3.1"},
      {rmc, none, "", Rmc("V"), "--T 1.000000000 2.000000000 100 3 0.0 1994-03-23T12:35:19.000 41.485 84.4 -3.1"},
      {rmc, none, "", Rmc("A", "", "180", "3.1,w"), "V-- 48.117300000 11.516666667 -9999 3 0.0 2024-05-17T12:35:19.000 41.485 180.0 -3.1"},
      {rmc, none, "", Rmc("A", "310224", "090", "3.1,E"), "V-- 48.117300000 11.516666667 -9999 3 0.0 2024-05-17T12:35:19.000 41.485 90.0 3.1"},
      {rmc, none, "", Rmc("A", "230394", "0", "3.1,"), "V-T 48.117300000 11.516666667 -9999 3 0.0 1994-03-23T12:35:19.000 41.485 0.0 0.0"},
      {rmc, none, "", Rmc("A", "230394", "", ",W"), "V-T 48.117300000 11.516666667 -9999 3 0.0 1994-03-23T12:35:19.000 41.485 57.3 0.0"},
      {rmc, none, "", Nmea("GPRMC,010203,A,4807.038,Q,01131.000,E,022.4,084.4"), "--- 1.000000000 2.000000000 100 3 0.0 2024-05-17T01:02:03.000 41.485 84.4 0.0"},
      {rmc, none, "", Nmea("GPRMC,123519,A,4807.038,N,01131.000"), nullptr},
      // The satellite minimum counts the last GGA's satellites.
      {rmc, minSats4, Gga("1", "03"), Rmc("A"), "--T 1.000000000 2.000000000 545.4 3 0.9 1994-03-23T12:35:19.000 41.485 84.4 -3.1"},
      {rmc, minSats4, Gga("1", "05"), Rmc("A"), "V-T 48.117300000 11.516666667 -9999 5 0.9 1994-03-23T12:35:19.000 41.485 84.4 -3.1"},
      {gll, none, "", Nmea("GPGLL,4916.45,N,12311.12,W,225444,A,"), "V-- 49.274166667 -123.185333333 -9999 3 0.0 2024-05-17T22:54:44.000 0.000 57.3 0.0"},
      {gll, none, "", Nmea("GPGLL,4916.00,N,12311.12,W,225445,V,"), "--- 1.000000000 2.000000000 -9999 3 0.0 2024-05-17T22:54:45.000 0.000 57.3 0.0"},
      // NMEA 1.5 ends after the longitude: no status means valid.
      {gll, none, "", Nmea("GPGLL,4916.46,N,12311.12,W"), "V-- 49.274333333 -123.185333333 -9999 3 0.0 null 0.000 57.3 0.0"},
      {gll, none, "", Nmea("GPGLL,,,,,225446,V,N"), nullptr},
      {gll, none, "", Nmea("GPGLL,4916.46,N,12311.12"), nullptr},
      {ggam, none, "", dated, "VDT 48.117300000 11.516666667 545.4 8 0.9 1994-03-23T12:35:19.000 41.485 180.0 0.0"},
      // Without the extra fields a GGAM is a GGA on the held date.
      {ggam, none, dated, Nmea("GPGGAM,123520,4807.038,N,01131.000,E,1,08,0.9,545.4,M,,M,,"), "V-T 48.117300000 11.516666667 545.4 8 0.9 1994-03-23T12:35:20.000 41.485 180.0 0.0"},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.before + c.line);
    TPosicionNMEA record = test::RecordAtTestNow();
    record.lat = 1, record.lon = 2, record.altitude = 100, record.satellites = 3, record.courseRad = 1;
    TNmeaReceiverSettings settings = c.settings;
    settings.geoidModel = [](double lat, double lon) { return lat - lon; };
    if (!c.before.empty()) InterpretPosition(Parsed(c.before), record, settings);
    const std::string unchanged = Summary(record);
    ASSERT_EQ(c.rule(Parsed(c.line), record, settings), c.expected != nullptr);
    EXPECT_EQ(Summary(record), c.expected ? c.expected : unchanged);
    EXPECT_EQ(record.rawSentence, c.expected && c.rule != gll ? test::Chomp(c.line) : "");
    EXPECT_FALSE(record.newData);  // left to the caller
  }
}

TEST(NmeaInterpretPosition, DispatchOutsideTheLiveLoop) {
  const std::string gll = Nmea("GPGLL,4916.45,N,12311.12,W,225444,A,");
  const std::string ggam = Nmea("GPGGAM,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,,M,,,22.4,84.4,230394");
  const std::tuple<std::string, std::string, bool> cases[] = {
      {Gga("1"), "", true}, {Rmc("A"), "", true}, {Gga("1"), "RMC", false}, {Rmc("A"), "GGA", false},
      {Rmc("A"), "RMC", true}, {gll, "", false}, {gll, "GLL", false}, {ggam, "RMC", true},
      {Nmea("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K"), "", false},
  };
  for (const auto& [line, filter, position] : cases) {
    TPosicionNMEA record = test::RecordAtTestNow();
    EXPECT_EQ(InterpretPosition(Parsed(line), record, test::Settings([&](auto& s) { s.sentenceFilter = filter; })), position) << line << filter;
    EXPECT_EQ(record.lat != 0, position);
  }
  // GSV gathers the cycle (cleared when a new one starts), GSA is replaced.
  const std::string gsv1 = Nmea("GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45");
  const std::string gsv2 = Nmea("GPGSV,2,2,08,15,10,010,30");
  const std::string gsa = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  TPosicionNMEA record = test::RecordAtTestNow();
  for (const auto& [line, starts] : {std::pair{gsv1, true}, {gsv2, false}, {gsa, false}, {gsa, false}})
    EXPECT_FALSE(InterpretPosition(Parsed(line), record, {}, starts));
  EXPECT_EQ(record.satellitesInView, test::Chomp(gsv1) + test::Chomp(gsv2));
  EXPECT_EQ(record.satellitesInUse, test::Chomp(gsa));
  InterpretPosition(Parsed(gsv2), record, {}, true);
  EXPECT_EQ(record.satellitesInView, test::Chomp(gsv2));
}

TEST(NmeaFields, TimesDatesAnglesAndNumbers) {
  double value = 0;
  int whole = 0;
  EXPECT_TRUE(ParseNmeaTime("235960.5", value));  // a leap second
  EXPECT_DOUBLE_EQ(value, 23 * 3600 + 59 * 60 + 60.5);
  for (const std::string_view bad : {"240000", "126000", "123461", "12345a", "1234", "123456x"})
    EXPECT_FALSE(ParseNmeaTime(bad, value)) << bad;
  const std::pair<std::string_view, TDateTime> dates[] = {
      {"010180", TDateTime::FromCalendar(1980, 1, 1)},   {"311279", TDateTime::FromCalendar(2079, 12, 31)},
      {"290224", TDateTime::FromCalendar(2024, 2, 29)},  {"290200", TDateTime::FromCalendar(2000, 2, 29)},
      {"311024", TDateTime::FromCalendar(2024, 10, 31)},
  };
  for (const auto& [text, date] : dates) {
    EXPECT_TRUE(ParseNmeaDate(text, value)) << text;
    EXPECT_EQ(TDateTime::FromDays(value), date) << text;
  }
  for (const std::string_view bad : {"290223", "290297", "321024", "310424", "001224", "011324", "01018a"})
    EXPECT_FALSE(ParseNmeaDate(bad, value)) << bad;
  EXPECT_TRUE(ParseNmeaLatitude("9000.000", "n", value) && value == 90);
  EXPECT_TRUE(ParseNmeaLongitude("18000.000", "W", value) && value == -180);
  for (const std::string_view bad : {"-4807.038", "4807.0e1", "4860.000", "9000.001", ""})
    EXPECT_FALSE(ParseNmeaLatitude(bad, "N", value)) << bad;
  for (const std::string_view side : {"", "E", "NN"}) EXPECT_FALSE(ParseNmeaLatitude("4807.038", side, value));
  for (const std::string_view bad : {"nan", "inf", "1e400", "1,5", "", "+"})
    EXPECT_FALSE(ParseNmeaReal(bad, value)) << bad;
  EXPECT_TRUE(ParseNmeaReal("+12.5", value) && value == 12.5);
  EXPECT_TRUE(ParseNmeaInt("+12", whole) && whole == 12);
  EXPECT_FALSE(ParseNmeaInt("12.5", whole));
  // A damaged sentence's 1e300 is held at the float's largest value.
  EXPECT_EQ(NarrowToFloat(1e300), FLT_MAX);
  EXPECT_EQ(NarrowToFloat(-1e300), -FLT_MAX);
  EXPECT_TRUE(std::isnan(NarrowToFloat(NAN)));
}

TEST(NmeaRecord, SettingsClockAndSpeedUnits) {
  TConfig config;
  config.Comanda_NMEA_MovingMap = "RMC";
  config.MINSatellitesPosition = 4;
  config.Use_Checksum_NMEA = false;
  config.ChipGPS = 4;
  config.Num_Mensajes_NMEA_Error = 7;
  const TNmeaReceiverSettings s = TNmeaReceiverSettings::FromConfig(config);
  EXPECT_EQ(std::tuple(s.sentenceFilter, s.minSatellites, s.useChecksum, s.chipGps, s.linesWithoutPosition),
            std::tuple("RMC", 4, false, 4, 7));
  const TDateTime epoch = TDateTime::FromCalendar(1970, 1, 1);
  EXPECT_NEAR(epoch.SecondsTo(TNmeaClock().Now()), static_cast<double>(std::time(nullptr)), 2.0);
  // The program's table of speed units: the knot is 1852 m an hour, the mile 1609.344 m.
  EXPECT_DOUBLE_EQ(ConvertSpeed(1, TSpeedUnit::Mph, TSpeedUnit::Kmh), 1.609344);
  EXPECT_DOUBLE_EQ(ConvertSpeed(1, TSpeedUnit::Knots, TSpeedUnit::MetresPerSecond), 1852.0 / 3600);
}

// ED50 (International 1924, NIMA's three parameters for Europe) as datum 1;
// PROJ's exact geocentric shift of the same parameters is the reference (the
// three-parameter shift agrees to well within 1e-6 degree here). The record
// stays on the receiver's datum; waypoints go to WGS 84.
TEST(NmeaRecord, ReceiverDatumAgainstProj) {
  int configured = 0;
  TListaDatums datums(configured);
  datums.Add(test::MakeDatum("WGS 84", test::kWgs84A, test::kWgs84Rf, 0, 0, 0));
  datums.Add(test::MakeDatum("European 1950", test::kInternationalA, test::kInternationalRf, -87, -98, -121));
  const test::TProjReference proj(
      "+proj=pipeline +step +proj=cart +a=6378388 +rf=297 "
      "+step +proj=helmert +x=-87 +y=-98 +z=-121 +step +inv +proj=cart +ellps=WGS84");
  double lon = 2.17, lat = 41.4;
  ASSERT_TRUE(proj.Valid() && proj.Apply(lon, lat));
  TNmeaLiveHandler handler(test::Settings([](auto& s) { s.datum = 1; }));
  TWaypoints list;
  handler.SetWaypointList(&list, &datums);
  TPosicionNMEA record = test::RecordAtTestNow();
  ASSERT_TRUE(handler.Handle(Nmea("GPWPL,4124.000,N,00210.200,E,BCN"), record));
  ASSERT_TRUE(handler.Handle(Nmea("GPGLL,4124.000,N,00210.200,E,120000,A"), record));
  EXPECT_EQ(std::pair(record.lat, record.lon), std::pair(41.4, 2.17));  // as received
  ASSERT_EQ(list.Count(), 1u);
  TLonLat position;
  std::string message;
  ASSERT_TRUE(PositionOnDatum(record, 1, datums, 0, position, message)) << message;
  for (const double error : {list.Baliza(0).Latitude() - lat, list.Baliza(0).Longitude() - lon,
                             position.lat - lat, position.lon - lon})
    EXPECT_NEAR(error, 0, 1e-6);
  ASSERT_TRUE(PositionOnDatum(record, 0, datums, 0, position, message));
  EXPECT_EQ(position.lat, 41.4);
  EXPECT_FALSE(PositionOnDatum(record, 7, datums, 0, position, message));
}

}  // namespace
}  // namespace velantis
