// Distances and azimuths on the WGS 84 ellipsoid, through GeographicLib
// (Karney's algorithm: accurate to about 15 nm, exact for antipodal and
// nearly antipodal pairs as well). Elements hold their positions on the
// internal datum, WGS 84, so no shift comes first.
#pragma once

namespace velantis {

// Metres along the geodesic between two positions in degrees.
double GeodesicDistanceM(double lat1, double lon1, double lat2, double lon2);

// Metres, and the forward azimuth at the second point (degrees clockwise from
// north, 0 to <360): the course of a traveller arriving there.
double GeodesicDistanceCourse(double lat1, double lon1, double lat2, double lon2, double& courseDeg);

}  // namespace velantis
