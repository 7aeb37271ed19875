#include "analysis/earth_distance.h"

#include <GeographicLib/Geodesic.hpp>

#include "analysis/flight_point_cache.h"
#include "core/geodesic.h"

namespace velantis {

double EarthDistanceM(TEarthModel model, double lat1, double lon1, double lat2, double lon2) {
  if (model == TEarthModel::Wgs84) return GeodesicDistanceM(lat1, lon1, lat2, lon2);
  static const GeographicLib::Geodesic faiSphere(kFaiSphereRadiusM, 0.0);
  double s12 = 0;
  faiSphere.Inverse(lat1, lon1, lat2, lon2, s12);
  return s12;
}

}  // namespace velantis
