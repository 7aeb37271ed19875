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

// Each byte field's value range, its absent mark 255, and the values it
// refuses, leaving the byte as it was.
TEST(TrkPnt, ByteFields) {
  constexpr int kRefused = -2;
  const struct {
    const TByteField& field;
    int byte;  // kRefused: the value is refused
    double value;
  } cases[] = {
      {kTemperature, 60, 273.15}, {kTemperature, 0, 243.15}, {kTemperature, 254, 370.15},
      {kTemperature, 255, -1},    {kHeartRate, 0, 30},       {kHeartRate, 254, 284},
      {kHeartRate, 255, -1},      {kCadence, 90, 90},        {kCadence, 255, -1},
      {kQuarter, 1, 0.25},        {kQuarter, 254, 63.5},     {kQuarter, 255, -1},
      {kTemperature, kRefused, 242.8},  // more than half a step below 243.15 K
      {kTemperature, kRefused, 370.5},  // rounds to 255, the absent mark
      {kTemperature, kRefused, std::numeric_limits<double>::quiet_NaN()},
      {kHeartRate, kRefused, 20}, {kHeartRate, kRefused, 285}, {kCadence, kRefused, -3}, {kQuarter, kRefused, 63.75},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.byte << " " << c.value);
    TrkPnt p;
    p.*c.field.byte = 42;
    EXPECT_EQ((p.*c.field.set)(c.value), c.byte != kRefused);
    EXPECT_EQ(p.*c.field.byte, c.byte == kRefused ? 42 : c.byte);
    if (c.byte != kRefused) {
      EXPECT_NEAR((p.*c.field.get)(), c.value, 1e-9);
    }
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
