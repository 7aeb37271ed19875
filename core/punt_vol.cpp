#include "core/punt_vol.h"

namespace velantis {

std::vector<TPuntVolAVG> BuildFlightPoints(const TTrack& track, double windowS) {
  const std::vector<TrkPnt>& points = track.Points();
  const int source = track.AltitudeSource();
  std::vector<TPuntVolAVG> flight(points.size());
  for (size_t i = 0; i < points.size(); ++i) {
    TPuntVolAVG& f = flight[i];
    static_cast<TrkPnt&>(f) = points[i];
    f.validity = points[i].HasAltitude() ? 'A' : 'V';
    if (i == 0 || points[i].StartsSegment()) continue;
    const float a0 = ChooseAltitude(points[i - 1], source), a1 = ChooseAltitude(points[i], source);
    const double dt = points[i - 1].time.SecondsTo(points[i].time);
    if (dt > 0 && IsValidAlternativeAltitude(a0) && IsValidAlternativeAltitude(a1))
      f.climbMs = static_cast<float>((a1 - a0) / dt);
  }

  // Windowed averages, segment by segment.
  const std::vector<double> cumulative = CumulativeDistances(points);
  const std::vector<TTimedValue> altitudes = AltitudeSamples(points, source);
  std::vector<TTimedValue> distances;
  size_t a = 0;
  auto flush = [&](size_t segmentEnd) {
    std::vector<TTimedValue> segmentAltitudes;
    while (a < altitudes.size() && altitudes[a].index < segmentEnd) segmentAltitudes.push_back(altitudes[a++]);
    ForEachWindowRate(segmentAltitudes, windowS,
                      [&](size_t index, double rate) { flight[index].climbAverageMs = static_cast<float>(rate); });
    ForEachWindowRate(distances, windowS, [&](size_t index, double rate) {
      flight[index].speedAverageKmh = static_cast<float>(rate * kMsToKmh);
    });
    distances.clear();
  };
  TDateTime origin;
  for (size_t i = 0; i < points.size(); ++i) {
    if (points[i].StartsSegment()) flush(i);
    if (points[i].time.IsNull()) continue;
    if (origin.IsNull()) origin = points[i].time;
    distances.push_back({origin.SecondsTo(points[i].time), cumulative[i], i});
  }
  flush(points.size());
  return flight;
}

}  // namespace velantis
