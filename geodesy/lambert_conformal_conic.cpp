#include "geodesy/lambert_conformal_conic.h"

#include <cmath>
#include <numbers>

#include "geodesy/isometric_latitude.h"

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
// Below this |n| the cone has opened into a cylinder (PROJ and GN 7-2 draw
// the same line between the conic and the Mercator formulas).
constexpr double kMinConeConstant = 1e-10;
constexpr const char* kForwardError = "error in Grados_a_Lambert";
constexpr const char* kInverseError = "error in Lambert_a_Grados";
constexpr const char* kParameterError = "error in Lambert parameters";

}  // namespace

TLambertConformalConic::TLambertConformalConic(const TDatum& ellipsoid,
                                               const TProjectionParams& params,
                                               TLambertVariant variant)
    : m_e(ellipsoid.e),
      m_lon0(params.lonOrigin * kRadiansPerDegree),
      m_falseEasting(params.falseEasting),
      m_falseNorthing(params.falseNorthing) {
  const double a = ellipsoid.a;
  const double e2 = ellipsoid.e2;
  // m = cos(phi) / sqrt(1 - e^2 sin^2(phi)) (GN 7-2; Snyder 14-15).
  const auto parallelRadius = [e2](double phi) {
    const double s = std::sin(phi);
    return std::cos(phi) / std::sqrt(1 - e2 * s * s);
  };
  const auto psi = [this](double phi) { return IsometricLatitude(phi, m_e); };

  if (variant == TLambertVariant::OneStandardParallel) {
    // EPSG 9801: n = sin(phi0), r0 = a k0 m0 / n, and c = r0 * exp(n psi0)
    // (F = m0 / (n t0^n) with t0 = exp(-psi0)).
    const double phi0 = params.latOrigin * kRadiansPerDegree;
    m_valid = std::fabs(params.latOrigin) < 90 && params.scaleFactor > 0;
    m_n = std::sin(phi0);
    m_originRadius = a * params.scaleFactor * parallelRadius(phi0) / m_n;
    m_c = m_originRadius * std::exp(m_n * psi(phi0));
  } else {
    // EPSG 9802: n = (ln m1 - ln m2) / (ln t1 - ln t2), F = m1 / (n t1^n);
    // equal parallels are the tangent cone, n = sin(phi1).
    const double phi1 = params.lat1 * kRadiansPerDegree;
    const double phi2 = params.lat2 * kRadiansPerDegree;
    m_valid = std::fabs(params.lat1) < 90 && std::fabs(params.lat2) < 90 &&
              std::fabs(params.latOrigin) <= 90;
    const double m1 = parallelRadius(phi1);
    if (params.lat1 == params.lat2) {
      m_n = std::sin(phi1);
    } else {
      m_n = std::log(m1 / parallelRadius(phi2)) / (psi(phi2) - psi(phi1));
    }
    m_c = a * m1 * std::exp(m_n * psi(phi1)) / m_n;
    if (std::fabs(params.latOrigin) == 90) {
      // A false origin at the apex is the apex; at the other pole there is none.
      m_originRadius = 0;
      if (params.latOrigin * m_n < 0) m_valid = false;
    } else {
      m_originRadius = m_c * std::exp(-m_n * psi(params.latOrigin * kRadiansPerDegree));
    }
  }
  if (!(std::fabs(m_n) >= kMinConeConstant) || !std::isfinite(m_c) ||
      !std::isfinite(m_originRadius) || !(a > 0)) {
    m_valid = false;
  }
}

bool TLambertConformalConic::Forward(const TLonLat& geo, TPlanePoint& plane,
                                     std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  if (!(std::fabs(geo.lat) <= 90) || !std::isfinite(geo.lon)) {
    message = kForwardError;
    return false;
  }
  double radius = 0;  // the apex pole is the apex
  if (std::fabs(geo.lat) == 90) {
    if (geo.lat * m_n < 0) {
      message = kForwardError;
      return false;
    }
  } else {
    radius = m_c * std::exp(-m_n * IsometricLatitude(geo.lat * kRadiansPerDegree, m_e));
  }
  const double dLon = std::remainder(geo.lon * kRadiansPerDegree - m_lon0, 2 * std::numbers::pi);
  const double theta = m_n * dLon;
  plane.x = m_falseEasting + radius * std::sin(theta);
  plane.y = m_falseNorthing + m_originRadius - radius * std::cos(theta);
  return true;
}

bool TLambertConformalConic::Inverse(const TPlanePoint& plane, TLonLat& geo,
                                     std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  // Coordinates from the apex, turned so that the cone opens downwards for
  // either sign of n (GN 7-2: r' and theta' take the sign of n).
  const double sign = m_n > 0 ? 1.0 : -1.0;
  const double dx = sign * (plane.x - m_falseEasting);
  const double dy = sign * (m_originRadius - (plane.y - m_falseNorthing));
  const double radius = std::hypot(dx, dy);
  if (!std::isfinite(radius)) {
    message = kInverseError;
    return false;
  }
  double phi = sign * std::numbers::pi / 2;
  double dLon = 0;
  if (radius > 0) {
    const double psi = -std::log(radius / std::fabs(m_c)) / m_n;
    if (!LatitudeOfIsometric(psi, m_e, phi)) {
      message = kInverseError;
      return false;
    }
    dLon = std::atan2(dx, dy) / m_n;
  }
  geo.lon = std::remainder((m_lon0 + dLon) / kRadiansPerDegree, 360.0);
  geo.lat = phi / kRadiansPerDegree;
  return true;
}

}  // namespace velantis
