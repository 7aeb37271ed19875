#pragma once

namespace velantis {

// A geographic position in decimal degrees on some datum.
struct TLonLat {
  double lon = 0;
  double lat = 0;
};

}  // namespace velantis
