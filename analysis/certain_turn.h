// The quadrilateral's convexity decided for whole index ranges: the turn
// direction at b on the way a -> b -> c (as TurnDirection measures it, in the
// local plane of each leg) when every choice of points in the three ranges
// gives the same one.
//
// The legs' east and north parts are bounded by interval arithmetic over the
// ranges' latitudes, longitudes and latitude cosines, and so is the cross
// product; its sign is certain when the interval stays clear of zero by more
// than the rounding of the products (kTurnRelativeMargin of their size). The
// middle point enters both legs independently, which only loosens the
// interval. Longitude differences are taken as they are, without the wrap at
// the antimeridian, so the test holds only for tracks spanning less than pi
// in longitude (TurnsDecidable).
#pragma once

#include "analysis/index_range_boxes.h"

namespace velantis {

// Far above the relative rounding of a product of doubles (1e-16), far below
// any turn that a track's points make.
inline constexpr double kTurnRelativeMargin = 1e-12;

// True when no two points of the track are pi or more apart in longitude.
bool TurnsDecidable(const TIndexRangeBoxes& boxes);

// +1 (left) or -1 (right) when every point choice turns that way; 0 when the
// ranges allow either or a straight line.
int CertainTurn(const TIndexRangeBoxes& boxes, int a, int b, int c);

}  // namespace velantis
