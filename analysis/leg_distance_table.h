// The distances of one leg of the turnpoint search, measured once before the
// loops instead of once per candidate.
//
// The exhaustive search visits each pair of indices of two turnpoint slots
// many times (the triangle's first leg once per third turnpoint), so the
// pass measures every pair it can visit once and looks it up. The values are
// the point cache's own distances taken with the same arguments in the same
// order as the loops took them, so sums and comparisons are bitwise those
// of measuring in the loops.
//
// Rows run over the window of one slot, columns over the window of a later
// slot, both on the search's grid: every stride-th index from the window's
// low end when every window's low end lies on one grid (the coarse pass over
// the whole track, any pass at stride 1), else every index. Only pairs whose
// column index is above the row index are measured: the search never visits
// the others.
#pragma once

#include <utility>
#include <vector>

#include "analysis/flight_point_cache.h"
#include "analysis/search_windows.h"

namespace velantis {

// Which argument comes first in the measured distance.
enum class TLegOrder { RowToColumn, ColumnToRow };

class TLegDistanceTable {
public:
  // rowSlot < columnSlot; gridStep is stride or 1 (see above).
  TLegDistanceTable(const TFlightPointCache& cache, const TIndexWindow& rows, const TIndexWindow& columns, int gridStep,
                    TLegOrder order);

  // The distances of row index r, to be read at Column(c) for c > r.
  const double* Row(int r) const { return m_values.data() + static_cast<size_t>(Position(r, m_rowLow)) * m_columns; }
  int Column(int c) const { return Position(c, m_columnLow); }

private:
  int Position(int index, int low) const { return (index - low) / m_gridStep; }

  int m_rowLow;
  int m_columnLow;
  int m_gridStep;
  size_t m_columns;
  std::vector<double> m_values;
};

// The grid step of a pass: the stride when all windows' low ends share its
// grid, else 1.
int LegGridStep(const TSearchWindows& windows, int turnpoints, int stride);

}  // namespace velantis
