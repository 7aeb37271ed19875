// The three Mercator projections of the catalogue. All are the normal
// (equatorial) Mercator; they differ in the figure and in the parameters read:
//
// - "Mercator": ellipsoidal, lonOrigin, latOrigin, scaleFactor, FE, FN. The
//   latitude of origin is read as the latitude of true scale (a Mercator's
//   natural origin is always on the equator, so the field has no other use),
//   and the scale factor multiplies the scale there. latOrigin 0 with a scale
//   factor is EPSG method 9804 (variant A, e.g. Batavia / NEIEZ, k0 0.997);
//   latOrigin phi1 with scale factor 1 is EPSG 9805 (variant B, e.g. Pulkovo
//   1942 / Caspian Sea, standard parallel 42); both at once compose.
// - "Mercator (Spherical)": the spherical formulas applied to latitudes and
//   longitudes of the ellipsoid with R = a, EPSG 1024 "Popular Visualisation
//   Pseudo Mercator" (the web map tiling grid); lonOrigin, FE, FN. On a sphere
//   it is also EPSG 1026 "Mercator (Spherical)". Not conformal on the
//   ellipsoid: that is the method's definition, not an approximation here.
// - "Elliptical Mercator": ellipsoidal EPSG 9804 (variant A); lonOrigin,
//   scaleFactor, FE, FN. Its natural origin is on the equator by definition,
//   so latOrigin is not read.
//
// Formulas: IOGP Guidance Note 7-2 (2019), EPSG methods 9804, 9805 and 1024,
// with the isometric latitude of geodesy/isometric_latitude.h.
// Accuracy: round-off only (within 5 nanometres of PROJ up to 85 degrees).
// Domain: every longitude (taken from the central meridian modulo 360) and
// latitudes strictly between -90 and 90; a pole, a latitude beyond 90 or a
// not-a-number fails with "error in Grados_a_Mercator". Inverse longitudes
// come back in [-180, 180]; a not-a-number fails with
// "error in Mercator_a_Grados". A parameter set outside its range (a latitude
// of true scale at a pole, a scale factor that is not positive) makes every
// conversion fail with "error in Mercator parameters".
#pragma once

#include <string>
#include <string_view>

#include "geodesy/projection.h"

namespace velantis {

enum class TMercatorVariant { Mercator, Spherical, Elliptical };

inline constexpr const char* kMercatorName = "Mercator";
inline constexpr const char* kMercatorSphericalName = "Mercator (Spherical)";
inline constexpr const char* kEllipticalMercatorName = "Elliptical Mercator";

// The variant shown under a catalogue name; false for any other name.
bool MercatorVariantOfName(std::string_view name, TMercatorVariant& variant);

class TMercator : public TProjection {
public:
  TMercator(const TDatum& ellipsoid, const TProjectionParams& params, TMercatorVariant variant);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

  // False when the parameters are outside the method's range.
  bool Valid() const { return m_valid; }

private:
  double m_e;       // 0 for the spherical variant
  double m_radius;  // a * k0, metres per radian of longitude
  double m_lon0;    // radians
  double m_falseEasting;
  double m_falseNorthing;
  bool m_valid = true;
};

}  // namespace velantis
