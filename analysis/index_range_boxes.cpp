#include "analysis/index_range_boxes.h"

#include <algorithm>
#include <cmath>

namespace velantis {

namespace {

// Metres of arc on the cache's sphere for a chord between unit vectors.
double ChordToMetres(double chord) {
  return 2.0 * kFaiSphereRadiusM * std::asin(std::min(1.0, 0.5 * chord));
}

}  // namespace

TIndexRangeBoxes::TIndexRangeBoxes(const TFlightPointCache& cache, bool withPlanes) : m_withPlanes(withPlanes) {
  const size_t count = cache.Count();
  if (count == 0) return;
  m_points.resize(count);
  for (size_t i = 0; i < count; ++i) {
    const TFlightPointRecord& record = cache.Record(i);
    m_points[i] = {record.cosLat * std::cos(record.lonRad), record.cosLat * std::sin(record.lonRad), record.sinLat};
  }
  m_nodes.reserve(2 * count);
  if (withPlanes) m_planes.reserve(2 * count);
  Build(cache, 0, static_cast<int>(count) - 1);
}

// Pre-order, so the root is node 0; depth is log2(n), so recursion is safe.
int TIndexRangeBoxes::Build(const TFlightPointCache& cache, int first, int last) {
  const std::vector<std::array<double, 3>>& points = m_points;
  const int id = static_cast<int>(m_nodes.size());
  m_nodes.push_back(
      {first, last, kNoChild, kNoChild, points[static_cast<size_t>(first)], points[static_cast<size_t>(first)]});
  if (m_withPlanes) {
    const TFlightPointRecord& record = cache.Record(static_cast<size_t>(first));
    m_planes.push_back({record.latRad, record.latRad, record.lonRad, record.lonRad, record.cosLat, record.cosLat});
  }
  if (first == last) return id;
  const int middle = first + (last - first) / 2;
  const int left = Build(cache, first, middle);
  const int right = Build(cache, middle + 1, last);
  TNode& node = m_nodes[static_cast<size_t>(id)];
  const TNode& l = m_nodes[static_cast<size_t>(left)];
  const TNode& r = m_nodes[static_cast<size_t>(right)];
  node.left = left;
  node.right = right;
  for (size_t k = 0; k < 3; ++k) {
    node.low[k] = std::min(l.low[k], r.low[k]);
    node.high[k] = std::max(l.high[k], r.high[k]);
  }
  if (m_withPlanes) {
    const TPlaneRanges& lp = m_planes[static_cast<size_t>(left)];
    const TPlaneRanges& rp = m_planes[static_cast<size_t>(right)];
    m_planes[static_cast<size_t>(id)] = {std::min(lp.latLow, rp.latLow), std::max(lp.latHigh, rp.latHigh),
                                         std::min(lp.lonLow, rp.lonLow), std::max(lp.lonHigh, rp.lonHigh),
                                         std::min(lp.cosLow, rp.cosLow), std::max(lp.cosHigh, rp.cosHigh)};
  }
  return id;
}

double TIndexRangeBoxes::Spread(int node) const {
  const TNode& n = m_nodes[static_cast<size_t>(node)];
  double sum = 0;
  for (size_t k = 0; k < 3; ++k) sum += (n.high[k] - n.low[k]) * (n.high[k] - n.low[k]);
  return sum;
}

double TIndexRangeBoxes::MaxDistance(int a, int b) const {
  const TNode& p = m_nodes[static_cast<size_t>(a)];
  const TNode& q = m_nodes[static_cast<size_t>(b)];
  double sum = 0;
  for (size_t k = 0; k < 3; ++k) {
    const double widest = std::max(p.high[k] - q.low[k], q.high[k] - p.low[k]);
    sum += widest * widest;
  }
  return ChordToMetres(std::sqrt(sum)) + kBoxBoundSlackM;
}

double TIndexRangeBoxes::MinDistance(int a, int b) const {
  const TNode& p = m_nodes[static_cast<size_t>(a)];
  const TNode& q = m_nodes[static_cast<size_t>(b)];
  double sum = 0;
  for (size_t k = 0; k < 3; ++k) {
    const double gap = std::max({0.0, p.low[k] - q.high[k], q.low[k] - p.high[k]});
    sum += gap * gap;
  }
  return std::max(0.0, ChordToMetres(std::sqrt(sum)) - kBoxBoundSlackM);
}

}  // namespace velantis
