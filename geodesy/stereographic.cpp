#include "geodesy/stereographic.h"

#include <cmath>
#include <numbers>

#include "geodesy/isometric_latitude.h"
#include "geodesy/sphere_stereographic.h"

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
// A latitude of origin this close to 90 degrees is the pole: the oblique
// formulas divide cos(phi1) by cos(chi1), both then mere round-off.
constexpr double kPolarOriginToleranceDeg = 1e-10;
constexpr const char* kForwardError = "error in Grados_a_Stereographic";
constexpr const char* kInverseError = "error in Stereographic_a_Grados";
constexpr const char* kParameterError = "error in Stereographic parameters";

}  // namespace

TStereographic::TStereographic(const TDatum& ellipsoid, const TProjectionParams& params)
    : m_e(ellipsoid.e),
      m_lat0(params.latOrigin),
      m_lon0(params.lonOrigin * kRadiansPerDegree),
      m_falseEasting(params.falseEasting),
      m_falseNorthing(params.falseNorthing) {
  const double a = ellipsoid.a, e = ellipsoid.e, k0 = params.scaleFactor;
  m_valid = std::fabs(params.latOrigin) <= 90 && std::isfinite(params.lonOrigin) && k0 > 0 &&
            std::isfinite(k0) && std::isfinite(params.falseEasting) &&
            std::isfinite(params.falseNorthing) && a > 0 && std::isfinite(a) && e >= 0 && e < 1;
  if (!m_valid) return;
  if (90 - std::fabs(params.latOrigin) < kPolarOriginToleranceDeg) {
    m_pole = params.latOrigin > 0 ? 1 : -1;
    m_scale = 2 * a * k0 / std::sqrt(std::pow(1 + e, 1 + e) * std::pow(1 - e, 1 - e));
    return;
  }
  const double phi1 = params.latOrigin * kRadiansPerDegree;
  const double psi1 = IsometricLatitude(phi1, e);
  m_origin = {std::tanh(psi1), 1 / std::cosh(psi1)};
  const double sinPhi1 = std::sin(phi1);
  const double m1 = std::cos(phi1) / std::sqrt(1 - ellipsoid.e2 * sinPhi1 * sinPhi1);
  m_scale = 2 * a * k0 * m1 / m_origin.cosChi;
}

bool TStereographic::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  // The pole opposite a polar origin is at infinity.
  if (!(std::fabs(geo.lat) <= 90) || !std::isfinite(geo.lon) || (m_pole != 0 && geo.lat == -90.0 * m_pole)) {
    message = kForwardError;
    return false;
  }
  const double dLon = std::remainder(geo.lon * kRadiansPerDegree - m_lon0, 2 * std::numbers::pi);
  const double sinLon = std::sin(dLon), cosLon = std::cos(dLon);
  const double psi = IsometricLatitude(geo.lat * kRadiansPerDegree, m_e);
  if (m_pole != 0) {
    // t = exp(-psi) about the north pole, exp(psi) about the south pole; the
    // pole itself is the origin exactly (psi there is finite in doubles).
    const double rho = geo.lat == 90.0 * m_pole ? 0 : m_scale * std::exp(-m_pole * psi);
    plane.x = m_falseEasting + rho * sinLon;
    plane.y = m_falseNorthing - m_pole * rho * cosLon;
    return true;
  }
  double dx = 0, dy = 0;
  if (!SphereStereographicForward(m_origin, m_scale, {std::tanh(psi), 1 / std::cosh(psi)}, dLon, dx,
                                  dy)) {
    message = kForwardError;
    return false;
  }
  plane.x = m_falseEasting + dx;
  plane.y = m_falseNorthing + dy;
  return true;
}

bool TStereographic::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  const double dx = plane.x - m_falseEasting;
  const double dy = plane.y - m_falseNorthing;
  const double rho = std::hypot(dx, dy);
  if (!std::isfinite(rho)) {
    message = kInverseError;
    return false;
  }
  if (rho == 0) {
    geo.lat = m_lat0;
    geo.lon = std::remainder(m_lon0 / kRadiansPerDegree, 360.0);
    return true;
  }
  double psi = 0, dLon = 0;
  if (m_pole != 0) {
    psi = -m_pole * std::log(rho / m_scale);
    dLon = std::atan2(dx, -m_pole * dy);
  } else {
    const TSphereDirection d = SphereStereographicInverse(m_origin, m_scale, dx, dy, rho);
    psi = std::asinh(d.sinChi / std::hypot(d.north, d.east));
    dLon = std::atan2(d.east, d.north);
  }
  double phi = 0;
  if (!LatitudeOfIsometric(psi, m_e, phi)) {
    message = kInverseError;
    return false;
  }
  geo.lon = std::remainder((m_lon0 + dLon) / kRadiansPerDegree, 360.0);
  geo.lat = phi / kRadiansPerDegree;
  return true;
}

}  // namespace velantis
