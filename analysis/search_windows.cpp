#include "analysis/search_windows.h"

#include <algorithm>

namespace velantis {

namespace {

constexpr int kFirstQuadTurnpoints = 4;

int ShrunkGap(int gap, int cap) { return std::min(static_cast<int>(gap * kRefineGapShare), cap); }

}  // namespace

int CoarseStride(size_t pointCount, int turnpoints) {
  const int divisions = turnpoints >= kFirstQuadTurnpoints ? kCoarseDivisionsQuad : kCoarseDivisions;
  return std::max(1, static_cast<int>(pointCount / static_cast<size_t>(divisions)));
}

TSearchWindows WholeTrackWindows(size_t pointCount) {
  TSearchWindows windows;
  windows.fill({0, static_cast<int>(pointCount) - 1});
  return windows;
}

TSearchWindows RefinementWindows(std::span<const int> turnpoints, size_t pointCount) {
  const int n = static_cast<int>(pointCount);
  const size_t k = turnpoints.size();
  const int cap = static_cast<int>(k) >= kFirstQuadTurnpoints ? kRefineGapCapPointsQuad : kRefineGapCapPoints;
  // gaps[0] before P1, gaps[i] between Pi and P(i+1), gaps[k] after PK.
  std::array<int, kMaxTurnpoints + 1> gaps{};
  gaps[0] = ShrunkGap(turnpoints[0], cap);
  for (size_t i = 1; i < k; ++i) gaps[i] = ShrunkGap(turnpoints[i] - turnpoints[i - 1], cap);
  gaps[k] = ShrunkGap(n - turnpoints[k - 1], cap);

  TSearchWindows windows;
  for (size_t i = 0; i < k; ++i)
    windows[i] = {std::max(0, turnpoints[i] - gaps[i]), std::min(n - 1, turnpoints[i] + gaps[i + 1])};
  return windows;
}

}  // namespace velantis
