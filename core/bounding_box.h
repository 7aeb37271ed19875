// The extent of an element: the smallest latitude/longitude box holding its
// positions. Longitudes are taken as they are (a box across the 180th
// meridian spans the whole width), as the native files' header expects.
#pragma once

namespace velantis {

struct TBoundingBox {
  double minLat = 0;
  double minLon = 0;
  double maxLat = 0;
  double maxLon = 0;
  bool empty = true;

  void Add(double lat, double lon) {
    if (empty) {
      minLat = maxLat = lat;
      minLon = maxLon = lon;
      empty = false;
      return;
    }
    if (lat < minLat) minLat = lat;
    if (lat > maxLat) maxLat = lat;
    if (lon < minLon) minLon = lon;
    if (lon > maxLon) maxLon = lon;
  }
};

}  // namespace velantis
