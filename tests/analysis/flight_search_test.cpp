// The default and the exact flight search on constructed tracks: the edge
// cases, the default search's tie rule over its coarse grid and refinement
// windows, the exact search against brute force, and cancel.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <numbers>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "analysis/exact_flight_optimizer.h"
#include "analysis/flight_optimizer.h"
#include "tests/analysis/flight_samples.h"

namespace velantis {
namespace {

using test::CacheOf;
using test::TOffsetM;

// Empty when there is no result.
std::vector<int> Turnpoints(const TOptimizationResult& result) {
  if (!result.Found()) return {};
  return {result.Turnpoints().begin(), result.Turnpoints().end()};
}

std::vector<TOffsetM> SamePlace(size_t n) { return std::vector<TOffsetM>(n, TOffsetM{0, 0}); }

// A line of 300 points 10 m apart, except point 1 (5 km west) and point 298
// (10 km east). The default search's coarse grid (stride 3) sees neither;
// the windows around its result (0, 297) reach point 1 but not point 298.
std::vector<TOffsetM> LineWithFarEnds() {
  std::vector<TOffsetM> line;
  for (int i = 0; i < 300; ++i) line.push_back({10.0 * i, 0});
  line[1] = {-5000, 0};
  line[298] = {10000, 0};
  return line;
}

// Both searches on one table. When all points are equal every candidate
// scores 0, equal scores replace the best, and the default search ends on
// the last candidate its refinement visits (worked by hand from the coarse
// grid and the windows); the exact search returns the last K indices. The
// gap is then 0: the first start and the first finish close the flight.
TEST(FlightSearch, EdgeCasesOfBothSearches) {
  struct TCase {
    const char* what;
    std::vector<TOffsetM> points;
    TShapeKind shape;
    // Turnpoints; empty: no result. On many equal points the exact search
    // visits every tuple (every bound ties the best): left out there.
    std::vector<int> heuristic, exact;
    double heuristicM, exactM;          // scores
    bool closed;                        // start 0, finish on the last turnpoint; else neither
  };
  // ABC: an equilateral triangle of 10 km sides; D 30 km east of A. Every
  // triangle with D is longer but has a leg under 28 %.
  const std::vector<TOffsetM> abcd{{0, 0}, {10000, 0}, {5000, 8660.25}, {30000, 0}, {29000, 0}};
  const std::vector<TCase> cases = {
      {"empty track", {}, TShapeKind::FreeDistance, {}, {}, 0, 0, false},
      {"two points, free", {{0, 0}, {500, 0}}, TShapeKind::FreeDistance, {0, 1}, {0, 1}, 500, 500, false},
      {"three points, quadrilateral", {{0, 0}, {500, 0}, {0, 500}}, TShapeKind::Quadrilateral, {}, {}, 0, 0, false},
      // stride 1, no refinement
      {"seven equal points", SamePlace(7), TShapeKind::Triangle, {4, 5, 6}, {4, 5, 6}, 0, 0, true},
      // stride 2: coarse (246, 248); windows [197, 246], [248, 248]
      {"equal points, free", SamePlace(250), TShapeKind::FreeDistance, {246, 248}, {248, 249}, 0, 0, true},
      // stride 10: coarse (970, 980, 990); windows [920, 972], [978, 982], [988, 992]
      {"equal points, triangle", SamePlace(1000), TShapeKind::Triangle, {972, 982, 992}, {}, 0, 0, true},
      {"equal points, FAI", SamePlace(1000), TShapeKind::FaiTriangle, {972, 982, 992}, {}, 0, 0, true},
      // stride 5: coarse (230, 235, 240, 245); windows [210, 231], [234, 236], [239, 241], [244, 246]
      {"equal points, quadrilateral", SamePlace(250), TShapeKind::Quadrilateral, {231, 236, 241, 246}, {}, 0, 0, true},
      {"the longest triangle", abcd, TShapeKind::Triangle, {0, 2, 3}, {0, 2, 3}, 66458, 66458, false},
      {"FAI rule refuses it", abcd, TShapeKind::FaiTriangle, {0, 1, 2}, {0, 1, 2}, 30000, 30000, false},
      // no FAI triangle: score 0, the last indices; the 2 km gap does not close
      {"straight line, FAI", {{0, 0}, {1000, 0}, {2000, 0}, {3000, 0}}, TShapeKind::FaiTriangle, {1, 2, 3}, {1, 2, 3},
       0, 0, false},
      // the exact search then gives the last indices at score 0
      {"bow tie only", {{0, 0}, {4000, 4000}, {4000, 0}, {0, 4000}}, TShapeKind::Quadrilateral, {}, {0, 1, 2, 3}, 0, 0,
       false},
      // (0, 1, 2, 3) is the bow tie; (0, 2, 3, 4) a convex 4 x 4 km square
      {"bow tie and a square", {{0, 0}, {4000, 4000}, {4000, 0}, {4000, 4000}, {0, 4000}}, TShapeKind::Quadrilateral,
       {0, 2, 3, 4}, {0, 2, 3, 4}, 16000, 16000, false},
      // the only start before P1, point 0, is 2970 m from the nearest finish
      {"refinement searches only its windows", LineWithFarEnds(), TShapeKind::FreeDistance, {1, 297}, {1, 298}, 7970,
       15000, false},
  };
  for (const TCase& c : cases) {
    const TFlightPointCache cache = CacheOf(c.points);
    const TOptimizationShape& shape = ShapeForKind(c.shape);
    for (const bool exact : {false, true}) {
      if (exact && c.exact.empty() && !c.heuristic.empty()) continue;
      SCOPED_TRACE(testing::Message() << c.what << (exact ? ", exact" : ", default"));
      const std::vector<int>& expected = exact ? c.exact : c.heuristic;
      const double expectedM = exact ? c.exactM : c.heuristicM;
      std::vector<std::string> phases;
      TOptimizationResult result;
      result.turnpoints[0] = 5;
      const TFlightSearch search = exact ? ExactFlightSearch : DefaultFlightSearch;
      ASSERT_TRUE(search(cache, shape, nullptr, [&](std::string_view m) { phases.emplace_back(m); }, result));
      EXPECT_EQ(Turnpoints(result), expected);
      EXPECT_NEAR(result.score, expectedM, 0.003 * expectedM);
      EXPECT_EQ(result.type, shape.type);
      EXPECT_EQ(std::pair(result.start, result.finish),
                c.closed ? std::pair(0, expected.back()) : std::pair(kNoPoint, kNoPoint));
      EXPECT_EQ(phases.size(), expected.empty() ? 0u : 1u);
      for (const std::string& phase : phases) EXPECT_EQ(phase, "Calculating GAP distance");
    }
  }
}

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

enum class TTrackKind { Walk, Scatter, Line, Loop };

// A random flight of n points: a walk with changing heading and step, points
// scattered over a square, a line with a little sideways noise (the long thin
// shapes that make bounds work hardest), or a lopsided loop back to the
// take-off, whose closing stands.
std::vector<TOffsetM> RandomTrack(TTrackKind kind, int n, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  std::vector<TOffsetM> points;
  double east = 0, north = 0, heading = 0;
  for (int i = 0; i < n; ++i) {
    const double a = 2 * std::numbers::pi * i / (n - 1);
    const double r = 3000 * (1 + 0.35 * std::sin(3 * a) + 0.05 * unit(random));
    if (kind == TTrackKind::Walk) {
      heading += (unit(random) - 0.5) * 2.5;
      east += std::cos(heading) * (200 + 1800 * unit(random));
      north += std::sin(heading) * (200 + 1800 * unit(random));
    } else if (kind == TTrackKind::Scatter) {
      east = 20000 * unit(random);
      north = 20000 * unit(random);
    } else if (kind == TTrackKind::Line) {
      east = 1000.0 * i + 300 * unit(random);
      north = 150 * (unit(random) - 0.5);
    } else {
      east = r * std::sin(a);
      north = r * (1 - std::cos(a));
    }
    points.push_back({east, north});
  }
  return points;
}

// Under 200 points the default search tries every tuple (stride 1): it must
// give the exact search's shape and closing.
TEST(ExactSearch, EqualsBruteForceOnRandomTracksForEveryShape) {
  const struct {
    TTrackKind kind;
    int points;
    unsigned seeds;  // tracks tried, seeds 1..seeds
  } cases[] = {{TTrackKind::Walk, 24, 12}, {TTrackKind::Scatter, 20, 12}, {TTrackKind::Line, 22, 8},
               {TTrackKind::Walk, 9, 10},  {TTrackKind::Loop, 24, 6}};
  const auto summary = [](const TOptimizationResult& r) {
    return std::tuple(r.score, Turnpoints(r), r.distanceM, r.start, r.finish, r.type);
  };
  for (const auto& c : cases) {
    for (unsigned seed = 1; seed <= c.seeds; ++seed) {
      const TFlightPointCache cache = CacheOf(RandomTrack(c.kind, c.points, seed));
      for (const TShapeKind kind : {TShapeKind::FreeDistance, TShapeKind::Triangle, TShapeKind::FaiTriangle,
                                    TShapeKind::Quadrilateral}) {
        const TOptimizationShape& shape = ShapeForKind(kind);
        SCOPED_TRACE(testing::Message() << shape.name << " track kind " << static_cast<int>(c.kind) << " n "
                                        << c.points << " seed " << seed);
        TOptimizationResult result, exhaustive;
        ASSERT_TRUE(OptimizeFlightExact(cache, shape, nullptr, {}, result));
        ASSERT_TRUE(OptimizeFlight(cache, shape, nullptr, {}, exhaustive));
        EXPECT_NEAR(result.score, BruteForceBest(cache, shape), 1e-9);
        EXPECT_EQ(summary(result), summary(exhaustive));
        const std::vector<int> tps = Turnpoints(result);
        ASSERT_EQ(tps.size(), static_cast<size_t>(shape.turnpoints));
        EXPECT_EQ(std::adjacent_find(tps.begin(), tps.end(), std::greater_equal<>()), tps.end());
        EXPECT_EQ(std::pair(result.score, result.distanceM),
                  std::pair(ShapeScore(cache, shape, tps), ShapeDistance(cache, shape, tps)));
      }
    }
  }
}

enum class TCancel { Before, Running, AtClosing };

// A cancel before the search, from another thread once the search has
// counted some steps, or from the phase listener as the closing begins
// makes the search return false with no result, short of its progress total.
TEST(FlightSearch, CancelLeavesNoResult) {
  const struct {
    const char* what;
    TFlightSearch search;
    TShapeKind shape;
    TTrackKind track;
    int points;  // running: long enough that another thread sees it step
    TCancel when;
  } cases[] = {
      {"default search", DefaultFlightSearch, TShapeKind::Quadrilateral, TTrackKind::Walk, 3000, TCancel::Running},
      {"exact search", ExactFlightSearch, TShapeKind::FaiTriangle, TTrackKind::Line, 20000, TCancel::Running},
      {"exact search, a few tuples", ExactFlightSearch, TShapeKind::FaiTriangle, TTrackKind::Walk, 9, TCancel::Before},
      {"closing after the default search", DefaultFlightSearch, TShapeKind::Triangle, TTrackKind::Walk, 3000,
       TCancel::AtClosing},
      {"closing after the exact search", ExactFlightSearch, TShapeKind::Triangle, TTrackKind::Walk, 3000,
       TCancel::AtClosing},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const TFlightPointCache cache = CacheOf(RandomTrack(c.track, c.points, 7));
    // A search can end before the other thread sees its first step; it is
    // then run again until a cancel lands inside it.
    bool cancelled = false;
    for (int attempt = 0; attempt < 100 && !cancelled; ++attempt) {
      TProgress progress;
      if (c.when == TCancel::Before) progress.Cancel();
      std::atomic<bool> done = false;
      std::thread canceller([&] {
        while (c.when == TCancel::Running && !done && progress.Steps() == 0) {
        }
        if (c.when == TCancel::Running) progress.Cancel();
      });
      TOptimizationResult result;
      cancelled = !c.search(cache, ShapeForKind(c.shape), &progress, [&](std::string_view) {
        if (c.when == TCancel::AtClosing) progress.Cancel();
      }, result);
      done = true;
      canceller.join();
      if (cancelled) {
        EXPECT_FALSE(result.Found());
        EXPECT_LT(progress.Steps(), progress.Total());
      }
    }
    EXPECT_TRUE(cancelled);
  }
}

}  // namespace
}  // namespace velantis
