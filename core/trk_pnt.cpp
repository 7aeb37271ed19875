#include "core/trk_pnt.h"

#include <cmath>

#include "core/field_codes.h"

namespace velantis {
namespace {

// A byte field's value: byte x step + offset, or absent.
double Decode(uint8_t byte, double step, double offset) {
  return byte == kTrkPntByteAbsent ? kFieldAbsent : byte * step + offset;
}

// Stores value (or absent for -1) when it fits bytes 0..254 after rounding.
bool Encode(uint8_t& byte, double value, double step, double offset) {
  if (value == kFieldAbsent) {
    byte = kTrkPntByteAbsent;
    return true;
  }
  const double level = std::round((value - offset) / step);
  if (!(level >= 0 && level < kTrkPntByteAbsent)) return false;
  byte = static_cast<uint8_t>(level);
  return true;
}

}  // namespace

double TrkPnt::HeartRate() const { return Decode(heartRateByte, 1.0, kHeartRateOffsetBpm); }
bool TrkPnt::SetHeartRate(double bpm) { return Encode(heartRateByte, bpm, 1.0, kHeartRateOffsetBpm); }
double TrkPnt::Cadence() const { return Decode(cadenceByte, 1.0, 0.0); }
bool TrkPnt::SetCadence(double perMinute) { return Encode(cadenceByte, perMinute, 1.0, 0.0); }
double TrkPnt::QuarterUnit() const { return Decode(quarterUnitByte, kQuarterUnitStep, 0.0); }
bool TrkPnt::SetQuarterUnit(double value) { return Encode(quarterUnitByte, value, kQuarterUnitStep, 0.0); }
double TrkPnt::TemperatureK() const { return Decode(temperatureByte, kTemperatureStepK, kTemperatureZeroK); }
bool TrkPnt::SetTemperatureK(double kelvin) {
  return Encode(temperatureByte, kelvin, kTemperatureStepK, kTemperatureZeroK);
}

float ChooseAltitude(const TrkPnt& point, int altitudeSource) {
  const float byIndex[3] = {point.altitude, point.altitudeBarometric, point.altitudeTerrain};
  const int chosen = altitudeSource >= 0 && altitudeSource <= 2 ? altitudeSource : 0;
  if (IsValidAlternativeAltitude(byIndex[chosen])) return byIndex[chosen];
  for (float a : byIndex)
    if (IsValidAlternativeAltitude(a)) return a;
  return kAltitudeUnknownM;
}

}  // namespace velantis
