// Projection checks shared by the projection tests: ellipsoids built from a
// and 1/f, a comparison with PROJ over a grid of points, a published point
// both ways, refusals with their messages, and national grid references.
#pragma once

#include <span>
#include <string>
#include <string_view>

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

// Every grid point: no refusal, our forward within forwardMetres of PROJ's, our
// inverse of PROJ's within inverseDegrees (not longitudes at a pole). Returns the count.
int ExpectAgreesWithProj(const TProjection& projection, const std::string& projDefinition,
                         const TGridSpan& span, double forwardMetres = 0.001,
                         double inverseDegrees = 1e-8);

// Forward and inverse within toleranceMetres (on the ground), our own round trip
// within roundTripMetres.
void ExpectPublishedPoint(const TProjection& projection, double lon, double lat, double x, double y,
                          double toleranceMetres, double a, double roundTripMetres = 1e-6);

// One refusal: false, the message, and the output left as it was.
void ExpectRefusal(const TProjection& projection, bool inverse, double u, double v,
                   const std::string& expected);

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

}  // namespace velantis::test
