#include <gtest/gtest.h>

#include <cfloat>
#include <ctime>

#include "app/config.h"
#include "comm/nmea_live_handler.h"
#include "comm/nmea_position_rules.h"
#include "comm/speed_unit.h"
#include "core/waypoints.h"
#include "geodesy/lista_datums.h"
#include "tests/comm/nmea_test_support.h"
#include "tests/support/proj_reference.h"

namespace velantis {
namespace {

using test::Nmea;
using test::Parsed;

TEST(NmeaSettings, FromTheConfigurationKeys) {
  TConfig config;
  const TNmeaReceiverSettings defaults = TNmeaReceiverSettings::FromConfig(config);
  EXPECT_EQ(defaults.sentenceFilter, "");
  EXPECT_EQ(defaults.minSatellites, 0);
  EXPECT_TRUE(defaults.useChecksum);
  EXPECT_EQ(defaults.chipGps, 0);
  EXPECT_EQ(defaults.linesWithoutPosition, 50);

  config.Comanda_NMEA_MovingMap = "RMC";
  config.MINSatellitesPosition = 4;
  config.Use_Checksum_NMEA = false;
  config.ChipGPS = 4;
  config.Num_Mensajes_NMEA_Error = 7;
  const TNmeaReceiverSettings settings = TNmeaReceiverSettings::FromConfig(config);
  EXPECT_EQ(settings.sentenceFilter, "RMC");
  EXPECT_EQ(settings.minSatellites, 4);
  EXPECT_FALSE(settings.useChecksum);
  EXPECT_EQ(settings.chipGps, 4);
  EXPECT_EQ(settings.linesWithoutPosition, 7);
  EXPECT_TRUE(settings.Accepts("RMC"));
  EXPECT_FALSE(settings.Accepts("GGA"));
  EXPECT_TRUE(defaults.Accepts("GGA"));
}

// The published definitions: the knot is 1852 m an hour, the mile 1609.344 m.
TEST(SpeedUnit, Table) {
  EXPECT_DOUBLE_EQ(KnotsToInternalSpeed(10), 18.52);
  EXPECT_DOUBLE_EQ(InternalSpeedToKnots(18.52), 10);
  EXPECT_DOUBLE_EQ(ConvertSpeed(1, TSpeedUnit::Mph, TSpeedUnit::Kmh), 1.609344);
  EXPECT_DOUBLE_EQ(ConvertSpeed(10, TSpeedUnit::MetresPerSecond, TSpeedUnit::Kmh), 36);
  EXPECT_DOUBLE_EQ(ConvertSpeed(1, TSpeedUnit::Knots, TSpeedUnit::MetresPerSecond), 1852.0 / 3600);
}

TEST(NmeaClock, SystemClockIsUtcNow) {
  const TNmeaClock clock;
  EXPECT_FALSE(clock.IsFixed());
  const double unixSeconds = static_cast<double>(std::time(nullptr));
  const TDateTime epoch = TDateTime::FromCalendar(1970, 1, 1);
  EXPECT_NEAR(epoch.SecondsTo(clock.Now()), unixSeconds, 2.0);
  TNmeaClock fixed = TNmeaClock::Fixed(test::TestNow());
  EXPECT_EQ(fixed.Now(), test::TestNow());
  fixed.SetFixed(TDateTime());
  EXPECT_FALSE(fixed.IsFixed());
}

// A damaged sentence's 1e300 is held at the float's largest value, not
// turned into infinity (or worse) on the way into the record.
TEST(NmeaRecord, HugeValuesStayWithinTheFloatRange) {
  TPosicionNMEA record = test::RecordAtTestNow();
  ASSERT_TRUE(ApplyGgaRule(
      Parsed(Nmea("GPGGA,123519,4807.038,N,01131.000,E,1,08,1e300,-1e300,M,,M,,")), record, {}));
  EXPECT_EQ(record.hdop, FLT_MAX);
  EXPECT_EQ(record.altitude, -FLT_MAX);
  TNmeaLiveHandler handler;
  EXPECT_FALSE(handler.Handle(Nmea("GPGSA,A,3,,,,,,,,,,,,,1e39,1.0,-1e39"), record));
  EXPECT_EQ(record.pdop, FLT_MAX);
  EXPECT_EQ(record.vdop, -FLT_MAX);
}

// ED50 (International 1924, NIMA's three parameters for Europe) and WGS 84.
struct TTwoDatums {
  int configured = 0;
  TListaDatums datums{configured};
  TTwoDatums() {
    TDatum wgs84;
    wgs84.name = "WGS 84";
    wgs84.a = 6378137;
    wgs84.invFlattening = 298.257223563;
    datums.Add(wgs84);
    TDatum ed50;
    ed50.name = "European 1950";
    ed50.a = 6378388;
    ed50.invFlattening = 297;
    ed50.dX = -87;
    ed50.dY = -98;
    ed50.dZ = -121;
    datums.Add(ed50);
  }
};

// PROJ's exact geocentric shift of the same parameters; the three-parameter
// (Molodensky) shift agrees to well within 1e-6 degree here.
void ProjEd50ToWgs84(double& lon, double& lat) {
  const test::TProjReference proj(
      "+proj=pipeline +step +proj=cart +a=6378388 +rf=297 "
      "+step +proj=helmert +x=-87 +y=-98 +z=-121 +step +inv +proj=cart +ellps=WGS84");
  ASSERT_TRUE(proj.Valid());
  ASSERT_TRUE(proj.Apply(lon, lat));
}

TEST(NmeaRecord, PositionOnAnotherDatum) {
  TTwoDatums two;
  TPosicionNMEA record;
  record.lat = 41.4;
  record.lon = 2.17;
  TLonLat position;
  std::string message;
  ASSERT_TRUE(PositionOnDatum(record, 1, two.datums, 0, position, message)) << message;
  double lon = 2.17, lat = 41.4;
  ProjEd50ToWgs84(lon, lat);
  EXPECT_NEAR(position.lat, lat, 1e-6);
  EXPECT_NEAR(position.lon, lon, 1e-6);
  ASSERT_TRUE(PositionOnDatum(record, 0, two.datums, 0, position, message));
  EXPECT_EQ(position.lat, 41.4);
  EXPECT_FALSE(PositionOnDatum(record, 7, two.datums, 0, position, message));
}

// The record stays on the receiver's datum; waypoints go to WGS 84.
TEST(NmeaRecord, ReceiverDatumForRecordAndWaypoints) {
  TTwoDatums two;
  TNmeaReceiverSettings settings;
  settings.datum = 1;
  TNmeaLiveHandler handler(settings);
  TWaypoints list;
  handler.SetWaypointList(&list, &two.datums);
  TPosicionNMEA record = test::RecordAtTestNow();
  ASSERT_TRUE(handler.Handle(Nmea("GPWPL,4124.000,N,00210.200,E,BCN"), record));
  ASSERT_TRUE(handler.Handle(Nmea("GPGLL,4124.000,N,00210.200,E,120000,A"), record));
  EXPECT_DOUBLE_EQ(record.lat, 41.4);  // as received
  EXPECT_DOUBLE_EQ(record.lon, 2.17);
  double lon = 2.17, lat = 41.4;
  ProjEd50ToWgs84(lon, lat);
  ASSERT_EQ(list.Count(), 1u);
  EXPECT_NEAR(list.Baliza(0).Latitude(), lat, 1e-6);
  EXPECT_NEAR(list.Baliza(0).Longitude(), lon, 1e-6);
}

}  // namespace
}  // namespace velantis
