// A plane coordinate system: the conversion between a latitude/longitude on
// the ellipsoid of a datum and plane coordinates in metres.
//
// Every projection of the catalogue derives from TProjection. It is built once
// for an ellipsoid and a parameter set (constructors precompute what does not
// change per point); Forward and Inverse are then pure, thread-safe, and on
// failure return false with the system's message and leave the output as it
// was.
#pragma once

#include <string>

#include "geodesy/datum.h"
#include "geodesy/lon_lat.h"

namespace velantis {

// Easting and northing in metres.
struct TPlanePoint {
  double x = 0;
  double y = 0;
  bool operator==(const TPlanePoint&) const = default;
};

// The parameters a catalogue projection may take, in degrees and metres.
// Which of them a projection reads is given by its captions in the catalogue.
struct TProjectionParams {
  double lonOrigin = 0;
  double latOrigin = 0;
  double scaleFactor = 1;
  double falseEasting = 0;
  double falseNorthing = 0;
  double lat1 = 0;  // first standard parallel
  double lat2 = 0;  // second standard parallel
  bool operator==(const TProjectionParams&) const = default;
};

class TProjection {
public:
  virtual ~TProjection() = default;
  // geo: longitude and latitude in degrees on the projection's ellipsoid.
  virtual bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const = 0;
  virtual bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const = 0;
};

}  // namespace velantis
