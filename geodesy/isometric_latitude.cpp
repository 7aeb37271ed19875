#include "geodesy/isometric_latitude.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace velantis {

namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// e * atanh(e * x): the eccentricity part of the isometric latitude.
double EccentricityTerm(double x, double e) { return e * std::atanh(e * x); }

// tan of the conformal latitude for tau = tan(phi) (Karney 2011, eq. 7),
// i.e. sinh(psi) without passing through the angle.
double ConformalTan(double tau, double e) {
  const double secant = std::hypot(1.0, tau);
  const double sigma = std::sinh(EccentricityTerm(tau / secant, e));
  return std::hypot(1.0, sigma) * tau - sigma * secant;
}

}  // namespace

double IsometricLatitude(double phi, double e) {
  return std::asinh(std::tan(phi)) - EccentricityTerm(std::sin(phi), e);
}

bool LatitudeOfIsometric(double psi, double e, double& phi) {
  if (std::isnan(psi)) return false;
  const double conformalTan = std::sinh(psi);
  if (std::isinf(conformalTan)) {
    phi = std::copysign(std::numbers::pi / 2, psi);
    return true;
  }
  const double e2m = 1 - e * e;
  // Starting values of Karney's tauf: the conformal/geodetic ratio at the
  // equator, or at the pole when |tan| is large.
  double tau = std::fabs(conformalTan) > 70 ? conformalTan * std::exp(EccentricityTerm(1, e))
                                            : conformalTan / e2m;
  // Newton converges quadratically: once a step is below sqrt(eps)/10 the
  // next one would be below eps and is not worth taking.
  const double stepTolerance = std::sqrt(kEpsilon) / 10 * std::max(1.0, std::fabs(conformalTan));
  const double tauMax = 2 / std::sqrt(kEpsilon);  // beyond it atan(tau) is pi/2 to the last bit
  if (!(std::fabs(tau) < tauMax)) {
    phi = std::atan(tau);
    return true;
  }
  for (int i = 0; i < kIsometricMaxIterations; ++i) {
    const double guess = ConformalTan(tau, e);
    const double step = (conformalTan - guess) * (1 + e2m * tau * tau) /
                        (e2m * std::hypot(1.0, tau) * std::hypot(1.0, guess));
    tau += step;
    if (std::isnan(tau)) return false;
    if (std::fabs(step) < stepTolerance) {
      phi = std::atan(tau);
      return true;
    }
  }
  return false;
}

}  // namespace velantis
