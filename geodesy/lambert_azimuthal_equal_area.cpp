#include "geodesy/lambert_azimuthal_equal_area.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
constexpr double kHalfPi = std::numbers::pi / 2;
// A latitude of origin this close to 90 degrees takes the polar formulas: the
// oblique D divides cos(phi0) by cos(beta0), both then mere round-off.
constexpr double kPolarOriginToleranceDeg = 1e-10;
// 1 + cos(c) below which a point is the antipode of the origin.
constexpr double kAntipodeTolerance = 1e-10;
// Plane points this far (relative) beyond the rim are still taken as on it.
constexpr double kRimTolerance = 1e-12;
// Newton on q: steps below this (radians, 6e-8 mm) end the iteration; three
// steps from the series reach it anywhere.
constexpr double kLatitudeStepRad = 1e-14;
constexpr int kMaxNewtonSteps = 8;
constexpr const char* kForwardError = "error in Grados_a_LambertAzimuthal";
constexpr const char* kInverseError = "error in LambertAzimuthal_a_Grados";
constexpr const char* kParameterError = "error in LambertAzimuthal parameters";

// atanh(e x) / e, which is x on a sphere.
double AtanhOverE(double x, double e) { return e == 0 ? x : std::atanh(e * x) / e; }

}  // namespace

TLambertAzimuthalEqualArea::TLambertAzimuthalEqualArea(const TDatum& ellipsoid,
                                                       const TProjectionParams& params)
    : m_a(ellipsoid.a),
      m_e(ellipsoid.e),
      m_e2(ellipsoid.e2),
      m_lat0(params.latOrigin),
      m_lon0(params.lonOrigin * kRadiansPerDegree),
      m_falseEasting(params.falseEasting),
      m_falseNorthing(params.falseNorthing) {
  m_valid = std::fabs(params.latOrigin) <= 90 && std::isfinite(params.lonOrigin) &&
            std::isfinite(params.falseEasting) && std::isfinite(params.falseNorthing) &&
            m_a > 0 && std::isfinite(m_a) && m_e >= 0 && m_e < 1;
  if (!m_valid) return;
  const double e2 = m_e2, e4 = e2 * e2, e6 = e4 * e2;
  m_seriesCoef[0] = e2 / 3 + 31 * e4 / 180 + 517 * e6 / 5040;
  m_seriesCoef[1] = 23 * e4 / 360 + 251 * e6 / 3780;
  m_seriesCoef[2] = 761 * e6 / 45360;
  m_qp = 1 + (1 - e2) * AtanhOverE(1, m_e);
  m_rq = m_a * std::sqrt(m_qp / 2);
  if (90 - std::fabs(params.latOrigin) < kPolarOriginToleranceDeg) {
    m_pole = params.latOrigin > 0 ? 1 : -1;
    return;
  }
  const double phi0 = params.latOrigin * kRadiansPerDegree;
  const double s = std::sin(phi0), c = std::cos(phi0);
  const double d = QComplement(std::fabs(s), c);
  m_sinBeta0 = std::copysign(1 - d / m_qp, s);
  m_cosBeta0 = std::sqrt(d * (2 * m_qp - d)) / m_qp;
  m_d = m_a * c / (std::sqrt(1 - e2 * s * s) * m_rq * m_cosBeta0);
}

double TLambertAzimuthalEqualArea::QComplement(double s, double c) const {
  // q(phi) = (1 - e^2) (s / (1 - e^2 s^2) + atanh(e s) / e). Subtracting it
  // from q(90) term by term: 1 / (1 - e^2) - s / (1 - e^2 s^2) =
  // (1 - s)(1 + e^2 s) / ((1 - e^2)(1 - e^2 s^2)) and atanh(e) - atanh(e s) =
  // atanh(e (1 - s) / (1 - e^2 s)), with 1 - s = c^2 / (1 + s).
  const double oneMinusS = c * c / (1 + s);
  return oneMinusS * (1 + m_e2 * s) / (1 - m_e2 * s * s) +
         (1 - m_e2) * AtanhOverE(oneMinusS / (1 - m_e2 * s), m_e);
}

bool TLambertAzimuthalEqualArea::LatitudeOfComplement(double d, double& phi) const {
  if (!(d >= 0 && d <= m_qp)) return false;
  const double sinBeta = 1 - d / m_qp;
  const double cosBeta = std::sqrt(d * (2 * m_qp - d)) / m_qp;
  const double beta = std::atan2(sinBeta, cosBeta);
  double x = beta + m_seriesCoef[0] * std::sin(2 * beta) + m_seriesCoef[1] * std::sin(4 * beta) +
             m_seriesCoef[2] * std::sin(6 * beta);
  for (int i = 0; i < kMaxNewtonSteps; ++i) {
    const double s = std::sin(x), c = std::cos(x);
    if (!(c > 0)) {
      phi = kHalfPi;
      return true;
    }
    // dq/dphi = 2 (1 - e^2) cos(phi) / (1 - e^2 sin^2 phi)^2, and q(90) - q
    // falls as q rises.
    const double w = 1 - m_e2 * s * s;
    const double step = (QComplement(s, c) - d) * w * w / (2 * (1 - m_e2) * c);
    x = std::min(x + step, kHalfPi);
    if (std::fabs(step) < kLatitudeStepRad) {
      phi = x;
      return true;
    }
  }
  return false;
}

bool TLambertAzimuthalEqualArea::Forward(const TLonLat& geo, TPlanePoint& plane,
                                         std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  if (!(std::fabs(geo.lat) <= 90) || !std::isfinite(geo.lon) ||
      (m_pole != 0 && geo.lat == -90.0 * m_pole)) {
    message = kForwardError;
    return false;
  }
  const double dLon = std::remainder(geo.lon * kRadiansPerDegree - m_lon0, 2 * std::numbers::pi);
  const double sinLon = std::sin(dLon), cosLon = std::cos(dLon);
  const double phi = geo.lat * kRadiansPerDegree;
  const double s = std::sin(phi);
  // q(90) - |q(phi)|: 0 at the poles (exactly: cos(pi/2) is not 0 in
  // doubles), q(90) on the equator.
  const double d = QComplement(std::fabs(s), std::fabs(geo.lat) == 90 ? 0 : std::cos(phi));
  if (m_pole != 0) {
    // rho = a sqrt(q(90) - q) about the north pole, a sqrt(q(90) + q) about
    // the south pole; for a point in the other hemisphere that is 2 q(90) - d.
    const bool sameHemisphere = s * m_pole >= 0;
    const double rho = m_a * std::sqrt(sameHemisphere ? d : 2 * m_qp - d);
    plane.x = m_falseEasting + rho * sinLon;
    plane.y = m_falseNorthing - m_pole * rho * cosLon;
    return true;
  }
  const double sinBeta = std::copysign(1 - d / m_qp, s);
  const double cosBeta = std::sqrt(d * (2 * m_qp - d)) / m_qp;
  const double onePlusCos = 1 + m_sinBeta0 * sinBeta + m_cosBeta0 * cosBeta * cosLon;
  if (!(onePlusCos >= kAntipodeTolerance)) {
    message = kForwardError;
    return false;
  }
  const double b = m_rq * std::sqrt(2 / onePlusCos);
  plane.x = m_falseEasting + b * m_d * cosBeta * sinLon;
  plane.y = m_falseNorthing + b / m_d * (m_cosBeta0 * sinBeta - m_sinBeta0 * cosBeta * cosLon);
  return true;
}

bool TLambertAzimuthalEqualArea::Inverse(const TPlanePoint& plane, TLonLat& geo,
                                         std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  const double dx = plane.x - m_falseEasting;
  const double dy = plane.y - m_falseNorthing;
  double d = 0, sign = 1, dLon = 0;
  if (m_pole != 0) {
    const double rho = std::hypot(dx, dy);
    const double fromPole = rho * rho / (m_a * m_a);  // q(90) -+ q
    if (!(fromPole <= 2 * m_qp * (1 + kRimTolerance))) {
      message = kInverseError;
      return false;
    }
    sign = fromPole <= m_qp ? m_pole : -m_pole;
    d = fromPole <= m_qp ? fromPole : std::max(0.0, 2 * m_qp - fromPole);
    dLon = rho == 0 ? 0 : std::atan2(dx, -m_pole * dy);
  } else {
    const double xs = dx / m_d, ys = dy * m_d;
    const double rho = std::hypot(xs, ys);
    const double rim = rho / (2 * m_rq);
    if (!(rim <= 1 + kRimTolerance)) {
      message = kInverseError;
      return false;
    }
    if (rho == 0) {
      geo.lat = m_lat0;
      geo.lon = std::remainder(m_lon0 / kRadiansPerDegree, 360.0);
      return true;
    }
    // c is the angular distance from the origin on the sphere of equal area.
    const double c = 2 * std::asin(std::min(rim, 1.0));
    const double sinC = std::sin(c), cosC = std::cos(c);
    const double sinBeta = cosC * m_sinBeta0 + ys / rho * sinC * m_cosBeta0;
    const double north = cosC * m_cosBeta0 - ys / rho * sinC * m_sinBeta0;
    const double east = xs / rho * sinC;
    const double cosBeta = std::hypot(north, east);
    sign = sinBeta < 0 ? -1 : 1;
    // q(90) (1 - |sin beta|), with 1 - |sin| written as cos^2 / (1 + |sin|).
    d = std::min(m_qp, m_qp * cosBeta * cosBeta / (1 + std::fabs(sinBeta)));
    dLon = std::atan2(east, north);
  }
  double phi = 0;
  if (!LatitudeOfComplement(d, phi)) {
    message = kInverseError;
    return false;
  }
  geo.lon = std::remainder((m_lon0 + dLon) / kRadiansPerDegree, 360.0);
  geo.lat = sign * phi / kRadiansPerDegree;
  return true;
}

}  // namespace velantis
