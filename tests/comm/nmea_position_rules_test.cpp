#include "comm/nmea_position_rules.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

#include "comm/nmea_fields.h"
#include "tests/comm/nmea_test_support.h"

namespace velantis {
namespace {

using test::Nmea;
using test::Parsed;
using test::RecordAtTestNow;

// GGA of a published example with its fix quality, satellites, altitude
// and unit, and geoid separation put in.
std::string Gga(std::string_view quality, std::string_view satellites = "08",
                std::string_view altitude = "545.4", std::string_view unit = "M",
                std::string_view separation = "46.9") {
  return Nmea("GPGGA,123519,4807.038,N,01131.000,E," + std::string(quality) + "," +
              std::string(satellites) + ",0.9," + std::string(altitude) + "," + std::string(unit) +
              "," + std::string(separation) + ",M,,");
}

constexpr double kPublishedLat = 48.0 + 7.038 / 60.0;
constexpr double kPublishedLon = 11.0 + 31.0 / 60.0;

std::string Rmc(std::string_view status, std::string_view date = "230394",
                std::string_view course = "084.4", std::string_view variation = "003.1,W") {
  return Nmea("GPRMC,123519," + std::string(status) + ",4807.038,N,01131.000,E,022.4," +
              std::string(course) + "," + std::string(date) + "," + std::string(variation));
}

TEST(NmeaGgaRule, PublishedSentence) {
  TPosicionNMEA record = RecordAtTestNow();
  const std::string line = Gga("1");
  ASSERT_TRUE(ApplyGgaRule(Parsed(line), record, {}));
  EXPECT_EQ(record.rawSentence, line.substr(0, line.size() - 2));  // GGA is a position sentence too
  EXPECT_TRUE(record.valid);
  EXPECT_FALSE(record.differential);
  EXPECT_DOUBLE_EQ(record.lat, kPublishedLat);
  EXPECT_DOUBLE_EQ(record.lon, kPublishedLon);
  EXPECT_EQ(record.satellites, 8);
  EXPECT_FLOAT_EQ(record.hdop, 0.9f);
  EXPECT_FLOAT_EQ(record.altitude, 545.4f);
  // No date in GGA and none held: today's, by the record's clock.
  EXPECT_EQ(test::IsoMillis(record.time), "2024-05-17T12:35:19.000");
  EXPECT_FALSE(record.newData);  // the rule leaves newData to its caller
}

TEST(NmeaGgaRule, FixQualityAndSatellites) {
  struct TCase {
    std::string line;
    int minSatellites;
    bool valid;
    bool differential;
  };
  const TCase cases[] = {
      {Gga("0"), 0, false, false},
      {Gga("1"), 0, true, false},
      {Gga("2"), 0, true, true},
      {Gga("1", "03"), 4, false, false},  // MINSatellitesPosition 4, 3 in use
      {Gga("1", "04"), 4, true, false},
      {Gga("2", "03"), 0, true, true},
      {Gga("1", ""), 1, false, false},  // no count: none in use
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.line);
    TPosicionNMEA record = RecordAtTestNow();
    TNmeaReceiverSettings settings;
    settings.minSatellites = c.minSatellites;
    ASSERT_TRUE(ApplyGgaRule(Parsed(c.line), record, settings));
    EXPECT_EQ(record.valid, c.valid);
    EXPECT_EQ(record.differential, c.differential);
  }
}

// An invalid fix keeps the position it had: the sentence's is not used.
TEST(NmeaGgaRule, InvalidFixLeavesThePosition) {
  TPosicionNMEA record = RecordAtTestNow();
  record.lat = 1;
  record.lon = 2;
  ASSERT_TRUE(ApplyGgaRule(Parsed(Gga("0")), record, {}));
  EXPECT_EQ(record.lat, 1);
  EXPECT_EQ(record.lon, 2);
}

TEST(NmeaGgaRule, Altitude) {
  struct TCase {
    const char* what;
    std::string line;
    double offset;
    bool geoid;
    float altitude;
  };
  const TCase cases[] = {
      {"metres", Gga("1"), 0, false, 545.4f},
      {"0.0 is no altitude", Gga("1", "08", "0.0"), 0, false, kAltitudeUnknownM},
      {"below a millimetre is no altitude", Gga("1", "08", "-0.0009"), 0, false, kAltitudeUnknownM},
      {"empty is no altitude", Gga("1", "08", ""), 0, false, kAltitudeUnknownM},
      {"1200 feet", Gga("1", "08", "1200", "F"), 0, false, 365.76f},
      {"1200 feet, lower-case unit", Gga("1", "08", "1200", "f"), 0, false, 365.76f},
      {"offset added", Gga("1"), 10, false, 555.4f},
      {"offset not added to a missing altitude", Gga("1", "08", "0"), 10, false, kAltitudeUnknownM},
      {"geoid separation subtracted", Gga("1"), 0, true, 545.4f - 46.9f},
      {"feet: the separation too", Gga("1", "08", "1200", "F", "100"), 0, true, 365.76f - 30.48f},
      {"offset, then separation", Gga("1"), 10, true, 545.4f + 10 - 46.9f},
      {"no separation, no model", Gga("1", "08", "545.4", "M", ""), 0, true, 545.4f},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.what);
    TPosicionNMEA record = RecordAtTestNow();
    TNmeaReceiverSettings settings;
    settings.altitudeOffsetM = c.offset;
    settings.geoidCorrection = c.geoid;
    ASSERT_TRUE(ApplyGgaRule(Parsed(c.line), record, settings));
    EXPECT_NEAR(record.altitude, c.altitude, 1e-3);
  }
}

TEST(NmeaGgaRule, GeoidModelStandsInForAMissingSeparation) {
  double askedLat = 0, askedLon = 0;
  TNmeaReceiverSettings settings;
  settings.geoidCorrection = true;
  settings.geoidModel = [&](double lat, double lon) {
    askedLat = lat;
    askedLon = lon;
    return 47.5;
  };
  for (const std::string_view separation : {"0.0", "", "0.0004"}) {
    TPosicionNMEA record = RecordAtTestNow();
    ASSERT_TRUE(ApplyGgaRule(Parsed(Gga("1", "08", "545.4", "M", separation)), record, settings));
    EXPECT_NEAR(record.altitude, 545.4 - 47.5, 1e-4) << separation;
    EXPECT_DOUBLE_EQ(askedLat, kPublishedLat);
    EXPECT_DOUBLE_EQ(askedLon, kPublishedLon);
  }
  // The receiver's own separation wins over the model.
  TPosicionNMEA record = RecordAtTestNow();
  ASSERT_TRUE(ApplyGgaRule(Parsed(Gga("1")), record, settings));
  EXPECT_NEAR(record.altitude, 545.4 - 46.9, 1e-4);
}

TEST(NmeaGgaRule, NotAPosition) {
  const std::string lines[] = {
      Nmea("GPGGA,123519,4807.038,N,01131.000,E"),            // 6 fields
      Nmea("GPGGA,123519,4861.000,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"),  // 61 minutes
      Nmea("GPGGA,123519,4807.038,X,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"),  // no hemisphere
      Nmea("GPGGA,123519,9107.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"),  // beyond the pole
      Nmea("GPGGA,123519,4807.038,N,18131.000,E,1,08,0.9,545.4,M,46.9,M,,"),
      Nmea("GPGGA,123519,48O7.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"),
  };
  for (const std::string& line : lines) {
    TPosicionNMEA record = RecordAtTestNow();
    record.lat = 1;
    record.satellites = 3;
    EXPECT_FALSE(ApplyGgaRule(Parsed(line), record, {})) << line;
    EXPECT_EQ(record.lat, 1);  // nothing changed
    EXPECT_EQ(record.satellites, 3);
    EXPECT_TRUE(record.time.IsNull());
  }
}

// A valid fix without latitude keeps the position and is still news.
TEST(NmeaGgaRule, ValidWithoutPositionKeepsTheLastOne) {
  TPosicionNMEA record = RecordAtTestNow();
  record.lat = 1;
  ASSERT_TRUE(ApplyGgaRule(Parsed(Nmea("GPGGA,123519,,,,,1,08,0.9,545.4,M,46.9,M,,")), record, {}));
  EXPECT_TRUE(record.valid);
  EXPECT_EQ(record.lat, 1);
}

TEST(NmeaGgaRule, SouthAndWest) {
  TPosicionNMEA record = RecordAtTestNow();
  ASSERT_TRUE(ApplyGgaRule(
      Parsed(Nmea("GPGGA,000000,3352.0000,S,07040.5000,W,1,05,1.0,12.0,M,,M,,")), record, {}));
  EXPECT_DOUBLE_EQ(record.lat, -(33 + 52.0 / 60));
  EXPECT_DOUBLE_EQ(record.lon, -(70 + 40.5 / 60));
}

// The date held from an RMC: the GGA just after midnight belongs to the
// next day, one just before to the same day.
TEST(NmeaGgaRule, TimeOnTheHeldDate) {
  struct TCase {
    const char* heldTime;
    const char* ggaTime;
    const char* expected;
  };
  const TCase cases[] = {
      {"235959", "000001", "2024-03-24T00:00:01.000"},
      {"000001", "235959", "2024-03-22T23:59:59.000"},
      {"120000", "120001.25", "2024-03-23T12:00:01.250"},
  };
  for (const TCase& c : cases) {
    TPosicionNMEA record = RecordAtTestNow();
    ASSERT_TRUE(ApplyRmcRule(
        Parsed(Nmea(std::string("GPRMC,") + c.heldTime + ",A,4807.038,N,01131.000,E,0,0,230324,,")),
        record, {}));
    ASSERT_TRUE(record.datePresent);
    const std::string gga =
        Nmea(std::string("GPGGA,") + c.ggaTime + ",4807.038,N,01131.000,E,1,08,0.9,1,M,,M,,");
    ASSERT_TRUE(ApplyGgaRule(Parsed(gga), record, {}));
    EXPECT_EQ(test::IsoMillis(record.time), c.expected) << c.ggaTime;
  }
}

TEST(NmeaRmcRule, PublishedSentence) {
  TPosicionNMEA record = RecordAtTestNow();
  record.altitude = 100;
  const TComandaNMEA rmc = Parsed(Rmc("A"));
  ASSERT_TRUE(ApplyRmcRule(rmc, record, {}));
  EXPECT_TRUE(record.valid);
  EXPECT_DOUBLE_EQ(record.lat, kPublishedLat);
  EXPECT_DOUBLE_EQ(record.lon, kPublishedLon);
  EXPECT_EQ(record.altitude, kAltitudeUnknownM);
  EXPECT_TRUE(record.datePresent);
  EXPECT_EQ(test::IsoMillis(record.time), "1994-03-23T12:35:19.000");
  EXPECT_DOUBLE_EQ(record.speedKmh, 22.4 * 1.852);  // knots to km/h
  EXPECT_DOUBLE_EQ(record.courseRad, 84.4 * std::numbers::pi / 180);
  EXPECT_DOUBLE_EQ(record.magneticVariationDeg, -3.1);
  EXPECT_EQ(record.rawSentence, "$" + rmc.Body());
}

TEST(NmeaRmcRule, StatusVoidYieldsNoPosition) {
  TPosicionNMEA record = RecordAtTestNow();
  record.lat = 1;
  record.lon = 2;
  ASSERT_TRUE(ApplyRmcRule(Parsed(Rmc("V")), record, {}));
  EXPECT_FALSE(record.valid);
  EXPECT_EQ(record.lat, 1);
  EXPECT_EQ(record.lon, 2);
}

TEST(NmeaRmcRule, DateAbsentOrUnreadableIsToday) {
  for (const std::string_view date : {"", "310224", "2303a4", "23039"}) {
    TPosicionNMEA record = RecordAtTestNow();
    record.datePresent = true;
    ASSERT_TRUE(ApplyRmcRule(Parsed(Rmc("A", date)), record, {}));
    EXPECT_FALSE(record.datePresent) << date;
    EXPECT_EQ(test::IsoMillis(record.time), "2024-05-17T12:35:19.000") << date;
  }
  // Eleven fields: no date field at all.
  TPosicionNMEA record = RecordAtTestNow();
  ASSERT_TRUE(ApplyRmcRule(
      Parsed(Nmea("GPRMC,010203,A,4807.038,N,01131.000,E,022.4,084.4")), record, {}));
  EXPECT_EQ(test::IsoMillis(record.time), "2024-05-17T01:02:03.000");
}

TEST(NmeaRmcRule, CourseAndVariation) {
  struct TCase {
    std::string_view course;
    std::string_view variation;
    double courseRad;
    double variationDeg;
  };
  const TCase cases[] = {
      {"180", "3.1,W", std::numbers::pi, -3.1},
      {"180.0", "3.1,w", std::numbers::pi, -3.1},
      {"090", "3.1,E", std::numbers::pi / 2, 3.1},
      {"0", "3.1,", 0, 99},  // no side letter: the variation is left as it was
      {"", ",W", 99, 99},    // no course, no value: both left
  };
  for (const TCase& c : cases) {
    TPosicionNMEA record = RecordAtTestNow();
    record.courseRad = 99;
    record.magneticVariationDeg = 99;
    ASSERT_TRUE(ApplyRmcRule(Parsed(Rmc("A", "230394", c.course, c.variation)), record, {}));
    EXPECT_DOUBLE_EQ(record.courseRad, c.courseRad) << c.course;
    EXPECT_DOUBLE_EQ(record.magneticVariationDeg, c.variationDeg) << c.variation;
  }
}

TEST(NmeaRmcRule, MinimumSatellitesCountsTheLastGga) {
  TNmeaReceiverSettings settings;
  settings.minSatellites = 4;
  TPosicionNMEA record = RecordAtTestNow();
  ASSERT_TRUE(ApplyGgaRule(Parsed(Gga("1", "03")), record, settings));
  ASSERT_TRUE(ApplyRmcRule(Parsed(Rmc("A")), record, settings));
  EXPECT_FALSE(record.valid);
  ASSERT_TRUE(ApplyGgaRule(Parsed(Gga("1", "05")), record, settings));
  ASSERT_TRUE(ApplyRmcRule(Parsed(Rmc("A")), record, settings));
  EXPECT_TRUE(record.valid);
}

TEST(NmeaRmcRule, UnreadablePositionMakesTheFixInvalid) {
  TPosicionNMEA record = RecordAtTestNow();
  record.lat = 1;
  ASSERT_TRUE(ApplyRmcRule(
      Parsed(Nmea("GPRMC,123519,A,4807.038,Q,01131.000,E,022.4,084.4,230394,,")), record, {}));
  EXPECT_FALSE(record.valid);
  EXPECT_EQ(record.lat, 1);
}

TEST(NmeaRmcRule, TooFewFields) {
  TPosicionNMEA record = RecordAtTestNow();
  EXPECT_FALSE(ApplyRmcRule(Parsed(Nmea("GPRMC,123519,A,4807.038,N,01131.000")), record, {}));
  EXPECT_TRUE(record.rawSentence.empty());
}

TEST(NmeaGllRule, PositionTimeAndStatus) {
  TPosicionNMEA record = RecordAtTestNow();
  ASSERT_TRUE(ApplyGllRule(Parsed(Nmea("GPGLL,4916.45,N,12311.12,W,225444,A,")), record, {}));
  EXPECT_TRUE(record.valid);
  EXPECT_DOUBLE_EQ(record.lat, 49 + 16.45 / 60);
  EXPECT_DOUBLE_EQ(record.lon, -(123 + 11.12 / 60));
  EXPECT_EQ(test::IsoMillis(record.time), "2024-05-17T22:54:44.000");
  ASSERT_TRUE(ApplyGllRule(Parsed(Nmea("GPGLL,4916.45,N,12311.12,W,225445,V,")), record, {}));
  EXPECT_FALSE(record.valid);
  // NMEA 1.5 sentences end after the longitude: no status means valid.
  ASSERT_TRUE(ApplyGllRule(Parsed(Nmea("GPGLL,4916.46,N,12311.12,W")), record, {}));
  EXPECT_TRUE(record.valid);
  EXPECT_TRUE(record.time.IsNull());
  EXPECT_FALSE(ApplyGllRule(Parsed(Nmea("GPGLL,,,,,225446,V,N")), record, {}));
}

TEST(NmeaInterpretPosition, DispatchOutsideTheLiveLoop) {
  struct TCase {
    const char* what;
    std::string line;
    std::string filter;
    bool position;
  };
  const TCase cases[] = {
      {"GGA", Gga("1"), "", true},
      {"RMC", Rmc("A"), "", true},
      {"GGA with filter GGA", Gga("1"), "GGA", true},
      {"GGA with filter RMC", Gga("1"), "RMC", false},
      {"RMC with filter GGA", Rmc("A"), "GGA", false},
      {"RMC with filter RMC", Rmc("A"), "RMC", true},
      {"GLL never", Nmea("GPGLL,4916.45,N,12311.12,W,225444,A,"), "", false},
      {"GLL never, even asked for", Nmea("GPGLL,4916.45,N,12311.12,W,225444,A,"), "GLL", false},
      {"GGAM", Nmea("GPGGAM,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,,M,,,22.4,84.4,230394"),
       "RMC", true},
      {"GSV", Nmea("GPGSV,1,1,01,01,40,083,46"), "", false},
      {"GSA", Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1"), "", false},
      {"VTG", Nmea("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K"), "", false},
      {"too short a GGA", Nmea("GPGGA,123519,4807.038,N"), "", false},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.what);
    TPosicionNMEA record = RecordAtTestNow();
    TNmeaReceiverSettings settings;
    settings.sentenceFilter = c.filter;
    EXPECT_EQ(InterpretPosition(Parsed(c.line), record, settings), c.position);
    EXPECT_EQ(record.lat != 0, c.position);
  }
}

TEST(NmeaInterpretPosition, SatelliteTexts) {
  TPosicionNMEA record = RecordAtTestNow();
  const std::string gsv1 = Nmea("GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45");
  const std::string gsv2 = Nmea("GPGSV,2,2,08,15,10,010,30");
  const std::string gsa1 = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
  const std::string gsa2 = Nmea("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.6,1.3,2.1");
  auto strip = [](const std::string& line) { return line.substr(0, line.size() - 2); };
  EXPECT_FALSE(InterpretPosition(Parsed(gsv1), record, {}, true));
  EXPECT_FALSE(InterpretPosition(Parsed(gsv2), record, {}, false));
  EXPECT_EQ(record.satellitesInView, strip(gsv1) + strip(gsv2));
  EXPECT_FALSE(InterpretPosition(Parsed(gsv1), record, {}, true));
  EXPECT_EQ(record.satellitesInView, strip(gsv1));
  EXPECT_FALSE(InterpretPosition(Parsed(gsa1), record, {}));
  EXPECT_FALSE(InterpretPosition(Parsed(gsa2), record, {}));
  EXPECT_EQ(record.satellitesInUse, strip(gsa2));
}

TEST(NmeaGgamRule, GgaFieldsThenSpeedCourseAndDate) {
  TPosicionNMEA record = RecordAtTestNow();
  ASSERT_TRUE(ApplyGgamRule(
      Parsed(Nmea("GPGGAM,123519,4807.038,N,01131.000,E,2,08,0.9,545.4,M,,M,,,022.4,180.0,230394")),
      record, {}));
  EXPECT_TRUE(record.valid);
  EXPECT_TRUE(record.differential);
  EXPECT_DOUBLE_EQ(record.lat, kPublishedLat);
  EXPECT_FLOAT_EQ(record.altitude, 545.4f);
  EXPECT_DOUBLE_EQ(record.speedKmh, 22.4 * 1.852);
  EXPECT_DOUBLE_EQ(record.courseRad, std::numbers::pi);
  EXPECT_TRUE(record.datePresent);
  EXPECT_EQ(test::IsoMillis(record.time), "1994-03-23T12:35:19.000");
  // Without the extra fields it is a GGA: today's date, speed kept.
  ASSERT_TRUE(ApplyGgamRule(
      Parsed(Nmea("GPGGAM,123520,4807.038,N,01131.000,E,1,08,0.9,545.4,M,,M,,")), record, {}));
  EXPECT_EQ(test::IsoMillis(record.time), "1994-03-23T12:35:20.000");  // the held date
  EXPECT_DOUBLE_EQ(record.speedKmh, 22.4 * 1.852);
}

TEST(NmeaFields, TimesDatesAndAngles) {
  double value = 0;
  EXPECT_TRUE(ParseNmeaTime("235960.5", value));  // a leap second
  EXPECT_DOUBLE_EQ(value, 23 * 3600 + 59 * 60 + 60.5);
  for (const std::string_view bad : {"240000", "126000", "1234", "12345a", "-12345", "123456x", ""})
    EXPECT_FALSE(ParseNmeaTime(bad, value)) << bad;
  EXPECT_TRUE(ParseNmeaDate("010180", value));
  EXPECT_EQ(TDateTime::FromDays(value), TDateTime::FromCalendar(1980, 1, 1));
  EXPECT_TRUE(ParseNmeaDate("311279", value));
  EXPECT_EQ(TDateTime::FromDays(value), TDateTime::FromCalendar(2079, 12, 31));
  EXPECT_TRUE(ParseNmeaDate("290224", value));  // 2024 is a leap year
  for (const std::string_view bad : {"290223", "310424", "001224", "011324", "0101800", "01018"})
    EXPECT_FALSE(ParseNmeaDate(bad, value)) << bad;
  EXPECT_TRUE(ParseNmeaLatitude("9000.000", "n", value));
  EXPECT_EQ(value, 90);
  EXPECT_TRUE(ParseNmeaLongitude("18000.000", "W", value));
  EXPECT_EQ(value, -180);
  EXPECT_TRUE(ParseNmeaLatitude("0", "S", value));  // a receiver with no fix yet
  EXPECT_EQ(value, 0);
  for (const std::string_view bad : {"-4807.038", "+4807.038", "4807.0e1", "4860.000", "nan", ""})
    EXPECT_FALSE(ParseNmeaLatitude(bad, "N", value)) << bad;
  EXPECT_FALSE(ParseNmeaLatitude("9000.001", "N", value));
  EXPECT_FALSE(ParseNmeaLatitude("4807.038", "", value));
  EXPECT_FALSE(ParseNmeaLatitude("4807.038", "E", value));
  EXPECT_FALSE(ParseNmeaLatitude("4807.038", "NN", value));
  for (const std::string_view bad : {"nan", "inf", "1e400", "1,5", "", "+"})
    EXPECT_FALSE(ParseNmeaReal(bad, value)) << bad;
  EXPECT_TRUE(ParseNmeaReal("+12.5", value));
  EXPECT_EQ(value, 12.5);
}

}  // namespace
}  // namespace velantis
