#include "geodesy/gauss_conformal_sphere.h"

#include <cmath>

#include "geodesy/isometric_latitude.h"

namespace velantis {

namespace {

// c = atanh(s / n) - n * atanh(s) + n * e * atanh(e * s) for s = sin(phi0) >= 0.
//
// The first two terms are each infinite at the pole. With
// n^2 - s^2 = cos^2(phi0) * (1 + e'^2 cos^2(phi0)) and 1 - s = cos^2 / (1 + s)
// their difference is
//   ln(n + s) - ln(1 + e'^2 cos^2) / 2 - n ln(1 + s) + (n - 1) ln(cos),
// and n - 1 = e'^2 cos^4 / (n + 1) makes the last term vanish at the pole
// instead of multiplying zero by infinity.
double ConformalConstant(double e, double ep2, double n, double sinPhi0, double cosPhi0) {
  const double s = sinPhi0;
  const double cos2 = cosPhi0 * cosPhi0;
  const double poleTerm = cosPhi0 > 0 ? ep2 * cos2 * cos2 * std::log(cosPhi0) / (n + 1) : 0;
  return std::log(n + s) - std::log1p(ep2 * cos2) / 2 - n * std::log1p(s) + poleTerm +
         n * e * std::atanh(e * s);
}

}  // namespace

TGaussConformalSphere::TGaussConformalSphere(double a, double e, double phi0) : m_e(e) {
  const double e2 = e * e;
  const double ep2 = e2 / (1 - e2);
  const double sinPhi0 = std::sin(phi0);
  const double cosPhi0 = std::cos(phi0);
  m_n = std::sqrt(1 + ep2 * std::pow(cosPhi0, 4));
  // The constant is odd in phi0: compute it for |phi0| and give it the sign.
  m_c = std::copysign(ConformalConstant(e, ep2, m_n, std::fabs(sinPhi0), std::fabs(cosPhi0)),
                      sinPhi0);
  m_radius = a * std::sqrt(1 - e2) / (1 - e2 * sinPhi0 * sinPhi0);
  m_origin.sinChi = sinPhi0 / m_n;
  // cos chi0 = sqrt(n^2 - sin^2 phi0) / n, without the cancellation near the pole.
  m_origin.cosChi = std::fabs(cosPhi0) * std::sqrt(1 + ep2 * cosPhi0 * cosPhi0) / m_n;
}

TSpherePoint TGaussConformalSphere::ToSphere(double phi) const {
  const double w = m_n * IsometricLatitude(phi, m_e) + m_c;
  return {std::tanh(w), 1 / std::cosh(w)};
}

bool TGaussConformalSphere::FromSphere(const TSpherePoint& point, double& phi) const {
  const double psi = (std::asinh(point.sinChi / point.cosChi) - m_c) / m_n;
  return LatitudeOfIsometric(psi, m_e, phi);
}

}  // namespace velantis
