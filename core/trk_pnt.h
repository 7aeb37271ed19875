// TrkPnt: one track point, a plain record kept in large numbers.
//
// 64 bytes (checked below): the position in degrees on the internal datum
// (WGS 84), the time, three altitudes, the receiver's measurements and seven
// bytes. The label and the property object a few points carry live outside
// the record, in side maps of the track keyed by point index, so the record
// stays small and trivially copyable.
//
// Altitudes: the GPS altitude is unknown at -1000 or less (stored -9999);
// the barometric and terrain altitudes are valid when not below -999.
// ChooseAltitude picks among the three by the configured source.
//
// Byte fields: 255 is absent in each; the heart rate is byte + 30 beats per
// minute, the cadence the byte itself, the quarter-unit value byte x 0.25,
// the temperature byte x 0.5 + 243.15 kelvin (-30 C to +96.85 C). Getters
// report an absent value as -1 (kFieldAbsent); setters take -1 for absent
// and refuse (returning false, leaving the byte) a value outside the range.
#pragma once

#include <cstdint>
#include <type_traits>

#include "core/altitude.h"
#include "core/date_time.h"

namespace velantis {

inline constexpr uint8_t kTrkPntByteAbsent = 255;
inline constexpr uint8_t kTrkPntSegmentStartBit = 0x40;
inline constexpr double kHeartRateOffsetBpm = 30.0;
inline constexpr double kQuarterUnitStep = 0.25;
inline constexpr double kTemperatureStepK = 0.5;
inline constexpr double kTemperatureZeroK = 243.15;

// The altitude sources of TConfig::Altitude_Source.
enum class TAltitudeSource : int { Gps = 0, Barometric = 1, Terrain = 2 };

struct TrkPnt {
  double lat = 0;  // degrees
  double lon = 0;  // degrees
  TDateTime time;  // null when the point has none
  float altitude = kAltitudeUnknownM;           // GPS, metres
  float altitudeBarometric = kAltitudeUnknownM;  // metres
  float altitudeTerrain = kAltitudeUnknownM;     // metres, from an elevation model
  // The receiver's own measurements, as the "T" line of track files carries
  // them; 0 when the receiver gave none.
  float speedKmh = 0;        // ground speed
  float courseDeg = 0;       // course over ground, clockwise from north
  float hdop = 0;            // horizontal dilution of precision
  int32_t satellites = 0;    // satellites used in the fix
  float accuracyM = 0;       // the receiver's estimated horizontal error
  uint8_t flags = 0;         // bit 6: starts a new segment
  int8_t signedValue = 0;    // a small signed value carried for the files
  uint8_t size = kTrkPntByteAbsent;
  uint8_t heartRateByte = kTrkPntByteAbsent;
  uint8_t cadenceByte = kTrkPntByteAbsent;
  uint8_t quarterUnitByte = kTrkPntByteAbsent;
  uint8_t temperatureByte = kTrkPntByteAbsent;

  bool StartsSegment() const { return (flags & kTrkPntSegmentStartBit) != 0; }
  void SetStartsSegment(bool on) {
    flags = static_cast<uint8_t>(on ? (flags | kTrkPntSegmentStartBit) : (flags & ~kTrkPntSegmentStartBit));
  }
  bool HasAltitude() const { return IsKnownAltitude(altitude); }

  double HeartRate() const;  // beats per minute, 30..284
  bool SetHeartRate(double bpm);
  double Cadence() const;  // per minute, 0..254
  bool SetCadence(double perMinute);
  double QuarterUnit() const;  // 0..63.5
  bool SetQuarterUnit(double value);
  double TemperatureK() const;  // 243.15..370.15
  bool SetTemperatureK(double kelvin);
};

static_assert(sizeof(TrkPnt) == 64, "track points are kept by the million: keep the record at 64 bytes");
static_assert(std::is_trivially_copyable_v<TrkPnt>);

// The point's altitude by the configured source (TConfig::Altitude_Source):
// the chosen source when it is valid, else the first valid one of GPS,
// barometric, terrain; kAltitudeUnknownM when none is valid. A GPS altitude
// counts as valid from -999 m, like the two others. An out-of-range source
// counts as GPS.
float ChooseAltitude(const TrkPnt& point, int altitudeSource);

}  // namespace velantis
