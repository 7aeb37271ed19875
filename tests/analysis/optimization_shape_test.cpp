// The shapes by type number and name, the objective of one candidate (the
// FAI leg rule, the quadrilateral's convexity and leg rules) on constructed
// corners whose legs are known in metres, the point cache's distance against
// GeographicLib, and the route built from a result.
#include "analysis/optimization_shape.h"

#include <GeographicLib/Geodesic.hpp>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "analysis/optimization_route.h"
#include "core/track.h"
#include "tests/analysis/flight_samples.h"

namespace velantis {
namespace {

using test::CacheOf;
using test::TOffsetM;

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

TEST(FlightPointCache, GrowsInStepsOfAThousandRecords) {
  TFlightPointCache cache;
  EXPECT_EQ(cache.Capacity(), 0u);
  for (size_t i = 0; i < 2001; ++i) {
    cache.Add(45.0, 6.0 + 1e-5 * static_cast<double>(i));
    ASSERT_EQ(cache.Capacity(), (i / 1000 + 1) * 1000) << "after " << i + 1 << " records";
  }
  EXPECT_DOUBLE_EQ(cache.Record(2000).lonDeg, 6.02);
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

}  // namespace
}  // namespace velantis
