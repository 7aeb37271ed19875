// Where the turnpoint search looks: the coarse stride over the whole track,
// and the refinement windows around a coarse result.
//
// The coarse pass thins the index grid to about 100 values per turnpoint
// (50 for four turnpoints), which bounds its work whatever the track length;
// the refinement then searches every index in windows of a fifth of the gaps
// around each coarse turnpoint, at most kRefineGapCapPoints points (20 for
// four turnpoints) to either side.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "analysis/optimization_shape.h"

namespace velantis {

inline constexpr int kCoarseDivisions = 100;
inline constexpr int kCoarseDivisionsQuad = 50;
inline constexpr double kRefineGapShare = 0.2;
inline constexpr int kRefineGapCapPoints = 50;
inline constexpr int kRefineGapCapPointsQuad = 20;

// Indices low..high, both included; empty when high < low.
struct TIndexWindow {
  int low = 0;
  int high = -1;
};
using TSearchWindows = std::array<TIndexWindow, kMaxTurnpoints>;

// n / 100 (integer division), n / 50 for four turnpoints or more; at least 1.
int CoarseStride(size_t pointCount, int turnpoints);

// Every turnpoint over [0, n - 1].
TSearchWindows WholeTrackWindows(size_t pointCount);

// The windows around turnpoints P1 < ... < PK of a track of n points. With
// the gaps g0 = P1, gi = P(i+1) - Pi, gEnd = n - PK, each taken x 0.2,
// truncated and capped: Pi ranges over [Pi - g(i-1), Pi + gi], the last one up
// to PK + gEnd. Windows are clipped to [0, n - 1].
TSearchWindows RefinementWindows(std::span<const int> turnpoints, size_t pointCount);

}  // namespace velantis
