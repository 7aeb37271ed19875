// The New Zealand Map Grid (NZMG, EPSG method 9811) on the International 1924
// ellipsoid of NZGD49: W. I. Reilly's conformal projection of minimum scale
// error, a complex polynomial in the isometric latitude and the longitude.
//
// Formulas and constants: Land Information New Zealand, "New Zealand map grid
// transformation formulae" (OSG Technical Report 4.1, "Conversion between
// latitude and longitude and New Zealand Map Grid", 1998, after I. F.
// Stirling, Department of Lands and Survey Technical Circular 1973/32):
//   dphi = (phi - phi0) in units of 10^5 arc-seconds,
//   dpsi = sum A_n dphi^n (n = 1..10), dlambda in radians,
//   z = sum B_n zeta^n (n = 1..6) for zeta = dpsi + i dlambda,
//   N = FN + a Re z, E = FE + a Im z.
// The inverse starts from zeta = sum C_n z^n, refines it by Newton's method on
// the B polynomial (LINZ gives two steps; here they are taken until the step
// is below 1e-14, which costs one more at most) and returns
// dphi = sum D_n dpsi^n. Every polynomial is evaluated by Horner's rule.
//
// The polynomials are fitted to New Zealand (lat 34 to 48 S, lon 166 to
// 179 E); there the A and D series invert each other to 0.3 mm at worst (at
// the corners of that box; some 10 um on the mainland), which bounds a round
// trip. Far outside the grid means nothing, but it still computes (PROJ's
// test vectors go as far as the equator).
//
// The class takes the ellipsoid of the datum it is given (the caller
// resolves "NZGD49"); the coefficients belong to International 1924, so only
// its semi-major axis is read. Domain: latitudes up to 90; beyond, or a
// not-a-number, fails with "error in Grados_a_NZMG". The inverse fails with
// "error in NZMG_a_Grados" when Newton's method does not settle within
// kNzmgMaxNewtonSteps; longitudes come back in [-180, 180].
#pragma once

#include <string>

#include "geodesy/projection.h"

namespace velantis {

inline constexpr const char* kNewZealandGridName = "New Zealand Map Grid";

// The grid's origin and false coordinates (LINZ, as above).
inline constexpr double kNzmgLatOriginDeg = -41;
inline constexpr double kNzmgLonOriginDeg = 173;
inline constexpr double kNzmgFalseNorthing = 6023150;
inline constexpr double kNzmgFalseEasting = 2510000;
inline constexpr int kNzmgMaxNewtonSteps = 20;

class TNewZealandMapGrid : public TProjection {
public:
  explicit TNewZealandMapGrid(const TDatum& ellipsoid) : m_a(ellipsoid.a) {}

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

private:
  double m_a;
};

}  // namespace velantis
