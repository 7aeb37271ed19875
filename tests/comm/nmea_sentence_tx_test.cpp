#include "comm/nmea_sentence_tx.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "comm/nmea_position_rules.h"
#include "tests/comm/nmea_test_support.h"

namespace velantis {
namespace {

// The published GGA/RMC example as a track point: 48 07.038 N, 11 31.000 E,
// 23 March 1994 12:35:19, 22.4 knots, course 84.4, 8 satellites, HDOP 0.9,
// 545.4 m.
TrkPnt PublishedPoint() {
  TrkPnt point;
  point.lat = 48 + 7.038 / 60;
  point.lon = 11 + 31.0 / 60;
  point.time = TDateTime::FromCalendar(1994, 3, 23, 12, 35, 19);
  point.speedKmh = static_cast<float>(22.4 * 1.852);
  point.courseDeg = 84.4f;
  point.satellites = 8;
  point.hdop = 0.9f;
  point.altitude = 545.4f;
  return point;
}

TrkPnt SouthWestPoint() {
  TrkPnt point;
  point.lat = -(33 + 52.0 / 60);
  point.lon = -(70 + 40.5 / 60);
  point.time = TDateTime::FromCalendar(2024, 1, 2, 3, 4, 5.67);
  return point;
}

// Expected lines: fields written by hand, checksums from an independent XOR
// of the body (Python's functools.reduce over the characters).
TEST(NmeaSentenceTx, BuildsThePositionSentences) {
  TrkPnt noTime;
  noTime.lat = 59.9999999;  // the minutes round up into the next degree
  noTime.lon = 179 + 59.99 / 60;
  noTime.speedKmh = static_cast<float>(5 * 1.852);
  noTime.courseDeg = 5;
  struct TCase {
    std::string_view kind;
    TrkPnt point;
    int decimals;
    std::string_view line;
  };
  const TCase cases[] = {
      {"GPRMC", PublishedPoint(), 3,
       "$GPRMC,123519.00,A,4807.038,N,01131.000,E,22.4,84.4,230394,,*3F\r\n"},
      {"GPGGA", PublishedPoint(), 3,
       "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,,M,,*7C\r\n"},
      {"GPGGAM", PublishedPoint(), 3,
       "$GPGGAM,123519.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,,M,,,22.4,84.4,230394*1E\r\n"},
      {"GPRMC", SouthWestPoint(), 4,
       "$GPRMC,030405.67,A,3352.0000,S,07040.5000,W,0.0,000.0,020124,,*3B\r\n"},
      {"GPGGA", SouthWestPoint(), 4,
       "$GPGGA,030405.67,3352.0000,S,07040.5000,W,1,00,0.0,,M,,M,,*51\r\n"},
      {"GPRMC", noTime, 2, "$GPRMC,,A,6000.00,N,17959.99,E,5.0,5.0,,,*18\r\n"},
  };
  for (const TCase& c : cases) {
    EXPECT_EQ(BuildNmeaSentence(c.kind, c.point, c.decimals), c.line);
  }
}

TEST(NmeaSentenceTx, UnknownKindBuildsNothing) {
  TComandaNMEA_Tx sentence;
  EXPECT_FALSE(sentence.Build("GPGLL", PublishedPoint(), 4));
  EXPECT_TRUE(sentence.Line().empty());
  EXPECT_EQ(BuildNmeaSentence("RMC", PublishedPoint(), 4), "");
}

TEST(NmeaSentenceTx, DecimalsOfTheMinutes) {
  const TrkPnt point = PublishedPoint();
  TComandaNMEA_Tx sentence;
  ASSERT_TRUE(sentence.Build("GPGGA", point, 0));
  EXPECT_EQ(sentence.Field(2), "4807");
  ASSERT_TRUE(sentence.Build("GPGGA", point, 9));
  EXPECT_EQ(sentence.Field(2), "4807.038000000");
  ASSERT_TRUE(sentence.Build("GPGGA", point, 42));  // at most 9
  EXPECT_EQ(sentence.Field(4), "01131.000000000");
}

// Once built, the sentence reads like a received one.
TEST(NmeaSentenceTx, BuiltSentenceHasItsFields) {
  TComandaNMEA_Tx sentence;
  ASSERT_TRUE(sentence.Build("GPRMC", PublishedPoint(), 3));
  EXPECT_EQ(sentence.Identifier(), "RMC");
  EXPECT_EQ(sentence.FieldCount(), 12u);
  EXPECT_TRUE(sentence.ChecksumMatches());
  EXPECT_EQ(sentence.Field(9), "230394");
  sentence.Begin("PMGNCMD");
  sentence.AddField("VERSION");
  EXPECT_EQ(sentence.Finish(), "$PMGNCMD,VERSION*28\r\n");
  EXPECT_EQ(sentence.Identifier(), "MGNCMD");
}

TEST(NmeaSentenceTx, GalileoFormSendsTheCombinedTalker) {
  TComandaNMEA_Tx_Galileo sentence;
  ASSERT_TRUE(sentence.Build("GPRMC", PublishedPoint(), 3));
  EXPECT_EQ(sentence.Line(), "$GNRMC,123519.00,A,4807.038,N,01131.000,E,22.4,84.4,230394,,*21\r\n");
  EXPECT_EQ(sentence.Identifier(), "RMC");
  ASSERT_TRUE(sentence.Build("GPGGAM", PublishedPoint(), 3));
  EXPECT_EQ(sentence.CompleteIdentifier(), "GNGGAM");
  EXPECT_EQ(sentence.Identifier(), "GGAM");
  sentence.Begin("PMGNCMD");  // no GP talker: kept
  EXPECT_EQ(sentence.Finish().substr(0, 8), "$PMGNCMD");
}

// Points built into GGAM and RMC read back through the rules: the position
// to half a unit of the last decimal, the values to their printed precision.
TEST(NmeaSentenceTx, RoundTripThroughTheRules) {
  std::mt19937_64 random(20240517);
  std::uniform_real_distribution<double> lat(-90, 90), lon(-180, 180), speed(0, 300),
      course(0.1, 359.9), altitude(-400, 8000), seconds(0, 86400 * 365.0 * 30);
  const TDateTime epoch = TDateTime::FromCalendar(1990, 1, 1);
  for (int i = 0; i < 2000; ++i) {
    TrkPnt point;
    point.lat = lat(random);
    point.lon = lon(random);
    point.speedKmh = static_cast<float>(speed(random));
    point.courseDeg = static_cast<float>(course(random));
    point.altitude = static_cast<float>(altitude(random));
    point.satellites = 7;
    point.time = epoch.PlusSeconds(std::round(seconds(random) * 100) / 100);
    const int decimals = i % 8;
    const double halfUnitDeg = 0.5 * std::pow(10.0, -decimals) / 60 + 1e-12;
    for (const std::string_view kind : {"GPGGAM", "GPRMC"}) {
      SCOPED_TRACE(testing::Message() << kind << " " << i);
      const std::string line = BuildNmeaSentence(kind, point, decimals);
      const TComandaNMEA sentence = test::Parsed(line);
      ASSERT_TRUE(sentence.ChecksumMatches()) << line;
      TPosicionNMEA record = test::RecordAtTestNow();
      ASSERT_TRUE(InterpretPosition(sentence, record, {})) << line;
      EXPECT_TRUE(record.valid);
      EXPECT_NEAR(record.lat, point.lat, halfUnitDeg);
      EXPECT_NEAR(record.lon, point.lon, halfUnitDeg);
      EXPECT_NEAR(record.speedKmh, point.speedKmh, 0.05 * 1.852 + 1e-9);
      constexpr double kRadiansPerDegree = std::numbers::pi / 180;
      EXPECT_NEAR(record.courseRad, point.courseDeg * kRadiansPerDegree,
                  0.05 * kRadiansPerDegree + 1e-9);
      EXPECT_NEAR(record.time.SecondsTo(point.time), 0, 0.006);
      if (kind == "GPGGAM") {
        EXPECT_NEAR(record.altitude, point.altitude, 0.05 + 1e-3);
      }
    }
  }
}

}  // namespace
}  // namespace velantis
