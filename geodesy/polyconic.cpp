#include "geodesy/polyconic.h"

#include <cmath>
#include <numbers>

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
constexpr double kHalfPi = std::numbers::pi / 2;
// A Newton step below this (radians, 6 micrometres on the ground) means the
// latitude has settled: the convergence is quadratic, so the error left after
// taking the step is far smaller.
constexpr double kLatitudeStepTolerance = 1e-12;
// How far the arcsine argument of the inverse longitude may pass 1 by
// round-off before the point counts as outside the fold of the map.
constexpr double kArcsineSlack = 1e-12;
// Plane points closer than this to a pole's image (in units of a, about
// 1.1 degrees of latitude) are inverted by the polar iteration.
constexpr double kPolarCap = 0.02;
// A polar step below this (units of a: 60 nanometres) has settled.
constexpr double kPolarStepTolerance = 1e-14;
constexpr const char* kForwardError = "error in Grados_a_Policonica";
constexpr const char* kInverseError = "error in Policonica_a_Grados";

double Sinc(double z) { return z == 0 ? 1.0 : std::sin(z) / z; }
double ArcsineOverArgument(double u) { return u == 0 ? 1.0 : std::asin(u) / u; }

}  // namespace

TPolyconic::TPolyconic(const TDatum& ellipsoid, const TProjectionParams& params)
    : m_a(ellipsoid.a),
      m_e2(ellipsoid.e2),
      m_lon0(params.lonOrigin * kRadiansPerDegree),
      m_falseEasting(params.falseEasting),
      m_falseNorthing(params.falseNorthing) {
  // Helmert's expansion of the meridian arc in the third flattening n (F. R.
  // Helmert, "Die mathematischen und physikalischen Theorieen der hoeheren
  // Geodaesie" I, 1880):
  // M = a/(1+n) [(1 + n^2/4 + n^4/64) phi - 3/2 (n - n^3/8) sin 2phi
  //     + 15/16 (n^2 - n^4/4) sin 4phi - 35/48 n^3 sin 6phi + 315/512 n^4 sin 8phi].
  const double n = ellipsoid.n;
  const double n2 = n * n;
  const double scale = ellipsoid.a / (1 + n);
  m_arcScale = scale * (1 + n2 * (1.0 / 4 + n2 / 64));
  m_arcSines = {scale * -1.5 * n * (1 - n2 / 8), scale * 15.0 / 16 * n2 * (1 - n2 / 4),
                scale * -35.0 / 48 * n2 * n, scale * 315.0 / 512 * n2 * n2};
  m_originArc = MeridianArc(params.latOrigin * kRadiansPerDegree);
  m_quadrant = MeridianArc(kHalfPi);
}

double TPolyconic::MeridianArc(double phi) const {
  // Clenshaw summation of sum c_k sin(2k phi): one sine and one cosine.
  const double twoCos = 2 * std::cos(2 * phi);
  double next = 0;
  double current = 0;
  for (int k = static_cast<int>(m_arcSines.size()) - 1; k >= 0; --k) {
    const double value = m_arcSines[k] + twoCos * current - next;
    next = current;
    current = value;
  }
  return m_arcScale * phi + current * std::sin(2 * phi);
}

bool TPolyconic::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  if (!(std::fabs(geo.lat) <= 90) || !std::isfinite(geo.lon)) {
    message = kForwardError;
    return false;
  }
  const double phi = geo.lat * kRadiansPerDegree;
  const double dLon = std::remainder(geo.lon * kRadiansPerDegree - m_lon0, 2 * std::numbers::pi);
  const double sinPhi = std::sin(phi);
  // nu cot(phi) sin E and nu cot(phi) (1 - cos E) with E = dLon sin(phi),
  // written as nu cos(phi) dLon sinc(E) and nu cos(phi) dLon sin(E/2) sinc(E/2)
  // (GN 7-2, method 9818): the same values, and no 0/0 on the equator.
  const double nu = m_a / std::sqrt(1 - m_e2 * sinPhi * sinPhi);
  const double parallelArc = nu * std::cos(phi) * dLon;
  const double e = dLon * sinPhi;
  plane.x = m_falseEasting + parallelArc * Sinc(e);
  plane.y = m_falseNorthing + MeridianArc(phi) - m_originArc +
            parallelArc * std::sin(e / 2) * Sinc(e / 2);
  return true;
}

bool TPolyconic::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  const double x = (plane.x - m_falseEasting) / m_a;
  const double a = (m_originArc + plane.y - m_falseNorthing) / m_a;  // Snyder's A
  if (!std::isfinite(x) || !std::isfinite(a)) {
    message = kInverseError;
    return false;
  }
  const double quadrant = m_quadrant / m_a;
  for (const double pole : {1.0, -1.0}) {
    if (std::hypot(x, a - pole * quadrant) < kPolarCap) {
      double phi = 0, dLon = 0;
      if (!InverseNearPole(x, a, pole, phi, dLon)) {
        message = kInverseError;
        return false;
      }
      geo.lon = std::remainder((m_lon0 + dLon) / kRadiansPerDegree, 360.0);
      geo.lat = phi / kRadiansPerDegree;
      return true;
    }
  }
  // On the line A = 0 (the equator's image) the latitude is 0; elsewhere
  // Newton on f(phi) = A (M C + 1) - M - (M^2 + B) C / 2 = 0 (Snyder ch. 18,
  // M in units of a, C = sqrt(1 - e^2 sin^2 phi) tan phi), with f' derived
  // from M' = (1 - e^2) / W^3 and C' = W / cos^2 phi - e^2 sin^2 phi / W.
  double phi = 0;
  if (a != 0) {
    const double b = x * x + a * a;  // Snyder's B
    phi = a;
    bool settled = false;
    for (int i = 0; i < kPolyconicMaxIterations && !settled; ++i) {
      const double s = std::sin(phi);
      const double c = std::cos(phi);
      const double w = std::sqrt(1 - m_e2 * s * s);
      const double bigC = w * s / c;
      const double m = MeridianArc(phi) / m_a;
      const double mPrime = (1 - m_e2) / (w * w * w);
      const double cPrime = w / (c * c) - m_e2 * s * s / w;
      const double f = a * (m * bigC + 1) - m - 0.5 * (m * m + b) * bigC;
      const double fPrime =
          mPrime * (a * bigC - 1 - m * bigC) + cPrime * (a * m - 0.5 * (m * m + b));
      const double step = f / fPrime;
      double next = phi - step;
      if (!std::isfinite(next)) break;
      // A step past a pole is halved back towards it.
      if (std::fabs(next) >= kHalfPi) next = (phi + std::copysign(kHalfPi, next)) / 2;
      settled = std::fabs(step) < kLatitudeStepTolerance;
      phi = next;
    }
    if (!settled) {
      message = kInverseError;
      return false;
    }
  }
  // dLon = asin(x C) / sin(phi) = [asin(u) / u] x W / cos(phi), u = x C.
  const double s = std::sin(phi);
  const double c = std::cos(phi);
  const double w = std::sqrt(1 - m_e2 * s * s);
  double dLon = 0;  // at a pole every longitude is the same point
  if (c > 0) {
    double u = x * w * s / c;
    if (std::fabs(u) > 1) {
      if (std::fabs(u) > 1 + kArcsineSlack) {
        message = kInverseError;
        return false;
      }
      u = std::copysign(1.0, u);
    }
    dLon = ArcsineOverArgument(u) * x * w / c;
    // Farther than half a turn from the central meridian is off the map.
    if (!(std::fabs(dLon) <= std::numbers::pi * (1 + kArcsineSlack))) {
      message = kInverseError;
      return false;
    }
  }
  geo.lon = std::remainder((m_lon0 + dLon) / kRadiansPerDegree, 360.0);
  geo.lat = phi / kRadiansPerDegree;
  return true;
}

bool TPolyconic::InverseNearPole(double x, double a, double pole, double& phi, double& dLon) const {
  // With delta = pi/2 - |phi|, u = delta cos E and v = delta sin E, the map
  // near the pole is x = pole k v, A - pole Mp = -pole k u to first order,
  // where k = nu/a = rho/a = 1/sqrt(1 - e^2) at the pole. That linear part is
  // the iteration matrix; what it leaves out shrinks with delta^2.
  const double k = 1 / std::sqrt(1 - m_e2);
  const double quadrant = m_quadrant / m_a;
  double u = -pole * (a - pole * quadrant) / k;
  double v = pole * x / k;
  for (int i = 0; i < kPolyconicMaxIterations; ++i) {
    const double delta = std::hypot(u, v);
    const double e = std::atan2(v, u);
    // The forward map at (delta, E), in units of a: R = nu cot(phi) / a.
    const double sinPhi = pole * std::cos(delta);
    const double cosPhi = std::sin(delta);
    const double radius = cosPhi / (std::sqrt(1 - m_e2 * sinPhi * sinPhi) * sinPhi);
    const double sinHalf = std::sin(e / 2);
    const double xAt = radius * std::sin(e);
    const double aAt = MeridianArc(pole * (kHalfPi - delta)) / m_a + 2 * radius * sinHalf * sinHalf;
    const double du = -pole * (a - aAt) / k;
    const double dv = pole * (x - xAt) / k;
    u += du;
    v += dv;
    if (!std::isfinite(u) || !std::isfinite(v)) return false;
    if (std::hypot(du, dv) < kPolarStepTolerance) {
      const double settled = std::hypot(u, v);
      phi = pole * (kHalfPi - settled);
      dLon = settled == 0 ? 0 : std::atan2(v, u) / (pole * std::cos(settled));
      return std::fabs(dLon) <= std::numbers::pi;
    }
  }
  return false;
}

}  // namespace velantis
