// "Gliders OLC": the Online Contest for sailplanes, scored as OLC-Plus.
//
// Published rules followed:
// - OLC-Plus rules (Segelflugszene gGmbH, onlinecontest.org, issue of
//   1 February 2016): the classic distance scores 1 point per km; the
//   largest FAI triangle adds 0.3 points per km; a triangle needs start and
//   finish within 1 km of each other. Handicaps (the DAeC index) belong to
//   the glider, not to the course, and are left out.
// - Earth model: WGS 84, as the FAI Sporting Code Section 3 (gliding),
//   para 4.4.1 a, fixes for distance calculations.
//
// Choices the rules leave open:
// - One shape is scored at a time. An FAI triangle flown as the whole flight
//   is also its classic distance, so it scores 1 + 0.3 = 1.3 points per km.
//   A flat triangle and a quadrilateral are classic courses: 1 point per km.
// - The 1 km closing is required of every closed shape (the course must
//   return to its start to be one), and the gap is not deducted.
#include "analysis/scoring_rules.h"

namespace velantis {

namespace {

constexpr double kOlcClassicPointsPerKm = 1.0;
constexpr double kOlcFaiTriangleBonusPerKm = 0.3;
constexpr double kOlcMaxGapM = 1000.0;

}  // namespace

const TScoringRules& GlidersOlcRules() {
  static const TScoringRules rules{"Gliders OLC", "gliders", TEarthModel::Wgs84,
                                   kOlcClassicPointsPerKm, kOlcClassicPointsPerKm,
                                   kOlcClassicPointsPerKm + kOlcFaiTriangleBonusPerKm, kOlcClassicPointsPerKm,
                                   0.0, kOlcMaxGapM, false};
  return rules;
}

}  // namespace velantis
