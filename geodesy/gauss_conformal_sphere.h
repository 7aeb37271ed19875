// Gauss's conformal mapping of the ellipsoid onto a sphere, the first half of
// the "double" projections: the oblique stereographic (EPSG method 9809, the
// Netherlands RD grid) and the Swiss oblique Mercator (CH-1903).
//
// The sphere touches the ellipsoid at the latitude of origin phi0 with radius
// R = sqrt(rho0 * nu0) = a * sqrt(1 - e^2) / (1 - e^2 sin^2 phi0); longitudes
// are scaled by n = sqrt(1 + e'^2 cos^4 phi0) and a conformal latitude chi is
// taken so that the scale is stationary at phi0:
//
//   atanh(sin chi) = n * psi(phi) + c,   c = atanh(sin chi0) - n * psi(phi0),
//   sin chi0 = sin phi0 / n,
//
// with psi the isometric latitude. This is the same sphere that swisstopo
// writes with alpha, b0 and K ("Formulas and constants for the calculation of
// the Swiss conformal cylindrical projection", 2016) and that IOGP/EPSG
// Guidance Note 7-2 (2019, method 9809) writes with n, c, w1 and w2; there
// sin chi0 comes out of (w1 - 1) / (w1 + 1) and the constant c of two
// logarithms that are each infinite at a pole. Here c is written without the
// infinities (see the .cpp), so a latitude of origin at a pole is a plain case.
#pragma once

namespace velantis {

// A point on the conformal sphere: its latitude as sine and cosine (kept
// apart so that neither loses precision near the poles).
struct TSpherePoint {
  double sinChi = 0;
  double cosChi = 1;
};

class TGaussConformalSphere {
public:
  // e: first eccentricity, a: semi-major axis, phi0: latitude of origin in
  // radians (|phi0| <= pi/2).
  TGaussConformalSphere(double a, double e, double phi0);

  // Conformal latitude of a geodetic latitude phi (radians, |phi| <= pi/2).
  TSpherePoint ToSphere(double phi) const;
  // Geodetic latitude of a conformal one; false when the iteration of
  // LatitudeOfIsometric does not settle (a not-a-number).
  bool FromSphere(const TSpherePoint& point, double& phi) const;

  double Radius() const { return m_radius; }
  double LongitudeScale() const { return m_n; }
  const TSpherePoint& Origin() const { return m_origin; }

private:
  double m_e;
  double m_n;
  double m_c;
  double m_radius;
  TSpherePoint m_origin;
};

}  // namespace velantis
