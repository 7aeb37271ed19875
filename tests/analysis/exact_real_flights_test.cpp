// The exact search on the real flights of the test data (igc/): never below
// the default search, the default search's share of the proven optimum held
// to the figures measured here, and no better answer from the independent
// exact scorer igc-xc-score where it seeks the same optimum.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "analysis/exact_flight_optimizer.h"
#include "formats/igc_file.h"
#include "tests/support/testdata.h"

namespace velantis {
namespace {

// A flight's point cache read through the IGC reader; false when unreadable.
bool LoadFlight(const std::filesystem::path& path, TFlightPointCache& cache) {
  TTrack track;
  std::string error;
  if (!ReadIgcFile(path.string(), TNativeOptions{}, track, error)) {
    ADD_FAILURE() << path << ": " << error;
    return false;
  }
  cache.Load(track);
  return true;
}

// The default search's score over the exact one, measured with both searches
// as they stand; any change of either search that moves a result shows here.
// The default search is a heuristic: its coarse pass at n/100 (n/50) and its
// refinement windows of at most 50 (20) points each side can hold it below
// the optimum on long flights, and for FAI triangles, whose best lies in a
// narrow part of the space, far below: freeflight-xcontest-465.33 is a
// straight flight whose only FAI triangles are a few kilometres wide, and
// the default search finds none (share 0).
// The quadrilaterals of line, freeflight-xcontest-465.33, 9crx3101 and
// flat-xcontest-8.01 are left to the benchmark: their exact searches take
// from a third of a second to seconds.
struct TShareCase {
  const char* file;
  TShapeKind shape;
  double defaultShare;
};

// The figures are rounded to six decimals.
constexpr double kShareTolerance = 1e-6;

const TShareCase kShareCases[] = {
    {"marcourt.igc", TShapeKind::FreeDistance, 1.000000},
    {"marcourt.igc", TShapeKind::Triangle, 1.000000},
    {"marcourt.igc", TShapeKind::FaiTriangle, 1.000000},
    {"marcourt.igc", TShapeKind::Quadrilateral, 1.000000},
    {"tri.igc", TShapeKind::FreeDistance, 1.000000},
    {"tri.igc", TShapeKind::Triangle, 1.000000},
    {"tri.igc", TShapeKind::FaiTriangle, 0.979524},
    {"tri.igc", TShapeKind::Quadrilateral, 0.951808},
    {"flat-xcontest-8.01.igc", TShapeKind::FreeDistance, 0.999964},
    {"flat-xcontest-8.01.igc", TShapeKind::Triangle, 0.999514},
    {"flat-xcontest-8.01.igc", TShapeKind::FaiTriangle, 1.000000},
    {"d3p.igc", TShapeKind::FreeDistance, 1.000000},
    {"d3p.igc", TShapeKind::Triangle, 1.000000},
    {"d3p.igc", TShapeKind::FaiTriangle, 0.986003},
    {"d3p.igc", TShapeKind::Quadrilateral, 0.991077},
    {"discontinuity.igc", TShapeKind::FreeDistance, 0.998790},
    {"discontinuity.igc", TShapeKind::Triangle, 0.998298},
    {"discontinuity.igc", TShapeKind::FaiTriangle, 0.735955},
    {"discontinuity.igc", TShapeKind::Quadrilateral, 0.998667},
    {"line.igc", TShapeKind::FreeDistance, 1.000000},
    {"line.igc", TShapeKind::Triangle, 1.000000},
    {"line.igc", TShapeKind::FaiTriangle, 0.620829},
    {"trifai-xcontest-189.65.igc", TShapeKind::FreeDistance, 0.997078},
    {"trifai-xcontest-189.65.igc", TShapeKind::Triangle, 0.997789},
    {"trifai-xcontest-189.65.igc", TShapeKind::FaiTriangle, 0.989585},
    {"trifai-xcontest-189.65.igc", TShapeKind::Quadrilateral, 0.987311},
    {"trifai-xcontest-307.57.igc", TShapeKind::FreeDistance, 0.996819},
    {"trifai-xcontest-307.57.igc", TShapeKind::Triangle, 0.996989},
    {"trifai-xcontest-307.57.igc", TShapeKind::FaiTriangle, 0.904843},
    {"trifai-xcontest-307.57.igc", TShapeKind::Quadrilateral, 0.991743},
    {"record_de_france.igc", TShapeKind::FreeDistance, 0.999028},
    {"record_de_france.igc", TShapeKind::Triangle, 0.999023},
    {"record_de_france.igc", TShapeKind::FaiTriangle, 0.302580},
    {"record_de_france.igc", TShapeKind::Quadrilateral, 0.885579},
    {"freeflight-xcontest-465.33.igc", TShapeKind::FreeDistance, 0.998440},
    {"freeflight-xcontest-465.33.igc", TShapeKind::Triangle, 0.998443},
    {"freeflight-xcontest-465.33.igc", TShapeKind::FaiTriangle, 0.000000},
    {"9crx3101.igc", TShapeKind::FreeDistance, 1.000000},
    {"9crx3101.igc", TShapeKind::Triangle, 1.000000},
    {"9crx3101.igc", TShapeKind::FaiTriangle, 0.987228},
    {"01lz1hq1.igc", TShapeKind::FreeDistance, 1.000000},
    {"01lz1hq1.igc", TShapeKind::Triangle, 1.000000},
    {"01lz1hq1.igc", TShapeKind::FaiTriangle, 0.830326},
    {"01lz1hq1.igc", TShapeKind::Quadrilateral, 0.990758},
};

class ExactRealFlight : public testing::TestWithParam<TShareCase> {};

TEST_P(ExactRealFlight, NeverBelowTheDefaultSearchWhichReachesItsStatedShare) {
  const TShareCase& c = GetParam();
  VELANTIS_TESTDATA_OR_SKIP(path, std::string("igc/") + c.file);
  TFlightPointCache cache;
  ASSERT_TRUE(LoadFlight(path, cache));
  const TOptimizationShape& shape = ShapeForKind(c.shape);
  TOptimizationResult heuristic, exact;
  ASSERT_TRUE(OptimizeFlight(cache, shape, nullptr, {}, heuristic));
  ASSERT_TRUE(OptimizeFlightExact(cache, shape, nullptr, {}, exact));
  ASSERT_TRUE(exact.Found());
  EXPECT_GE(exact.score, heuristic.score);
  EXPECT_NEAR(heuristic.score / exact.score, c.defaultShare, kShareTolerance)
      << "default " << heuristic.score << " m, exact " << exact.score << " m";
}

std::string ShareCaseName(const testing::TestParamInfo<TShareCase>& info) {
  std::string name = std::string(info.param.file) + "_" + std::string(ShapeForKind(info.param.shape).name);
  for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name;
}

INSTANTIATE_TEST_SUITE_P(Flights, ExactRealFlight, testing::ValuesIn(kShareCases), ShareCaseName);

// igc-xc-score 1.8.0, an exact branch-and-bound scorer, on the same files.
// Where its objective is ours, its optimum scored with our distance can never
// beat ours (ours is proven on our distance), and the two lengths differ only
// by the earth models (its FCC flat-ellipsoid formula against our FAI
// sphere: up to about 0.5 % a leg). The lengths are held to
// kEarthModelShare, wider than that because a leg near the FAI 28 % share
// passes on one model and fails on the other: on freeflight-xcontest-465.33
// our best FAI triangle (3.24 km) is one its model refuses, 1 % above its
// 3.21 km.
// - "same objective" rows: bench/igc_xc_score_run.mjs, the rule set built
//   from its own triangle and two-turnpoint out-and-return functions with
//   the closing unlimited and free and no rounding (our free distance is its
//   out-and-return at multiplier 0.5); every fix used, so its fix indices are
//   ours.
// - tri.igc under FFVL (flat triangle 14.60 km, closing 1.6 km) and
//   trifai-xcontest-307.57.igc under FAI (free triangle 220.4 km, closing
//   0.19 km): the figures its own tests assert. Those rule sets only accept a
//   triangle closed within a limit (3 km, 0.8 km) and charge nothing below
//   it; the closings are below the limits, so the best closed triangle is
//   the best triangle and the objectives agree. Its other stated figures
//   are free distances over three turnpoints, out-and-returns charged for
//   their closing, or triangles charged for it (XContest): not our shapes.
struct TReferenceCase {
  const char* file;
  TShapeKind shape;
  size_t fixes;
  double referenceKm;
  std::array<int, 3> turnpoints;  // its fix indices (the free distance uses two)
  const char* source;
};

constexpr double kEarthModelShare = 0.015;

const TReferenceCase kReferenceCases[] = {
    {"tri.igc", TShapeKind::Triangle, 4514, 14.60, {598, 2807, 4273}, "FFVL test"},
    {"trifai-xcontest-307.57.igc", TShapeKind::Triangle, 25809, 220.4, {4202, 15549, 23207}, "FAI test"},
    {"marcourt.igc", TShapeKind::FreeDistance, 221, 0.615, {13, 220, 0}, "same objective"},
    {"marcourt.igc", TShapeKind::Triangle, 221, 1.305, {13, 35, 220}, "same objective"},
    {"marcourt.igc", TShapeKind::FaiTriangle, 221, 0.559, {14, 38, 54}, "same objective"},
    {"tri.igc", TShapeKind::FreeDistance, 4514, 6.981, {601, 2807, 0}, "same objective"},
    {"tri.igc", TShapeKind::Triangle, 4514, 14.593, {599, 2807, 4273}, "same objective"},
    {"tri.igc", TShapeKind::FaiTriangle, 4514, 6.695, {0, 1665, 4198}, "same objective"},
    {"flat-xcontest-8.01.igc", TShapeKind::FreeDistance, 2735, 2.775, {857, 1496, 0}, "same objective"},
    {"flat-xcontest-8.01.igc", TShapeKind::Triangle, 2735, 5.887, {894, 1495, 2113}, "same objective"},
    {"flat-xcontest-8.01.igc", TShapeKind::FaiTriangle, 2735, 4.749, {461, 1337, 1646}, "same objective"},
    {"d3p.igc", TShapeKind::FreeDistance, 2527, 36.123, {424, 1877, 0}, "same objective"},
    {"d3p.igc", TShapeKind::Triangle, 2527, 76.548, {424, 1443, 1876}, "same objective"},
    {"d3p.igc", TShapeKind::FaiTriangle, 2527, 37.769, {865, 1443, 2506}, "same objective"},
    {"discontinuity.igc", TShapeKind::FreeDistance, 4708, 49.825, {68, 4707, 0}, "same objective"},
    {"discontinuity.igc", TShapeKind::Triangle, 4708, 101.572, {68, 3023, 4707}, "same objective"},
    {"discontinuity.igc", TShapeKind::FaiTriangle, 4708, 3.179, {2385, 2580, 2779}, "same objective"},
    {"line.igc", TShapeKind::FreeDistance, 8528, 51.116, {465, 8391, 0}, "same objective"},
    {"line.igc", TShapeKind::Triangle, 8528, 102.573, {466, 7754, 8391}, "same objective"},
    {"line.igc", TShapeKind::FaiTriangle, 8528, 4.977, {2599, 2962, 3190}, "same objective"},
    {"trifai-xcontest-189.65.igc", TShapeKind::FreeDistance, 17817, 55.706, {6120, 14806, 0}, "same objective"},
    {"trifai-xcontest-189.65.igc", TShapeKind::Triangle, 17817, 125.171, {6120, 12109, 15190}, "same objective"},
    {"trifai-xcontest-189.65.igc", TShapeKind::FaiTriangle, 17817, 121.933, {6120, 12110, 16825}, "same objective"},
    {"trifai-xcontest-307.57.igc", TShapeKind::FreeDistance, 25809, 106.836, {4201, 15550, 0}, "same objective"},
    {"trifai-xcontest-307.57.igc", TShapeKind::Triangle, 25809, 220.370, {4201, 15550, 23208}, "same objective"},
    {"trifai-xcontest-307.57.igc", TShapeKind::FaiTriangle, 25809, 104.791, {5875, 10582, 23208}, "same objective"},
    {"record_de_france.igc", TShapeKind::FreeDistance, 7292, 417.073, {560, 7187, 0}, "same objective"},
    {"record_de_france.igc", TShapeKind::Triangle, 7292, 835.929, {560, 1934, 7187}, "same objective"},
    {"record_de_france.igc", TShapeKind::FaiTriangle, 7292, 6.425, {175, 557, 638}, "same objective"},
    {"9crx3101.igc", TShapeKind::FreeDistance, 7630, 158.417, {3857, 7199, 0}, "same objective"},
    {"9crx3101.igc", TShapeKind::Triangle, 7630, 319.386, {3857, 7200, 7556}, "same objective"},
    {"9crx3101.igc", TShapeKind::FaiTriangle, 7630, 98.214, {6304, 7302, 7562}, "same objective"},
    {"01lz1hq1.igc", TShapeKind::FreeDistance, 4960, 250.150, {2707, 4851, 0}, "same objective"},
    {"01lz1hq1.igc", TShapeKind::Triangle, 4960, 504.607, {2707, 4219, 4851}, "same objective"},
    {"01lz1hq1.igc", TShapeKind::FaiTriangle, 4960, 41.573, {1313, 1478, 4220}, "same objective"},
    {"freeflight-xcontest-465.33.igc", TShapeKind::FreeDistance, 38675, 452.394, {179, 38549, 0}, "same objective"},
    {"freeflight-xcontest-465.33.igc", TShapeKind::Triangle, 38675, 913.928, {180, 33964, 38548}, "same objective"},
    {"freeflight-xcontest-465.33.igc", TShapeKind::FaiTriangle, 38675, 3.207, {15720, 15964, 16040}, "same objective"},
};

class ExactAgainstIgcXcScore : public testing::TestWithParam<TReferenceCase> {};

TEST_P(ExactAgainstIgcXcScore, ItsOptimumIsNoBetterOnOurDistance) {
  const TReferenceCase& c = GetParam();
  VELANTIS_TESTDATA_OR_SKIP(path, std::string("igc/") + c.file);
  TFlightPointCache cache;
  ASSERT_TRUE(LoadFlight(path, cache));
  ASSERT_EQ(cache.Count(), c.fixes) << "its fix indices are not ours";
  const TOptimizationShape& shape = ShapeForKind(c.shape);
  TOptimizationResult exact;
  ASSERT_TRUE(OptimizeFlightExact(cache, shape, nullptr, {}, exact));
  const std::span<const int> theirs(c.turnpoints.data(), static_cast<size_t>(shape.turnpoints));
  EXPECT_GE(exact.score, ShapeScore(cache, shape, theirs)) << c.source;
  EXPECT_NEAR(exact.score / 1000, c.referenceKm, kEarthModelShare * c.referenceKm) << c.source;
}

std::string ReferenceCaseName(const testing::TestParamInfo<TReferenceCase>& info) {
  std::string name = std::string(info.param.file) + "_" + std::string(ShapeForKind(info.param.shape).name) + "_" +
                     info.param.source;
  for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
  return name;
}

INSTANTIATE_TEST_SUITE_P(Flights, ExactAgainstIgcXcScore, testing::ValuesIn(kReferenceCases), ReferenceCaseName);

}  // namespace
}  // namespace velantis
