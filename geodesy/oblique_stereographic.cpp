#include "geodesy/oblique_stereographic.h"

#include <cmath>
#include <numbers>

#include "geodesy/sphere_stereographic.h"

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
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
  double dx = 0, dy = 0;
  if (!SphereStereographicForward(m_sphere.Origin(), m_diameter, point, lambda, dx, dy)) {
    message = kForwardError;
    return false;
  }
  plane.x = m_falseEasting + dx;
  plane.y = m_falseNorthing + dy;
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
  const TSphereDirection d = SphereStereographicInverse(m_sphere.Origin(), m_diameter, dx, dy, rho);
  double phi = 0;
  if (!m_sphere.FromSphere({d.sinChi, std::hypot(d.north, d.east)}, phi)) {
    message = kInverseError;
    return false;
  }
  const double lambda = m_lon0 + std::atan2(d.east, d.north) / m_sphere.LongitudeScale();
  geo.lon = std::remainder(lambda / kRadiansPerDegree, 360.0);
  geo.lat = phi / kRadiansPerDegree;
  return true;
}

}  // namespace velantis
