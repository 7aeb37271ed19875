#include "geodesy/swiss_grid.h"

#include <cmath>
#include <numbers>

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
constexpr double kLon0Rad = kSwissLonOriginDeg * kRadiansPerDegree;
constexpr const char* kForwardError = "error in Grados_a_CH1903";
constexpr const char* kInverseError = "error in CH1903_a_Grados";

}  // namespace

TSwissGrid::TSwissGrid(const TDatum& ellipsoid)
    : m_sphere(ellipsoid.a, ellipsoid.e, kSwissLatOriginDeg * kRadiansPerDegree) {}

bool TSwissGrid::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  if (!(std::fabs(geo.lat) <= 90) || !std::isfinite(geo.lon)) {
    message = kForwardError;
    return false;
  }
  // Sphere latitude b and longitude l (swisstopo's S, b and l).
  const TSpherePoint b = m_sphere.ToSphere(geo.lat * kRadiansPerDegree);
  const double l = m_sphere.LongitudeScale() *
                   std::remainder(geo.lon * kRadiansPerDegree - kLon0Rad, 2 * std::numbers::pi);
  const double sinL = std::sin(l), cosL = std::cos(l);
  const TSpherePoint& b0 = m_sphere.Origin();
  // Rotation to the pseudo-equatorial system: sin b-bar and the two
  // components of cos b-bar; l-bar = atan(sin l / (sin b0 tan b + cos b0 cos l))
  // with numerator and denominator multiplied by cos b.
  const double sinBarB = b0.cosChi * b.sinChi - b0.sinChi * b.cosChi * cosL;
  const double along = b0.sinChi * b.sinChi + b0.cosChi * b.cosChi * cosL;
  const double across = b.cosChi * sinL;
  const double cosBarB = std::hypot(along, across);
  if (!(cosBarB > 0)) {
    message = kForwardError;
    return false;
  }
  const double radius = m_sphere.Radius();
  plane.x = kSwissFalseEastingLv03 + radius * std::atan2(across, along);
  plane.y = kSwissFalseNorthingLv03 + radius * std::asinh(sinBarB / cosBarB);
  return true;
}

bool TSwissGrid::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  const double radius = m_sphere.Radius();
  const double barL = (plane.x - kSwissFalseEastingLv03) / radius;
  const double barX = (plane.y - kSwissFalseNorthingLv03) / radius;
  if (!std::isfinite(barL) || !std::isfinite(barX)) {
    message = kInverseError;
    return false;
  }
  // b-bar = 2 (atan(exp(X / R)) - pi/4): its sine is tanh, its cosine sech.
  const double sinBarB = std::tanh(barX), cosBarB = 1 / std::cosh(barX);
  const double sinBarL = std::sin(barL), cosBarL = std::cos(barL);
  const TSpherePoint& b0 = m_sphere.Origin();
  const double sinB = b0.cosChi * sinBarB + b0.sinChi * cosBarB * cosBarL;
  const double along = b0.cosChi * cosBarB * cosBarL - b0.sinChi * sinBarB;
  const double across = cosBarB * sinBarL;
  double phi = 0;
  if (!m_sphere.FromSphere({sinB, std::hypot(along, across)}, phi)) {
    message = kInverseError;
    return false;
  }
  const double lambda = kLon0Rad + std::atan2(across, along) / m_sphere.LongitudeScale();
  geo.lon = std::remainder(lambda / kRadiansPerDegree, 360.0);
  geo.lat = phi / kRadiansPerDegree;
  return true;
}

}  // namespace velantis
