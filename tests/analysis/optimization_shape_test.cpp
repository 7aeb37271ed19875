// The shapes by type number and name, and the objective of one candidate:
// the FAI leg rule and the quadrilateral's convexity and leg rules, on
// constructed corners whose legs are known in metres.
#include "analysis/optimization_shape.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/analysis/flight_samples.h"

namespace velantis {
namespace {

using test::CacheOf;
using test::TOffsetM;

TEST(OptimizationShape, TypeNumbersAndNames) {
  struct TCase {
    int type;
    int turnpoints;
    bool fai;
    const char* name;
  };
  const TCase cases[] = {
      {7, 2, false, "free"}, {1, 3, true, "fai"}, {8, 4, false, "quad"},
      {3, 3, false, "triangle"}, {0, 3, false, "triangle"}, {2, 3, false, "triangle"}, {9, 3, false, "triangle"},
  };
  for (const TCase& c : cases) {
    const TOptimizationShape& shape = ShapeForType(c.type);
    EXPECT_EQ(shape.turnpoints, c.turnpoints) << c.type;
    EXPECT_EQ(shape.faiRule, c.fai) << c.type;
    EXPECT_EQ(shape.name, c.name) << c.type;
    ASSERT_NE(ShapeForName(c.name), nullptr);
    EXPECT_EQ(ShapeForName(c.name)->turnpoints, c.turnpoints);
  }
  EXPECT_EQ(ShapeForName("square"), nullptr);
}

// Scores of single candidates. Corners are metres east/north; the expected
// score is the sum of the legs in metres (0 when the rule refuses it), to
// within the sphere-versus-plane difference of legs a few km long.
TEST(OptimizationShape, ScoreOfOneCandidate) {
  struct TCase {
    const char* what;
    TShapeKind kind;
    std::vector<TOffsetM> corners;
    double expectedM;
  };
  const TCase cases[] = {
      {"free distance is the one leg", TShapeKind::FreeDistance, {{0, 0}, {3000, 4000}}, 5000},
      {"flat triangle is its perimeter", TShapeKind::Triangle, {{0, 0}, {3000, 0}, {3000, 4000}}, 12000},
      {"flat triangle keeps a short leg", TShapeKind::Triangle, {{0, 0}, {10000, 0}, {10000, 1000}}, 21049.9},
      // legs 3000, 4000, 5000: the shortest is 25 % of 12000
      {"FAI refuses a 25 % leg", TShapeKind::FaiTriangle, {{0, 0}, {3000, 0}, {3000, 4000}}, 0},
      // isosceles 1 km base and 2 km sides: the base is 1000 / 5000 = 20 %
      {"FAI refuses a 20 % base", TShapeKind::FaiTriangle, {{0, 0}, {1000, 0}, {500, 1936.49}}, 0},
      // legs 5 km, 5 km, 4 km: shortest 28.57 %
      {"FAI accepts 28.6 %", TShapeKind::FaiTriangle, {{0, 0}, {4000, 0}, {2000, 4582.58}}, 14000},
      {"square counts", TShapeKind::Quadrilateral, {{0, 0}, {4000, 0}, {4000, 4000}, {0, 4000}}, 16000},
      {"clockwise square counts", TShapeKind::Quadrilateral, {{0, 0}, {0, 4000}, {4000, 4000}, {4000, 0}}, 16000},
      {"crossed corners (bow tie) do not", TShapeKind::Quadrilateral, {{0, 0}, {4000, 4000}, {4000, 0}, {0, 4000}}, 0},
      {"concave corner does not", TShapeKind::Quadrilateral, {{0, 0}, {4000, 0}, {1000, 1000}, {0, 4000}}, 0},
      // 10 x 1.5 km rectangle: the short legs are 1500 / 23000 = 6.5 %
      {"thin rectangle does not", TShapeKind::Quadrilateral, {{0, 0}, {10000, 0}, {10000, 1500}, {0, 1500}}, 0},
      // 10 x 2 km: 2000 / 24000 = 8.3 %; 10 x 4 km: 4000 / 28000 = 14.3 %
      {"rectangle at 14.3 % does not", TShapeKind::Quadrilateral, {{0, 0}, {10000, 0}, {10000, 4000}, {0, 4000}}, 0},
      // 10 x 4.5 km: 4500 / 29000 = 15.5 %
      {"rectangle at 15.5 % counts", TShapeKind::Quadrilateral, {{0, 0}, {10000, 0}, {10000, 4500}, {0, 4500}}, 29000},
  };
  for (const TCase& c : cases) {
    const TFlightPointCache cache = CacheOf(c.corners);
    std::vector<int> indices;
    for (size_t i = 0; i < c.corners.size(); ++i) indices.push_back(static_cast<int>(i));
    const double score = ShapeScore(cache, ShapeForKind(c.kind), indices);
    EXPECT_NEAR(score, c.expectedM, 0.002 * c.expectedM + 0.5) << c.what;
  }
}

TEST(OptimizationShape, TurnDirectionIsPositiveToTheLeft) {
  const TFlightPointCache cache = CacheOf({{0, 0}, {1000, 0}, {1000, 1000}, {2000, 0}, {3000, 0}});
  EXPECT_EQ(TurnDirection(cache, 0, 1, 2), 1);   // east, then north
  EXPECT_EQ(TurnDirection(cache, 2, 1, 0), -1);  // south, then west
  EXPECT_EQ(TurnDirection(cache, 0, 1, 4), 0);   // straight on
}

}  // namespace
}  // namespace velantis
