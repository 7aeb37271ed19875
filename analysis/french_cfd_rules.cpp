// "French CFD": the Coupe Fédérale de Distance of the French free flight
// federation (FFVL) for paragliders and hang gliders.
//
// Published rules followed:
// - Règlement CFD parapente (FFVL, 2017/2018, and the CFD delta rules of
//   2014/2015): free distance 1.0 point per km; out-and-return, flat
//   triangle and quadrilateral 1.2; FAI triangle (shortest leg at least 28 %
//   of the total) 1.4. A closed course needs take-off and landing less than
//   3 km apart, and its distance is the course through the turnpoints.
// - Earth model: the FAI sphere, as for every hang gliding and paragliding
//   distance under the FAI Sporting Code Section 7.
//
// Choices the rules leave open:
// - The 3 km limit is applied to the optimiser's start and finish, the
//   nearest pair around the course, not to the take-off and the landing
//   themselves; the closing search keeps only gaps under 1000 m, so every
//   closing that stands passes it.
// - The gap is not deducted: the course is the distance through the
//   turnpoints.
#include "analysis/scoring_rules.h"

namespace velantis {

namespace {

constexpr double kCfdFreePointsPerKm = 1.0;
constexpr double kCfdFlatPointsPerKm = 1.2;
constexpr double kCfdFaiTrianglePointsPerKm = 1.4;
constexpr double kCfdMaxGapM = 3000.0;

}  // namespace

const TScoringRules& FrenchCfdRules() {
  static const TScoringRules rules{"French CFD", "cfd", TEarthModel::FaiSphere,
                                   kCfdFreePointsPerKm, kCfdFlatPointsPerKm, kCfdFaiTrianglePointsPerKm,
                                   kCfdFlatPointsPerKm, 0.0, kCfdMaxGapM, false};
  return rules;
}

}  // namespace velantis
