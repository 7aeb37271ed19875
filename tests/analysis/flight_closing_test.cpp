// The closing of the flight on constructed tracks: the 1000 m and the
// half-span tests, the runner-up pair and the thinned start positions.
#include "analysis/flight_closing.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>
#include <vector>

#include "tests/analysis/flight_samples.h"

namespace velantis {
namespace {

using test::CacheOf;
using test::TOffsetM;

auto Pairs(const TFlightClosing& c) {
  return std::tuple(c.start, c.finish, c.gapM, c.secondStart, c.secondFinish, c.secondGapM);
}

// Point 0 is the only start; turnpoints 1 and 2; point 3, the finish of
// the smallest gap, lies east of the start by the gap.
TEST(FlightClosing, AcceptanceTests) {
  const struct {
    const char* what;
    double spanM;  // from turnpoint 1 to 2
    double gapM;
    bool stands;
  } cases[] = {
      {"1200 m gap is dropped", 10000, 1200, false},
      {"990 m gap stands", 10000, 990, true},
      {"gap over half the span is dropped", 1000, 700, false},
      {"gap of 0.45 span stands", 1000, 450, true},
  };
  const int turnpoints[] = {1, 2};
  for (const auto& c : cases) {
    TFlightClosing closing;
    ASSERT_TRUE(
        CloseFlight(CacheOf({{0, 0}, {0, 5000}, {c.spanM, 5000}, {c.gapM, 0}}), turnpoints, nullptr, closing));
    EXPECT_EQ(std::tuple(closing.stands, closing.start, closing.finish), std::tuple(c.stands, 0, 3)) << c.what;
  }
}

TEST(FlightClosing, NoStartBeforeTheFirstPoint) {
  const int turnpoints[] = {0, 1};
  TFlightClosing closing;
  ASSERT_TRUE(CloseFlight(CacheOf({{0, 0}, {5000, 0}, {0, 10}}), turnpoints, nullptr, closing));
  EXPECT_EQ(closing.start, kNoPoint);
  EXPECT_FALSE(closing.stands);
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
