// "Oblique Stereographic": the double stereographic projection of EPSG method
// 9809, as used by the Netherlands RD grid (Amersfoort / RD New) and the
// Canadian Maritime provinces. The ellipsoid is first mapped conformally onto
// Gauss's sphere (geodesy/gauss_conformal_sphere.h), which is then projected
// stereographically from the point opposite the origin. Parameters:
// latOrigin, lonOrigin, FE, FN, scaleFactor (the scale at the origin).
//
// Formulas: IOGP/EPSG Guidance Note 7-2 (2019), method 9809; the inverse is the
// spherical stereographic inverse of J. P. Snyder, "Map Projections: A
// Working Manual", USGS PP 1395 (1987), chapter 21, on that sphere, followed
// by the inverse of the Gauss mapping. Both are closed forms apart
// from the isometric latitude's Newton steps: accuracy is round-off only
// (below a micrometre within several thousand kilometres of the origin).
//
// Domain: every point except the antipode of the origin on the sphere (where
// the projection goes to infinity) and latitudes beyond 90, which fail with
// "error in Grados_a_ObliqueStereographic". Longitudes are taken from the
// central meridian the short way round; the sphere stretches them by
// n = sqrt(1 + e'^2 cos^4 phi0) >= 1, so the few beyond 180 / n degrees
// (179.9 for RD) overlap others on the plane and do not invert to
// themselves. The inverse accepts every plane
// point; the longitude comes back in [-180, 180] and a not-a-number fails
// with "error in ObliqueStereographic_a_Grados". A latitude of origin beyond
// 90 or a scale factor that is not positive makes every conversion fail with
// "error in ObliqueStereographic parameters".
#pragma once

#include <string>

#include "geodesy/gauss_conformal_sphere.h"
#include "geodesy/projection.h"

namespace velantis {

inline constexpr const char* kObliqueStereographicName = "Oblique Stereographic";

class TObliqueStereographic : public TProjection {
public:
  TObliqueStereographic(const TDatum& ellipsoid, const TProjectionParams& params);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

  bool Valid() const { return m_valid; }

private:
  TGaussConformalSphere m_sphere;
  double m_diameter;  // 2 * R * k0, metres
  double m_lat0;      // degrees, returned as is for the origin itself
  double m_lon0;      // radians
  double m_falseEasting;
  double m_falseNorthing;
  bool m_valid = true;
};

}  // namespace velantis
