// One optimisation of a track as the user asks for it: the point cache, the
// search (the default heuristic or another TFlightSearch), the rule set's
// score and the result route.
#pragma once

#include <vector>

#include "analysis/flight_optimizer.h"
#include "analysis/scoring_rules.h"
#include "core/ruta.h"
#include "core/track.h"

namespace velantis {

struct TTrackOptimization {
  TOptimizationResult result;
  const TScoringRules* rules = nullptr;
  TRuleScore ruleScore;
  // "Start", "Point 1" ... "Finish" and their indices (optimization_route.h).
  TRuta route;
  std::vector<int> indices;
};

// Runs search on the track's points and scores the result under rules.
// False only when cancelled; a track too short for the shape gives a
// result without turnpoints (out.result.Found() false).
bool OptimizeTrack(const TTrack& track, const TOptimizationShape& shape, const TScoringRules& rules,
                   const TFlightSearch& search, TProgress* progress, const TPhaseListener& onPhase,
                   TTrackOptimization& out);

}  // namespace velantis
