#include "tests/support/proj_sweep.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numbers>

#include "tests/support/proj_reference.h"

namespace velantis::test {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;

}  // namespace

TDatum MakeEllipsoid(double a, double inverseFlattening) {
  TDatum datum;
  datum.a = a;
  datum.invFlattening =
      inverseFlattening == 0 ? std::numeric_limits<double>::infinity() : inverseFlattening;
  datum.ComputeDerived();
  return datum;
}

TDatum MakeDatum(const char* name, double a, double inverseFlattening, double dx, double dy,
                 double dz) {
  TDatum datum = MakeEllipsoid(a, inverseFlattening);
  datum.name = name;
  datum.dX = dx, datum.dY = dy, datum.dZ = dz;
  return datum;
}

std::string ProjEllipsoid(const TDatum& ellipsoid) {
  char text[96];
  if (ellipsoid.f == 0) {
    std::snprintf(text, sizeof text, "+R=%.17g", ellipsoid.a);
  } else {
    std::snprintf(text, sizeof text, "+a=%.17g +rf=%.17g", ellipsoid.a, ellipsoid.invFlattening);
  }
  return text;
}

double GroundMetres(const TLonLat& one, const TLonLat& other, double semiMajorAxis) {
  const double dLat = (one.lat - other.lat) * kRadiansPerDegree;
  const double dLon = std::remainder(one.lon - other.lon, 360.0) * kRadiansPerDegree;
  return semiMajorAxis * std::hypot(dLat, dLon * std::cos(one.lat * kRadiansPerDegree));
}

int ExpectAgreesWithProj(const TProjection& projection, const std::string& projDefinition,
                         const TGridSpan& span, double forwardMetres, double inverseDegrees) {
  const TProjReference proj(projDefinition);
  EXPECT_TRUE(proj.Valid()) << projDefinition;
  if (!proj.Valid()) return 0;
  int points = 0;
  double worstForward = 0, worstInverse = 0;
  std::string message;
  for (double lat = span.latFrom; lat <= span.latTo + 1e-9; lat += span.latStep) {
    for (double lon = span.lonFrom; lon <= span.lonTo + 1e-9; lon += span.lonStep) {
      ++points;
      double x = 0, y = 0;
      if (!proj.Forward(lon, lat, x, y)) {
        ADD_FAILURE() << "PROJ refuses " << lon << " " << lat;
        continue;
      }
      TPlanePoint plane;
      TLonLat back;
      if (!projection.Forward({lon, lat}, plane, message) || !projection.Inverse({x, y}, back, message)) {
        ADD_FAILURE() << lon << " " << lat << ": " << message;
        continue;
      }
      worstForward = std::max(worstForward, std::hypot(plane.x - x, plane.y - y));
      // At a pole every longitude is the point itself.
      const double lonError = std::fabs(lat) == 90 ? 0 : std::fabs(std::remainder(back.lon - lon, 360.0));
      worstInverse = std::max({worstInverse, lonError, std::fabs(back.lat - lat)});
    }
  }
  EXPECT_LT(worstForward, forwardMetres);
  EXPECT_LT(worstInverse, inverseDegrees);
  return points;
}

void ExpectPublishedPoint(const TProjection& projection, double lon, double lat, double x, double y,
                          double toleranceMetres, double a, double roundTripMetres) {
  TPlanePoint plane;
  std::string message;
  ASSERT_TRUE(projection.Forward({lon, lat}, plane, message)) << message;
  EXPECT_NEAR(plane.x, x, toleranceMetres);
  EXPECT_NEAR(plane.y, y, toleranceMetres);
  TLonLat geo, back;
  ASSERT_TRUE(projection.Inverse({x, y}, geo, message) && projection.Inverse(plane, back, message)) << message;
  EXPECT_LE(GroundMetres(geo, {lon, lat}, a), toleranceMetres);
  EXPECT_LE(GroundMetres(back, {lon, lat}, a), roundTripMetres);
}

void ExpectGridReferences(TFormatGridReference format, TParseGridReference parse,
                          std::span<const TGridReferenceCase> cases) {
  for (const TGridReferenceCase& c : cases) {
    SCOPED_TRACE(c.text);
    std::string text, message;
    ASSERT_TRUE(format({c.easting, c.northing}, c.precision, text, message)) << message;
    EXPECT_EQ(text, c.text);
    TPlanePoint grid{-1, -1};
    int precision = 0;
    ASSERT_TRUE(parse(c.text, grid, message, &precision)) << message;
    EXPECT_EQ(grid.x, c.cornerEasting);
    EXPECT_EQ(grid.y, c.cornerNorthing);
    EXPECT_EQ(precision, c.precision);
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
