#include "analysis/track_optimization.h"

#include "analysis/optimization_route.h"

namespace velantis {

bool OptimizeTrack(const TTrack& track, const TOptimizationShape& shape, const TScoringRules& rules,
                   const TFlightSearch& search, TProgress* progress, const TPhaseListener& onPhase,
                   TTrackOptimization& out) {
  out = TTrackOptimization{};
  out.rules = &rules;
  const TFlightPointCache cache(track);
  if (!search(cache, shape, progress, onPhase, out.result)) return false;
  out.ruleScore = ScoreWithRules(cache, out.result, rules);
  BuildOptimizationRoute(track, out.result, out.route, out.indices);
  out.route.SetName(track.Name().empty() ? std::string(shape.name) : track.Name() + " " + std::string(shape.name));
  return true;
}

}  // namespace velantis
