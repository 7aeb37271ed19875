#include "analysis/exact_search.h"

#include <algorithm>
#include <array>
#include <queue>
#include <span>
#include <vector>

#include "analysis/certain_turn.h"
#include "analysis/chord_screen.h"
#include "analysis/index_range_boxes.h"
#include "analysis/shape_upper_bound.h"
#include "analysis/space_share_progress.h"

namespace velantis {

namespace {

// One range (a TIndexRangeBoxes node) per turnpoint and the tuple's bound.
struct TRangeTuple {
  std::array<int, kMaxTurnpoints> ranges{};
  double bound = 0;
  bool operator<(const TRangeTuple& other) const { return bound < other.bound; }
};

class TExactSearch {
public:
  TExactSearch(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress)
      : m_cache(cache),
        m_shape(shape),
        m_k(shape.turnpoints),
        m_boxes(cache, shape.turnpoints == 4),
        m_turnsDecidable(shape.turnpoints == 4 && TurnsDecidable(m_boxes)),
        m_usesShortestLegs(ShapeUsesShortestLegs(shape)),
        m_progress(progress, kExactProgressUnits),
        m_count(static_cast<double>(cache.Count())) {}

  bool Run(TOptimizationResult& result);

private:
  bool IncreasingFits(const TRangeTuple& tuple) const;
  double Bound(const TRangeTuple& tuple) const;
  bool CertainlyConcave(const TRangeTuple& tuple) const;
  double Share(const TRangeTuple& tuple) const;
  int WidestRange(const TRangeTuple& tuple) const;
  double ScoreAbove(std::span<const int> indices) const;
  void TryCandidate(std::span<const int> indices);
  void TryMiddles(const TRangeTuple& tuple);
  void Branch(const TRangeTuple& tuple);

  const TFlightPointCache& m_cache;
  const TOptimizationShape& m_shape;
  const int m_k;
  const TIndexRangeBoxes m_boxes;
  const bool m_turnsDecidable;
  // The bound reads the smallest legs only for the shapes with a leg rule.
  const bool m_usesShortestLegs;
  TSpaceShareProgress m_progress;
  const double m_count;
  std::priority_queue<TRangeTuple> m_open;
  std::array<int, kMaxTurnpoints> m_best{kNoPoint, kNoPoint, kNoPoint, kNoPoint};
  double m_bestScore = -1;
};

// Indices P1 < ... < PK can be taken from the ranges: the earliest choice in
// each range after the previous one must stay inside it.
bool TExactSearch::IncreasingFits(const TRangeTuple& tuple) const {
  int previous = -1;
  for (int j = 0; j < m_k; ++j) {
    const int node = tuple.ranges[static_cast<size_t>(j)];
    const int earliest = std::max(m_boxes.First(node), previous + 1);
    if (earliest > m_boxes.Last(node)) return false;
    previous = earliest;
  }
  return true;
}

// The quadrilateral counts only when the turns at P2, P3 and P4 agree: two
// turns certain for the whole ranges and opposite refuse every candidate.
bool TExactSearch::CertainlyConcave(const TRangeTuple& tuple) const {
  const auto& r = tuple.ranges;
  const int turns[] = {CertainTurn(m_boxes, r[0], r[1], r[2]), CertainTurn(m_boxes, r[1], r[2], r[3]),
                       CertainTurn(m_boxes, r[2], r[3], r[0])};
  bool left = false, right = false;
  for (const int turn : turns) {
    left = left || turn > 0;
    right = right || turn < 0;
  }
  return left && right;
}

double TExactSearch::Bound(const TRangeTuple& tuple) const {
  if (m_turnsDecidable && CertainlyConcave(tuple)) return 0;
  std::array<double, kMaxTurnpoints> maxLegs{};
  std::array<double, kMaxTurnpoints> minLegs{};
  const int legs = m_shape.Closed() ? m_k : 1;
  for (int j = 0; j < legs; ++j) {
    const int from = tuple.ranges[static_cast<size_t>(j)];
    const int to = tuple.ranges[static_cast<size_t>((j + 1) % m_k)];
    maxLegs[static_cast<size_t>(j)] = m_boxes.MaxDistance(from, to);
    if (m_usesShortestLegs) minLegs[static_cast<size_t>(j)] = m_boxes.MinDistance(from, to);
  }
  const auto count = static_cast<size_t>(legs);
  return ShapeUpperBound(m_shape, std::span(maxLegs.data(), count), std::span(minLegs.data(), count));
}

// The tuple's share of the n^K tuples of the whole space.
double TExactSearch::Share(const TRangeTuple& tuple) const {
  double share = 1;
  for (int j = 0; j < m_k; ++j) share *= m_boxes.Size(tuple.ranges[static_cast<size_t>(j)]) / m_count;
  return share;
}

// The range whose box is widest, or -1 when every range is one index.
int TExactSearch::WidestRange(const TRangeTuple& tuple) const {
  int widest = -1;
  double spread = -1;
  for (int j = 0; j < m_k; ++j) {
    const int node = tuple.ranges[static_cast<size_t>(j)];
    if (m_boxes.IsLeaf(node)) continue;
    const double s = m_boxes.Spread(node);
    if (s > spread) {
      spread = s;
      widest = j;
    }
  }
  return widest;
}

// No candidate's ShapeScore exceeds this: the sum of its legs' DistanceAbove
// (added in ShapeScore's order), as a refused shape scores 0.
double TExactSearch::ScoreAbove(std::span<const int> indices) const {
  const auto leg = [&](size_t a, size_t b) {
    const auto& p = m_boxes.Point(indices[a]);
    const auto& q = m_boxes.Point(indices[b]);
    const double dx = p[0] - q[0], dy = p[1] - q[1], dz = p[2] - q[2];
    return DistanceAbove(dx * dx + dy * dy + dz * dz);
  };
  if (!m_shape.Closed()) return leg(0, 1);
  double sum = 0;
  for (size_t j = 0; j < static_cast<size_t>(m_k); ++j) sum += leg(j, (j + 1) % static_cast<size_t>(m_k));
  return sum;
}

void TExactSearch::TryCandidate(std::span<const int> indices) {
  // Most candidates tried fall short of the best; the cheap bound spares
  // measuring them.
  if (ScoreAbove(indices) <= m_bestScore) return;
  const double score = ShapeScore(m_cache, m_shape, indices);
  if (score <= m_bestScore) return;
  m_bestScore = score;
  std::copy(indices.begin(), indices.end(), m_best.begin());
}

// The middle of each range, pushed up where needed to keep the indices
// increasing; nothing when that runs out of a range.
void TExactSearch::TryMiddles(const TRangeTuple& tuple) {
  std::array<int, kMaxTurnpoints> indices{};
  int previous = -1;
  for (int j = 0; j < m_k; ++j) {
    const int node = tuple.ranges[static_cast<size_t>(j)];
    const int index = std::max(m_boxes.First(node) + (m_boxes.Size(node) - 1) / 2, previous + 1);
    if (index > m_boxes.Last(node)) return;
    indices[static_cast<size_t>(j)] = previous = index;
  }
  TryCandidate(std::span(indices.data(), static_cast<size_t>(m_k)));
}

void TExactSearch::Branch(const TRangeTuple& tuple) {
  const int split = WidestRange(tuple);
  if (split < 0) {
    // Every range is one index: the bound was the candidate itself, up to slack.
    std::array<int, kMaxTurnpoints> indices{};
    for (int j = 0; j < m_k; ++j) indices[static_cast<size_t>(j)] = m_boxes.First(tuple.ranges[static_cast<size_t>(j)]);
    TryCandidate(std::span(indices.data(), static_cast<size_t>(m_k)));
    m_progress.Settle(Share(tuple));
    return;
  }
  const int node = tuple.ranges[static_cast<size_t>(split)];
  for (const int half : {m_boxes.Left(node), m_boxes.Right(node)}) {
    TRangeTuple child = tuple;
    child.ranges[static_cast<size_t>(split)] = half;
    if (IncreasingFits(child)) {
      child.bound = Bound(child);
      if (child.bound > m_bestScore) {
        TryMiddles(child);
        if (child.bound > m_bestScore) {
          m_open.push(child);
          continue;
        }
      }
    }
    m_progress.Settle(Share(child));
  }
}

bool TExactSearch::Run(TOptimizationResult& result) {
  const int count = static_cast<int>(m_cache.Count());
  TOptimizationResult found;
  found.type = m_shape.type;
  found.turnpointCount = m_k;
  if (count >= m_k) {
    // The last K indices stand when nothing scores above 0.
    for (int j = 0; j < m_k; ++j) m_best[static_cast<size_t>(j)] = count - m_k + j;
    m_bestScore = ShapeScore(m_cache, m_shape, std::span(m_best.data(), static_cast<size_t>(m_k)));
    TRangeTuple root;
    root.ranges.fill(m_boxes.Root());
    root.bound = Bound(root);
    m_open.push(root);
  }
  int64_t taken = 0;
  while (!m_open.empty() && m_open.top().bound > m_bestScore) {
    const TRangeTuple tuple = m_open.top();
    m_open.pop();
    Branch(tuple);
    if (++taken % kExactCancelCheckTuples == 0 && !m_progress.Report()) return false;
  }
  if (!m_progress.Finish()) return false;
  if (count >= m_k) {
    const auto indices = std::span<const int>(m_best.data(), static_cast<size_t>(m_k));
    std::copy(indices.begin(), indices.end(), found.turnpoints.begin());
    found.distanceM = ShapeDistance(m_cache, m_shape, indices);
    found.score = m_bestScore;
  }
  result = found;
  return true;
}

}  // namespace

bool ExactSearch(const TFlightPointCache& cache, const TOptimizationShape& shape, TProgress* progress,
                 TOptimizationResult& result) {
  return TExactSearch(cache, shape, progress).Run(result);
}

}  // namespace velantis
