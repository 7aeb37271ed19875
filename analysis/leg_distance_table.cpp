#include "analysis/leg_distance_table.h"

namespace velantis {

namespace {

size_t GridCount(const TIndexWindow& window, int gridStep) {
  return window.high < window.low ? 0 : static_cast<size_t>((window.high - window.low) / gridStep + 1);
}

}  // namespace

TLegDistanceTable::TLegDistanceTable(const TFlightPointCache& cache, const TIndexWindow& rows,
                                     const TIndexWindow& columns, int gridStep, TLegOrder order)
    : m_rowLow(rows.low), m_columnLow(columns.low), m_gridStep(gridStep), m_columns(GridCount(columns, gridStep)) {
  const size_t rowCount = GridCount(rows, gridStep);
  m_values.assign(rowCount * m_columns, 0.0);
  for (size_t i = 0; i < rowCount; ++i) {
    const int r = rows.low + static_cast<int>(i) * gridStep;
    for (size_t j = 0; j < m_columns; ++j) {
      const int c = columns.low + static_cast<int>(j) * gridStep;
      if (c <= r) continue;
      const auto [from, to] = order == TLegOrder::RowToColumn ? std::pair{r, c} : std::pair{c, r};
      m_values[i * m_columns + j] = cache.Distance(static_cast<size_t>(from), static_cast<size_t>(to));
    }
  }
}

int LegGridStep(const TSearchWindows& windows, int turnpoints, int stride) {
  for (int slot = 1; slot < turnpoints; ++slot)
    if ((windows[static_cast<size_t>(slot)].low - windows[0].low) % stride != 0) return 1;
  return stride;
}

}  // namespace velantis
