// "DHV, HG/PG OLC": the online contest of the German hang gliding and
// paragliding association (DHV-OLC, today DHV-XC) for hang gliders and
// paragliders.
//
// Published rules followed:
// - DHV-OLC scoring (as the DHV online contest documents it and clubs copy
//   it into their own rules): 1.50 points per km for free distance, 1.75
//   for a flat triangle, 2.00 for an FAI triangle; the FAI 28 % rule applies
//   to the triangle A+B+C, the points to the scoring distance A+B+C-D, where
//   D is the distance between start and finish.
// - Online Contest rules (onlinecontest.org, "Regeln", 28.12.2001, section 2):
//   a flight counts as a triangle when start and finish are less than 20 %
//   of the triangle's distance apart, and the gap is then deducted. The
//   20 % gap is still part of the DHV-XC rules (DHV news, 28.01.2023).
// - Earth model: the FAI sphere, which the FAI Sporting Code Section 7 (hang
//   gliding and paragliding, CIVL) uses for all distances from 2015 on.
//
// Choices the rules leave open:
// - The four-turnpoint closed course has no class of its own in these rules;
//   it scores like a flat triangle (a closed course that is not an FAI
//   triangle): factor 1.75, the same 20 % closing and deduction.
// - "Less than 20 %" is taken as at most 20 %: the closing search already
//   keeps only gaps under 1000 m, so the limit only matters for triangles
//   under 5 km.
#include "analysis/scoring_rules.h"

namespace velantis {

namespace {

constexpr double kDhvFreePointsPerKm = 1.50;
constexpr double kDhvFlatTrianglePointsPerKm = 1.75;
constexpr double kDhvFaiTrianglePointsPerKm = 2.00;
constexpr double kDhvMaxGapShare = 0.20;

}  // namespace

const TScoringRules& DhvOlcRules() {
  static const TScoringRules rules{"DHV, HG/PG OLC", "dhv", TEarthModel::FaiSphere,
                                   kDhvFreePointsPerKm, kDhvFlatTrianglePointsPerKm, kDhvFaiTrianglePointsPerKm,
                                   kDhvFlatTrianglePointsPerKm, kDhvMaxGapShare, 0.0, true};
  return rules;
}

}  // namespace velantis
