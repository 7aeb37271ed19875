// The statistics of a track, computed from its points in one pass (plus the
// windowed rates).
//
// - Distance: the sum of the geodesic legs between consecutive points on
//   the ellipsoid; a point that starts a new segment adds no leg (the gap
//   between segments was not travelled on the track).
// - Start, end, duration: the first and last points that have a time, and
//   the seconds between them (pauses included).
// - Moving time: the seconds of legs whose average speed is at least
//   kMovingSpeedMinMs (0.5 m/s, 1.8 km/h, below a slow walk): standing still
//   with the receiver's drift of a few metres a minute does not count.
// - Ascent and descent: altitude changes with a hysteresis of
//   kAscentHysteresisM (5 m): the climb counts once the altitude is 5 m above
//   the last turning level, so noise of a few metres adds nothing. A climb
//   of less than 5 m at the end is not counted. Segments do not reset it.
// - Maximum speed: distance over at least kSpeedWindowS (5 s), within a
//   segment, so one jumping fix does not make the record.
// - Best climb and sink: altitude change over at least kVarioWindowS (10 s),
//   within a segment.
// Altitudes are those ChooseAltitude picks for the given source.
#pragma once

#include <span>
#include <vector>

#include "core/date_time.h"
#include "core/trk_pnt.h"
#include "core/window_rate.h"

namespace velantis {

inline constexpr double kMovingSpeedMinMs = 0.5;
inline constexpr double kAscentHysteresisM = 5.0;
inline constexpr double kSpeedWindowS = 5.0;
inline constexpr double kVarioWindowS = 10.0;
inline constexpr double kMsToKmh = 3.6;

struct TTrackStatistics {
  size_t pointCount = 0;
  double distanceM = 0;
  bool hasTime = false;  // start, end, duration and moving time are meaningful
  TDateTime start;
  TDateTime end;
  double durationS = 0;
  double movingTimeS = 0;
  bool hasSpeed = false;  // maxSpeedKmh is meaningful
  double maxSpeedKmh = 0;
  bool hasAltitude = false;  // the altitude values are meaningful
  double minAltitudeM = 0;
  double maxAltitudeM = 0;
  double ascentM = 0;
  double descentM = 0;
  bool hasClimb = false;  // maxClimbMs and maxSinkMs are meaningful
  double maxClimbMs = 0;
  double maxSinkMs = 0;   // the most negative rate
};

TTrackStatistics ComputeTrackStatistics(std::span<const TrkPnt> points, int altitudeSource);

// Metres from the first point to each point, legs across segments skipped.
std::vector<double> CumulativeDistances(std::span<const TrkPnt> points);

// Altitude samples (seconds since the first timed point) for the vario:
// points with a time and a valid chosen altitude.
std::vector<TTimedValue> AltitudeSamples(std::span<const TrkPnt> points, int altitudeSource);

}  // namespace velantis
