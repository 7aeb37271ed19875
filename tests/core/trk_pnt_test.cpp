#include "core/trk_pnt.h"

#include <gtest/gtest.h>

#include <limits>

#include "core/field_codes.h"

namespace velantis {
namespace {

// One byte field: the byte, its getter and its setter.
struct TByteField {
  uint8_t TrkPnt::*byte;
  double (TrkPnt::*get)() const;
  bool (TrkPnt::*set)(double);
};

const TByteField kTemperature{&TrkPnt::temperatureByte, &TrkPnt::TemperatureK, &TrkPnt::SetTemperatureK};
const TByteField kHeartRate{&TrkPnt::heartRateByte, &TrkPnt::HeartRate, &TrkPnt::SetHeartRate};
const TByteField kCadence{&TrkPnt::cadenceByte, &TrkPnt::Cadence, &TrkPnt::SetCadence};
const TByteField kQuarter{&TrkPnt::quarterUnitByte, &TrkPnt::QuarterUnit, &TrkPnt::SetQuarterUnit};

TEST(TrkPnt, ByteFields) {
  const struct {
    const TByteField& field;
    uint8_t byte;
    double value;
  } cases[] = {
      {kTemperature, 60, 273.15}, {kTemperature, 0, 243.15}, {kTemperature, 254, 370.15},
      {kTemperature, 255, -1},    {kHeartRate, 0, 30},       {kHeartRate, 254, 284},
      {kHeartRate, 255, -1},      {kCadence, 90, 90},        {kCadence, 255, -1},
      {kQuarter, 1, 0.25},        {kQuarter, 254, 63.5},     {kQuarter, 255, -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << int(c.byte) << " " << c.value);
    TrkPnt p;
    p.*c.field.byte = c.byte;
    EXPECT_NEAR((p.*c.field.get)(), c.value, 1e-9);
    TrkPnt q;
    ASSERT_TRUE((q.*c.field.set)(c.value));
    EXPECT_EQ(q.*c.field.byte, c.byte);
  }
}

TEST(TrkPnt, OutOfRangeValuesAreRefusedAndLeaveTheByte) {
  const struct {
    const TByteField& field;
    double value;
  } cases[] = {
      {kTemperature, 242.8},  // more than half a step below 243.15 K
      {kTemperature, 370.5},  // rounds to 255, the absent mark
      {kTemperature, std::numeric_limits<double>::quiet_NaN()},
      {kHeartRate, 20}, {kHeartRate, 285}, {kCadence, -3}, {kQuarter, 63.75},
  };
  for (const auto& c : cases) {
    TrkPnt p;
    p.*c.field.byte = 42;
    EXPECT_FALSE((p.*c.field.set)(c.value)) << c.value;
    EXPECT_EQ(p.*c.field.byte, 42);
  }
}

TEST(TrkPnt, AltitudeSourceTable) {
  constexpr float kNone = kAltitudeUnknownM;
  const struct {
    float gps, barometric, terrain;
    int source;
    float expected;
  } cases[] = {
      {100, 110, 120, 0, 100},     {100, 110, 120, 1, 110},     {100, 110, 120, 2, 120},
      {100, kNone, 120, 1, 100},   // chosen source invalid: first valid, GPS first
      {kNone, kNone, 120, 1, 120}, {kNone, 110, 120, 0, 110},   {kNone, kNone, kNone, 2, kNone},
      {-999, 110, 120, 0, -999},   // -999 is still valid
      {-999.5f, 110, 120, 0, 110}, {100, -1000, 120, 1, 100},
      {100, 110, 120, 7, 100},     // an unknown source counts as GPS
      {0, 110, 120, 0, 0},
  };
  for (const auto& c : cases) {
    TrkPnt p;
    p.altitude = c.gps;
    p.altitudeBarometric = c.barometric;
    p.altitudeTerrain = c.terrain;
    EXPECT_EQ(ChooseAltitude(p, c.source), c.expected) << c.gps << " " << c.barometric << " " << c.source;
  }
}

}  // namespace
}  // namespace velantis
