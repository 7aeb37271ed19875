// The coarse stride and the refinement windows, by hand-worked cases.
#include "analysis/search_windows.h"

#include <gtest/gtest.h>

#include <vector>

namespace velantis {
namespace {

TEST(SearchWindows, CoarseStride) {
  struct TCase {
    size_t n;
    int turnpoints;
    int expected;
  };
  const TCase cases[] = {{0, 2, 1},   {99, 3, 1},   {199, 3, 1},  {200, 2, 2},   {250, 3, 2},
                         {49, 4, 1},  {250, 4, 5},  {1000, 4, 20}, {1000, 3, 10}, {12345, 2, 123}};
  for (const TCase& c : cases) EXPECT_EQ(CoarseStride(c.n, c.turnpoints), c.expected) << c.n << " " << c.turnpoints;
}

TEST(SearchWindows, RefinementWindowsAroundTheCoarseResult) {
  struct TCase {
    const char* what;
    std::vector<int> turnpoints;
    size_t n;
    std::vector<TIndexWindow> expected;
  };
  const TCase cases[] = {
      // gaps 300 -> 60 capped 50, 200 -> 40, 400 -> 80 capped 50, end 100 -> 20
      {"triangle, two gaps capped", {300, 500, 900}, 1000, {{250, 340}, {460, 550}, {850, 920}}},
      // every gap 250 -> 50 (at the cap), the start gap 1000 -> 200 capped 50
      {"triangle, start gap capped", {1000, 1250, 1500}, 1750, {{950, 1050}, {1200, 1300}, {1450, 1550}}},
      // gaps 100 -> 20, 100 -> 20, 60 -> 12, 140 -> 28 capped 20, end 100 -> 20
      {"quadrilateral caps at 20", {100, 200, 260, 400}, 500, {{80, 120}, {180, 212}, {248, 280}, {380, 420}}},
      // gaps 3 -> 0, 5 -> 1, end 4 -> 0: truncated, not rounded
      {"free distance, truncated gaps", {3, 8}, 12, {{3, 4}, {7, 8}}},
  };
  for (const TCase& c : cases) {
    const TSearchWindows windows = RefinementWindows(c.turnpoints, c.n);
    for (size_t i = 0; i < c.expected.size(); ++i) {
      EXPECT_EQ(windows[i].low, c.expected[i].low) << c.what << ", P" << i + 1;
      EXPECT_EQ(windows[i].high, c.expected[i].high) << c.what << ", P" << i + 1;
    }
  }
}

}  // namespace
}  // namespace velantis
