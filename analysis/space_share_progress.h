// Progress counted as the share of a search space that has been settled.
//
// A branch-and-bound search does not know in advance how many tuples it will
// look at, but every tuple it drops or settles is a known share of the whole
// space, and the shares of a tuple's children add up to its own. Counting
// settled shares gives a figure that only grows and ends at the total. The
// total is kUnits steps; shares are kept as a double and handed to the
// progress object as whole steps.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/progress.h"

namespace velantis {

class TSpaceShareProgress {
public:
  TSpaceShareProgress(TProgress* progress, int64_t units) : m_progress(progress), m_units(units) {
    ProgressSetTotal(progress, units);
  }

  // Adds a settled share (0..1 of the whole space).
  void Settle(double share) { m_settled += share; }

  // Hands the whole steps settled so far to the progress object; false when it
  // has been cancelled.
  bool Report() {
    const auto reached = static_cast<int64_t>(std::floor(std::min(m_settled, 1.0) * static_cast<double>(m_units)));
    const int64_t steps = reached > m_reported ? reached - m_reported : 0;
    m_reported += steps;
    return ProgressStep(m_progress, steps);
  }

  // The search is over: the rest of the space is settled.
  bool Finish() {
    m_settled = 1.0;
    return Report();
  }

private:
  TProgress* m_progress;
  int64_t m_units;
  double m_settled = 0;
  int64_t m_reported = 0;
};

}  // namespace velantis
