#include "geodesy/transverse_mercator.h"

#include <cmath>
#include <numbers>

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
constexpr double kDegreesPerRadian = 180 / std::numbers::pi;
constexpr double kHalfPiRad = std::numbers::pi / 2;

// A longitude difference brought into [−180°, 180°], so that a point just
// across the antimeridian from the central meridian is projected beside it.
double WrapDegrees(double degrees) {
  if (std::fabs(degrees) <= 180) return degrees;
  return std::remainder(degrees, 360.0);
}

}  // namespace

TTransverseMercator::TTransverseMercator(const TDatum& ellipsoid, const TProjectionParams& params)
    : m_a(ellipsoid.a),
      m_e2(ellipsoid.e2),
      m_ep2(ellipsoid.ep2),
      m_lonOriginDeg(params.lonOrigin),
      m_scale(params.scaleFactor),
      m_falseEasting(params.falseEasting),
      m_falseNorthing(params.falseNorthing) {
  const double e2 = m_e2, e4 = e2 * e2, e6 = e4 * e2;
  // Meridian arc (Snyder 3-21), truncated after e⁶.
  const double c0 = 1 - e2 / 4 - 3 * e4 / 64 - 5 * e6 / 256;
  const double c2 = 3 * e2 / 8 + 3 * e4 / 32 + 45 * e6 / 1024;
  const double c4 = 15 * e4 / 256 + 45 * e6 / 1024;
  const double c6 = 35 * e6 / 3072;
  // sin4φ = sin2φ·2cos2φ and sin6φ = sin2φ·(4cos²2φ − 1).
  m_arc0 = m_a * c0;
  m_arc1 = m_a * (-c2 + c6);
  m_arc2 = m_a * 2 * c4;
  m_arc3 = m_a * -4 * c6;
  m_muScale = 1 / (m_a * c0);

  // Footpoint latitude (Snyder 3-26) in e1, the third flattening of the
  // ellipsoid; sin8μ = sin2μ·(8cos³2μ − 4cos2μ).
  const double n = ellipsoid.n, n2 = n * n, n3 = n2 * n, n4 = n3 * n;
  const double j1 = 3 * n / 2 - 27 * n3 / 32;
  const double j2 = 21 * n2 / 16 - 55 * n4 / 32;
  const double j3 = 151 * n3 / 96;
  const double j4 = 1097 * n4 / 512;
  m_foot0 = j1 - j3;
  m_foot1 = 2 * j2 - 4 * j4;
  m_foot2 = 4 * j3;
  m_foot3 = 8 * j4;

  m_arcOrigin = MeridianArc(params.latOrigin * kRadiansPerDegree);
}

double TTransverseMercator::MeridianArc(double phi) const {
  if (std::fabs(phi) < kTmZeroArcLatitudeRad) return 0;
  const double sin2 = std::sin(2 * phi), cos2 = std::cos(2 * phi);
  return m_arc0 * phi + sin2 * (m_arc1 + cos2 * (m_arc2 + cos2 * m_arc3));
}

bool TTransverseMercator::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  const double phi = geo.lat * kRadiansPerDegree;
  const double s = std::sin(phi), c = std::cos(phi);
  const double w = 1 - m_e2 * s * s;
  if (!(w > 0)) {
    message = kTmForwardError;
    return false;
  }
  const double nu = m_a / std::sqrt(w);  // N, the prime vertical radius
  const double t = s / c;
  const double tt = t * t;                // T
  const double cc = m_ep2 * c * c;        // C
  const double aa = WrapDegrees(geo.lon - m_lonOriginDeg) * kRadiansPerDegree * c;  // A
  const double a2 = aa * aa;

  double arc = 0;
  if (std::fabs(phi) >= kTmZeroArcLatitudeRad) {
    const double sin2 = 2 * s * c, cos2 = (c - s) * (c + s);
    arc = m_arc0 * phi + sin2 * (m_arc1 + cos2 * (m_arc2 + cos2 * m_arc3));
  }

  const double x = m_falseEasting +
                   m_scale * nu * aa *
                       (1 + a2 * ((1 - tt + cc) / 6 +
                                  a2 * (5 - 18 * tt + tt * tt + 72 * cc - 58 * m_ep2) / 120));
  const double y =
      m_falseNorthing +
      m_scale * (arc - m_arcOrigin +
                 nu * t * a2 *
                     (0.5 + a2 * ((5 - tt + 9 * cc + 4 * cc * cc) / 24 +
                                  a2 * (61 - 58 * tt + tt * tt + 600 * cc - 330 * m_ep2) / 720)));
  if (!std::isfinite(x) || !std::isfinite(y)) {
    message = kTmForwardError;
    return false;
  }
  plane.x = x;
  plane.y = y;
  return true;
}

bool TTransverseMercator::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  const double arc = m_arcOrigin + (plane.y - m_falseNorthing) / m_scale;
  const double mu = arc * m_muScale;
  const double sinMu = std::sin(mu), cosMu = std::cos(mu);
  const double sin2mu = 2 * sinMu * cosMu, cos2mu = (cosMu - sinMu) * (cosMu + sinMu);
  const double delta = sin2mu * (m_foot0 + cos2mu * (m_foot1 + cos2mu * (m_foot2 + cos2mu * m_foot3)));
  const double phi1 = mu + delta;
  // At or beyond a pole the footpoint has no meridian to measure D along.
  if (!(std::fabs(phi1) < kHalfPiRad)) {
    message = kTmInverseError;
    return false;
  }
  // sin φ1 and cos φ1 from those of μ, saving a second sine and cosine:
  // δ = φ1 − μ is a few thousandths of a radian on any real ellipsoid, where
  // these Taylor series are exact to double precision.
  const double delta2 = delta * delta;
  const double sinDelta = delta * (1 - delta2 / 6 * (1 - delta2 / 20));
  const double cosDelta = 1 - delta2 / 2 * (1 - delta2 / 12 * (1 - delta2 / 30));
  const double s1 = sinMu * cosDelta + cosMu * sinDelta;
  const double c1 = cosMu * cosDelta - sinMu * sinDelta;
  if (!(c1 > 0)) {
    message = kTmInverseError;
    return false;
  }
  const double w = 1 - m_e2 * s1 * s1;
  if (!(w > 0)) {
    message = kTmInverseError;
    return false;
  }
  const double t1 = s1 / c1;
  const double tt = t1 * t1;            // T1
  const double cc = m_ep2 * c1 * c1;    // C1
  const double nu1 = m_a / std::sqrt(w);  // N1
  // N1·tanφ1 / R1, with R1 = a(1 − e²) / w^1.5.
  const double nuTanOverRho = t1 * w / (1 - m_e2);
  const double d = (plane.x - m_falseEasting) / (nu1 * m_scale);
  const double d2 = d * d;

  const double phi =
      phi1 - nuTanOverRho * d2 *
                 (0.5 - d2 * ((5 + 3 * tt + 10 * cc - 4 * cc * cc - 9 * m_ep2) / 24 -
                              d2 * (61 + 90 * tt + 298 * cc + 45 * tt * tt - 252 * m_ep2 - 3 * cc * cc) / 720));
  const double lambda =
      d * (1 - d2 * ((1 + 2 * tt + cc) / 6 -
                     d2 * (5 - 2 * cc + 28 * tt - 3 * cc * cc + 8 * m_ep2 + 24 * tt * tt) / 120)) / c1;

  // A transverse Mercator reaches at most a quarter turn from its meridian;
  // beyond, the series give numbers without meaning.
  if (!(std::fabs(lambda) <= kHalfPiRad)) {
    message = kTmInverseError;
    return false;
  }
  const double lat = phi * kDegreesPerRadian;
  const double lon = WrapDegrees(m_lonOriginDeg + lambda * kDegreesPerRadian);
  if (!std::isfinite(lat) || !std::isfinite(lon) || std::fabs(lat) > 90) {
    message = kTmInverseError;
    return false;
  }
  geo.lon = lon;
  geo.lat = lat;
  return true;
}

}  // namespace velantis
