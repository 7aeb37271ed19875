// The stereographic projection of a sphere about an oblique origin: the half
// that the ellipsoidal stereographics share once a point is on their
// conformal sphere (TStereographic on the conformal latitude,
// TObliqueStereographic on Gauss's sphere).
#pragma once

#include <cmath>

#include "geodesy/gauss_conformal_sphere.h"

namespace velantis {

// The plane offsets from the origin of the sphere point `point`, dLon
// radians east of the origin on the sphere; diameter is 2 R k0. False for
// the antipode of the origin, the outputs then untouched: 1 + cos(c) for the
// angular distance c below 1e-10 is projected at infinity (a point 1e-10 of
// this away lands some 10^12 m out, far beyond any use).
inline bool SphereStereographicForward(const TSpherePoint& origin, double diameter,
                                       const TSpherePoint& point, double dLon, double& dx,
                                       double& dy) {
  const double cosLon = std::cos(dLon);
  const double onePlusCos =
      1 + point.sinChi * origin.sinChi + point.cosChi * origin.cosChi * cosLon;
  if (!(onePlusCos >= 1e-10)) return false;
  const double k = diameter / onePlusCos;
  dx = k * point.cosChi * std::sin(dLon);
  dy = k * (point.sinChi * origin.cosChi - point.cosChi * origin.sinChi * cosLon);
  return true;
}

// The sphere point at plane offsets dx, dy from the origin (rho = hypot(dx,
// dy), not 0): the sine of its latitude and its unit vector's north and east
// components in the meridian frame of the origin; the cosine of its latitude
// is hypot(north, east), never 1 - sin^2, and its longitude from the origin
// atan2(east, north).
struct TSphereDirection {
  double sinChi, north, east;
};
inline TSphereDirection SphereStereographicInverse(const TSpherePoint& origin, double diameter,
                                                   double dx, double dy, double rho) {
  // c is the angular distance from the origin: rho = 2 R k0 tan(c / 2).
  const double c = 2 * std::atan(rho / diameter);
  const double sinC = std::sin(c), cosC = std::cos(c);
  return {cosC * origin.sinChi + dy / rho * sinC * origin.cosChi,
          cosC * origin.cosChi - dy / rho * sinC * origin.sinChi, dx / rho * sinC};
}

}  // namespace velantis
