#include "geodesy/mercator.h"

#include <cmath>
#include <numbers>

#include "geodesy/isometric_latitude.h"

namespace velantis {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
constexpr const char* kForwardError = "error in Grados_a_Mercator";
constexpr const char* kInverseError = "error in Mercator_a_Grados";
constexpr const char* kParameterError = "error in Mercator parameters";

}  // namespace

bool MercatorVariantOfName(std::string_view name, TMercatorVariant& variant) {
  if (name == kMercatorName) {
    variant = TMercatorVariant::Mercator;
  } else if (name == kMercatorSphericalName) {
    variant = TMercatorVariant::Spherical;
  } else if (name == kEllipticalMercatorName) {
    variant = TMercatorVariant::Elliptical;
  } else {
    return false;
  }
  return true;
}

TMercator::TMercator(const TDatum& ellipsoid, const TProjectionParams& params,
                     TMercatorVariant variant)
    : m_e(variant == TMercatorVariant::Spherical ? 0.0 : ellipsoid.e),
      m_radius(ellipsoid.a),
      m_lon0(params.lonOrigin * kRadiansPerDegree),
      m_falseEasting(params.falseEasting),
      m_falseNorthing(params.falseNorthing) {
  double scale = 1;
  if (variant != TMercatorVariant::Spherical) scale = params.scaleFactor;
  if (variant == TMercatorVariant::Mercator) {
    // EPSG 9805: k0 = cos(phi1) / sqrt(1 - e^2 sin^2(phi1)) for the parallel
    // of true scale phi1 (GN 7-2, method 9805).
    const double phi1 = params.latOrigin * kRadiansPerDegree;
    if (!(std::fabs(params.latOrigin) < 90)) m_valid = false;
    const double sinPhi1 = std::sin(phi1);
    scale *= std::cos(phi1) / std::sqrt(1 - ellipsoid.e2 * sinPhi1 * sinPhi1);
  }
  if (!(scale > 0) || !std::isfinite(scale) || !(ellipsoid.a > 0) || !std::isfinite(m_e))
    m_valid = false;
  m_radius = ellipsoid.a * scale;
}

bool TMercator::Forward(const TLonLat& geo, TPlanePoint& plane, std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  if (!(std::fabs(geo.lat) < 90) || !std::isfinite(geo.lon)) {
    message = kForwardError;
    return false;
  }
  // The longitude is taken from the central meridian the short way round.
  const double dLon = std::remainder(geo.lon * kRadiansPerDegree - m_lon0, 2 * std::numbers::pi);
  plane.x = m_falseEasting + m_radius * dLon;
  plane.y = m_falseNorthing + m_radius * IsometricLatitude(geo.lat * kRadiansPerDegree, m_e);
  return true;
}

bool TMercator::Inverse(const TPlanePoint& plane, TLonLat& geo, std::string& message) const {
  if (!m_valid) {
    message = kParameterError;
    return false;
  }
  double phi = 0;
  const double psi = (plane.y - m_falseNorthing) / m_radius;
  const double lambda = m_lon0 + (plane.x - m_falseEasting) / m_radius;
  if (!std::isfinite(lambda) || !LatitudeOfIsometric(psi, m_e, phi)) {
    message = kInverseError;
    return false;
  }
  geo.lon = std::remainder(lambda / kRadiansPerDegree, 360.0);
  geo.lat = phi / kRadiansPerDegree;
  return true;
}

}  // namespace velantis
