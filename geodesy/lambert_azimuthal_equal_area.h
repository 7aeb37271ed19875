// "Lambert AzimuthalEqualArea" (shown as "(A)Lambert Azimuthual Equal Area"):
// the Lambert azimuthal equal-area projection on the ellipsoid, EPSG method
// 9820. Parameters: latOrigin, lonOrigin, FE, FN.
//
// The ellipsoid is mapped onto the sphere of equal area (radius Rq) through
// the authalic latitude beta, sin beta = q(phi) / q(90), which is then
// projected azimuthally. Oblique and equatorial origins use the formulas of
// IOGP/EPSG Guidance Note 7-2 (2019) for method 9820 (with the scale
// adjustment D); a polar origin (|latOrigin| = 90) uses its polar formulas,
// rho = a sqrt(q(90) -+ q(phi)).
//
// Inverse: beta follows in closed form; the latitude is solved from q by
// Newton's method started from the series of Snyder, "Map Projections: A
// Working Manual", USGS PP 1395 (1987), eq. 3-18, and q is compared through
// q(90) - q, written without cancellation, so that it stays well
// conditioned at the poles. Accuracy: round-off only (about 1e-9 m); the
// common three-term series alone would leave some 1e-9 radian.
//
// Domain: every point except the antipode of the origin (the opposite pole for
// a polar origin) and latitudes beyond 90, which fail with
// "error in Grados_a_LambertAzimuthal". Inverse: the plane points inside the
// image's rim (2 Rq from the centre, after D's stretch); points beyond it and
// not-a-numbers fail with "error in LambertAzimuthal_a_Grados"; longitudes come
// back in [-180, 180]. A latitude of origin beyond 90 makes every conversion
// fail with "error in LambertAzimuthal parameters".
#pragma once

#include <string>

#include "geodesy/projection.h"

namespace velantis {

inline constexpr const char* kLambertAzimuthalName = "Lambert AzimuthalEqualArea";
inline constexpr const char* kLambertAzimuthalShownName = "(A)Lambert Azimuthual Equal Area";

class TLambertAzimuthalEqualArea : public TProjection {
public:
  TLambertAzimuthalEqualArea(const TDatum& ellipsoid, const TProjectionParams& params);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

  bool Valid() const { return m_valid; }

private:
  // q(90) - q(phi) for s = sin(phi), c = cos(phi), free of cancellation near
  // the north pole (callers pass |s|).
  double QComplement(double s, double c) const;
  // |phi| from d = q(90) - |q|, 0 <= d <= q(90); false if Newton fails.
  bool LatitudeOfComplement(double d, double& phi) const;

  double m_a;
  double m_e;
  double m_e2;
  double m_qp = 2;  // q at the pole
  double m_rq = 0;  // a * sqrt(qp / 2)
  double m_d = 1;   // EPSG's D: stretch along the parallels at the origin
  double m_sinBeta0 = 0, m_cosBeta0 = 1;
  int m_pole = 0;   // +1 north polar, -1 south polar, 0 oblique
  double m_lat0;    // degrees
  double m_lon0;    // radians
  double m_falseEasting;
  double m_falseNorthing;
  double m_seriesCoef[3] = {0, 0, 0};  // sin 2beta, sin 4beta, sin 6beta of eq. 3-18
  bool m_valid = true;
};

}  // namespace velantis
