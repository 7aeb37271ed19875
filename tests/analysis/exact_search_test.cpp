// The exact search against brute force (every increasing index tuple) on
// short random tracks for every shape, its edge cases, progress and cancel.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "analysis/exact_search.h"
#include "analysis/shape_upper_bound.h"
#include "tests/analysis/flight_samples.h"

namespace velantis {
namespace {

using test::CacheOf;
using test::TOffsetM;

// The highest ShapeScore over every tuple P1 < ... < PK.
double BruteForceBest(const TFlightPointCache& cache, const TOptimizationShape& shape) {
  const int n = static_cast<int>(cache.Count());
  const int k = shape.turnpoints;
  std::vector<int> p(static_cast<size_t>(k));
  for (int j = 0; j < k; ++j) p[static_cast<size_t>(j)] = j;
  double best = 0;
  while (true) {
    best = std::max(best, ShapeScore(cache, shape, p));
    int j = k - 1;
    while (j >= 0 && p[static_cast<size_t>(j)] == n - k + j) --j;
    if (j < 0) return best;
    ++p[static_cast<size_t>(j)];
    for (int i = j + 1; i < k; ++i) p[static_cast<size_t>(i)] = p[static_cast<size_t>(i - 1)] + 1;
  }
}

enum class TTrackKind { Walk, Scatter, Line };

// A random flight of n points: a walk with changing heading and step, points
// scattered over a square, or a line with a little sideways noise (the long
// thin shapes that make bounds work hardest).
std::vector<TOffsetM> RandomTrack(TTrackKind kind, int n, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::vector<TOffsetM> points;
  double east = 0, north = 0, heading = 0;
  for (int i = 0; i < n; ++i) {
    switch (kind) {
      case TTrackKind::Walk:
        heading += (unit(random) - 0.5) * 2.5;
        east += std::cos(heading) * (200 + 1800 * unit(random));
        north += std::sin(heading) * (200 + 1800 * unit(random));
        break;
      case TTrackKind::Scatter:
        east = 20000 * unit(random);
        north = 20000 * unit(random);
        break;
      case TTrackKind::Line:
        east = 1000.0 * i + 300 * unit(random);
        north = 150 * (unit(random) - 0.5);
        break;
    }
    points.push_back({east, north});
  }
  return points;
}

struct TRandomCase {
  TTrackKind kind;
  int points;
  unsigned seeds;  // tracks tried, seeds 1..seeds
};

TEST(ExactSearch, EqualsBruteForceOnRandomTracksForEveryShape) {
  const TRandomCase cases[] = {
      {TTrackKind::Walk, 24, 12},
      {TTrackKind::Scatter, 20, 12},
      {TTrackKind::Line, 22, 8},
      {TTrackKind::Walk, 9, 10},
  };
  const TShapeKind shapes[] = {TShapeKind::FreeDistance, TShapeKind::Triangle, TShapeKind::FaiTriangle,
                               TShapeKind::Quadrilateral};
  for (const TRandomCase& c : cases) {
    for (unsigned seed = 1; seed <= c.seeds; ++seed) {
      const TFlightPointCache cache = CacheOf(RandomTrack(c.kind, c.points, seed));
      for (const TShapeKind kind : shapes) {
        const TOptimizationShape& shape = ShapeForKind(kind);
        SCOPED_TRACE(testing::Message() << shape.name << " track kind " << static_cast<int>(c.kind) << " n "
                                        << c.points << " seed " << seed);
        TOptimizationResult result;
        ASSERT_TRUE(ExactSearch(cache, shape, nullptr, result));
        EXPECT_NEAR(result.score, BruteForceBest(cache, shape), 1e-9);
        const auto tps = result.Turnpoints();
        ASSERT_EQ(tps.size(), static_cast<size_t>(shape.turnpoints));
        for (size_t j = 1; j < tps.size(); ++j) EXPECT_LT(tps[j - 1], tps[j]);
        EXPECT_EQ(result.score, ShapeScore(cache, shape, tps));
        EXPECT_EQ(result.distanceM, ShapeDistance(cache, shape, tps));
        EXPECT_EQ(result.type, shape.type);
        EXPECT_EQ(result.start, kNoPoint);
        EXPECT_EQ(result.finish, kNoPoint);
      }
    }
  }
}

TEST(ExactSearch, ShortAndFlatTracks) {
  struct TCase {
    const char* what;
    std::vector<TOffsetM> points;
    TShapeKind shape;
    bool found;
    std::vector<int> turnpoints;  // when found
  };
  const std::vector<TCase> cases = {
      {"empty track", {}, TShapeKind::FreeDistance, false, {}},
      {"one point", {{0, 0}}, TShapeKind::FreeDistance, false, {}},
      {"two points, free", {{0, 0}, {500, 0}}, TShapeKind::FreeDistance, true, {0, 1}},
      {"two points, triangle", {{0, 0}, {500, 0}}, TShapeKind::Triangle, false, {}},
      {"three points, quad", {{0, 0}, {500, 0}, {0, 500}}, TShapeKind::Quadrilateral, false, {}},
      // All scores 0: the last indices, as the default search leaves them.
      {"one place", {{0, 0}, {0, 0}, {0, 0}, {0, 0}, {0, 0}}, TShapeKind::Triangle, true, {2, 3, 4}},
      {"straight line, no FAI triangle", {{0, 0}, {1000, 0}, {2000, 0}, {3000, 0}}, TShapeKind::FaiTriangle, true,
       {1, 2, 3}},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.what);
    const TFlightPointCache cache = CacheOf(c.points);
    TOptimizationResult result;
    ASSERT_TRUE(ExactSearch(cache, ShapeForKind(c.shape), nullptr, result));
    EXPECT_EQ(result.Found(), c.found);
    if (c.found) {
      EXPECT_EQ(std::vector<int>(result.Turnpoints().begin(), result.Turnpoints().end()), c.turnpoints);
    }
  }
}

TEST(ExactSearch, ProgressEndsAtItsTotalAndCancelReturnsNothing) {
  const TFlightPointCache cache = CacheOf(RandomTrack(TTrackKind::Walk, 3000, 7));
  const TOptimizationShape& shape = ShapeForKind(TShapeKind::FaiTriangle);
  TProgress progress;
  TOptimizationResult result;
  ASSERT_TRUE(ExactSearch(cache, shape, &progress, result));
  EXPECT_EQ(progress.Total(), kExactProgressUnits);
  EXPECT_EQ(progress.Steps(), kExactProgressUnits);
  EXPECT_TRUE(result.Found());

  TProgress cancelled;
  cancelled.Cancel();
  TOptimizationResult untouched;
  untouched.score = 12345;
  EXPECT_FALSE(ExactSearch(cache, shape, &cancelled, untouched));
  EXPECT_EQ(untouched.score, 12345);
  EXPECT_FALSE(untouched.Found());
}

TEST(LegShareBound, PerimetersTheLegRuleAllows) {
  struct TCase {
    const char* what;
    std::vector<double> maxLegs, minLegs;
    double share;
    double bound;
  };
  const TCase cases[] = {
      {"equal legs: the sum", {10, 10, 10}, {0, 0, 0}, kFaiMinLegShare, 30},
      {"a short leg caps the perimeter", {10, 100, 100}, {0, 0, 0}, kFaiMinLegShare, 10 / kFaiMinLegShare},
      {"a long thin triangle of a straight flight", {100, 100, 200}, {100, 100, 200}, kFaiMinLegShare, 0},
      {"long smallest legs leave no room", {40, 40, 100}, {10, 10, 90}, kFaiMinLegShare, 0},
      {"quadrilateral share", {10, 100, 100, 100}, {0, 0, 0, 0}, kQuadMinLegShare, 10 / kQuadMinLegShare},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_NEAR(LegShareBound(c.maxLegs, c.minLegs, c.share), c.bound, 1e-9);
  }
}

}  // namespace
}  // namespace velantis
