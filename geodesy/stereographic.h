// "Stereographic" on the ellipsoid, in two aspects chosen by the latitude of
// origin. Parameters: latOrigin, lonOrigin, FE, FN, and scaleFactor (the
// scale at the origin; 1 when the definition gives none).
//
// - Polar, when |latOrigin| is 90: EPSG method 9810, polar stereographic
//   variant A (IOGP/EPSG Guidance Note 7-2, 2019), with
//   t = tan(pi/4 - phi/2) / ((1 - e sin phi) / (1 + e sin phi))^(e/2) written
//   as exp(-psi) through the isometric latitude psi, and
//   rho = 2 a k0 t / sqrt((1 + e)^(1 + e) (1 - e)^(1 - e)). Grid north is
//   the central meridian's direction away from the pole for the north pole
//   and towards it for the south pole, as EPSG fixes it.
// - Oblique (equatorial included) otherwise: the ellipsoidal oblique
//   stereographic of J. P. Snyder, "Map Projections: A Working Manual", USGS
//   PP 1395 (1987), chapter 21: the conformal latitude chi is taken
//   straight from the ellipsoid (no Gauss sphere), and
//   A = 2 a k0 m1 / (cos chi1 (1 + sin chi1 sin chi + cos chi1 cos chi cos dlon)).
//   It is not EPSG 9809 ("Oblique Stereographic", a different projection away
//   from the origin).
//
// Accuracy: closed forms and the isometric latitude's Newton steps, round-off
// only. Domain: every point but the pole opposite a polar origin and the
// antipode of an oblique one, and latitudes up to 90; other points fail with
// "error in Grados_a_Stereographic". The inverse accepts every plane point;
// the longitude comes back in [-180, 180], a not-a-number fails with
// "error in Stereographic_a_Grados". A latitude of origin beyond 90 or a
// scale factor that is not positive makes every conversion fail with
// "error in Stereographic parameters".
#pragma once

#include <string>

#include "geodesy/gauss_conformal_sphere.h"
#include "geodesy/projection.h"

namespace velantis {

inline constexpr const char* kStereographicName = "Stereographic";

class TStereographic : public TProjection {
public:
  TStereographic(const TDatum& ellipsoid, const TProjectionParams& params);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

  bool Valid() const { return m_valid; }

private:
  double m_e;
  int m_pole = 0;  // +1 north polar origin, -1 south polar, 0 oblique
  double m_scale = 0;  // polar: 2 a k0 / sqrt(...); oblique: 2 a k0 m1 / cos chi1
  TSpherePoint m_origin;                // conformal latitude of the origin
  double m_lat0;                        // degrees
  double m_lon0;                        // radians
  double m_falseEasting;
  double m_falseNorthing;
  bool m_valid = true;
};

}  // namespace velantis
