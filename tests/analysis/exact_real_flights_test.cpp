// The searches on the real flights of the test data (igc/).
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "analysis/exact_flight_optimizer.h"
#include "formats/igc_file.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

// defaultShare: the default search's score over the exact one, to six
// decimals. Its coarse pass and capped refinement windows hold it below the
// optimum on long flights, far below for FAI triangles (a few km wide only
// in freeflight-xcontest-465.33: share 0). Four slow exact quadrilaterals
// are left to the benchmark.
//
// referenceKm, turnpoints: the optimum of igc-xc-score 1.8.0, an exact
// scorer, where its objective is ours (no quadrilateral: 0), by our fix
// indices. Scored with our distance it never beats ours; the lengths differ
// by the earth models (its flat-ellipsoid formula against our FAI sphere, up
// to about 0.5 % a leg, more where a leg near the 28 % share passes on one
// model only). The triangles of tri.igc (FFVL) and trifai-xcontest-307.57
// (FAI) are those its own tests assert; the other rows are its run by
// bench/igc_xc_score_run.mjs, closing free (our free distance is its
// out-and-return at multiplier 0.5).
struct TFlightCase {
  const char* file;
  TShapeKind shape;
  double defaultShare;
  double referenceKm;
  std::array<int, 3> turnpoints;  // the free distance uses two
};

constexpr double kShareTolerance = 1e-6;
constexpr double kEarthModelShare = 0.015;

const TFlightCase kFlightCases[] = {
    {"marcourt.igc", TShapeKind::FreeDistance, 1.000000, 0.615, {13, 220}},
    {"marcourt.igc", TShapeKind::Triangle, 1.000000, 1.305, {13, 35, 220}},
    {"marcourt.igc", TShapeKind::FaiTriangle, 1.000000, 0.559, {14, 38, 54}},
    {"marcourt.igc", TShapeKind::Quadrilateral, 1.000000, 0, {}},
    {"tri.igc", TShapeKind::FreeDistance, 1.000000, 6.981, {601, 2807}},
    {"tri.igc", TShapeKind::Triangle, 1.000000, 14.60, {598, 2807, 4273}},
    {"tri.igc", TShapeKind::FaiTriangle, 0.979524, 6.695, {0, 1665, 4198}},
    {"tri.igc", TShapeKind::Quadrilateral, 0.951808, 0, {}},
    {"flat-xcontest-8.01.igc", TShapeKind::FreeDistance, 0.999964, 2.775, {857, 1496}},
    {"flat-xcontest-8.01.igc", TShapeKind::Triangle, 0.999514, 5.887, {894, 1495, 2113}},
    {"flat-xcontest-8.01.igc", TShapeKind::FaiTriangle, 1.000000, 4.749, {461, 1337, 1646}},
    {"d3p.igc", TShapeKind::FreeDistance, 1.000000, 36.123, {424, 1877}},
    {"d3p.igc", TShapeKind::Triangle, 1.000000, 76.548, {424, 1443, 1876}},
    {"d3p.igc", TShapeKind::FaiTriangle, 0.986003, 37.769, {865, 1443, 2506}},
    {"d3p.igc", TShapeKind::Quadrilateral, 0.991077, 0, {}},
    {"discontinuity.igc", TShapeKind::FreeDistance, 0.998790, 49.825, {68, 4707}},
    {"discontinuity.igc", TShapeKind::Triangle, 0.998298, 101.572, {68, 3023, 4707}},
    {"discontinuity.igc", TShapeKind::FaiTriangle, 0.735955, 3.179, {2385, 2580, 2779}},
    {"discontinuity.igc", TShapeKind::Quadrilateral, 0.998667, 0, {}},
    {"line.igc", TShapeKind::FreeDistance, 1.000000, 51.116, {465, 8391}},
    {"line.igc", TShapeKind::Triangle, 1.000000, 102.573, {466, 7754, 8391}},
    {"line.igc", TShapeKind::FaiTriangle, 0.620829, 4.977, {2599, 2962, 3190}},
    {"trifai-xcontest-189.65.igc", TShapeKind::FreeDistance, 0.997078, 55.706, {6120, 14806}},
    {"trifai-xcontest-189.65.igc", TShapeKind::Triangle, 0.997789, 125.171, {6120, 12109, 15190}},
    {"trifai-xcontest-189.65.igc", TShapeKind::FaiTriangle, 0.989585, 121.933, {6120, 12110, 16825}},
    {"trifai-xcontest-189.65.igc", TShapeKind::Quadrilateral, 0.987311, 0, {}},
    {"trifai-xcontest-307.57.igc", TShapeKind::FreeDistance, 0.996819, 106.836, {4201, 15550}},
    {"trifai-xcontest-307.57.igc", TShapeKind::Triangle, 0.996989, 220.4, {4202, 15549, 23207}},
    {"trifai-xcontest-307.57.igc", TShapeKind::FaiTriangle, 0.904843, 104.791, {5875, 10582, 23208}},
    {"trifai-xcontest-307.57.igc", TShapeKind::Quadrilateral, 0.991743, 0, {}},
    {"record_de_france.igc", TShapeKind::FreeDistance, 0.999028, 417.073, {560, 7187}},
    {"record_de_france.igc", TShapeKind::Triangle, 0.999023, 835.929, {560, 1934, 7187}},
    {"record_de_france.igc", TShapeKind::FaiTriangle, 0.302580, 6.425, {175, 557, 638}},
    {"record_de_france.igc", TShapeKind::Quadrilateral, 0.885579, 0, {}},
    {"freeflight-xcontest-465.33.igc", TShapeKind::FreeDistance, 0.998440, 452.394, {179, 38549}},
    {"freeflight-xcontest-465.33.igc", TShapeKind::Triangle, 0.998443, 913.928, {180, 33964, 38548}},
    {"freeflight-xcontest-465.33.igc", TShapeKind::FaiTriangle, 0.000000, 3.207, {15720, 15964, 16040}},
    {"9crx3101.igc", TShapeKind::FreeDistance, 1.000000, 158.417, {3857, 7199}},
    {"9crx3101.igc", TShapeKind::Triangle, 1.000000, 319.386, {3857, 7200, 7556}},
    {"9crx3101.igc", TShapeKind::FaiTriangle, 0.987228, 98.214, {6304, 7302, 7562}},
    {"01lz1hq1.igc", TShapeKind::FreeDistance, 1.000000, 250.150, {2707, 4851}},
    {"01lz1hq1.igc", TShapeKind::Triangle, 1.000000, 504.607, {2707, 4219, 4851}},
    {"01lz1hq1.igc", TShapeKind::FaiTriangle, 0.830326, 41.573, {1313, 1478, 4220}},
    {"01lz1hq1.igc", TShapeKind::Quadrilateral, 0.990758, 0, {}},
};

class RealFlight : public testing::TestWithParam<TFlightCase> {};

TEST_P(RealFlight, SharesOfTheOptimumAndTheIndependentScorer) {
  const TFlightCase& c = GetParam();
  VELANTIS_TESTDATA_OR_SKIP(path, std::string("igc/") + c.file);
  TTrack track;
  std::string error;
  ASSERT_TRUE(ReadIgcFile(path.string(), TNativeOptions{}, track, error)) << error;
  TFlightPointCache cache;
  cache.Load(track);
  const TOptimizationShape& shape = ShapeForKind(c.shape);
  TOptimizationResult heuristic, exact;
  ASSERT_TRUE(OptimizeFlight(cache, shape, nullptr, {}, heuristic));
  ASSERT_TRUE(OptimizeFlightExact(cache, shape, nullptr, {}, exact));
  ASSERT_TRUE(exact.Found());
  EXPECT_GE(exact.score, heuristic.score);
  EXPECT_NEAR(heuristic.score / exact.score, c.defaultShare, kShareTolerance)
      << "default " << heuristic.score << " m, exact " << exact.score << " m";
  if (c.referenceKm > 0) {
    const std::span<const int> theirs(c.turnpoints.data(), static_cast<size_t>(shape.turnpoints));
    EXPECT_GE(exact.score, ShapeScore(cache, shape, theirs));
    EXPECT_NEAR(exact.score / 1000, c.referenceKm, kEarthModelShare * c.referenceKm);
  }
}

INSTANTIATE_TEST_SUITE_P(Flights, RealFlight, testing::ValuesIn(kFlightCases));

}  // namespace
}  // namespace velantis
