#include "geodesy/oblique_stereographic.h"

#include <cmath>
#include <numbers>

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
// 1 + cos(c) for the angular distance c from the origin on the sphere: below
// this the point is the antipode, projected at infinity (a point 1e-10 of
// this away lands some 10^12 m out, far beyond any use).
constexpr double kAntipodeTolerance = 1e-10;
constexpr const char* kForwardError = "error in Grados_a_ObliqueStereographic";
constexpr const char* kInverseError = "error in ObliqueStereographic_a_Grados";
constexpr const char* kParameterError = "error in ObliqueStereographic parameters";

bool ParametersValid(const TDatum& ellipsoid, const TProjectionParams& params) {
  return std::fabs(params.latOrigin) <= 90 && std::isfinite(params.lonOrigin) &&
         params.scaleFactor > 0 && std::isfinite(params.scaleFactor) &&
         std::isfinite(params.falseEasting) && std::isfinite(params.falseNorthing) &&
         ellipsoid.a > 0 && std::isfinite(ellipsoid.a) && ellipsoid.e >= 0 && ellipsoid.e < 1;
}

}  // namespace

TObliqueStereographic::TObliqueStereographic(const TDatum& ellipsoid, const TProjectionParams& params)
    : m_sphere(ellipsoid.a, ellipsoid.e, params.latOrigin * kRadiansPerDegree),
      m_lat0(params.latOrigin),
      m_lon0(params.lonOrigin * kRadiansPerDegree),
      m_falseEasting(params.falseEasting),
      m_falseNorthing(params.falseNorthing),
      m_valid(ParametersValid(ellipsoid, params)) {
  m_diameter = 2 * m_sphere.Radius() * params.scaleFactor;
}

bool TObliqueStereographic::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  if (!(std::fabs(geo.lat) <= 90) || !std::isfinite(geo.lon)) {
    message = kForwardError;
    return false;
  }
  const double dLon = std::remainder(geo.lon * kRadiansPerDegree - m_lon0, 2 * std::numbers::pi);
  const double lambda = m_sphere.LongitudeScale() * dLon;
  const TSpherePoint point = m_sphere.ToSphere(geo.lat * kRadiansPerDegree);
  const TSpherePoint& origin = m_sphere.Origin();
  const double cosLambda = std::cos(lambda);
  const double onePlusCos =
      1 + point.sinChi * origin.sinChi + point.cosChi * origin.cosChi * cosLambda;
  if (!(onePlusCos >= kAntipodeTolerance)) {
    message = kForwardError;
    return false;
  }
  const double k = m_diameter / onePlusCos;
  plane.x = m_falseEasting + k * point.cosChi * std::sin(lambda);
  plane.y = m_falseNorthing +
            k * (point.sinChi * origin.cosChi - point.cosChi * origin.sinChi * cosLambda);
  return true;
}

bool TObliqueStereographic::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
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
  // c is the angular distance from the origin: rho = 2 R k0 tan(c / 2).
  const double c = 2 * std::atan(rho / m_diameter);
  const double sinC = std::sin(c), cosC = std::cos(c);
  const TSpherePoint& origin = m_sphere.Origin();
  // The point's unit vector in the meridian frame of the origin; the
  // cosine of its latitude comes from two components, never from 1 - sin^2.
  const double north = cosC * origin.cosChi - dy / rho * sinC * origin.sinChi;
  const double east = dx / rho * sinC;
  TSpherePoint point{cosC * origin.sinChi + dy / rho * sinC * origin.cosChi, std::hypot(north, east)};
  double phi = 0;
  if (!m_sphere.FromSphere(point, phi)) {
    message = kInverseError;
    return false;
  }
  const double lambda = m_lon0 + std::atan2(east, north) / m_sphere.LongitudeScale();
  geo.lon = std::remainder(lambda / kRadiansPerDegree, 360.0);
  geo.lat = phi / kRadiansPerDegree;
  return true;
}

}  // namespace velantis
