#include "comm/nmea_live_handler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/waypoints.h"
#include "tests/comm/nmea_test_support.h"

namespace velantis {
namespace {

using test::Nmea;
using test::RecordAtTestNow;

const std::string kGga = Nmea("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
const std::string kRmc = Nmea("GPRMC,123520,A,4807.040,N,01131.000,E,022.4,084.4,230394,003.1,W");
const std::string kGll = Nmea("GPGLL,4916.45,N,12311.12,W,225444,A,");
const std::string kUnknown = Nmea("GPZDA,123519,17,05,2024,00,00");

TEST(NmeaLiveHandler, UnparsableLineChangesNothing) {
  TNmeaLiveHandler handler;
  TErrorSink sink;
  handler.SetErrorSink(&sink);
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(kGga.substr(1), record));
  EXPECT_FALSE(handler.Handle("$GPGGA,1*4\r\n", record));
  ASSERT_EQ(sink.Records().size(), 2u);
  EXPECT_EQ(sink.Records()[0].message, kNmeaErrorNoDollar);
  EXPECT_EQ(sink.Records()[1].message, kNmeaErrorChecksumSection);
  EXPECT_FALSE(record.newData);
  EXPECT_EQ(handler.UnrecognisedCount(), 0);
}

TEST(NmeaLiveHandler, PositionSentencesMarkTheRecordNew) {
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_TRUE(handler.Handle(kGga, record));
  EXPECT_TRUE(record.newData);
  EXPECT_FLOAT_EQ(record.altitude, 545.4f);
  record.newData = false;
  EXPECT_TRUE(handler.Handle(kRmc, record));
  EXPECT_TRUE(record.newData);
  EXPECT_DOUBLE_EQ(record.lat, 48 + 7.040 / 60);
  // GGAM too.
  record.newData = false;
  EXPECT_TRUE(handler.Handle(
      Nmea("GPGGAM,123521,4807.050,N,01131.000,E,1,08,0.9,545.4,M,,M,,,1.0,2.0,230394"), record));
  EXPECT_TRUE(record.newData);
  EXPECT_DOUBLE_EQ(record.lat, 48 + 7.050 / 60);
}

TEST(NmeaLiveHandler, ChecksumPolicy) {
  const std::string wrong = kGga.substr(0, kGga.size() - 3) + "0\r\n";  // "*40" for "*47"
  const std::string none = kGga.substr(0, kGga.find('*')) + "\r\n";
  for (const bool useChecksum : {true, false}) {
    TNmeaReceiverSettings settings;
    settings.useChecksum = useChecksum;
    for (const std::string& line : {wrong, none}) {
      TNmeaLiveHandler handler(settings);
      TPosicionNMEA record = RecordAtTestNow();
      EXPECT_EQ(handler.Handle(line, record), !useChecksum) << line;
      EXPECT_EQ(record.lat != 0, !useChecksum);
    }
  }
}

TEST(NmeaLiveHandler, LogGetsEveryParsedLineAndChecksumErrors) {
  TNmeaLiveHandler handler;
  std::vector<std::string> log;
  handler.SetLogWriter([&](std::string_view entry) { log.emplace_back(entry); });
  TPosicionNMEA record = RecordAtTestNow();
  const std::string wrong = kRmc.substr(0, kRmc.size() - 4) + "00\r\n";
  handler.Handle(kGga, record);
  handler.Handle(wrong, record);
  handler.Handle("no sentence\r\n", record);
  handler.Handle(kUnknown, record);
  const std::vector<std::string> expected = {
      kGga.substr(0, kGga.size() - 2),
      wrong.substr(0, wrong.size() - 2) + "ChecksumError!",
      kUnknown.substr(0, kUnknown.size() - 2),
  };
  EXPECT_EQ(log, expected);
}

TEST(NmeaLiveHandler, FilterRmcKeepsGgaFromMovingThePosition) {
  TNmeaReceiverSettings settings;
  settings.sentenceFilter = "RMC";
  TNmeaLiveHandler handler(settings);
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(kGga, record));
  EXPECT_EQ(record.lat, 0);
  EXPECT_FALSE(record.newData);
  EXPECT_EQ(handler.UnrecognisedCount(), 0);  // refused, not unknown
  EXPECT_TRUE(handler.Handle(kRmc, record));
  const double lat = record.lat;
  EXPECT_FALSE(handler.Handle(
      Nmea("GPGGA,123521,1000.000,N,01000.000,E,1,08,0.9,545.4,M,46.9,M,,"), record));
  EXPECT_EQ(record.lat, lat);
}

TEST(NmeaLiveHandler, FilterGgaKeepsRmcOut) {
  TNmeaReceiverSettings settings;
  settings.sentenceFilter = "GGA";
  TNmeaLiveHandler handler(settings);
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(kRmc, record));
  EXPECT_TRUE(record.rawSentence.empty());
  EXPECT_TRUE(handler.Handle(kGga, record));
}

TEST(NmeaLiveHandler, GllOnlyUntilAnotherPositionSentence) {
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_TRUE(handler.Handle(kGll, record));
  EXPECT_DOUBLE_EQ(record.lat, 49 + 16.45 / 60);
  EXPECT_TRUE(handler.GllFallback());
  EXPECT_TRUE(handler.Handle(kGga, record));
  EXPECT_FALSE(handler.GllFallback());
  EXPECT_FALSE(handler.Handle(kGll, record));
  EXPECT_DOUBLE_EQ(record.lat, 48 + 7.038 / 60);
  handler.Start();
  EXPECT_TRUE(handler.Handle(kGll, record));
  EXPECT_TRUE(handler.Handle(kRmc, record));
  EXPECT_FALSE(handler.Handle(kGll, record));
  handler.EnableGllFallback();
  EXPECT_TRUE(handler.Handle(kGll, record));
}

TEST(NmeaLiveHandler, VtgCourseAndSpeed) {
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(Nmea("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K"), record));
  EXPECT_FLOAT_EQ(static_cast<float>(record.courseRad), 54.7f * 0.017453292f);
  EXPECT_DOUBLE_EQ(record.speedKmh, 5.5 * 1.852);
  EXPECT_FALSE(record.newData);
  // Six fields: not a VTG the handling reads, and not an unknown sentence.
  EXPECT_FALSE(handler.Handle(Nmea("GPVTG,090.0,T,034.4,M,009.9"), record));
  EXPECT_DOUBLE_EQ(record.speedKmh, 5.5 * 1.852);
  EXPECT_EQ(handler.UnrecognisedCount(), 0);
}

TEST(NmeaLiveHandler, MarineSentences) {
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  handler.Handle(Nmea("IIVWR,045.0,L,12.6,N,6.5,M,23.3,K"), record);
  EXPECT_TRUE(record.vwrReceived);
  // Left of the bow: 360 - 45 degrees, in single precision.
  EXPECT_FLOAT_EQ(record.relativeWindAngleRad, 6.2831855f - 45.0f * 0.017453292f);
  EXPECT_FLOAT_EQ(record.relativeWindSpeedKmh, static_cast<float>(12.6 * 1.852));
  handler.Handle(Nmea("IIVWT,030.0,R,10.0,N,5.1,M,18.5,K"), record);
  EXPECT_TRUE(record.vwtReceived);
  EXPECT_FLOAT_EQ(record.trueWindAngleRad, 30.0f * 0.017453292f);
  EXPECT_FALSE(record.mtwReceived);
  handler.Handle(Nmea("YXMTW,17.5,C"), record);
  EXPECT_TRUE(record.mtwReceived);
  EXPECT_FLOAT_EQ(record.waterTemperatureC, 17.5f);
  handler.Handle(Nmea("SDMTW,,C"), record);  // an empty reading keeps the last one
  EXPECT_FLOAT_EQ(record.waterTemperatureC, 17.5f);
  handler.Handle(Nmea("SDVHW,231.3,T,229.9,M,6.6,N,12.3,K"), record);
  EXPECT_TRUE(record.vhwReceived);
  EXPECT_FLOAT_EQ(record.speedThroughWaterKmh, static_cast<float>(6.6 * 1.852));
  handler.Handle(Nmea("HEHDT,274.07,T"), record);
  EXPECT_TRUE(record.hdtReceived);
  EXPECT_FLOAT_EQ(record.trueHeadingRad, 274.07f * 0.017453292f);
  EXPECT_FALSE(record.newData);
  EXPECT_EQ(handler.UnrecognisedCount(), 0);
}

TEST(NmeaLiveHandler, DepthIsKeptAndCopiedWithEachPosition) {
  struct TCase {
    std::string line;
    float depthM;
  };
  const TCase cases[] = {
      {Nmea("SDDBT,7.7,f,2.3,M,1.3,F"), 7.7f * 0.3048f},
      {Nmea("SDDBT,10.0,F,,,,"), 3.048f},
      {Nmea("SDDBT,2.5,M,,,,"), 2.5f},
      {Nmea("SDDBT,,f,2.3,M,1.3,F"), 2.3f},  // feet missing: the metres
  };
  for (const TCase& c : cases) {
    TNmeaLiveHandler handler;
    TPosicionNMEA record = RecordAtTestNow();
    EXPECT_FALSE(handler.Handle(c.line, record));
    EXPECT_TRUE(record.dbtReceived);
    EXPECT_NEAR(record.depthM, c.depthM, 1e-5) << c.line;
    record.depthM = kDepthNoneM;  // the pipeline took it
    EXPECT_TRUE(handler.Handle(kGga, record));
    EXPECT_NEAR(record.depthM, c.depthM, 1e-5);
  }
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_TRUE(handler.Handle(kGga, record));
  EXPECT_EQ(record.depthM, kDepthNoneM);
}

TEST(NmeaLiveHandler, WaypointsFromWpl) {
  const std::string wpl = Nmea("GPWPL,4917.16,N,12310.64,W,003");
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(wpl, record));  // not taking waypoints
  EXPECT_EQ(handler.UnrecognisedCount(), 0);
  TWaypoints list;
  handler.SetWaypointList(&list);
  EXPECT_TRUE(handler.Handle(wpl, record));
  EXPECT_TRUE(record.newData);
  ASSERT_EQ(list.Count(), 1u);
  EXPECT_EQ(list.Baliza(0).Name(), "003");
  EXPECT_DOUBLE_EQ(list.Baliza(0).Latitude(), 49 + 17.16 / 60);
  EXPECT_DOUBLE_EQ(list.Baliza(0).Longitude(), -(123 + 10.64 / 60));
  EXPECT_FALSE(handler.Handle(Nmea("GPWPL,4917.16,N,12310.64,Q,004"), record));
  EXPECT_EQ(list.Count(), 1u);
}

TEST(NmeaLiveHandler, GsvCycleBecomesTheSatellitesInView) {
  const std::string gp1 = Nmea("GPGSV,2,1,05,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45");
  const std::string gp2 = Nmea("GPGSV,2,2,05,15,10,010,30");
  const std::string gl1 = Nmea("GLGSV,1,1,01,66,09,027,");
  auto text = [](std::initializer_list<const std::string*> lines) {
    std::string joined;
    for (const std::string* line : lines) joined += line->substr(0, line->size() - 2);
    return joined;
  };
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(gp1, record));
  EXPECT_EQ(record.satellitesInView, "");
  EXPECT_FALSE(handler.Handle(gp2, record));
  EXPECT_EQ(record.satellitesInView, text({&gp1, &gp2}));
  EXPECT_FALSE(handler.Handle(gl1, record));
  EXPECT_EQ(record.satellitesInView, text({&gl1}));
  // A cycle cut short is dropped when the next one starts.
  handler.Handle(gp1, record);
  handler.Handle(gp1, record);
  handler.Handle(gp2, record);
  EXPECT_EQ(record.satellitesInView, text({&gp1, &gp2}));

  TNmeaReceiverSettings glonass;
  glonass.chipGps = 4;
  TNmeaLiveHandler glonassHandler(glonass);
  TPosicionNMEA other = RecordAtTestNow();
  glonassHandler.Handle(gp1, other);
  glonassHandler.Handle(gp2, other);
  EXPECT_EQ(other.satellitesInView, "");
  glonassHandler.Handle(gl1, other);
  EXPECT_EQ(other.satellitesInView, text({&gl1}));
}

// More than 10 unrecognised sentences since the last position: the next
// GSV declares the fix lost.
TEST(NmeaLiveHandler, GsvAfterManyUnknownSentencesInvalidatesTheFix) {
  const std::string gsv = Nmea("GPGSV,1,1,01,01,40,083,46");
  for (const int unknown : {10, 11}) {
    TNmeaLiveHandler handler;
    TPosicionNMEA record = RecordAtTestNow();
    ASSERT_TRUE(handler.Handle(kGga, record));
    record.newData = false;
    for (int i = 0; i < unknown; ++i) EXPECT_FALSE(handler.Handle(kUnknown, record));
    EXPECT_EQ(handler.UnrecognisedCount(), unknown);
    EXPECT_EQ(handler.LastUnhandled(), kUnknown);
    EXPECT_EQ(handler.Handle(gsv, record), unknown > 10);
    EXPECT_EQ(record.valid, unknown <= 10);
    EXPECT_EQ(record.newData, unknown > 10);
    // A position starts the count again.
    ASSERT_TRUE(handler.Handle(kGga, record));
    EXPECT_EQ(handler.UnrecognisedCount(), 0);
    EXPECT_FALSE(handler.Handle(gsv, record));
    EXPECT_TRUE(record.valid);
  }
}

TEST(NmeaLiveHandler, GsaTextAndDops) {
  const std::string gsa = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  const std::string held = gsa.substr(0, gsa.size() - 2);
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(gsa, record));
  EXPECT_FLOAT_EQ(record.pdop, 2.5f);
  EXPECT_FLOAT_EQ(record.vdop, 2.1f);
  EXPECT_EQ(record.satellitesInUse, held);
  ASSERT_EQ(held.size(), 47u);
  for (int i = 2; i <= 5; ++i) handler.Handle(gsa, record);
  // Appended while 200 characters or fewer were held: 188 held before the fifth.
  EXPECT_EQ(record.satellitesInUse.size(), 5 * held.size());
  handler.Handle(gsa, record);  // more than 200 held: emptied first
  EXPECT_EQ(record.satellitesInUse, held);
  record.clock.SetFixed(test::TestNow().PlusSeconds(299));
  handler.Handle(gsa, record);
  EXPECT_EQ(record.satellitesInUse, held + held);
  // 301 s after the previous GSA (a time-of-day count in days holds no exact 300 s).
  record.clock.SetFixed(test::TestNow().PlusSeconds(299 + 301));
  handler.Handle(gsa, record);
  EXPECT_EQ(record.satellitesInUse, held);
  // Seventeen fields: the text is kept, the DOPs are not read.
  handler.Handle(Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,9.5,1.3"), record);
  EXPECT_FLOAT_EQ(record.pdop, 2.5f);
}

TEST(NmeaLiveHandler, DialectReaders) {
  const std::string d = Nmea("D,42");
  const std::string lowerD = Nmea("d,42");
  const std::string tua = Nmea("TUA,1");
  const std::string vabd = Nmea("PVABD,1");  // proprietary: only the "P" goes
  TNmeaLiveHandler handler;
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(handler.Handle(d, record));
  EXPECT_EQ(handler.UnrecognisedCount(), 1);  // no reader: unknown

  std::vector<std::string> seen;
  auto reader = [&](bool result) {
    return [&seen, result](const TComandaNMEA& sentence, TPosicionNMEA& fix) {
      seen.emplace_back(sentence.Identifier());
      fix.altitude = 1;
      return result;
    };
  };
  EXPECT_TRUE(handler.SetDialectReader("D", reader(true)));
  EXPECT_TRUE(handler.SetDialectReader("d", reader(true)));
  EXPECT_TRUE(handler.SetDialectReader("TUA", reader(false)));
  EXPECT_TRUE(handler.SetDialectReader("VABD", reader(true)));
  EXPECT_FALSE(handler.SetDialectReader("RMC", reader(true)));
  EXPECT_TRUE(handler.Handle(d, record));  // "D" marks new on success
  EXPECT_TRUE(record.newData);
  record.newData = false;
  EXPECT_FALSE(handler.Handle(lowerD, record));  // "d" never marks new
  EXPECT_FALSE(handler.Handle(tua, record));     // the reader failed
  EXPECT_FALSE(record.newData);
  EXPECT_FALSE(handler.Handle(vabd, record));
  EXPECT_FALSE(handler.Handle(Nmea("GPABD,1"), record));  // "ABD": no reader
  const std::vector<std::string> expected = {"D", "d", "TUA", "VABD"};
  EXPECT_EQ(seen, expected);
  EXPECT_EQ(handler.UnrecognisedCount(), 2);  // the first "D" and "ABD"
}

}  // namespace
}  // namespace velantis
