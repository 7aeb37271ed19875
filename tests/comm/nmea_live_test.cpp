// The live sentence handling, one line at a time into the fix record, and
// the live reading cycle that reads lines until the record is new.
#include "comm/nmea_live_cycle.h"

#include <deque>

#include "core/waypoints.h"
#include "tests/comm/comm_test_support.h"

namespace velantis {
namespace {

using test::Nmea;
using test::RecordAtTestNow;

constexpr float kRadiansPerDegreeSingle = 0.017453292f;  // the receivers' firmware value
constexpr double kKmhPerKnot = 1.852;
const std::string kGga = Nmea("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
const std::string kRmc = Nmea("GPRMC,123520,A,4807.040,N,01131.000,E,022.4,084.4,230394,003.1,W");
const std::string kGll = Nmea("GPGLL,4916.45,N,12311.12,W,225444,A,");
const std::string kUnknown = Nmea("GPZDA,123519,17,05,2024,00,00");

TEST(NmeaLiveHandler, ParseFailuresChecksumPolicyAndLog) {
  const std::string wrong = kGga.substr(0, kGga.size() - 3) + "0\r\n";  // "*40" for "*47"
  const std::string none = kGga.substr(0, kGga.find('*')) + "\r\n";
  for (const bool useChecksum : {true, false}) {
    TNmeaLiveHandler handler(test::Settings([&](auto& s) { s.useChecksum = useChecksum; }));
    TErrorSink sink;
    std::vector<std::string> log;
    handler.SetErrorSink(&sink);
    handler.SetLogWriter([&](std::string_view entry) { log.emplace_back(entry); });
    TPosicionNMEA record = RecordAtTestNow();
    EXPECT_FALSE(handler.Handle(kGga.substr(1), record));
    EXPECT_FALSE(handler.Handle("$GPGGA,1*4\r\n", record));
    ASSERT_EQ(sink.Records().size(), 2u);
    EXPECT_EQ(sink.Records()[1].message, kNmeaErrorChecksumSection);
    EXPECT_EQ(handler.Handle(wrong, record), !useChecksum);
    EXPECT_EQ(record.lat != 0, !useChecksum);
    EXPECT_EQ(handler.Handle(none, record), !useChecksum);
    EXPECT_EQ(handler.Handle(kUnknown, record), false);
    // The line without its end, "ChecksumError!" right after a wrong one.
    const std::vector<std::string> expected = {test::Chomp(wrong) + "ChecksumError!",
                                               test::Chomp(none) + "ChecksumError!",
                                               test::Chomp(kUnknown)};
    EXPECT_EQ(log, expected);
  }
}

TEST(NmeaLiveHandler, FilterAndGllFallback) {
  TNmeaLiveHandler handler(test::Settings([](auto& s) { s.sentenceFilter = "RMC"; }));
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(kGga, record));  // GGA never moves the position
  EXPECT_FALSE(record.newData);
  EXPECT_FALSE(handler.Handle(kGll, record));
  EXPECT_EQ(handler.UnrecognisedCount(), 0);  // refused, not unknown
  EXPECT_TRUE(handler.Handle(kRmc, record));
  EXPECT_TRUE(record.newData);
  EXPECT_DOUBLE_EQ(record.lat, 48 + 7.040 / 60);

  TNmeaLiveHandler any;
  EXPECT_TRUE(any.Handle(kGll, record));  // GLL only until another position sentence
  EXPECT_DOUBLE_EQ(record.lat, 49 + 16.45 / 60);
  EXPECT_TRUE(any.Handle(kGga, record));
  EXPECT_FALSE(any.GllFallback());
  EXPECT_FALSE(any.Handle(kGll, record));
  any.Start();
  EXPECT_TRUE(any.Handle(kGll, record));
  EXPECT_TRUE(any.Handle(
      Nmea("GPGGAM,123521,4807.050,N,01131.000,E,1,08,0.9,545.4,M,,M,,,1.0,2.0,230394"), record));
  EXPECT_DOUBLE_EQ(record.lat, 48 + 7.050 / 60);
  EXPECT_FALSE(any.Handle(kGll, record));
  any.EnableGllFallback();
  EXPECT_TRUE(any.Handle(kGll, record));
}

TEST(NmeaLiveHandler, CourseSpeedMarineSentencesAndWaypoints) {
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  const std::string lines[] = {
      Nmea("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K"), Nmea("GPVTG,090.0,T,034.4,M,009.9"),
      Nmea("IIVWR,045.0,L,12.6,N,6.5,M,23.3,K"),     Nmea("IIVWT,030.0,R,10.0,N,5.1,M,18.5,K"),
      Nmea("YXMTW,17.5,C"),                          Nmea("SDMTW,,C"),
      Nmea("SDVHW,231.3,T,229.9,M,6.6,N,12.3,K"),    Nmea("HEHDT,274.07,T"),
  };
  for (const std::string& line : lines) EXPECT_FALSE(handler.Handle(line, record)) << line;
  EXPECT_FLOAT_EQ(static_cast<float>(record.courseRad), 54.7f * kRadiansPerDegreeSingle);
  EXPECT_DOUBLE_EQ(record.speedKmh, 5.5 * kKmhPerKnot);  // the short VTG is passed over
  // Left of the bow: a full turn less 45 degrees, in single precision.
  EXPECT_FLOAT_EQ(record.relativeWindAngleRad, 6.2831855f - 45.0f * kRadiansPerDegreeSingle);
  EXPECT_FLOAT_EQ(record.relativeWindSpeedKmh, static_cast<float>(12.6 * kKmhPerKnot));
  EXPECT_FLOAT_EQ(record.trueWindAngleRad, 30.0f * kRadiansPerDegreeSingle);
  EXPECT_FLOAT_EQ(record.waterTemperatureC, 17.5f);  // an empty reading keeps the last one
  EXPECT_FLOAT_EQ(record.speedThroughWaterKmh, static_cast<float>(6.6 * kKmhPerKnot));
  EXPECT_FLOAT_EQ(record.trueHeadingRad, 274.07f * kRadiansPerDegreeSingle);
  EXPECT_TRUE(record.vwrReceived && record.vwtReceived && record.mtwReceived &&
              record.vhwReceived && record.hdtReceived);
  EXPECT_FALSE(record.newData);
  // WPL: a waypoint when a list is attached, else passed over.
  const std::string wpl = Nmea("GPWPL,4917.16,N,12310.64,W,003");
  EXPECT_FALSE(handler.Handle(wpl, record));
  EXPECT_EQ(handler.UnrecognisedCount(), 0);
  TWaypoints list;
  handler.SetWaypointList(&list);
  EXPECT_TRUE(handler.Handle(wpl, record));
  EXPECT_FALSE(handler.Handle(Nmea("GPWPL,4917.16,N,12310.64,Q,004"), record));
  ASSERT_EQ(list.Count(), 1u);
  EXPECT_EQ(list.Baliza(0).Name(), "003");
  EXPECT_DOUBLE_EQ(list.Baliza(0).Latitude(), 49 + 17.16 / 60);
  EXPECT_DOUBLE_EQ(list.Baliza(0).Longitude(), -(123 + 10.64 / 60));
}

TEST(NmeaLiveHandler, DepthIsKeptAndCopiedWithEachPosition) {
  const std::pair<std::string, float> cases[] = {
      {Nmea("SDDBT,7.7,f,2.3,M,1.3,F"), 7.7f * 0.3048f},  // feet
      {Nmea("SDDBT,2.5,M,,,,"), 2.5f},
      {Nmea("SDDBT,,f,2.3,M,1.3,F"), 2.3f},  // feet missing: the metres
      {Nmea("SDDBT,,f,,M"), kDepthNoneM},    // none at all
  };
  for (const auto& [line, depth] : cases) {
    TNmeaLiveHandler handler;
    TPosicionNMEA record = RecordAtTestNow();
    EXPECT_FALSE(handler.Handle(line, record));
    EXPECT_EQ(record.dbtReceived, depth != kDepthNoneM);
    record.depthM = kDepthNoneM;  // the pipeline took it
    EXPECT_TRUE(handler.Handle(kGga, record));
    EXPECT_NEAR(record.depthM, depth, 1e-5) << line;
  }
}


TEST(NmeaLiveHandler, GsvCycleAndTheLostFix) {
  const std::string gp1 = Nmea("GPGSV,2,1,05,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45");
  const std::string gp2 = Nmea("GPGSV,2,2,05,15,10,010,30");
  const std::string gl1 = Nmea("GLGSV,1,1,01,66,09,027,");
  for (const int chip : {0, 4}) {  // 4: only "GLGSV" counts
    TNmeaLiveHandler handler(test::Settings([&](auto& s) { s.chipGps = chip; }));
    TPosicionNMEA record = RecordAtTestNow();
    for (const std::string* line : {&gp1, &gp1, &gp2}) EXPECT_FALSE(handler.Handle(*line, record));
    EXPECT_EQ(record.satellitesInView, chip ? "" : test::Chomp(gp1) + test::Chomp(gp2));
    handler.Handle(gl1, record);
    EXPECT_EQ(record.satellitesInView, test::Chomp(gl1));
  }
  // More than 10 unrecognised sentences since the last position: the next
  // GSV declares the fix lost.
  for (const int unknown : {10, 11}) {
    TNmeaLiveHandler handler;
    TPosicionNMEA record = RecordAtTestNow();
    ASSERT_TRUE(handler.Handle(kGga, record));
    record.newData = false;
    for (int i = 0; i < unknown; ++i) EXPECT_FALSE(handler.Handle(kUnknown, record));
    EXPECT_EQ(handler.UnrecognisedCount(), unknown);
    EXPECT_EQ(handler.LastUnhandled(), kUnknown);
    EXPECT_EQ(handler.Handle(gl1, record), unknown > 10);
    EXPECT_EQ(record.valid, unknown <= 10);
    EXPECT_EQ(record.newData, unknown > 10);
    ASSERT_TRUE(handler.Handle(kRmc, record));  // a position starts the count again
    EXPECT_EQ(handler.UnrecognisedCount(), 0);
  }
}

TEST(NmeaLiveHandler, GsaTextAndDops) {
  const std::string gsa = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  const std::string held = test::Chomp(gsa);  // 47 characters
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  for (int i = 1; i <= 5; ++i) EXPECT_FALSE(handler.Handle(gsa, record));
  EXPECT_FLOAT_EQ(record.pdop, 2.5f);
  EXPECT_FLOAT_EQ(record.vdop, 2.1f);
  // Appended while 200 characters or fewer were held (188 before the fifth).
  EXPECT_EQ(record.satellitesInUse.size(), 5 * held.size());
  handler.Handle(gsa, record);  // more than 200 held: emptied first
  EXPECT_EQ(record.satellitesInUse, held);
  record.clock.SetFixed(test::TestNow().PlusSeconds(299));
  handler.Handle(gsa, record);
  EXPECT_EQ(record.satellitesInUse, held + held);
  record.clock.SetFixed(test::TestNow().PlusSeconds(299 + 301));  // 300 s or more later
  const std::string short17 = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,9.5,1.3");  // no DOPs
  handler.Handle(short17, record);
  EXPECT_EQ(record.satellitesInUse, test::Chomp(short17));
  EXPECT_FLOAT_EQ(record.pdop, 2.5f);
}

TEST(NmeaLiveHandler, DialectReaders) {
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(Nmea("D,42"), record));
  EXPECT_EQ(handler.UnrecognisedCount(), 1);  // no reader: unknown
  std::vector<std::string> seen;
  auto reader = [&](bool result) {
    return [&seen, result](const TComandaNMEA& sentence, TPosicionNMEA&) {
      seen.emplace_back(sentence.Identifier());
      return result;
    };
  };
  EXPECT_TRUE(handler.SetDialectReader("D", reader(true)));
  EXPECT_TRUE(handler.SetDialectReader("d", reader(true)));
  EXPECT_TRUE(handler.SetDialectReader("TUA", reader(false)));
  EXPECT_TRUE(handler.SetDialectReader("VABD", reader(true)));
  EXPECT_FALSE(handler.SetDialectReader("RMC", reader(true)));
  EXPECT_TRUE(handler.Handle(Nmea("D,42"), record));  // "D" marks new on success
  EXPECT_TRUE(record.newData);
  record.newData = false;
  EXPECT_FALSE(handler.Handle(Nmea("d,42"), record));     // "d" never marks new
  EXPECT_FALSE(handler.Handle(Nmea("TUA,1"), record));    // the reader failed
  EXPECT_FALSE(handler.Handle(Nmea("PVABD,1"), record));  // proprietary: only the "P" goes
  EXPECT_FALSE(handler.Handle(Nmea("GPABD,1"), record));  // "ABD": no reader
  EXPECT_FALSE(record.newData);
  EXPECT_EQ(seen, (std::vector<std::string>{"D", "d", "TUA", "VABD"}));
  EXPECT_EQ(handler.UnrecognisedCount(), 2);  // the first "D" and "ABD"
}

// Lines in memory; an empty one stands for a read that brought nothing.
class TMemoryPort : public TNmeaLineSource, public TNmeaLineSink {
public:
  explicit TMemoryPort(std::vector<std::string> lines) : m_lines(lines.begin(), lines.end()) {}
  int ReadLine(std::string& line, bool wait) override {
    waits.push_back(wait);
    if (m_lines.empty()) return -1;
    line = m_lines.front();
    m_lines.pop_front();
    return static_cast<int>(line.size());
  }
  void WriteLine(std::string_view line) override { written.emplace_back(line); }
  size_t Left() const { return m_lines.size(); }
  std::vector<bool> waits;
  std::vector<std::string> written;

private:
  std::deque<std::string> m_lines;
};

const std::string kGsa = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");

// Up to the first position; after linesWithoutPosition lines without one the
// fix is cleared and the GLL fallback is on again; nothing read fails at once.
TEST(NmeaLiveCycle, PositionSilenceAndCancel) {
  TMemoryPort port({kGsa, kGga, kGsa, kGsa, kGsa, kGsa, kGsa, kGsa});
  TNmeaLiveHandler handler(test::Settings([](auto& s) { s.linesWithoutPosition = 5; }));
  TNmeaLiveCycle cycle(handler, port);
  cycle.SetCancelMessage("Operacion cancelada");
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  ASSERT_TRUE(cycle.ReadCurrent(record, sink));
  EXPECT_TRUE(record.valid && record.newData && !handler.GllFallback());
  EXPECT_EQ(port.Left(), 6u);
  EXPECT_FALSE(cycle.ReadCurrent(record, sink));
  EXPECT_EQ(port.Left(), 1u);  // five lines read
  EXPECT_EQ(sink.Records().at(0).message, "No se reciben mensajes NMEA de posicion");
  EXPECT_FALSE(record.valid);
  EXPECT_TRUE(handler.GllFallback());
  TProgress progress;
  progress.Cancel();
  EXPECT_FALSE(cycle.ReadCurrent(record, sink, &progress));
  EXPECT_EQ(sink.Records().at(1).message, "Operacion cancelada");
  EXPECT_EQ(port.Left(), 1u);
  EXPECT_FALSE(cycle.ReadCurrent(record, sink));
  EXPECT_FALSE(cycle.ReadCurrent(record, sink));  // nothing arrives: no message of its own
  EXPECT_EQ(sink.Records().size(), 2u);
  EXPECT_EQ(port.waits, std::vector<bool>(10, true));
}

// The auxiliary input is drained without waiting after the receiver's line,
// up to the first read that brings nothing (at most 100 a line); the output
// repeats the receiver's line with its zero bytes blanked.
TEST(NmeaLiveCycle, AuxiliaryPortsAndZeroBytes) {
  std::string zeros = kGsa;
  zeros.insert(zeros.size() - 2, std::string("\0\0", 2));
  TMemoryPort port({zeros, kGga});
  TMemoryPort sensors({Nmea("SDDBT,32.8,f,10.0,M,5.5,F"), "", Nmea("YXMTW,17.5,C")});
  TNmeaLiveHandler handler;
  TNmeaLiveCycle cycle(handler, port);
  cycle.SetAuxiliaryInput(&sensors);
  cycle.SetAuxiliaryOutput(&port);
  TPosicionNMEA record = test::RecordAtTestNow();
  TErrorSink sink;
  ASSERT_TRUE(cycle.ReadCurrent(record, sink));
  EXPECT_TRUE(record.dbtReceived && record.mtwReceived);
  EXPECT_FLOAT_EQ(record.pdop, 2.5f);
  EXPECT_EQ(sensors.waits, std::vector<bool>(4, false));
  std::string blanked = kGsa;
  blanked.insert(blanked.size() - 2, "  ");
  EXPECT_EQ(port.written, (std::vector<std::string>{blanked, kGga}));

  TMemoryPort many(std::vector<std::string>(150, Nmea("YXMTW,17.5,C")));
  TMemoryPort quiet({kGsa, kGsa});
  TNmeaLiveCycle auxiliaryOnly(handler, quiet);
  auxiliaryOnly.SetAuxiliaryInput(&many);
  EXPECT_FALSE(auxiliaryOnly.ReadCurrent(record, sink));  // sensors alone bring no position
  EXPECT_EQ(many.waits.size(), 151u);  // 100 after the first line, 50 after the second
}

}  // namespace
}  // namespace velantis
