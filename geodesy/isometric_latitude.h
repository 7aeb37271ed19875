// The isometric latitude of an ellipsoid and its inverse: the common core of
// the conformal projections of the Mercator and Lambert conic families.
//
// psi(phi) = asinh(tan phi) - e * atanh(e * sin phi). Written with tan and
// asinh instead of the textbook log(tan(pi/4 + phi/2)) it keeps full relative
// precision near the equator and stays finite up to a hair's breadth of the
// poles. The inverse solves for tau = tan phi by Newton's method (C. F. F.
// Karney, "Transverse Mercator with an accuracy of a few nanometers", J. Geod.
// 85 (2011), eqs. 7-9 and 19-21): two or three steps reach full double
// precision at any latitude; a sphere (e = 0) needs none.
#pragma once

namespace velantis {

// psi for a latitude in radians (|phi| <= pi/2) and first eccentricity e.
double IsometricLatitude(double phi, double e);

// The latitude in radians whose isometric latitude is psi; false when the
// iteration does not settle within kIsometricMaxIterations steps (only a
// not-a-number gets there).
bool LatitudeOfIsometric(double psi, double e, double& phi);

inline constexpr int kIsometricMaxIterations = 8;

}  // namespace velantis
