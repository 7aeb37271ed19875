// "Polyconic": the American polyconic projection on the ellipsoid (EPSG method
// 9818). Every parallel is the arc of its own tangent cone, true to scale,
// and the central meridian is true to scale.
//
// Parameters: lonOrigin (the catalogue's "Lon Origin"); latOrigin, FE and FN
// keep their default 0 in catalogue use and are honoured when a definition
// sets them (EPSG 9818 has all four, e.g. SIRGAS 2000 / Brazil Polyconic).
//
// Formulas: IOGP Guidance Note 7-2 (2019), EPSG method 9818, and J. P.
// Snyder, "Map Projections: A Working Manual", USGS PP 1395 (1987), chapter
// 18. The meridian arc is Helmert's series in the third flattening to n^4
// (error below 1e-7 m), summed by Clenshaw's rule; the forward terms are
// rearranged with sin(E)/E so that the equator needs no special case. The
// inverse solves Snyder's equation in phi by Newton's method from phi = A, at
// most kPolyconicMaxIterations steps. Within about a degree of a pole, where
// that equation has a double root and loses half the digits, it iterates
// instead on (u, v) = (pi/2 - |phi|) (cos E, sin E), in which the map is
// locally a plain rotation and scaling (nu = rho at the pole), again at most
// kPolyconicMaxIterations steps.
//
// Domain: forward, every latitude and every longitude (taken from the central
// meridian modulo 360); latitudes beyond 90 fail with "error in
// Grados_a_Policonica". The map folds over itself where |dLon * sin(lat)|
// passes 90 degrees, so away from the poles the inverse returns the point
// inside that fold (as PROJ does). A plane point off the map (its longitude
// arcsine out of range, or farther than 180 degrees from the central
// meridian), or one where the iteration does not settle, fails with
// "error in Policonica_a_Grados". Inverse longitudes come back in
// [-180, 180]; at a pole the longitude is the central meridian.
#pragma once

#include <array>
#include <string>

#include "geodesy/projection.h"

namespace velantis {

inline constexpr const char* kPolyconicName = "Polyconic";
inline constexpr int kPolyconicMaxIterations = 20;

class TPolyconic : public TProjection {
public:
  TPolyconic(const TDatum& ellipsoid, const TProjectionParams& params);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

  // The meridian arc from the equator to phi (radians), metres.
  double MeridianArc(double phi) const;

private:
  // Near a pole (plane point x, A in units of a): Snyder's equation has a
  // double root at the pole itself, so there the inverse iterates on the
  // plane-like polar coordinates instead.
  bool InverseNearPole(double x, double a, double pole, double& phi, double& dLon) const;

  double m_a;
  double m_e2;
  double m_arcScale;                 // a / (1 + n) * (1 + n^2/4 + n^4/64)
  std::array<double, 4> m_arcSines;  // coefficients of sin(2k phi), k = 1..4, metres
  double m_lon0;                     // radians
  double m_originArc;                // M(latOrigin), metres
  double m_quadrant;                 // M(90 degrees), metres
  double m_falseEasting;
  double m_falseNorthing;
};

}  // namespace velantis
