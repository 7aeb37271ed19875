// Closing the flight: with the turnpoints fixed, the start before P1 and the
// finish from PK on whose distance (the gap) is smallest.
//
// The start S runs over [0, P1) with stride max(1, P1 / 500) and the finish F
// over [PK, n - 1] with stride max(1, (n - PK) / 500), so at most about
// 500 x 500 pairs are measured whatever the track length. The pair with the
// smallest gap is the closing; the runner-up pair is kept beside it only
// when its gap is at least kSecondPairMinGapM. The closing stands when its gap
// is under kClosingMaxGapM and not more than half the distance from P1 to the
// last turnpoint; otherwise start and finish are kNoPoint.
#pragma once

#include <span>
#include <string_view>

#include "analysis/flight_point_cache.h"
#include "analysis/optimization_shape.h"
#include "core/progress.h"

namespace velantis {

// What the progress display shows while the closing is measured.
inline constexpr std::string_view kGapPhaseMessage = "Calculating GAP distance";
// Start and finish positions tried at most, each.
inline constexpr int kClosingSteps = 500;
inline constexpr double kSecondPairMinGapM = 500.0;
inline constexpr double kClosingMaxGapM = 1000.0;
// The gap may be at most this share of the distance from P1 to PK.
inline constexpr double kClosingSpanShare = 0.5;

struct TFlightClosing {
  // The pair of smallest gap (kNoPoint when no pair was measured).
  int start = kNoPoint;
  int finish = kNoPoint;
  double gapM = 0;
  // The pair of next smallest gap, when that gap is kSecondPairMinGapM or more.
  int secondStart = kNoPoint;
  int secondFinish = kNoPoint;
  double secondGapM = 0;
  // Both acceptance tests passed: the flight is closed by start and finish.
  bool stands = false;
};

// Measures the closing of turnpoints P1 < ... < PK on the cache. False when
// cancelled (closing undefined). The progress total is P1; each start value
// advances it by the start stride.
bool CloseFlight(const TFlightPointCache& cache, std::span<const int> turnpoints, TProgress* progress,
                 TFlightClosing& closing);

}  // namespace velantis
