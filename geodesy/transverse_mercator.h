// The transverse Mercator projection by the classic power series in the
// distance from the central meridian (J. P. Snyder, "Map Projections: A
// Working Manual", USGS Professional Paper 1395, 1987, eqs. 3-21, 8-9 to 8-25;
// also EPSG Guidance Note 7-2, method 9807 in its "USGS formula" form).
//
// Domain and accuracy: the series are truncated at A⁶ (forward) and D⁶
// (inverse) and the meridian arc at e⁶, so they are meant for a band of a few
// degrees on either side of the central meridian. Within ±3° of it (a UTM
// zone) and between 80°S and 84°N they agree with the exact (Krüger/Poder-
// Engsager) transverse Mercator to 1 mm both ways; beyond, the error grows
// with about the sixth power of the distance: 1 cm forward and 5 cm inverse
// at ±6° (the widened MGRS zones of Norway and Svalbard), 14 cm inverse at 7°.
// Inverse after forward returns within 1e-8° (under 1 mm on the ground,
// longitudes measured along the parallel): the forward meridian arc stops at
// e⁶ while the footpoint series inverts the complete one.
//
// Failure: Forward fails with kTmForwardError when 1 − e²·sin²φ is not
// positive or the result is not finite; Inverse fails with kTmInverseError
// when the footpoint latitude reaches a pole, the longitude lies more than
// 90° from the central meridian, or the result is not a finite latitude
// within ±90°. On failure the output is left untouched.
#pragma once

#include <string>

#include "geodesy/datum.h"
#include "geodesy/projection.h"

namespace velantis {

inline constexpr const char* kTmForwardError = "error in Grados_a_TM";
inline constexpr const char* kTmInverseError = "error in TM_a_Grados";

// Below this |latitude| in radians the meridian arc is taken as exactly 0.
inline constexpr double kTmZeroArcLatitudeRad = 1e-10;

class TTransverseMercator : public TProjection {
public:
  // Reads lonOrigin, latOrigin, scaleFactor, falseEasting and falseNorthing.
  // The ellipsoid's derived constants (e², e'², n) must be computed, as they
  // are for every datum read from a file or added to a list.
  TTransverseMercator(const TDatum& ellipsoid, const TProjectionParams& params);

  bool Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const override;
  bool Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const override;

  // The meridian arc from the equator to latitude phi (radians), metres,
  // unscaled; 0 for |phi| < kTmZeroArcLatitudeRad.
  double MeridianArc(double phi) const;

private:
  double m_a;
  double m_e2;
  double m_ep2;
  double m_lonOriginDeg;
  double m_scale;
  double m_falseEasting;
  double m_falseNorthing;
  double m_arcOrigin;  // M(φ0)

  // M(φ) = m_arc0·φ + sin2φ·(m_arc1 + cos2φ·(m_arc2 + cos2φ·m_arc3)): the
  // sin2φ, sin4φ and sin6φ series folded onto one sine and powers of cos2φ.
  double m_arc0, m_arc1, m_arc2, m_arc3;
  double m_muScale;  // 1 / (a·(1 − e²/4 − 3e⁴/64 − 5e⁶/256))
  // φ1 = μ + sin2μ·(m_foot0 + cos2μ·(m_foot1 + cos2μ·(m_foot2 + cos2μ·m_foot3))).
  double m_foot0, m_foot1, m_foot2, m_foot3;
};

}  // namespace velantis
