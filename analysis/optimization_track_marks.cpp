#include "analysis/optimization_track_marks.h"

#include <cstdio>
#include <map>
#include <string>

#include "analysis/optimization_route.h"

namespace velantis {

namespace {

std::string Decimals3(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.3f", value);
  return text;
}

void RemoveEarlierMarks(TTrack& track) {
  const std::string key(kOptimizationProperty);
  for (size_t i = 0; i < track.Count() && track.PointPropertiesCount() > 0; ++i)
    if (track.PointProperties(i) != nullptr) track.EditPointProperties(i).Remove(key);
  if (track.Properties() == nullptr) return;
  TPropertyList& properties = track.EditProperties();
  for (std::string_view name : {kOptimizationProperty, kOptimizationRulesProperty, kOptimizationDistanceProperty,
                                kOptimizationScoreProperty})
    properties.Remove(std::string(name));
}

}  // namespace

void StoreOptimizationInTrack(const TTrackOptimization& optimization, TTrack& track) {
  RemoveEarlierMarks(track);
  const TOptimizationResult& result = optimization.result;
  if (!result.Found()) return;
  TPropertyList& properties = track.EditProperties();
  properties.Set(std::string(kOptimizationProperty), std::string(ShapeForType(result.type).name));
  if (optimization.rules) properties.Set(std::string(kOptimizationRulesProperty), std::string(optimization.rules->name));
  properties.Set(std::string(kOptimizationDistanceProperty), Decimals3(optimization.ruleScore.distanceM));
  properties.Set(std::string(kOptimizationScoreProperty), Decimals3(optimization.ruleScore.score));
  // The finish may be the last turnpoint itself: such a point carries both
  // names, "Point 3/Finish".
  std::map<int, std::string> names;
  for (const TOptimizationPoint& point : OptimizationPoints(result)) {
    if (point.index == kNoPoint) continue;
    std::string& name = names[point.index];
    name += (name.empty() ? "" : "/") + point.name;
  }
  for (const auto& [index, name] : names)
    track.EditPointProperties(static_cast<size_t>(index)).Set(std::string(kOptimizationProperty), name);
}

}  // namespace velantis
