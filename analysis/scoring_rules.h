// The rule sets that turn an optimised flight into contest points: "DHV,
// HG/PG OLC", "Gliders OLC" and "French CFD".
//
// The searches pick the turnpoints with the point cache's cheap distance;
// a rule set then measures the chosen points again on its own earth model,
// checks the closing of a closed shape against its own limits, takes the
// factor of the shape (points per km) and, where the rules say so, deducts
// the gap between start and finish. Each rule set lives in a file of its own
// with the document it follows.
#pragma once

#include <span>
#include <string_view>

#include "analysis/earth_distance.h"
#include "analysis/flight_point_cache.h"
#include "analysis/optimization_shape.h"

namespace velantis {

struct TScoringRules {
  std::string_view name;   // as the optimisation frame lists it
  std::string_view alias;  // a short name for the command line
  TEarthModel earth;
  // Points per kilometre of each shape.
  double freeFactor;
  double triangleFactor;
  double faiFactor;
  double quadFactor;
  // A closed shape counts only when its gap is at most this share of its
  // perimeter (0: no such limit) ...
  double maxGapShare;
  // ... and at most this many metres (0: no such limit).
  double maxGapM;
  // The gap is subtracted from the perimeter before the factor.
  bool deductGap;
};

// The three rule sets in the frame's order.
std::span<const TScoringRules* const> AllScoringRules();
const TScoringRules& DhvOlcRules();
const TScoringRules& GlidersOlcRules();
const TScoringRules& FrenchCfdRules();
// By name or alias, letter case ignored; nullptr when unknown.
const TScoringRules* FindScoringRules(std::string_view name);

struct TRuleScore {
  // The sum of the legs between the turnpoints on the rule's earth model
  // (the perimeter for closed shapes), before deduction and factor.
  double distanceM = 0;
  // Start to finish on the rule's earth model; -1 without a closing.
  double gapM = -1;
  // A closed shape whose closing the rules accept (false for free distance).
  bool closed = false;
  // The points per km applied; 0 when the flight does not count as its shape.
  double factor = 0;
  double score = 0;
};

// Scores the optimiser's result (indices into cache) under the rules. An FAI
// triangle whose legs fail the 28 % rule on the rule's earth model scores as
// a flat triangle; a closed shape whose closing is missing or beyond the
// rule's limits scores 0. A result without turnpoints scores 0.
TRuleScore ScoreWithRules(const TFlightPointCache& cache, const TOptimizationResult& result,
                          const TScoringRules& rules);

}  // namespace velantis
