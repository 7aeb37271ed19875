// The default search on small constructed flights: the edge cases, the tie
// rule with the coarse grid and the refinement windows, the FAI rule, and
// progress and cancel.
#include "analysis/flight_optimizer.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "analysis/optimization_route.h"
#include "analysis/turnpoint_search.h"
#include "core/track.h"
#include "tests/analysis/flight_samples.h"

namespace velantis {
namespace {

using test::CacheOf;
using test::TOffsetM;

std::vector<int> Turnpoints(const TOptimizationResult& result) {
  return {result.Turnpoints().begin(), result.Turnpoints().end()};
}

TFlightPointCache EqualPoints(size_t n) {
  return CacheOf(std::vector<TOffsetM>(n, TOffsetM{0, 0}));
}

TEST(FlightOptimizer, TooFewPointsGiveNoResult) {
  for (TShapeKind kind : {TShapeKind::FreeDistance, TShapeKind::Triangle, TShapeKind::Quadrilateral}) {
    for (size_t n : {0, 1}) {
      TOptimizationResult result;
      ASSERT_TRUE(OptimizeFlight(EqualPoints(n), ShapeForKind(kind), nullptr, {}, result));
      EXPECT_FALSE(result.Found()) << n << " points";
      EXPECT_EQ(result.start, kNoPoint);
    }
  }
}

// All points equal: every candidate scores 0, and as equal scores replace
// the best, the result is the last candidate the refinement visits (worked
// by hand from the coarse grid and the windows).
TEST(FlightOptimizer, EqualPointsEndOnTheLastIndicesVisited) {
  struct TCase {
    TShapeKind kind;
    size_t n;
    std::vector<int> expected;
  };
  const TCase cases[] = {
      // stride 2: coarse (246, 248); windows [197, 246], [248, 248]
      {TShapeKind::FreeDistance, 250, {246, 248}},
      // stride 10: coarse (970, 980, 990); windows [920, 972], [978, 982], [988, 992]
      {TShapeKind::Triangle, 1000, {972, 982, 992}},
      {TShapeKind::FaiTriangle, 1000, {972, 982, 992}},
      // stride 5: coarse (230, 235, 240, 245); windows [210, 231], [234, 236], [239, 241], [244, 246]
      {TShapeKind::Quadrilateral, 250, {231, 236, 241, 246}},
      // stride 1, no refinement
      {TShapeKind::Triangle, 7, {4, 5, 6}},
  };
  for (const TCase& c : cases) {
    TOptimizationResult result;
    ASSERT_TRUE(OptimizeFlight(EqualPoints(c.n), ShapeForKind(c.kind), nullptr, {}, result));
    EXPECT_EQ(Turnpoints(result), c.expected) << ShapeForKind(c.kind).name;
    EXPECT_EQ(result.score, 0.0);
    // The gap is 0: the first start and the first finish close the flight.
    EXPECT_EQ(result.start, 0);
    EXPECT_EQ(result.finish, c.expected.back());
  }
}

// Five corners: an equilateral triangle ABC of 10 km sides and D 30 km east
// of A. Every triangle with D is longer but has a leg under 28 %.
TEST(FlightOptimizer, FaiRuleRefusesTheLongestTriangle) {
  const TFlightPointCache cache = CacheOf({{0, 0}, {10000, 0}, {5000, 8660.25}, {30000, 0}, {29000, 0}});
  struct TCase {
    TShapeKind kind;
    std::vector<int> expected;
    double perimeterM;
  };
  const TCase cases[] = {
      {TShapeKind::Triangle, {0, 2, 3}, 10000 + 26458 + 30000},
      {TShapeKind::FaiTriangle, {0, 1, 2}, 30000},
  };
  for (const TCase& c : cases) {
    TOptimizationResult result;
    ASSERT_TRUE(OptimizeFlight(cache, ShapeForKind(c.kind), nullptr, {}, result));
    EXPECT_EQ(Turnpoints(result), c.expected) << ShapeForKind(c.kind).name;
    EXPECT_NEAR(result.distanceM, c.perimeterM, 0.003 * c.perimeterM);
    EXPECT_EQ(result.score, result.distanceM);
  }
}

// Four points visited in bow-tie order form no quadrilateral that counts;
// with a fifth the search takes the longest convex one.
TEST(FlightOptimizer, QuadrilateralsThatDoNotCountAreNotTaken) {
  struct TCase {
    const char* what;
    std::vector<TOffsetM> points;
    std::vector<int> expected;  // empty: no result
  };
  const TCase cases[] = {
      {"bow tie only", {{0, 0}, {4000, 4000}, {4000, 0}, {0, 4000}}, {}},
      // (0, 1, 2, 3) is the bow tie; (0, 2, 3, 4) is a convex 4 x 4 km square
      {"bow tie and a square", {{0, 0}, {4000, 4000}, {4000, 0}, {4000, 4000}, {0, 4000}}, {0, 2, 3, 4}},
  };
  for (const TCase& c : cases) {
    TOptimizationResult result;
    ASSERT_TRUE(OptimizeFlight(CacheOf(c.points), ShapeForKind(TShapeKind::Quadrilateral), nullptr, {}, result));
    EXPECT_EQ(result.Found(), !c.expected.empty()) << c.what;
    if (result.Found()) {
      EXPECT_EQ(Turnpoints(result), c.expected) << c.what;
    }
  }
}

// A straight line of 300 points 10 m apart, except point 1 (5 km west) and
// point 298 (10 km east). The coarse grid (stride 3) sees neither; the
// windows around its result (0, 297) reach point 1 but not point 298: the
// heuristic answers (1, 297), not the optimum (1, 298).
TEST(FlightOptimizer, RefinementSearchesOnlyItsWindows) {
  std::vector<TOffsetM> line;
  for (int i = 0; i < 300; ++i) line.push_back({10.0 * i, 0});
  line[1] = {-5000, 0};
  line[298] = {10000, 0};
  TOptimizationResult result;
  ASSERT_TRUE(OptimizeFlight(CacheOf(line), ShapeForKind(TShapeKind::FreeDistance), nullptr, {}, result));
  EXPECT_EQ(Turnpoints(result), (std::vector<int>{1, 297}));
  EXPECT_NEAR(result.distanceM, 7970, 10);
  // The only start before P1 is point 0, 2970 m from the nearest finish.
  EXPECT_EQ(result.start, kNoPoint);
  EXPECT_EQ(result.finish, kNoPoint);
}

TEST(FlightOptimizer, ProgressAndCancel) {
  const TFlightPointCache cache = EqualPoints(1000);
  // The outermost index takes 100 values at stride 10, each advancing 10.
  TProgress counted;
  TSearchBest best;
  ASSERT_TRUE(SearchTurnpoints(cache, ShapeForKind(TShapeKind::FreeDistance), WholeTrackWindows(1000), 10, &counted, best));
  EXPECT_EQ(counted.Steps(), 1000);

  std::vector<std::string> phases;
  TOptimizationResult result;
  ASSERT_TRUE(OptimizeFlight(cache, ShapeForKind(TShapeKind::FreeDistance), &counted, [&](std::string_view m) {
    phases.emplace_back(m);
  }, result));
  EXPECT_EQ(phases, std::vector<std::string>{"Calculating GAP distance"});

  TProgress cancelled;
  cancelled.Cancel();
  result.turnpoints[0] = 5;
  EXPECT_FALSE(OptimizeFlight(cache, ShapeForKind(TShapeKind::Triangle), &cancelled, {}, result));
  EXPECT_FALSE(result.Found());
}

// The route leaves out a start and finish that did not stand; the index list
// keeps their places.
// The search reads its legs from tables measured once per pass; on windows
// whose low ends lie on the stride's grid and on windows whose low ends do
// not, it must find the triangle that measuring every candidate finds (the
// greatest perimeter, the last one visited among equals).
TEST(TurnpointSearch, LegTablesGiveTheTriangleOfMeasuringEveryCandidate) {
  struct TCase {
    const char* what;
    TSearchWindows windows;
    int stride;
  };
  const TCase cases[] = {
      {"whole track, stride 3", WholeTrackWindows(60), 3},
      {"low ends off the grid, stride 3", {{{1, 40}, {5, 47}, {10, 59}, {}}}, 3},
      {"overlapping windows, stride 1", {{{0, 30}, {20, 45}, {25, 59}, {}}}, 1},
  };
  std::mt19937 random(5);
  std::uniform_real_distribution<double> offset(-20000, 20000);
  std::vector<TOffsetM> points;
  for (int i = 0; i < 60; ++i) points.push_back({offset(random), offset(random)});
  const TFlightPointCache cache = CacheOf(points);
  const auto d = [&](int a, int b) { return cache.Distance(static_cast<size_t>(a), static_cast<size_t>(b)); };
  for (const TCase& c : cases) {
    TSearchBest expected;
    const auto& w = c.windows;
    for (int p1 = w[0].low; p1 <= w[0].high; p1 += c.stride)
      for (int p2 = std::max(p1 + c.stride, w[1].low); p2 <= w[1].high; p2 += c.stride)
        for (int p3 = std::max(p2 + c.stride, w[2].low); p3 <= w[2].high; p3 += c.stride) {
          const double score = d(p1, p2) + d(p2, p3) + d(p3, p1);
          if (score >= expected.score) expected = {{p1, p2, p3, kNoPoint}, score};
        }
    TSearchBest best;
    ASSERT_TRUE(SearchTurnpoints(cache, ShapeForKind(TShapeKind::Triangle), c.windows, c.stride, nullptr, best));
    EXPECT_EQ(best.turnpoints, expected.turnpoints) << c.what;
    EXPECT_EQ(best.score, expected.score) << c.what;
  }
}

TEST(OptimizationRoute, NamesAndIndices) {
  TTrack track;
  for (int i = 0; i < 6; ++i) track.Anyade_Punto_Temps(45.0 + 0.01 * i, 6.0, 1000.0f + static_cast<float>(i), TDateTime());
  struct TCase {
    int start, finish;
    std::vector<std::string> names;
    std::vector<int> indices;
  };
  const TCase cases[] = {
      {0, 5, {"Start", "Point 1", "Point 2", "Point 3", "Finish"}, {0, 1, 3, 4, 5}},
      {kNoPoint, kNoPoint, {"Point 1", "Point 2", "Point 3"}, {-1, 1, 3, 4, -1}},
  };
  for (const TCase& c : cases) {
    TOptimizationResult result;
    result.type = kOptimizationTypeTriangle;
    result.turnpointCount = 3;
    result.turnpoints = {1, 3, 4, kNoPoint};
    result.start = c.start;
    result.finish = c.finish;
    TRuta route;
    std::vector<int> indices;
    BuildOptimizationRoute(track, result, route, indices);
    EXPECT_EQ(indices, c.indices);
    ASSERT_EQ(route.Count(), c.names.size());
    for (size_t i = 0; i < route.Count(); ++i) EXPECT_EQ(route.Point(i).baliza.Name(), c.names[i]);
    EXPECT_DOUBLE_EQ(route.Point(1).baliza.Latitude(), c.start == kNoPoint ? 45.03 : 45.01);
  }
}

}  // namespace
}  // namespace velantis
