// "CH-1903" ("Swiss Grid"): the Swiss oblique conformal cylindrical
// projection of the CH1903 / LV03 grid on the Bessel 1841 ellipsoid of the
// datum "CH-1903"; easting y, northing x, 600000 / 200000 at the old
// observatory of Bern.
//
// Formulas: swisstopo, "Formulas and constants for the calculation of the
// Swiss conformal cylindrical projection and for the transformation between
// coordinate systems" (December 2016), the rigorous solution: the
// ellipsoid goes onto Gauss's sphere (geodesy/gauss_conformal_sphere.h, whose
// n, chi0 and c are swisstopo's alpha, b0 and K), is rotated so that the
// origin lies on the equator of a pseudo-equatorial system (b-bar, l-bar), and
// is projected with the normal Mercator on that sphere: Y = R l-bar,
// X = R atanh(sin b-bar). The same method is EPSG 9815 (Hotine oblique
// Mercator variant B with azimuth 90) and PROJ's somerc. Accuracy: closed
// forms plus the isometric latitude's Newton steps, round-off only.
//
// The class takes the ellipsoid of the datum it is given (the caller resolves
// "CH-1903"); the origin and the false coordinates are the grid's own.
// Domain: every point except the two poles of the oblique cylinder (90 degrees
// from Bern across the oblique equator), and latitudes beyond 90, which fail
// with "error in Grados_a_CH1903"; the inverse fails only on a not-a-number,
// "error in CH1903_a_Grados"; longitudes come back in [-180, 180].
#pragma once

#include <string>

#include "geodesy/gauss_conformal_sphere.h"
#include "geodesy/projection.h"

namespace velantis {

inline constexpr const char* kSwissGridName = "CH-1903";
inline constexpr const char* kSwissGridShownName = "Swiss Grid";

// The fundamental point, the old observatory of Bern: 46°57'08.66" N,
// 7°26'22.50" E on CH1903, and its LV03 coordinates (swisstopo, as above).
inline constexpr double kSwissLatOriginDeg = 46 + 57.0 / 60 + 8.66 / 3600;
inline constexpr double kSwissLonOriginDeg = 7 + 26.0 / 60 + 22.50 / 3600;
inline constexpr double kSwissFalseEastingLv03 = 600000;
inline constexpr double kSwissFalseNorthingLv03 = 200000;

class TSwissGrid : public TProjection {
public:
  explicit TSwissGrid(const TDatum& ellipsoid);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

private:
  TGaussConformalSphere m_sphere;
};

}  // namespace velantis
