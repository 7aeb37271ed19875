// The rule sets on hand-made results: factors, the closing limits and the
// gap deduction, and the earth model each rule set measures on.
#include "analysis/scoring_rules.h"

#include <GeographicLib/Geodesic.hpp>
#include <gtest/gtest.h>

#include <vector>

#include "tests/analysis/flight_samples.h"

namespace velantis {
namespace {

using test::CacheOf;
using test::TOffsetM;

// A course: the start at 0, the turnpoints, then the finish. The result
// takes the points between as its turnpoints, and start and finish as its
// closing when closed.
TRuleScore Score(const std::vector<TOffsetM>& course, TShapeKind kind, bool closed, const TScoringRules& rules) {
  TOptimizationResult result;
  const TOptimizationShape& shape = ShapeForKind(kind);
  result.type = shape.type;
  result.turnpointCount = shape.turnpoints;
  for (int i = 0; i < shape.turnpoints; ++i) result.turnpoints[static_cast<size_t>(i)] = i + 1;
  result.start = closed ? 0 : kNoPoint;
  result.finish = closed ? shape.turnpoints + 1 : kNoPoint;
  return ScoreWithRules(CacheOf(course), result, rules);
}

TEST(ScoringRules, PointsOfEachRuleSet) {
  // Equilateral 10 km triangle from the start; 6-8-10 km triangle (shortest
  // leg 25 %); 5 km square; the finish east of the start by the gap.
  const auto equilateral = [](double gapM) {
    return std::vector<TOffsetM>{{0, 0}, {0, 0}, {10000, 0}, {5000, 8660.254}, {gapM, 0}};
  };
  const auto flat = [](double gapM) {
    return std::vector<TOffsetM>{{0, 0}, {0, 0}, {8000, 0}, {8000, 6000}, {gapM, 0}};
  };
  const auto square = [](double gapM) {
    return std::vector<TOffsetM>{{0, 0}, {0, 0}, {5000, 0}, {5000, 5000}, {0, 5000}, {gapM, 0}};
  };
  const std::vector<TOffsetM> line{{0, 0}, {0, 0}, {10000, 0}, {0, 0}};
  const struct {
    const char* what;
    const TScoringRules& rules;
    std::vector<TOffsetM> course;
    TShapeKind kind;
    bool closed;
    double expectedPoints;
  } cases[] = {
      {"DHV free distance", DhvOlcRules(), line, TShapeKind::FreeDistance, false, 10 * 1.5},
      {"DHV FAI, gap deducted", DhvOlcRules(), equilateral(500), TShapeKind::FaiTriangle, true, 29.5 * 2.0},
      {"DHV flat", DhvOlcRules(), equilateral(500), TShapeKind::Triangle, true, 29.5 * 1.75},
      {"DHV FAI search, 25 % leg: flat", DhvOlcRules(), flat(500), TShapeKind::FaiTriangle, true, 23.5 * 1.75},
      {"DHV gap of 19 % closes", DhvOlcRules(), flat(4560), TShapeKind::Triangle, true, (24 - 4.56) * 1.75},
      {"DHV gap of 21 % does not", DhvOlcRules(), flat(5040), TShapeKind::Triangle, true, 0},
      {"DHV quadrilateral", DhvOlcRules(), square(400), TShapeKind::Quadrilateral, true, 19.6 * 1.75},
      {"DHV triangle without closing", DhvOlcRules(), equilateral(500), TShapeKind::FaiTriangle, false, 0},
      {"Gliders free distance", GlidersOlcRules(), line, TShapeKind::FreeDistance, false, 10 * 1.0},
      {"Gliders FAI, no deduction", GlidersOlcRules(), equilateral(900), TShapeKind::FaiTriangle, true, 30 * 1.3},
      {"Gliders flat", GlidersOlcRules(), equilateral(900), TShapeKind::Triangle, true, 30 * 1.0},
      {"Gliders gap over 1 km", GlidersOlcRules(), equilateral(1100), TShapeKind::FaiTriangle, true, 0},
      {"CFD free distance", FrenchCfdRules(), line, TShapeKind::FreeDistance, false, 10 * 1.0},
      {"CFD FAI, 2.9 km gap", FrenchCfdRules(), equilateral(2900), TShapeKind::FaiTriangle, true, 30 * 1.4},
      {"CFD flat", FrenchCfdRules(), equilateral(2900), TShapeKind::Triangle, true, 30 * 1.2},
      {"CFD quadrilateral", FrenchCfdRules(), square(2900), TShapeKind::Quadrilateral, true, 20 * 1.2},
      {"CFD gap over 3 km", FrenchCfdRules(), equilateral(3100), TShapeKind::FaiTriangle, true, 0},
  };
  for (const auto& c : cases) {
    // The courses are laid out on the sphere; WGS 84 differs by a few 0.1 %.
    EXPECT_NEAR(Score(c.course, c.kind, c.closed, c.rules).score, c.expectedPoints, 0.005 * c.expectedPoints + 1e-9)
        << c.what;
  }
}

TEST(ScoringRules, DistanceOnTheRuleSetsEarthModel) {
  const std::vector<TOffsetM> course{{0, 0}, {0, 0}, {40000, 30000}, {0, 0}};
  const TFlightPointRecord a = CacheOf(course).Record(1);
  const TFlightPointRecord b = CacheOf(course).Record(2);
  const struct {
    const TScoringRules& rules;
    GeographicLib::Geodesic model;
  } cases[] = {
      {DhvOlcRules(), GeographicLib::Geodesic(kFaiSphereRadiusM, 0)},
      {GlidersOlcRules(), GeographicLib::Geodesic::WGS84()},
      {FrenchCfdRules(), GeographicLib::Geodesic(kFaiSphereRadiusM, 0)},
  };
  for (const auto& c : cases) {
    double expected = 0;
    c.model.Inverse(a.latDeg, a.lonDeg, b.latDeg, b.lonDeg, expected);
    EXPECT_NEAR(Score(course, TShapeKind::FreeDistance, false, c.rules).distanceM, expected, 1e-3) << c.rules.name;
  }
}

TEST(ScoringRules, LookUpByNameOrAlias) {
  const std::pair<const char*, const TScoringRules*> cases[] = {
      {"DHV, HG/PG OLC", &DhvOlcRules()}, {"dhv", &DhvOlcRules()},     {"Gliders OLC", &GlidersOlcRules()},
      {"GLIDERS", &GlidersOlcRules()},    {"French CFD", &FrenchCfdRules()}, {"cfd", &FrenchCfdRules()},
      {"OLC", nullptr},                   {"", nullptr}};
  for (const auto& [name, expected] : cases) EXPECT_EQ(FindScoringRules(name), expected) << name;
}

}  // namespace
}  // namespace velantis
