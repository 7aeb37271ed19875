#include "analysis/optimization_route.h"

namespace velantis {

std::vector<TOptimizationPoint> OptimizationPoints(const TOptimizationResult& result) {
  std::vector<TOptimizationPoint> points;
  if (!result.Found()) return points;
  points.push_back({std::string(kStartPointName), result.start});
  for (int i = 0; i < result.turnpointCount; ++i)
    points.push_back({std::string(kTurnpointNamePrefix) + std::to_string(i + 1), result.turnpoints[static_cast<size_t>(i)]});
  points.push_back({std::string(kFinishPointName), result.finish});
  return points;
}

void BuildOptimizationRoute(const TTrack& track, const TOptimizationResult& result, TRuta& route,
                            std::vector<int>& indices) {
  route.Clear();
  indices.clear();
  for (const TOptimizationPoint& point : OptimizationPoints(result)) {
    indices.push_back(point.index);
    if (point.index == kNoPoint) continue;
    const TrkPnt& source = track.Point(static_cast<size_t>(point.index));
    TBaliza baliza;
    baliza.SetName(point.name);
    baliza.SetPosition(source.lat, source.lon);
    baliza.SetAltitude(source.altitude);
    baliza.SetTime(source.time);
    route.Add(std::move(baliza));
  }
}

}  // namespace velantis
