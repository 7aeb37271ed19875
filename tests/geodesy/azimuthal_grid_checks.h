// Checks shared by the tests of the azimuthal, stereographic and national grid
// projections: a published point both ways, conformality measured on the
// ellipsoid, and a table of refusals with their messages.
#pragma once

#include <span>
#include <string>

#include <gtest/gtest.h>

#include "geodesy/datum.h"
#include "geodesy/projection.h"

namespace velantis::test {

// Forward of (lon, lat) within toleranceMetres of (x, y); inverse of (x, y)
// within toleranceMetres of (lon, lat) on the ground (a sphere of radius a is
// close enough to turn degrees into metres); our own round trip of (lon, lat)
// within a micrometre.
void ExpectPublishedPoint(const TProjection& projection, double lon, double lat, double x, double y,
                          double toleranceMetres, double a, double roundTripMetres = 1e-6);

// The scales along the meridian and the parallel at (lon, lat), measured by
// central differences against the ellipsoid's radii of curvature, agree and
// the images of the two directions stay square to each other (to 1e-8);
// when expectedScale is not 0 the scale equals it (to 1e-8).
void ExpectConformal(const TProjection& projection, const TDatum& ellipsoid, double lon, double lat,
                     double expectedScale);

struct TRefusalCase {
  TProjectionParams params;
  bool inverse;
  double u, v;  // lon lat, or x y for the inverse
  const char* message;
};

// One refusal: false, the message, and the output left as it was.
void ExpectRefusal(const TProjection& projection, bool inverse, double u, double v,
                   const std::string& expected);

template <typename TProjectionClass>
void ExpectRefusals(const TDatum& ellipsoid, std::span<const TRefusalCase> cases) {
  for (const TRefusalCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "origin " << c.params.lonOrigin << " " << c.params.latOrigin
                                    << (c.inverse ? ", inverse of " : ", forward of ") << c.u << " "
                                    << c.v);
    const TProjectionClass projection(ellipsoid, c.params);
    ExpectRefusal(projection, c.inverse, c.u, c.v, c.message);
  }
}

}  // namespace velantis::test
