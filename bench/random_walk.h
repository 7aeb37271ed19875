// The tracks the benchmarks load: a walk at 1 Hz near 42 N, 1 E from
// 1 July 2024 08:00 UTC, with altitude and heart rate, drawn from a seeded
// random source so that every run sees the same points.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>

#include "core/trk_pnt.h"

namespace velantis::bench {

class TRandomWalk {
public:
  explicit TRandomWalk(uint64_t seed) : m_random(seed) {
    m_point.lat = 42.0;
    m_point.lon = 1.0;
    m_point.altitude = 1500;
  }

  // The next point of the walk.
  const TrkPnt& Next() {
    const double dLat = m_step(m_random), dLon = m_step(m_random);
    m_point.lat += dLat;
    m_point.lon += dLon;
    m_point.altitude += static_cast<float>(m_step(m_random) * 1e4);
    m_point.time = m_start.PlusSeconds(static_cast<double>(m_count));
    m_point.heartRateByte = static_cast<uint8_t>(100 + m_count % 50);
    m_lastStepM = std::hypot(dLat, dLon * kCosLatitude) * kMetresPerDegree;
    ++m_count;
    return m_point;
  }
  // Metres from the point before the last one returned (1 s earlier).
  double LastStepM() const { return m_lastStepM; }

private:
  static constexpr double kCosLatitude = 0.743;  // cos 42 degrees
  static constexpr double kMetresPerDegree = 111'195.0;

  std::mt19937_64 m_random;
  std::normal_distribution<double> m_step{0, 2e-5};
  TDateTime m_start = TDateTime::FromCalendar(2024, 7, 1, 8, 0, 0);
  TrkPnt m_point;
  uint64_t m_count = 0;
  double m_lastStepM = 0;
};

}  // namespace velantis::bench
