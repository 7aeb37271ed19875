// The exact optimisation as a whole on constructed flights: on a track short
// enough for the default search to try every tuple (stride 1), both give the
// same shape and the same closing; and the closing phase is announced.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "analysis/exact_flight_optimizer.h"
#include "tests/analysis/flight_samples.h"

namespace velantis {
namespace {

using test::CacheOf;
using test::TOffsetM;

// A loop of n points around a lopsided figure, back near the take-off: the
// closing stands. Points wobble so that no two shapes tie.
std::vector<TOffsetM> Loop(int n, double radiusM) {
  std::vector<TOffsetM> points;
  for (int i = 0; i < n; ++i) {
    const double a = 2 * std::numbers::pi * i / (n - 1);
    const double r = radiusM * (1 + 0.35 * std::sin(3 * a) + 0.01 * std::sin(17.0 * i));
    points.push_back({r * std::sin(a), r * (1 - std::cos(a))});
  }
  return points;
}

TEST(OptimizeFlightExact, SameShapeAndClosingAsAnExhaustiveDefaultSearch) {
  struct TCase {
    TShapeKind shape;
    int points;
    bool closingStands;
  };
  const TCase cases[] = {
      {TShapeKind::FreeDistance, 60, true},
      {TShapeKind::Triangle, 70, true},
      {TShapeKind::FaiTriangle, 80, true},
      {TShapeKind::Quadrilateral, 45, true},
  };
  for (const TCase& c : cases) {
    const TOptimizationShape& shape = ShapeForKind(c.shape);
    SCOPED_TRACE(shape.name);
    const TFlightPointCache cache = CacheOf(Loop(c.points, 3000));
    TOptimizationResult exhaustive, exact;
    ASSERT_TRUE(OptimizeFlight(cache, shape, nullptr, {}, exhaustive));
    std::vector<std::string> phases;
    TFlightClosing closing;
    ASSERT_TRUE(OptimizeFlightExact(cache, shape, nullptr,
                                    [&](std::string_view message) { phases.emplace_back(message); }, exact,
                                    &closing));
    EXPECT_EQ(exact.score, exhaustive.score);
    EXPECT_EQ(exact.turnpoints, exhaustive.turnpoints);
    EXPECT_EQ(exact.distanceM, exhaustive.distanceM);
    EXPECT_EQ(exact.start, exhaustive.start);
    EXPECT_EQ(exact.finish, exhaustive.finish);
    EXPECT_EQ(exact.start != kNoPoint, c.closingStands);
    EXPECT_EQ(closing.stands, c.closingStands);
    EXPECT_EQ(exact.type, shape.type);
    EXPECT_EQ(phases, std::vector<std::string>{std::string(kGapPhaseMessage)});
  }
}

TEST(OptimizeFlightExact, NoResultAndNoClosingPhaseBelowKPoints) {
  const TFlightPointCache cache = CacheOf({{0, 0}, {900, 0}});
  TOptimizationResult result;
  bool announced = false;
  ASSERT_TRUE(OptimizeFlightExact(cache, ShapeForKind(TShapeKind::Triangle), nullptr,
                                  [&](std::string_view) { announced = true; }, result));
  EXPECT_FALSE(result.Found());
  EXPECT_EQ(result.start, kNoPoint);
  EXPECT_FALSE(announced);
}

}  // namespace
}  // namespace velantis
