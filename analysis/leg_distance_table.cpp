#include "analysis/leg_distance_table.h"

#include <algorithm>
#include <array>

namespace velantis {

namespace {

size_t GridCount(const TIndexWindow& window, int gridStep) {
  return window.high < window.low ? 0 : static_cast<size_t>((window.high - window.low) / gridStep + 1);
}

}  // namespace

void LoadWindowVectors(const TFlightPointCache& cache, const TIndexWindow& window, int gridStep,
                       TUnitVectorColumns& vectors) {
  vectors.Clear();
  const size_t count = GridCount(window, gridStep);
  for (size_t i = 0; i < count; ++i)
    vectors.Add(UnitVectorOf(cache.Record(static_cast<size_t>(window.low) + i * static_cast<size_t>(gridStep))));
}

// The squared chords of every valid pair are taken at once (a few
// multiply-adds each, vectorised); they give the row bounds and, converted a
// row at a time when a row is first asked for, the per-pair bounds.
TLegDistanceTable::TLegDistanceTable(const TFlightPointCache& cache, const TIndexWindow& rows,
                                     const TIndexWindow& columns, const TUnitVectorColumns& rowVectors,
                                     const TUnitVectorColumns& columnVectors, int gridStep, TLegOrder order,
                                     TLegTableStorage& storage)
    : m_cache(cache),
      m_rowLow(rows.low),
      m_columnLow(columns.low),
      m_gridStep(gridStep),
      m_order(order),
      m_columns(GridCount(columns, gridStep)),
      m_storage(storage) {
  const size_t rowCount = GridCount(rows, gridStep);
  storage.values.assign(rowCount * m_columns, -1.0);
  storage.bounds.resize(rowCount * m_columns);
  storage.boundRows.assign(rowCount, 0);
  storage.rowBounds.assign(rowCount, 0.0);
  storage.firstColumns.resize(rowCount);
  const double* cx = columnVectors.x.data();
  const double* cy = columnVectors.y.data();
  const double* cz = columnVectors.z.data();
  for (size_t i = 0; i < rowCount; ++i) {
    const int r = rows.low + static_cast<int>(i) * gridStep;
    const size_t first = FirstValidColumn(r);
    storage.firstColumns[i] = first;
    const double x = rowVectors.x[i], y = rowVectors.y[i], z = rowVectors.z[i];
    double* chords = storage.bounds.data() + i * m_columns;
    for (size_t j = first; j < m_columns; ++j) {
      const double dx = x - cx[j], dy = y - cy[j], dz = z - cz[j];
      chords[j] = dx * dx + dy * dy + dz * dz;
    }
    // Four running maxima, so that the loop vectorises.
    std::array<double, 4> largest{-1.0, -1.0, -1.0, -1.0};
    size_t j = first;
    for (; j + 4 <= m_columns; j += 4)
      for (size_t k = 0; k < 4; ++k) largest[k] = chords[j + k] > largest[k] ? chords[j + k] : largest[k];
    for (; j < m_columns; ++j) largest[0] = std::max(largest[0], chords[j]);
    const double rowLargest = std::max({largest[0], largest[1], largest[2], largest[3]});
    storage.rowBounds[i] = rowLargest < 0 ? 0.0 : DistanceAbove(rowLargest);
  }
}

const double* TLegDistanceTable::Bounds(int row) {
  const auto i = static_cast<size_t>(row);
  double* bounds = m_storage.bounds.data() + i * m_columns;
  if (!m_storage.boundRows[i]) {
    const size_t first = m_storage.firstColumns[i];
    DistancesAbove(std::span(bounds + first, m_columns - first));
    m_storage.boundRows[i] = 1;
  }
  return bounds;
}

size_t TLegDistanceTable::FirstValidColumn(int r) const {
  const int above = r + 1 - m_columnLow;
  return above <= 0 ? 0 : std::min(m_columns, static_cast<size_t>((above + m_gridStep - 1) / m_gridStep));
}

double TLegDistanceTable::Measure(int row, int column) const {
  const int r = m_rowLow + row * m_gridStep;
  const int c = m_columnLow + column * m_gridStep;
  const auto [from, to] = m_order == TLegOrder::RowToColumn ? std::pair{r, c} : std::pair{c, r};
  return m_cache.Distance(static_cast<size_t>(from), static_cast<size_t>(to));
}

int LegGridStep(const TSearchWindows& windows, int turnpoints, int stride) {
  for (int slot = 1; slot < turnpoints; ++slot)
    if ((windows[static_cast<size_t>(slot)].low - windows[0].low) % stride != 0) return 1;
  return stride;
}

}  // namespace velantis
