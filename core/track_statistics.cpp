#include "core/track_statistics.h"

#include <algorithm>

#include "core/geodesic.h"

namespace velantis {
namespace {

// Time samples of the timed points: seconds since the first timed point.
double SecondsSince(TDateTime origin, TDateTime t) { return origin.SecondsTo(t); }

TDateTime FirstTime(std::span<const TrkPnt> points) {
  for (const TrkPnt& p : points)
    if (!p.time.IsNull()) return p.time;
  return {};
}

void AddAltitudeStatistics(std::span<const TrkPnt> points, int altitudeSource, TTrackStatistics& s) {
  bool haveReference = false;
  double reference = 0;
  for (const TrkPnt& p : points) {
    const float a = ChooseAltitude(p, altitudeSource);
    if (!IsValidAlternativeAltitude(a)) continue;
    if (!s.hasAltitude) {
      s.minAltitudeM = s.maxAltitudeM = a;
      s.hasAltitude = true;
    }
    s.minAltitudeM = std::min<double>(s.minAltitudeM, a);
    s.maxAltitudeM = std::max<double>(s.maxAltitudeM, a);
    if (!haveReference) {
      reference = a;
      haveReference = true;
      continue;
    }
    const double change = a - reference;
    if (change >= kAscentHysteresisM) {
      s.ascentM += change;
      reference = a;
    } else if (change <= -kAscentHysteresisM) {
      s.descentM -= change;
      reference = a;
    }
  }
}

}  // namespace

std::vector<double> CumulativeDistances(std::span<const TrkPnt> points) {
  std::vector<double> cumulative(points.size(), 0.0);
  for (size_t i = 1; i < points.size(); ++i) {
    const TrkPnt& a = points[i - 1];
    const TrkPnt& b = points[i];
    cumulative[i] = cumulative[i - 1] + (b.StartsSegment() ? 0.0 : GeodesicDistanceM(a.lat, a.lon, b.lat, b.lon));
  }
  return cumulative;
}

std::vector<TTimedValue> AltitudeSamples(std::span<const TrkPnt> points, int altitudeSource) {
  std::vector<TTimedValue> samples;
  const TDateTime origin = FirstTime(points);
  for (size_t i = 0; i < points.size(); ++i) {
    const float a = ChooseAltitude(points[i], altitudeSource);
    if (points[i].time.IsNull() || !IsValidAlternativeAltitude(a)) continue;
    samples.push_back({SecondsSince(origin, points[i].time), a, i});
  }
  return samples;
}

TTrackStatistics ComputeTrackStatistics(std::span<const TrkPnt> points, int altitudeSource) {
  TTrackStatistics s;
  s.pointCount = points.size();
  const std::vector<double> cumulative = CumulativeDistances(points);
  if (!points.empty()) s.distanceM = cumulative.back();

  // Times, moving time, and the distance samples of each segment.
  const TDateTime origin = FirstTime(points);
  std::vector<TTimedValue> segment;
  auto closeSegment = [&] {
    ForEachWindowRate(segment, kSpeedWindowS, [&](size_t, double metresPerSecond) {
      const double kmh = metresPerSecond * kMsToKmh;
      if (!s.hasSpeed || kmh > s.maxSpeedKmh) s.maxSpeedKmh = kmh;
      s.hasSpeed = true;
    });
    segment.clear();
  };
  for (size_t i = 0; i < points.size(); ++i) {
    const TrkPnt& p = points[i];
    if (p.StartsSegment()) closeSegment();
    if (p.time.IsNull()) continue;
    if (!s.hasTime) s.start = p.time;
    s.hasTime = true;
    s.end = p.time;
    segment.push_back({SecondsSince(origin, p.time), cumulative[i], i});
    if (i > 0 && !p.StartsSegment() && !points[i - 1].time.IsNull()) {
      const double dt = points[i - 1].time.SecondsTo(p.time);
      if (dt > 0 && (cumulative[i] - cumulative[i - 1]) / dt >= kMovingSpeedMinMs) s.movingTimeS += dt;
    }
  }
  closeSegment();
  if (s.hasTime) s.durationS = s.start.SecondsTo(s.end);

  AddAltitudeStatistics(points, altitudeSource, s);
  // Climb and sink within each segment, like the flight points.
  const std::vector<TTimedValue> altitudes = AltitudeSamples(points, altitudeSource);
  auto climb = [&](size_t, double rate) {
    if (!s.hasClimb) s.maxClimbMs = s.maxSinkMs = rate;
    s.hasClimb = true;
    s.maxClimbMs = std::max(s.maxClimbMs, rate);
    s.maxSinkMs = std::min(s.maxSinkMs, rate);
  };
  size_t runStart = 0;
  for (size_t k = 1; k <= altitudes.size(); ++k) {
    bool cut = k == altitudes.size();
    for (size_t i = cut ? 0 : altitudes[k - 1].index + 1; !cut && i <= altitudes[k].index; ++i)
      cut = points[i].StartsSegment();
    if (!cut) continue;
    ForEachWindowRate(std::span(altitudes).subspan(runStart, k - runStart), kVarioWindowS, climb);
    runStart = k;
  }
  return s;
}

}  // namespace velantis
