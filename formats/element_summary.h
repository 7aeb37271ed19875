// What a file's element holds, in a few figures: the count of its points,
// its segments (tracks), the box of its positions, its time span and the
// distance along it (routes and tracks, on the ellipsoid).
#pragma once

#include <string>

#include "core/bounding_box.h"
#include "core/date_time.h"
#include "formats/file_dispatch.h"

namespace velantis {

struct TElementSummary {
  std::string kind;  // "waypoints", "route" or "track"
  std::string name;
  size_t count = 0;     // waypoints, route points or track points
  size_t segments = 0;  // tracks: the runs of points between segment starts
  TBoundingBox bounds;  // WGS 84
  TDateTime start;      // the earliest and latest times, null when none
  TDateTime end;
  bool hasDistance = false;
  double distanceM = 0;
};

TElementSummary SummarizeElement(const TElementFile& file);

}  // namespace velantis
