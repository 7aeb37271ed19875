#include "geodesy/new_zealand_grid.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <span>

namespace velantis {

namespace {

using TComplex = std::complex<double>;

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
// dphi is counted in units of 10^5 arc-seconds.
constexpr double kDegreesPerLatitudeUnit = 1e5 / 3600;
// Newton's steps on zeta end below this (radians; 6e-8 mm on the ground).
constexpr double kNewtonStep = 1e-14;
constexpr const char* kForwardError = "error in Grados_a_NZMG";
constexpr const char* kInverseError = "error in NZMG_a_Grados";

// LINZ, "New Zealand map grid transformation formulae": the coefficients.
// A: isometric latitude from latitude (in 10^5 arc-seconds).
constexpr double kA[] = {0.6399175073, -0.1358797613, 0.063294409, -0.02526853, 0.0117879,
                         -0.0055161,   0.0026906,     -0.001333,   0.00067,     -0.00034};
// B: the conformal mapping z(zeta).
constexpr TComplex kB[] = {{0.7557853228, 0.0},        {0.249204646, 0.003371507},
                           {-0.001541739, 0.041058560}, {-0.10162907, 0.01727609},
                           {-0.26623489, -0.36249218},  {-0.6870983, -1.1651967}};
// C: the first approximation of zeta(z).
constexpr TComplex kC[] = {{1.3231270439, 0.0},        {-0.577245789, -0.007809598},
                           {0.508307513, -0.112208952}, {-0.15094762, 0.18200602},
                           {1.01418179, 1.64497696},    {1.9660549, 2.5127645}};
// D: latitude (in 10^5 arc-seconds) from isometric latitude.
constexpr double kD[] = {1.5627014243, 0.5185406398, -0.03333098, -0.1052906, -0.0368594,
                         0.007317,     0.01220,      0.00394,     -0.0013};

// sum c[n-1] x^n for n = 1..size, by Horner's rule.
template <typename T, typename C>
T PowerSeries(std::span<const C> coefficients, T x) {
  T sum = 0;
  for (size_t i = coefficients.size(); i-- > 0;) sum = (sum + coefficients[i]) * x;
  return sum;
}

// The derivative of PowerSeries: sum n c[n-1] x^(n-1).
TComplex PowerSeriesDerivative(std::span<const TComplex> coefficients, TComplex x) {
  TComplex sum = 0;
  for (size_t i = coefficients.size(); i-- > 0;) sum = sum * x + static_cast<double>(i + 1) * coefficients[i];
  return sum;
}

}  // namespace

bool TNewZealandMapGrid::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  if (!(std::fabs(geo.lat) <= 90) || !std::isfinite(geo.lon)) {
    message = kForwardError;
    return false;
  }
  const double dPhi = (geo.lat - kNzmgLatOriginDeg) / kDegreesPerLatitudeUnit;
  const double dPsi = PowerSeries(std::span<const double>(kA), dPhi);
  const double dLambda = std::remainder(geo.lon - kNzmgLonOriginDeg, 360.0) * kRadiansPerDegree;
  const TComplex z = PowerSeries(std::span<const TComplex>(kB), TComplex(dPsi, dLambda));
  plane.y = kNzmgFalseNorthing + m_a * z.real();
  plane.x = kNzmgFalseEasting + m_a * z.imag();
  return true;
}

bool TNewZealandMapGrid::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  const TComplex z((plane.y - kNzmgFalseNorthing) / m_a, (plane.x - kNzmgFalseEasting) / m_a);
  if (!std::isfinite(z.real()) || !std::isfinite(z.imag())) {
    message = kInverseError;
    return false;
  }
  TComplex zeta = PowerSeries(std::span<const TComplex>(kC), z);
  bool settled = false;
  for (int i = 0; i < kNzmgMaxNewtonSteps && !settled; ++i) {
    const TComplex step = (PowerSeries(std::span<const TComplex>(kB), zeta) - z) /
                          PowerSeriesDerivative(std::span<const TComplex>(kB), zeta);
    zeta -= step;
    settled = std::abs(step) < kNewtonStep;
  }
  if (!settled || !std::isfinite(zeta.real()) || !std::isfinite(zeta.imag())) {
    message = kInverseError;
    return false;
  }
  const double lat = kNzmgLatOriginDeg +
                     PowerSeries(std::span<const double>(kD), zeta.real()) * kDegreesPerLatitudeUnit;
  if (!(std::fabs(lat) <= 90)) {
    message = kInverseError;
    return false;
  }
  geo.lat = lat;
  geo.lon = std::remainder(kNzmgLonOriginDeg + zeta.imag() / kRadiansPerDegree, 360.0);
  return true;
}

}  // namespace velantis
