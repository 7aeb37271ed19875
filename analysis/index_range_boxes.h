// TIndexRangeBoxes: a binary tree over the track's point indices whose every
// node holds a range [First, Last] of consecutive indices and the bounding box
// of those points, for bounding the legs between ranges in the exact search.
//
// The points are taken as unit vectors of the sphere (x, y, z from the cached
// latitude and longitude) and each box is axis-aligned in that space. The
// point cache's haversine distance is a monotone function of the chord
// between two unit vectors (haversine h = (chord / 2)^2), so the largest and
// smallest chords between two boxes bound every leg between their points,
// with no care for the antimeridian or the poles. Bounds are exact in real
// arithmetic; MaxDistance and MinDistance widen them by kBoxBoundSlackM so
// that rounding never makes a bound fall below a leg it should cover.
//
// Each node also keeps the range of its latitudes, longitudes and latitude
// cosines (radians), the inputs of the local-plane turn direction, so that the
// quadrilateral's convexity can be decided for whole ranges (CertainTurn);
// only when asked for, as the other shapes never read them.
//
// Node 0 is the root (every index); a node of one index has no children
// (Left() and Right() return kNoChild). Building costs O(n) and 2n nodes.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "analysis/flight_point_cache.h"

namespace velantis {

// Metres added to the largest and taken from the smallest box distance: far
// above the rounding of a chord (about 1e-9 m) and far below any leg that
// matters, so a bound never drops below a leg it covers.
inline constexpr double kBoxBoundSlackM = 1e-6;

// Ranges of the cached latitude, longitude (radians) and latitude cosine.
struct TPlaneRanges {
  double latLow, latHigh;
  double lonLow, lonHigh;
  double cosLow, cosHigh;
};

class TIndexRangeBoxes {
public:
  static constexpr int kNoChild = -1;

  // withPlanes: keep the ranges Plane() returns (Plane() must not be called
  // otherwise).
  explicit TIndexRangeBoxes(const TFlightPointCache& cache, bool withPlanes = true);

  bool Empty() const { return m_nodes.empty(); }
  int Root() const { return 0; }
  int First(int node) const { return m_nodes[static_cast<size_t>(node)].first; }
  int Last(int node) const { return m_nodes[static_cast<size_t>(node)].last; }
  int Size(int node) const { return Last(node) - First(node) + 1; }
  int Left(int node) const { return m_nodes[static_cast<size_t>(node)].left; }
  int Right(int node) const { return m_nodes[static_cast<size_t>(node)].right; }
  bool IsLeaf(int node) const { return Left(node) == kNoChild; }

  const TPlaneRanges& Plane(int node) const { return m_planes[static_cast<size_t>(node)]; }
  // The unit vector of point `index` (as UnitVectorOf gives it).
  const std::array<double, 3>& Point(int index) const { return m_points[static_cast<size_t>(index)]; }

  // Square of the box's diagonal (unit-sphere chords): the search splits the
  // widest range first.
  double Spread(int node) const;

  // Metres: no leg between a point of box a and a point of box b is longer
  // than MaxDistance(a, b), nor shorter than MinDistance(a, b).
  double MaxDistance(int a, int b) const;
  double MinDistance(int a, int b) const;

private:
  struct TNode {
    int first;
    int last;
    int left;
    int right;
    std::array<double, 3> low;
    std::array<double, 3> high;
  };

  int Build(const TFlightPointCache& cache, int first, int last);

  std::vector<std::array<double, 3>> m_points;
  bool m_withPlanes;
  std::vector<TNode> m_nodes;
  // Beside m_nodes, node for node; empty unless asked for.
  std::vector<TPlaneRanges> m_planes;
};

}  // namespace velantis
