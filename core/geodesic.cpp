#include "core/geodesic.h"

#include <GeographicLib/Geodesic.hpp>

#include <cmath>

namespace velantis {

double GeodesicDistanceM(double lat1, double lon1, double lat2, double lon2) {
  double s12 = 0;
  GeographicLib::Geodesic::WGS84().Inverse(lat1, lon1, lat2, lon2, s12);
  return s12;
}

double GeodesicDistanceCourse(double lat1, double lon1, double lat2, double lon2, double& courseDeg) {
  double s12 = 0, azi1 = 0, azi2 = 0;
  GeographicLib::Geodesic::WGS84().Inverse(lat1, lon1, lat2, lon2, s12, azi1, azi2);
  courseDeg = azi2 < 0 ? azi2 + 360.0 : azi2;
  if (courseDeg >= 360.0) courseDeg -= 360.0;
  return s12;
}

}  // namespace velantis
