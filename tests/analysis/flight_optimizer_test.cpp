// The optimiser on small constructed flights, points placed by metres east
// and north of 45°N 6°E on the FAI sphere: the shapes by type number and
// name; the objective of one candidate (the FAI leg rule, the
// quadrilateral's convexity and leg rules) on corners whose legs are known;
// the point cache's distance against GeographicLib and the chord screen's
// bounds on it; the rule sets' points and earth models; the route built from
// a result; the default and the exact search: the edge cases, the default
// search's tie rule over its coarse grid and refinement windows, the exact
// search against brute force, and cancel; the closing of the flight: the
// 1000 m and half-span tests, the runner-up pair and the thinned start
// positions.
#include <GeographicLib/Geodesic.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "analysis/chord_screen.h"
#include "analysis/exact_flight_optimizer.h"
#include "analysis/flight_closing.h"
#include "analysis/flight_optimizer.h"
#include "analysis/optimization_route.h"
#include "analysis/optimization_shape.h"
#include "analysis/scoring_rules.h"
#include "core/track.h"

namespace velantis {
namespace {

struct TOffsetM {
  double east;
  double north;
};

TFlightPointCache CacheOf(const std::vector<TOffsetM>& offsets) {
  const double metresPerDegree = kFaiSphereRadiusM * std::numbers::pi / 180.0;
  const double metresPerDegreeEast = metresPerDegree * std::cos(std::numbers::pi / 4);
  TFlightPointCache cache;
  for (const TOffsetM& o : offsets) cache.Add(45.0 + o.north / metresPerDegree, 6.0 + o.east / metresPerDegreeEast);
  return cache;
}

TEST(OptimizationShape, TypeNumbersAndNames) {
  const struct {
    int type;
    int turnpoints;
    bool fai;
    const char* name;
  } cases[] = {
      {7, 2, false, "free"},     {1, 3, true, "fai"},       {8, 4, false, "quad"},     {3, 3, false, "triangle"},
      {0, 3, false, "triangle"}, {2, 3, false, "triangle"}, {9, 3, false, "triangle"},
  };
  for (const auto& c : cases) {
    const TOptimizationShape& shape = ShapeForType(c.type);
    EXPECT_EQ(std::tuple(shape.turnpoints, shape.faiRule, std::string(shape.name)),
              std::tuple(c.turnpoints, c.fai, std::string(c.name)))
        << c.type;
    ASSERT_NE(ShapeForName(c.name), nullptr);
    EXPECT_EQ(ShapeForName(c.name)->turnpoints, c.turnpoints);
  }
  EXPECT_EQ(ShapeForName("square"), nullptr);
}

// Scores of single candidates. Corners are metres east/north; the expected
// score is the sum of the legs in metres (0 when the rule refuses it), to
// within the sphere-versus-plane difference of legs a few km long.
TEST(OptimizationShape, ScoreOfOneCandidate) {
  const struct {
    const char* what;
    TShapeKind kind;
    std::vector<TOffsetM> corners;
    double expectedM;
  } cases[] = {
      {"free distance is the one leg", TShapeKind::FreeDistance, {{0, 0}, {3000, 4000}}, 5000},
      {"flat triangle keeps a short leg", TShapeKind::Triangle, {{0, 0}, {10000, 0}, {10000, 1000}}, 21049.9},
      // legs 3000, 4000, 5000: the shortest is 25 % of 12000
      {"FAI refuses a 25 % leg", TShapeKind::FaiTriangle, {{0, 0}, {3000, 0}, {3000, 4000}}, 0},
      // legs 5 km, 5 km, 4 km: shortest 28.57 %
      {"FAI accepts 28.6 %", TShapeKind::FaiTriangle, {{0, 0}, {4000, 0}, {2000, 4582.58}}, 14000},
      {"square counts", TShapeKind::Quadrilateral, {{0, 0}, {4000, 0}, {4000, 4000}, {0, 4000}}, 16000},
      {"clockwise square counts", TShapeKind::Quadrilateral, {{0, 0}, {0, 4000}, {4000, 4000}, {4000, 0}}, 16000},
      {"crossed corners (bow tie) do not", TShapeKind::Quadrilateral, {{0, 0}, {4000, 4000}, {4000, 0}, {0, 4000}}, 0},
      {"concave corner does not", TShapeKind::Quadrilateral, {{0, 0}, {4000, 0}, {1000, 1000}, {0, 4000}}, 0},
      // 10 x 4 km: 4000 / 28000 = 14.3 %; 10 x 4.5 km: 4500 / 29000 = 15.5 %
      {"rectangle at 14.3 % does not", TShapeKind::Quadrilateral, {{0, 0}, {10000, 0}, {10000, 4000}, {0, 4000}}, 0},
      {"rectangle at 15.5 % counts", TShapeKind::Quadrilateral, {{0, 0}, {10000, 0}, {10000, 4500}, {0, 4500}}, 29000},
  };
  for (const auto& c : cases) {
    std::vector<int> indices;
    for (size_t i = 0; i < c.corners.size(); ++i) indices.push_back(static_cast<int>(i));
    const double score = ShapeScore(CacheOf(c.corners), ShapeForKind(c.kind), indices);
    EXPECT_NEAR(score, c.expectedM, 0.002 * c.expectedM + 0.5) << c.what;
  }
}

TEST(FlightPointCache, DistanceMatchesGeodesicOnTheFaiSphere) {
  const struct {
    double lat1, lon1, lat2, lon2;
  } cases[] = {
      {45.0, 6.0, 45.0, 6.0},          // the same point: exactly 0
      {45.0, 6.0, 45.00001, 6.00001},  // about a metre
      {46.5, 7.9, 46.1, 8.6},          // an alpine leg
      {-33.9, 18.4, -34.1, 19.3},      // southern hemisphere
      {10.0, 179.9, 10.2, -179.8},     // across the antimeridian
      {0.0, 0.0, 0.5, 179.5},          // nearly antipodal
  };
  const GeographicLib::Geodesic sphere(kFaiSphereRadiusM, 0.0);
  for (const auto& c : cases) {
    TFlightPointCache cache;
    cache.Add(c.lat1, c.lon1);
    cache.Add(c.lat2, c.lon2);
    double expected = 0;
    sphere.Inverse(c.lat1, c.lon1, c.lat2, c.lon2, expected);
    EXPECT_NEAR(cache.Distance(0, 1), expected, 1e-6 + expected * 1e-9) << c.lat1 << " " << c.lon1;
    EXPECT_DOUBLE_EQ(cache.Distance(1, 0), cache.Distance(0, 1));
  }
}

// The chord screen's bounds against the cache's distance, on pairs from a
// metre to several thousand kilometres apart: a bound below the distance
// would let the searches skip the optimum; one far above it would make them
// measure everything.
TEST(ChordScreen, BoundsHoldTheCacheDistance) {
  std::mt19937_64 random(5);
  std::uniform_real_distribution<double> lat(-70, 70), lon(-180, 180), exponent(-5, 1.7), sign(-1, 1);
  TFlightPointCache cache;
  for (int i = 0; i < 1000; ++i) {
    const double a = lat(random), b = lon(random);
    cache.Add(a, b);
    cache.Add(a + sign(random) * std::pow(10, exponent(random)), b + sign(random) * std::pow(10, exponent(random)));
  }
  std::vector<double> chords, distances;
  for (size_t i = 0; i < cache.Count(); i += 2) {
    chords.push_back(ChordSquared(UnitVectorOf(cache.Record(i)), UnitVectorOf(cache.Record(i + 1))));
    distances.push_back(cache.Distance(i, i + 1));
  }
  std::vector<double> above = chords;
  DistancesAbove(above);
  const auto between = [](double value, double low, double high) { return low <= value && value <= high; };
  for (size_t k = 0; k < chords.size(); ++k) {
    const double d = distances[k];
    // Legs beyond 1000 km take the coarser end of the series; the chord's
    // absolute margin widens the shortest legs by a fraction of a millimetre.
    const double slack = d * (d < 1e6 ? 1e-5 : 2e-3) + 1e-3;
    EXPECT_PRED3(between, DistanceAbove(chords[k]), d, d + slack);
    EXPECT_PRED3(between, above[k], d, d + slack);
    // The pair's own chord proves neither more nor less than its distance.
    EXPECT_PRED3(between, chords[k], ChordBelow(d), ChordAbove(d));
  }
}

TEST(FlightPointCache, GrowsInStepsOfAThousandRecords) {
  TFlightPointCache cache;
  EXPECT_EQ(cache.Capacity(), 0u);
  for (size_t i = 0; i < 2001; ++i) {
    cache.Add(45.0, 6.0 + 1e-5 * static_cast<double>(i));
    ASSERT_EQ(cache.Capacity(), (i / 1000 + 1) * 1000) << "after " << i + 1 << " records";
  }
  EXPECT_DOUBLE_EQ(cache.Record(2000).lonDeg, 6.02);
}

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

TEST(ScoringRules, NamesAndEarthModels) {
  const std::vector<TOffsetM> course{{0, 0}, {0, 0}, {40000, 30000}, {0, 0}};
  const TFlightPointRecord a = CacheOf(course).Record(1);
  const TFlightPointRecord b = CacheOf(course).Record(2);
  const GeographicLib::Geodesic sphere(kFaiSphereRadiusM, 0);
  const struct {
    const char* name;
    const char* alias;
    const TScoringRules& rules;
    const GeographicLib::Geodesic& model;
  } cases[] = {
      {"DHV, HG/PG OLC", "dhv", DhvOlcRules(), sphere},
      {"Gliders OLC", "GLIDERS", GlidersOlcRules(), GeographicLib::Geodesic::WGS84()},
      {"French CFD", "cfd", FrenchCfdRules(), sphere},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(std::pair(FindScoringRules(c.name), FindScoringRules(c.alias)), std::pair(&c.rules, &c.rules));
    double expected = 0;
    c.model.Inverse(a.latDeg, a.lonDeg, b.latDeg, b.lonDeg, expected);
    EXPECT_NEAR(Score(course, TShapeKind::FreeDistance, false, c.rules).distanceM, expected, 1e-3) << c.name;
  }
  EXPECT_EQ(FindScoringRules("OLC"), nullptr);
  EXPECT_EQ(FindScoringRules(""), nullptr);
}

// A result whose closing did not stand: the route has the turnpoints only,
// and the index list keeps the places of the start and finish.
TEST(OptimizationRoute, NamesAndIndicesWithoutTheClosing) {
  TTrack track;
  for (int i = 0; i < 6; ++i) track.Anyade_Punto_Temps(45.0 + 0.01 * i, 6.0, 1000.0f, TDateTime());
  TOptimizationResult result;
  result.type = kOptimizationTypeTriangle;
  result.turnpointCount = 3;
  result.turnpoints = {1, 3, 4, kNoPoint};
  TRuta route;
  std::vector<int> indices;
  BuildOptimizationRoute(track, result, route, indices);
  EXPECT_EQ(indices, (std::vector<int>{-1, 1, 3, 4, -1}));
  std::vector<std::string> names;
  for (size_t i = 0; i < route.Count(); ++i) names.push_back(route.Point(i).baliza.Name());
  EXPECT_EQ(names, (std::vector<std::string>{"Point 1", "Point 2", "Point 3"}));
  EXPECT_DOUBLE_EQ(route.Point(1).baliza.Latitude(), 45.03);
}

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
      std::string phases;
      TOptimizationResult result;
      result.turnpoints[0] = 5;
      const TFlightSearch search = exact ? ExactFlightSearch : DefaultFlightSearch;
      ASSERT_TRUE(search(cache, shape, nullptr, [&](std::string_view m) { (phases += m) += ';'; }, result));
      EXPECT_EQ(Turnpoints(result), expected);
      EXPECT_NEAR(result.score, expectedM, 0.003 * expectedM);
      EXPECT_EQ(std::tuple(result.type, result.start, result.finish, phases),
                std::tuple(shape.type, c.closed ? 0 : kNoPoint, c.closed ? expected.back() : kNoPoint,
                           expected.empty() ? "" : "Calculating GAP distance;"));
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

auto Pairs(const TFlightClosing& c) {
  return std::tuple(c.start, c.finish, c.gapM, c.secondStart, c.secondFinish, c.secondGapM);
}

// Point 0 is the only start before turnpoint 1; turnpoint 2 follows; point
// 3, the finish of the smallest gap, lies east of the start by the gap.
TEST(FlightClosing, AcceptanceTests) {
  const struct {
    const char* what;
    double spanM;  // from turnpoint 1 to 2
    double gapM;
    int first;  // the first turnpoint
    bool stands;
    int start, finish;
  } cases[] = {
      {"1200 m gap is dropped", 10000, 1200, 1, false, 0, 3},
      {"990 m gap stands", 10000, 990, 1, true, 0, 3},
      {"gap over half the span is dropped", 1000, 700, 1, false, 0, 3},
      {"gap of 0.45 span stands", 1000, 450, 1, true, 0, 3},
      {"no start before the first point", 10000, 990, 0, false, kNoPoint, kNoPoint},
  };
  for (const auto& c : cases) {
    const int turnpoints[] = {c.first, c.first + 1};
    TFlightClosing closing;
    ASSERT_TRUE(
        CloseFlight(CacheOf({{0, 0}, {0, 5000}, {c.spanM, 5000}, {c.gapM, 0}}), turnpoints, nullptr, closing));
    EXPECT_EQ(std::tuple(closing.stands, closing.start, closing.finish), std::tuple(c.stands, c.start, c.finish))
        << c.what;
  }
}

// 2002 points, turnpoints 1000 and 1001: with 1000 points on either side
// both strides are 2, so starts 0, 2 ... 998 and finishes 1001, 1003 ...
// 2001 are tried. Point 999 lies on finish 2001 and point 0 on finish 1002,
// but 999 and 1002 are never tried: the nearest pair tried is 5 km apart.
TEST(FlightClosing, StartAndFinishPositionsAreThinned) {
  std::vector<TOffsetM> points;
  for (int i = 0; i < 1000; ++i) points.push_back({3000.0 + i, 0});
  points[0] = {0, 0};
  points[999] = {0, 5000};
  points.push_back({0, 20000});
  for (int i = 1001; i < 2001; ++i) points.push_back({20000, 20000.0 + i});
  points[1002] = {0, 0};
  points.push_back({0, 5000});
  const int turnpoints[] = {1000, 1001};
  TFlightClosing closing;
  ASSERT_TRUE(CloseFlight(CacheOf(points), turnpoints, nullptr, closing));
  EXPECT_EQ(std::tuple(closing.start, closing.finish, closing.stands), std::tuple(0, 2001, false));
  EXPECT_NEAR(closing.gapM, 5000, 5);
}

// The pairs are screened by their chord before the real distance is taken;
// the outcome must be that of measuring every pair: the first pair of the
// smallest gap, and the runner-up as pairs of 500 m or more displace it.
// Tracks wander around a loop so that gaps fall on both sides of 500 m and
// repeat exactly (duplicated points give ties); on some the finishes run in
// a straight line, so that runs of finishes screened at once are long and
// thin and a start lies close to one end of them.
TEST(FlightClosing, ScreenedPairsGiveTheResultOfMeasuringAll) {
  const struct {
    unsigned seed;
    double spreadM;    // of the start and finish points around the loop's end
    double lineStepM;  // 0: finishes scattered like the starts; else along a line
  } cases[] = {{1, 300, 0}, {2, 800, 0}, {3, 2000, 0}, {4, 5000, 0}, {5, 3000, 150}, {6, 8000, 400}};
  for (const auto& c : cases) {
    std::mt19937 random(c.seed);
    std::uniform_real_distribution<double> offset(-c.spreadM, c.spreadM);
    std::vector<TOffsetM> points;
    for (int i = 0; i < 60; ++i) points.push_back({offset(random), offset(random)});
    points.push_back({0, 20000});
    points.push_back({20000, 0});
    for (int i = 0; i < 60; ++i) {
      const TOffsetM scattered = i % 7 == 0 ? points[static_cast<size_t>(i)] : TOffsetM{offset(random), offset(random)};
      points.push_back(c.lineStepM > 0 ? TOffsetM{c.lineStepM * i - c.spreadM, 0.3 * c.lineStepM * i} : scattered);
    }
    const TFlightPointCache cache = CacheOf(points);
    const int turnpoints[] = {60, 61};

    // Every pair in the closing's order, each offered to the rules as is.
    TFlightClosing all;
    for (int s = 0; s < 60; ++s)
      for (int f = 61; f < static_cast<int>(points.size()); ++f) {
        const double gap = cache.Distance(static_cast<size_t>(s), static_cast<size_t>(f));
        if (all.start == kNoPoint || gap < all.gapM) {
          if (all.start != kNoPoint && all.gapM >= kSecondPairMinGapM) {
            all.secondStart = all.start, all.secondFinish = all.finish, all.secondGapM = all.gapM;
          }
          all.start = s, all.finish = f, all.gapM = gap;
        } else if (gap >= kSecondPairMinGapM && (all.secondStart == kNoPoint || gap < all.secondGapM)) {
          all.secondStart = s, all.secondFinish = f, all.secondGapM = gap;
        }
      }

    TFlightClosing closing;
    ASSERT_TRUE(CloseFlight(cache, turnpoints, nullptr, closing));
    EXPECT_EQ(Pairs(closing), Pairs(all)) << c.seed;
  }
}

}  // namespace
}  // namespace velantis
