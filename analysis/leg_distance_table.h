// The distances of one leg of the turnpoint search, measured at most once per
// pass and only where a candidate might still beat the best.
//
// The exhaustive search visits each pair of indices of two turnpoint slots
// many times (the triangle's first leg once per third turnpoint), so a pass
// keeps every pair it measures and looks it up again. The values are the
// point cache's own distances taken with the same arguments in the same
// order as the loops took them, so sums and comparisons are bitwise those
// of measuring in the loops.
//
// Most candidates of a pass cannot reach the best found so far, and their
// legs need not be measured at all. The table therefore also gives upper
// bounds: per pair (DistanceAbove of the squared chord between the points'
// unit vectors, a few multiply-adds) and per row (the bound of the row's
// largest squared chord). A bound never falls below the distance it stands
// for, and sums of bounds taken in the loops' order never fall below the sums
// of distances (rounding is monotone), so "bound below the best" proves that
// no candidate it covers can replace the best, equal scores included.
//
// Rows run over the window of one slot, columns over the window of a later
// slot, both on the search's grid: every stride-th index from the window's
// low end when every window's low end lies on one grid (the coarse pass over
// the whole track, any pass at stride 1), else every index. Only pairs whose
// column index is above the row index are valid: the search never visits the
// others.
#pragma once

#include <utility>
#include <vector>

#include "analysis/chord_screen.h"
#include "analysis/flight_point_cache.h"
#include "analysis/search_windows.h"

namespace velantis {

// Which argument comes first in the measured distance.
enum class TLegOrder { RowToColumn, ColumnToRow };

// Loads the unit vectors of a window's grid points (shared by the tables of
// a pass).
void LoadWindowVectors(const TFlightPointCache& cache, const TIndexWindow& window, int gridStep,
                       TUnitVectorColumns& vectors);

// The storage of one table, kept from pass to pass (see TLegDistanceTable).
struct TLegTableStorage {
  std::vector<double> values;
  std::vector<double> bounds;
  std::vector<char> boundRows;
  std::vector<double> rowBounds;
  // Per row, the first column whose index lies above the row's.
  std::vector<size_t> firstColumns;
};

class TLegDistanceTable {
public:
  // rowSlot < columnSlot; gridStep is stride or 1 (see above). The table
  // lives in storage, whose earlier contents it replaces; reusing one
  // storage for every pass spares allocating (and the system zeroing) a
  // fresh matrix each time.
  TLegDistanceTable(const TFlightPointCache& cache, const TIndexWindow& rows, const TIndexWindow& columns,
                    const TUnitVectorColumns& rowVectors, const TUnitVectorColumns& columnVectors, int gridStep,
                    TLegOrder order, TLegTableStorage& storage);

  // Grid positions of a row index and of a column index.
  int Row(int r) const { return Position(r, m_rowLow); }
  int Column(int c) const { return Position(c, m_columnLow); }

  // No valid distance of the row exceeds this (0 for a row with none).
  double RowBound(int row) const { return m_storage.rowBounds[static_cast<size_t>(row)]; }
  // Per-pair bounds of the row, to be read at Column(c) for c > r.
  const double* Bounds(int row);
  // The distance of the pair, measured on first use.
  double Distance(int row, int column) {
    double& value = m_storage.values[Cell(row, column)];
    if (value < 0) value = Measure(row, column);
    return value;
  }

private:
  int Position(int index, int low) const { return (index - low) / m_gridStep; }
  size_t Cell(int row, int column) const {
    return static_cast<size_t>(row) * m_columns + static_cast<size_t>(column);
  }
  double Measure(int row, int column) const;
  size_t FirstValidColumn(int r) const;

  const TFlightPointCache& m_cache;
  int m_rowLow;
  int m_columnLow;
  int m_gridStep;
  TLegOrder m_order;
  size_t m_columns;
  // values: -1 until measured. bounds: the squared chords of the valid
  // pairs, turned into per-pair bounds a row at a time (boundRows marks the
  // rows done); the other cells hold whatever an earlier pass left.
  TLegTableStorage& m_storage;
};

// The grid step of a pass: the stride when all windows' low ends share its
// grid, else 1.
int LegGridStep(const TSearchWindows& windows, int turnpoints, int stride);

}  // namespace velantis
