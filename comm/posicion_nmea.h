// TPosicionNMEA: the live fix record. The NMEA handling fills it sentence by
// sentence and raises newData; the real-time pipeline takes the fix and
// clears the flag.
//
// Units: latitude and longitude in degrees on the receiver's datum (WGS 84
// unless the receiver setting names another; PositionOnDatum shifts them);
// speeds in the internal unit, km/h (speed_unit.h); angles in radians;
// altitude and depth in metres. kAltitudeUnknownM (-9999) is a missing
// altitude, a negative depth a missing depth.
//
// The record carries the clock that supplies "now" for the date of
// sentences that carry none (GGA, GLL, an RMC without date).
#pragma once

#include <cstdint>
#include <string>

#include "comm/nmea_clock.h"
#include "core/altitude.h"
#include "core/date_time.h"
#include "geodesy/lon_lat.h"

namespace velantis {

class TListaDatums;

inline constexpr float kDepthNoneM = -1.0f;

struct TPosicionNMEA {
  TDateTime time;  // of the fix, UTC
  bool valid = false;
  uint8_t satellites = 0;  // in use, from GGA
  bool differential = false;
  double speedKmh = 0;   // over ground
  double courseRad = 0;  // over ground, clockwise from true north
  float hdop = 0;
  float altitude = kAltitudeUnknownM;
  double lat = 0;
  double lon = 0;
  std::string rawSentence;       // "$" and body of the last position sentence (GGA, GGAM, RMC)
  std::string satellitesInView;  // the "$"-prefixed GSV sentences of the last complete cycle
  std::string satellitesInUse;   // the "$"-prefixed GSA sentences held (see the live handling)
  bool datePresent = false;      // the last RMC (or GGAM) carried a date
  float pdop = 0;
  float vdop = 0;
  float depthM = kDepthNoneM;           // DBT
  float waterTemperatureC = 0;          // MTW
  float speedThroughWaterKmh = 0;       // VHW
  float trueHeadingRad = 0;             // HDT
  float relativeWindAngleRad = 0;       // VWR, 0 to 2 pi clockwise from the bow
  float relativeWindSpeedKmh = 0;       // VWR
  float trueWindAngleRad = 0;           // VWT
  float trueWindSpeedKmh = 0;           // VWT
  bool vwrReceived = false;
  bool vwtReceived = false;
  bool mtwReceived = false;
  bool vhwReceived = false;
  bool dbtReceived = false;
  bool hdtReceived = false;
  // RMC fields 10 and 11, degrees, east positive (the data model has no
  // other place for them).
  double magneticVariationDeg = 0;
  bool newData = false;

  TNmeaClock clock;
};

// The record's position shifted from the receiver's datum to toDatum (0 is
// WGS 84, the internal datum); false with the shift's message.
bool PositionOnDatum(const TPosicionNMEA& record, int receiverDatum, TListaDatums& datums,
                     int toDatum, TLonLat& position, std::string& message);

}  // namespace velantis
