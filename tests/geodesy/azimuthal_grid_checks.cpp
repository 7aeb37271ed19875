#include "tests/geodesy/azimuthal_grid_checks.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace velantis::test {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
// Central differences over 1e-5 degrees (a metre): their truncation error is
// some 1e-11 of the scale, far below what the checks ask.
constexpr double kStepDeg = 1e-5;
constexpr double kConformalTolerance = 1e-8;

}  // namespace

void ExpectPublishedPoint(const TProjection& projection, double lon, double lat, double x, double y,
                          double toleranceMetres, double a, double roundTripMetres) {
  TPlanePoint plane;
  std::string message;
  ASSERT_TRUE(projection.Forward({lon, lat}, plane, message)) << message;
  EXPECT_NEAR(plane.x, x, toleranceMetres);
  EXPECT_NEAR(plane.y, y, toleranceMetres);
  TLonLat geo;
  ASSERT_TRUE(projection.Inverse({x, y}, geo, message)) << message;
  const double cosLat = std::cos(lat * kRadiansPerDegree);
  EXPECT_NEAR((geo.lat - lat) * kRadiansPerDegree * a, 0, toleranceMetres);
  EXPECT_NEAR(std::remainder(geo.lon - lon, 360.0) * kRadiansPerDegree * a * cosLat, 0, toleranceMetres);
  ASSERT_TRUE(projection.Inverse(plane, geo, message)) << message;
  EXPECT_NEAR((geo.lat - lat) * kRadiansPerDegree * a, 0, roundTripMetres);
  EXPECT_NEAR(std::remainder(geo.lon - lon, 360.0) * kRadiansPerDegree * a * cosLat, 0,
              roundTripMetres);
}

void ExpectConformal(const TProjection& projection, const TDatum& ellipsoid, double lon, double lat,
                     double expectedScale) {
  SCOPED_TRACE(testing::Message() << "scale at " << lon << " " << lat);
  // Keep the differences inside the latitude range.
  lat = std::clamp(lat, -90 + 2 * kStepDeg, 90 - 2 * kStepDeg);
  TPlanePoint south, north, west, east;
  std::string message;
  ASSERT_TRUE(projection.Forward({lon, lat - kStepDeg}, south, message)) << message;
  ASSERT_TRUE(projection.Forward({lon, lat + kStepDeg}, north, message)) << message;
  ASSERT_TRUE(projection.Forward({lon - kStepDeg, lat}, west, message)) << message;
  ASSERT_TRUE(projection.Forward({lon + kStepDeg, lat}, east, message)) << message;
  const double phi = lat * kRadiansPerDegree;
  const double w = 1 - ellipsoid.e2 * std::pow(std::sin(phi), 2);
  const double meridianRadius = ellipsoid.a * (1 - ellipsoid.e2) / std::pow(w, 1.5);
  const double parallelRadius = ellipsoid.a / std::sqrt(w) * std::cos(phi);
  const double dAngle = 2 * kStepDeg * kRadiansPerDegree;
  const double mx = north.x - south.x, my = north.y - south.y;
  const double px = east.x - west.x, py = east.y - west.y;
  const double h = std::hypot(mx, my) / (meridianRadius * dAngle);
  const double k = std::hypot(px, py) / (parallelRadius * dAngle);
  EXPECT_NEAR(h / k, 1, kConformalTolerance);
  EXPECT_NEAR((mx * px + my * py) / (std::hypot(mx, my) * std::hypot(px, py)), 0, kConformalTolerance);
  if (expectedScale != 0) {
    EXPECT_NEAR(k, expectedScale, kConformalTolerance);
  }
}

void ExpectRefusal(const TProjection& projection, bool inverse, double u, double v,
                   const std::string& expected) {
  std::string message;
  if (inverse) {
    TLonLat geo{-1, -2};
    EXPECT_FALSE(projection.Inverse({u, v}, geo, message));
    EXPECT_EQ(geo.lon, -1);
    EXPECT_EQ(geo.lat, -2);
  } else {
    TPlanePoint plane{-1, -2};
    EXPECT_FALSE(projection.Forward({u, v}, plane, message));
    EXPECT_EQ(plane.x, -1);
    EXPECT_EQ(plane.y, -2);
  }
  EXPECT_EQ(message, expected);
}

}  // namespace velantis::test
