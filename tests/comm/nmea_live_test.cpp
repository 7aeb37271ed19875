// The live sentence handling, one line at a time into the fix record, and
// the live reading cycle that reads lines until the record is new.
#include "comm/nmea_live_cycle.h"

#include "core/waypoints.h"
#include "tests/support/nmea_link.h"

namespace velantis {
namespace {

using test::Nmea;
using test::RecordAtTestNow;
using test::TMemoryPort;

const std::string kGga = Nmea("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
const std::string kRmc = Nmea("GPRMC,123520,A,4807.040,N,01131.000,E,022.4,084.4,230394,003.1,W");
const std::string kGll = Nmea("GPGLL,4916.45,N,12311.12,W,225444,A,");
const std::string kGsa = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
const std::string kUnknown = Nmea("GPZDA,123519,17,05,2024,00,00");

// What Handle answers for each line in turn: "1" for a new fix, "0" else.
std::string Marks(TNmeaLiveHandler& handler, TPosicionNMEA& record, const std::vector<std::string>& lines) {
  std::string marks;
  for (const std::string& line : lines) marks += handler.Handle(line, record) ? '1' : '0';
  return marks;
}

// A wrong checksum and none at all are refused only with the checksum on;
// the log has the line without its end, then "ChecksumError!".
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
    EXPECT_EQ(Marks(handler, record, {kGga.substr(1), "$GPGGA,1*4\r\n", wrong, none, kUnknown}),
              useChecksum ? "00000" : "00110");
    ASSERT_EQ(sink.Records().size(), 2u);
    EXPECT_EQ(sink.Records()[1].message, kNmeaErrorChecksumSection);
    EXPECT_EQ(log, (std::vector<std::string>{test::Chomp(wrong) + "ChecksumError!",
                                             test::Chomp(none) + "ChecksumError!", test::Chomp(kUnknown)}));
  }
}

// Under an RMC filter GGA never moves the position and GLL is refused, not
// unknown; GLL counts until another position sentence, Start() or EnableGllFallback().
TEST(NmeaLiveHandler, FilterAndGllFallback) {
  TNmeaLiveHandler handler(test::Settings([](auto& s) { s.sentenceFilter = "RMC"; }));
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_EQ(Marks(handler, record, {kGga, kGll}), "00");
  EXPECT_EQ(std::pair(record.newData, handler.UnrecognisedCount()), std::pair(false, 0));
  EXPECT_EQ(Marks(handler, record, {kRmc}), "1");
  EXPECT_TRUE(record.newData);
  EXPECT_DOUBLE_EQ(record.lat, 48 + 7.040 / 60);
  TNmeaLiveHandler any;
  EXPECT_EQ(Marks(any, record, {kGll}), "1");
  EXPECT_DOUBLE_EQ(record.lat, 49 + 16.45 / 60);
  EXPECT_EQ(Marks(any, record, {kGga, kGll}), "10");
  EXPECT_FALSE(any.GllFallback());
  any.Start();
  const std::string ggam = Nmea("GPGGAM,123521,4807.050,N,01131.000,E,1,08,0.9,545.4,M,,M,,,1.0,2.0,230394");
  EXPECT_EQ(Marks(any, record, {kGll, ggam}), "11");
  EXPECT_DOUBLE_EQ(record.lat, 48 + 7.050 / 60);
  EXPECT_EQ(Marks(any, record, {kGll}), "0");
  any.EnableGllFallback();
  EXPECT_EQ(Marks(any, record, {kGll}), "1");
}

// Course and speed (a short VTG is passed over), wind (left of the bow: a
// full turn less the angle), water (an empty reading keeps the last),
// heading, in radians and km/h; a WPL is a waypoint when a list is attached.
TEST(NmeaLiveHandler, CourseSpeedMarineSentencesAndWaypoints) {
  TNmeaLiveHandler handler;
  TPosicionNMEA r = RecordAtTestNow();
  const std::string wpl = Nmea("GPWPL,4917.16,N,12310.64,W,003");
  EXPECT_EQ(Marks(handler, r, {Nmea("HEHDT,,T")}) + (r.hdtReceived ? " received" : ""), "0");  // no heading
  EXPECT_EQ(Marks(handler, r, {Nmea("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K"), Nmea("GPVTG,090.0,T,034.4,M,009.9"),
                               Nmea("IIVWR,045.0,L,12.6,N,6.5,M,23.3,K"), Nmea("IIVWT,030.0,R,10.0,N,5.1,M,18.5,K"),
                               Nmea("YXMTW,17.5,C"), Nmea("SDMTW,,C"), Nmea("SDVHW,231.3,T,229.9,M,6.6,N,12.3,K"),
                               Nmea("HEHDT,274.07,T"), wpl}),
            "000000000");
  char values[200];
  std::snprintf(values, sizeof values, "%.6g %.6g %.6g %.6g %.6g %.6g %.6g %.6g", r.courseRad, r.speedKmh,
                r.relativeWindAngleRad, r.relativeWindSpeedKmh, r.trueWindAngleRad, r.waterTemperatureC,
                r.speedThroughWaterKmh, r.trueHeadingRad);
  EXPECT_STREQ(values, "0.954695 10.186 5.49779 23.3352 0.523599 17.5 12.2232 4.78342");
  EXPECT_TRUE(r.vwrReceived && r.vwtReceived && r.mtwReceived && r.vhwReceived && r.hdtReceived && !r.newData);
  EXPECT_EQ(handler.UnrecognisedCount(), 0);
  TWaypoints list;
  handler.SetWaypointList(&list);
  EXPECT_EQ(Marks(handler, r, {wpl, Nmea("GPWPL,4917.16,N,12310.64,Q,004")}), "10");
  ASSERT_EQ(list.Count(), 1u);
  EXPECT_EQ(list.Baliza(0).Name(), "003");
  EXPECT_DOUBLE_EQ(list.Baliza(0).Latitude(), 49 + 17.16 / 60);
  EXPECT_DOUBLE_EQ(list.Baliza(0).Longitude(), -(123 + 10.64 / 60));
}

// Feet first, else the metres, else none; the next position carries it.
TEST(NmeaLiveHandler, DepthIsKeptAndCopiedWithEachPosition) {
  const std::pair<std::string, float> cases[] = {
      {Nmea("SDDBT,7.7,f,2.3,M,1.3,F"), 7.7f * 0.3048f}, {Nmea("SDDBT,2.5,M,,,,"), 2.5f},
      {Nmea("SDDBT,,f,2.3,M,1.3,F"), 2.3f},              {Nmea("SDDBT,,f,,M"), kDepthNoneM},
  };
  for (const auto& [line, depth] : cases) {
    TNmeaLiveHandler handler;
    TPosicionNMEA record = RecordAtTestNow();
    EXPECT_EQ(Marks(handler, record, {line}), "0");
    EXPECT_EQ(record.dbtReceived, depth != kDepthNoneM);
    record.depthM = kDepthNoneM;  // the pipeline took it
    EXPECT_EQ(Marks(handler, record, {kGga}), "1");
    EXPECT_NEAR(record.depthM, depth, 1e-5) << line;
  }
}

// The GSV cycle (chip 4: only "GLGSV" counts); after more than 10 unrecognised
// sentences since the last position the next GSV declares the fix lost.
TEST(NmeaLiveHandler, GsvCycleAndTheLostFix) {
  const std::string gp1 = Nmea("GPGSV,2,1,05,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45");
  const std::string gp2 = Nmea("GPGSV,2,2,05,15,10,010,30");
  const std::string gl1 = Nmea("GLGSV,1,1,01,66,09,027,");
  for (const int chip : {0, 4}) {
    TNmeaLiveHandler handler(test::Settings([&](auto& s) { s.chipGps = chip; }));
    TPosicionNMEA record = RecordAtTestNow();
    EXPECT_EQ(Marks(handler, record, {gp1, gp1, gp2}), "000");
    EXPECT_EQ(record.satellitesInView, chip ? "" : test::Chomp(gp1) + test::Chomp(gp2));
    handler.Handle(gl1, record);
    EXPECT_EQ(record.satellitesInView, test::Chomp(gl1));
  }
  for (const int unknown : {10, 11}) {
    TNmeaLiveHandler handler;
    TPosicionNMEA record = RecordAtTestNow();
    ASSERT_TRUE(handler.Handle(kGga, record));
    record.newData = false;
    EXPECT_EQ(Marks(handler, record, std::vector<std::string>(unknown, kUnknown)), std::string(unknown, '0'));
    EXPECT_EQ(std::pair(handler.UnrecognisedCount(), handler.LastUnhandled()), std::pair(unknown, kUnknown));
    EXPECT_EQ(handler.Handle(gl1, record), unknown > 10);
    EXPECT_EQ(std::pair(record.valid, record.newData), std::pair(unknown <= 10, unknown > 10));
    ASSERT_TRUE(handler.Handle(kRmc, record));  // a position starts the count again
    EXPECT_EQ(handler.UnrecognisedCount(), 0);
  }
}

// Appended while 200 characters or fewer were held (188 before the fifth),
// emptied first above; emptied too 300 s or more after the last emptying.
TEST(NmeaLiveHandler, GsaTextAndDops) {
  const std::string held = test::Chomp(kGsa);  // 47 characters
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_EQ(Marks(handler, record, std::vector<std::string>(5, kGsa)), "00000");
  EXPECT_EQ(std::pair(record.pdop, record.vdop), std::pair(2.5f, 2.1f));
  EXPECT_EQ(record.satellitesInUse.size(), 5 * held.size());
  handler.Handle(kGsa, record);
  EXPECT_EQ(record.satellitesInUse, held);
  record.clock.SetFixed(test::TestNow().PlusSeconds(299));
  handler.Handle(kGsa, record);
  EXPECT_EQ(record.satellitesInUse, held + held);
  record.clock.SetFixed(test::TestNow().PlusSeconds(299 + 301));
  const std::string noDops = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,9.5,1.3");
  handler.Handle(noDops, record);
  EXPECT_EQ(record.satellitesInUse, test::Chomp(noDops));
  EXPECT_FLOAT_EQ(record.pdop, 2.5f);
}

// "D" marks new on success, "d" never; a proprietary "P" goes before the
// lookup; a standard kind cannot be taken over.
TEST(NmeaLiveHandler, DialectReaders) {
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_EQ(Marks(handler, record, {Nmea("D,42")}), "0");
  EXPECT_EQ(handler.UnrecognisedCount(), 1);  // no reader: unknown
  std::vector<std::string> seen;
  auto reader = [&](bool result) {
    return [&seen, result](const TComandaNMEA& sentence, TPosicionNMEA&) {
      seen.emplace_back(sentence.Identifier());
      return result;
    };
  };
  const std::pair<const char*, bool> readers[] = {{"D", true}, {"d", true}, {"TUA", false}, {"VABD", true}};
  for (const auto& [id, result] : readers) EXPECT_TRUE(handler.SetDialectReader(id, reader(result)));
  EXPECT_FALSE(handler.SetDialectReader("RMC", reader(true)));
  EXPECT_EQ(Marks(handler, record, {Nmea("D,42")}), "1");
  EXPECT_TRUE(record.newData);
  record.newData = false;
  EXPECT_EQ(Marks(handler, record, {Nmea("d,42"), Nmea("TUA"), Nmea("PVABD,1"), Nmea("GPABD,1")}), "0000");
  EXPECT_FALSE(record.newData);
  EXPECT_EQ(seen, (std::vector<std::string>{"D", "d", "TUA", "VABD"}));
  EXPECT_EQ(handler.UnrecognisedCount(), 2);  // the first "D" and "ABD"
}

// Up to the first position; after linesWithoutPosition lines without one the
// fix is cleared and GLL allowed again; nothing read fails at once.
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
  EXPECT_TRUE(!record.valid && handler.GllFallback());
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
  std::string zeros = kGsa, blanked = kGsa;
  zeros.insert(zeros.size() - 2, std::string("\0\0", 2));
  blanked.insert(blanked.size() - 2, "  ");
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
