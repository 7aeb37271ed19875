// Projection checks shared by the projection tests: ellipsoids built from a
// and 1/f, a comparison with PROJ over a grid of points, a published point
// both ways, conformality measured on the ellipsoid, and refusals with their
// messages.
#pragma once

#include <algorithm>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "geodesy/datum.h"
#include "geodesy/lon_lat.h"
#include "geodesy/projection.h"

namespace velantis::test {

// An ellipsoid from a and 1/f; inverseFlattening 0 means a sphere.
TDatum MakeEllipsoid(double a, double inverseFlattening);
// The same ellipsoid in PROJ's words: "+a=... +rf=..." or "+R=...".
std::string ProjEllipsoid(const TDatum& ellipsoid);
// A named datum: that ellipsoid and its shift dX dY dZ in metres.
TDatum MakeDatum(const char* name, double a, double inverseFlattening, double dx, double dy,
                 double dz);

// Ellipsoids of the published test points (EPSG dataset values).
inline constexpr double kGrs80A = 6378137, kGrs80Rf = 298.257222101;
inline constexpr double kWgs84A = 6378137, kWgs84Rf = 298.257223563;
inline constexpr double kClarkeIgnA = 6378249.2, kClarkeIgnRf = 293.466021293627;
inline constexpr double kBesselA = 6377397.155, kBesselRf = 299.1528128;
inline constexpr double kInternationalA = 6378388, kInternationalRf = 297;
inline constexpr double kKrassowskyA = 6378245, kKrassowskyRf = 298.3;
inline constexpr double kProjSphereR = 6370997;  // PROJ's "+ellps=sphere"

// Distance on the ground between two geographic points a few metres apart
// (a sphere of radius semiMajorAxis is close enough at that scale).
double GroundMetres(const TLonLat& one, const TLonLat& other, double semiMajorAxis);

// Longitudes and latitudes in degrees, both ends included.
struct TGridSpan {
  double lonFrom, lonTo, lonStep;
  double latFrom, latTo, latStep;
};

struct TGridReport {
  int points = 0;
  int refusedByProj = 0;
  double maxForwardMetres = 0;        // |ours - PROJ| of the forward
  double maxInverseDegrees = 0;       // our inverse of PROJ's plane point vs the start
  std::vector<std::string> failures;  // points our projection refused
};

// Projects every grid point with both and inverts PROJ's plane point with ours.
TGridReport CompareWithProj(const TProjection& projection, const std::string& projDefinition,
                            const TGridSpan& span);

// CompareWithProj, expecting no point refused by PROJ or by ours, our forward
// within forwardMetres of PROJ's and our inverse of PROJ's plane point within
// inverseDegrees of the start. Returns the number of grid points, for the
// caller to check.
int ExpectAgreesWithProj(const TProjection& projection, const std::string& projDefinition,
                         const TGridSpan& span, double forwardMetres = 0.001,
                         double inverseDegrees = 1e-8);

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

// A projection built from an ellipsoid (a, 1/f; 1/f 0 for a sphere) and a
// parameter set, and the same in PROJ's words without the ellipsoid.
struct TProjGridRow {
  double a, rf;
  TProjectionParams params;
  const char* proj;
  TGridSpan span;
};

// ExpectAgreesWithProj for every row; returns the fewest grid points of a
// row, for the caller to check.
template <typename TProjectionClass>
int ExpectGridRowsAgreeWithProj(std::span<const TProjGridRow> rows) {
  int fewest = std::numeric_limits<int>::max();
  for (const TProjGridRow& row : rows) {
    const TDatum ellipsoid = MakeEllipsoid(row.a, row.rf);
    const std::string definition = std::string(row.proj) + " " + ProjEllipsoid(ellipsoid);
    SCOPED_TRACE(definition);
    const TProjectionClass projection(ellipsoid, row.params);
    fewest = std::min(fewest, ExpectAgreesWithProj(projection, definition, row.span));
  }
  return fewest;
}

// A national grid reference: the plane point written at `precision` metres
// is `text`, which reads back as the corner of its square.
struct TGridReferenceCase {
  double easting, northing;
  int precision;
  const char* text;
  double cornerEasting, cornerNorthing;  // what the text parses to
};
using TFormatGridReference = bool (*)(const TPlanePoint&, int, std::string&, std::string&);
using TParseGridReference = bool (*)(std::string_view, TPlanePoint&, std::string&, int*);

// Each case both ways, the precision read back too.
void ExpectGridReferences(TFormatGridReference format, TParseGridReference parse,
                          std::span<const TGridReferenceCase> cases);

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
