// The clock a fix record asks for "now" (UTC) when a sentence carries no
// date: the system clock, or a fixed time that the owner sets (tests, file
// replays, fuzzing) and may move on by hand.
#pragma once

#include "core/date_time.h"

namespace velantis {

class TNmeaClock {
public:
  TNmeaClock() = default;  // the system clock
  static TNmeaClock Fixed(TDateTime now) {
    TNmeaClock clock;
    clock.m_fixed = now;
    return clock;
  }

  TDateTime Now() const { return m_fixed.IsNull() ? SystemNow() : m_fixed; }
  // A null time goes back to the system clock.
  void SetFixed(TDateTime now) { m_fixed = now; }
  bool IsFixed() const { return !m_fixed.IsNull(); }

  static TDateTime SystemNow();

private:
  TDateTime m_fixed;
};

}  // namespace velantis
