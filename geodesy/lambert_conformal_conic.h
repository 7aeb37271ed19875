// Lambert conformal conic on the ellipsoid, in the catalogue's two forms:
//
// - "Lambert Conformal Conic" (one standard parallel, EPSG method 9801):
//   latOrigin, lonOrigin, FE, FN, scaleFactor; the cone touches the latitude
//   of origin, where the scale is scaleFactor.
// - "Lambert 2SP" (two standard parallels, EPSG method 9802): lat1, lat2,
//   latOrigin, lonOrigin, FE, FN; the scale is 1 on both parallels and
//   (latOrigin, lonOrigin) is the false origin, which may be a pole (Belgian
//   Lambert 72 puts it at 90 N). Equal parallels give the tangent cone.
//
// Formulas: IOGP Guidance Note 7-2 (2019), EPSG methods 9801 and 9802, and
// J. P. Snyder, "Map Projections: A Working Manual", USGS PP 1395 (1987),
// chapter 15, with t = exp(-psi) written through the isometric latitude psi of
// geodesy/isometric_latitude.h, so that the radius is r = c * exp(-n psi).
// Accuracy: round-off only (within 20 nanometres of PROJ over the usable domain).
//
// Domain: every longitude (taken from the central meridian modulo 360) and
// every latitude up to the pole at the cone's apex (the north pole when n > 0),
// which maps to the apex itself; the opposite pole and latitudes beyond 90
// fail with "error in Grados_a_Lambert". Inverse: every plane point; the
// longitude comes back in [-180, 180]; a not-a-number fails with
// "error in Lambert_a_Grados". Parameters that give no cone (a standard
// parallel at a pole, two parallels symmetric about the equator so that
// n = 0, a latitude of origin of 0 for one parallel, a false origin at the
// pole the cone opens towards, a scale factor that is not positive) make
// every conversion fail with "error in Lambert parameters".
#pragma once

#include <string>

#include "geodesy/projection.h"

namespace velantis {

enum class TLambertVariant { OneStandardParallel, TwoStandardParallels };

inline constexpr const char* kLambertOneParallelName = "Lambert Conformal Conic";
inline constexpr const char* kLambertTwoParallelsName = "Lambert 2SP";

class TLambertConformalConic : public TProjection {
public:
  TLambertConformalConic(const TDatum& ellipsoid, const TProjectionParams& params,
                         TLambertVariant variant);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

  // False when the parameters give no cone.
  bool Valid() const { return m_valid; }

private:
  double m_e;
  double m_n = 0;             // cone constant, the sine of the latitude the cone touches
  double m_c = 0;             // a * F * k0: r = m_c * exp(-n psi), metres
  double m_originRadius = 0;  // r at the (false) origin latitude
  double m_lon0;              // radians
  double m_falseEasting;
  double m_falseNorthing;
  bool m_valid = true;
};

}  // namespace velantis
