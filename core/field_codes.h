// Field codes of the generic field access (Retorna_Val_Campo and its
// variants): a number picks one value of a point or of a whole element, so
// that the statistics, the profile graphs and the scripts read any field the
// same way.
//
// Units are the data model's: degrees, metres, seconds, km/h, m/s, kelvin,
// days for times (day 0 = 30 December 1899). A field the point does not
// carry (an absent heart rate, no time) reports kFieldAbsent, -1; the
// altitude codes report -9999, the unknown altitude, instead.
//
//  code  name                 point  element  value
//  ----  -------------------  -----  -------  ----------------------------------------------
//     0  Latitude               x              degrees
//     1  Longitude              x              degrees
//     2  Altitude               x              metres; tracks: the source the configuration picks
//     3  Time                   x              days; -1 when the point has no time
//     4  DistanceFromStart      x              metres along the element up to the point
//     5  Speed                  x              km/h from the previous point (0 on the first)
//     6  ClimbRate              x              m/s from the previous point (0 on the first)
//     7  HeartRate              x              beats per minute
//     8  Cadence                x              per minute
//     9  Temperature            x              kelvin
//    10  QuarterUnit            x              the quarter-unit byte times 0.25
//    11  AltitudeGps            x              metres, as recorded
//    12  AltitudeBarometric     x              metres, as recorded (below -999 invalid)
//    13  AltitudeTerrain        x              metres, as recorded (below -999 invalid)
//    14  Course                 x              degrees clockwise from north, from the previous point
//    15  ElapsedTime            x              seconds since the element's first timed point
//    16  SegmentStart           x              1 when the track point starts a segment, else 0
//    20  ProximityRadius        x      wpt     metres, the stored radius (not the effective one)
//    21  DisplayScale           x      wpt     the display-scale threshold, 0 = always shown
//    22  SizeByte               x      wpt     the size byte; -1 when unset
//    23  StateByte              x      wpt     the waypoint state byte
//    30  LegDistance            x              route point: metres to the next route point
//    40  PointCount                    x       number of points
//    41  TotalDistance                 x       metres
//    42  Duration                      x       seconds from first to last timed point
//    43  MovingTime                    x       seconds spent above the moving threshold
//    44  Ascent                        x       metres, with the ascent hysteresis
//    45  Descent                       x       metres, with the ascent hysteresis
//    46  MaxSpeed                      x       km/h over the speed window
//    47  AverageSpeed                  x       km/h, distance over duration
//    48  AverageMovingSpeed            x       km/h, distance over moving time
//    49  MinAltitude                   x       metres
//    50  MaxAltitude                   x       metres
//    51  MaxClimbRate                  x       m/s, climb averaged over the vario window
//    52  MaxSinkRate                   x       m/s, sink averaged over the vario window (negative)
//    53  StartTime                     x       days
//    54  EndTime                       x       days
//
// "point" codes are answered by Retorna_Val_Campo for one point (route
// points and waypoints of a list too) and by Retorna_Extremos_Campo over all
// points; "element" codes by Retorna_Val_Campo_Global2. A waypoint answers
// its own point codes as its element codes ("wpt"). Codes an element does not
// know are refused with its "Undef. error in ..." message. Element codes by
// kind: lists PointCount, MinAltitude, MaxAltitude; routes those and
// TotalDistance; tracks 40 to 54.
#pragma once

namespace velantis {

enum class TFieldCode : int {
  Latitude = 0,
  Longitude = 1,
  Altitude = 2,
  Time = 3,
  DistanceFromStart = 4,
  Speed = 5,
  ClimbRate = 6,
  HeartRate = 7,
  Cadence = 8,
  Temperature = 9,
  QuarterUnit = 10,
  AltitudeGps = 11,
  AltitudeBarometric = 12,
  AltitudeTerrain = 13,
  Course = 14,
  ElapsedTime = 15,
  SegmentStart = 16,
  ProximityRadius = 20,
  DisplayScale = 21,
  SizeByte = 22,
  StateByte = 23,
  LegDistance = 30,
  PointCount = 40,
  TotalDistance = 41,
  Duration = 42,
  MovingTime = 43,
  Ascent = 44,
  Descent = 45,
  MaxSpeed = 46,
  AverageSpeed = 47,
  AverageMovingSpeed = 48,
  MinAltitude = 49,
  MaxAltitude = 50,
  MaxClimbRate = 51,
  MaxSinkRate = 52,
  StartTime = 53,
  EndTime = 54,
};

// The value reported for a field the point does not carry.
inline constexpr double kFieldAbsent = -1.0;

// The messages for codes an element does not know.
inline constexpr const char* kUndefBalizaGlobal2 = "Undef. error in TBaliza::Retorna_Val_Campo_Global2";
inline constexpr const char* kUndefRutaGlobal2 = "Undef. error in TRuta::Retorna_Val_Campo_Global2";
inline constexpr const char* kUndefRutaBaliza = "Undef. error in TRuta::Retorna_Val_Campo_Baliza";
inline constexpr const char* kUndefTrackGlobal2 = "Undef. error in TTrack::Retorna_Val_Campo_Global2";
inline constexpr const char* kUndefWaypointsGlobal2 = "Undef. error in TWaypoints::Retorna_Val_Campo_Global2";
// Retorna_Val_Campo with a point index the element does not have.
inline constexpr const char* kFieldIndexOutOfRange = "Point index out of range";
// Retorna_Extremos_Campo when no point carries the field.
inline constexpr const char* kFieldNoValues = "No point has a value for this field";

}  // namespace velantis
