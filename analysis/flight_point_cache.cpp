#include "analysis/flight_point_cache.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/track.h"

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

}  // namespace

TFlightPointCache::TFlightPointCache(const TTrack& track) { Load(track); }

void TFlightPointCache::Load(const TTrack& track) {
  m_records.clear();
  for (const TrkPnt& point : track.Points()) Add(point.lat, point.lon);
}

void TFlightPointCache::Add(double latDeg, double lonDeg) {
  // Grown by hand in fixed steps: std::vector's doubling would keep up to
  // twice the records of a long flight allocated.
  if (m_records.size() == m_records.capacity()) m_records.reserve(m_records.capacity() + kPointCacheGrowthRecords);
  TFlightPointRecord record;
  record.latDeg = latDeg;
  record.lonDeg = lonDeg;
  record.latRad = latDeg * kRadiansPerDegree;
  record.lonRad = lonDeg * kRadiansPerDegree;
  record.sinLat = std::sin(record.latRad);
  record.cosLat = std::cos(record.latRad);
  m_records.push_back(record);
}

double TFlightPointCache::Distance(size_t i, size_t j) const {
  const TFlightPointRecord& a = m_records[i];
  const TFlightPointRecord& b = m_records[j];
  const double sinHalfLat = std::sin((b.latRad - a.latRad) * 0.5);
  const double sinHalfLon = std::sin((b.lonRad - a.lonRad) * 0.5);
  const double h = sinHalfLat * sinHalfLat + a.cosLat * b.cosLat * sinHalfLon * sinHalfLon;
  // Rounding may carry h of nearly antipodal points just above 1.
  return 2.0 * kFaiSphereRadiusM * std::asin(std::sqrt(std::min(1.0, h)));
}

}  // namespace velantis
