// TFlightPointCache: the track's points copied once into flat records for the
// flight optimiser's inner loops.
//
// One record per track point: the position in degrees, latitude and longitude
// in radians (degrees x pi / 180) and the sine and cosine of the latitude,
// computed once, so that a distance needs no conversion and only the
// trigonometry of the differences. The array grows in steps of
// kPointCacheGrowthRecords records, as the optimiser has always allocated it.
//
// Distance is the haversine great-circle distance on the FAI sphere
// (kFaiSphereRadiusM). It is the searches' objective, cheap and monotone
// enough to rank candidates; rule sets score the chosen points again with
// their own earth model. Accuracy: the haversine form keeps full relative
// precision for short legs (two equal points give exactly 0); against the
// WGS 84 geodesic it differs by up to about 0.5 %, the sphere's flattening.
// Indices are not checked: callers pass i, j < Count().
#pragma once

#include <cstddef>
#include <vector>

namespace velantis {

class TTrack;

// The FAI sphere of the Sporting Code's distance rules.
inline constexpr double kFaiSphereRadiusM = 6371000.0;
// Records added at a time when the cache is full.
inline constexpr size_t kPointCacheGrowthRecords = 1000;

struct TFlightPointRecord {
  double latDeg = 0;
  double lonDeg = 0;
  double latRad = 0;
  double lonRad = 0;
  double sinLat = 0;
  double cosLat = 1;
};

class TFlightPointCache {
public:
  TFlightPointCache() = default;
  // The cache of every point of the track, in order.
  explicit TFlightPointCache(const TTrack& track);

  // Replaces the records by the track's points.
  void Load(const TTrack& track);
  // Appends one point (degrees).
  void Add(double latDeg, double lonDeg);
  void Clear() { m_records.clear(); }

  size_t Count() const { return m_records.size(); }
  // Records allocated: always a multiple of kPointCacheGrowthRecords.
  size_t Capacity() const { return m_records.capacity(); }
  const TFlightPointRecord& Record(size_t i) const { return m_records[i]; }

  // Metres between points i and j on the FAI sphere.
  double Distance(size_t i, size_t j) const;

private:
  std::vector<TFlightPointRecord> m_records;
};

}  // namespace velantis
