// Distances of the rule sets' earth models: the FAI sphere of radius
// 6371 km or the WGS 84 ellipsoid. Both go through GeographicLib's geodesic
// solution (on the sphere it is the great circle), accurate to nanometres;
// the searches use the point cache's cheaper haversine instead.
#pragma once

namespace velantis {

enum class TEarthModel { FaiSphere, Wgs84 };

// Metres between two positions in degrees on the model.
double EarthDistanceM(TEarthModel model, double lat1, double lon1, double lat2, double lon2);

}  // namespace velantis
