// Checks shared by the tests of the Mercator, Lambert conformal conic and
// polyconic projections: ellipsoids built from a and 1/f, a comparison with
// PROJ over a grid of points, and the cases of one operation of a PROJ .gie
// file run through a projection.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "geodesy/datum.h"
#include "geodesy/projection.h"

namespace velantis::test {

// An ellipsoid from a and 1/f; inverseFlattening 0 means a sphere.
TDatum MakeEllipsoid(double a, double inverseFlattening);
// The same ellipsoid in PROJ's words: "+a=... +rf=..." or "+R=...".
std::string ProjEllipsoid(const TDatum& ellipsoid);

// Ellipsoids of the published test points (EPSG dataset values).
inline constexpr double kGrs80A = 6378137, kGrs80Rf = 298.257222101;
inline constexpr double kWgs84A = 6378137, kWgs84Rf = 298.257223563;
inline constexpr double kClarkeIgnA = 6378249.2, kClarkeIgnRf = 293.466021293627;
inline constexpr double kBesselA = 6377397.155, kBesselRf = 299.1528128;
inline constexpr double kInternationalA = 6378388, kInternationalRf = 297;
inline constexpr double kKrassowskyA = 6378245, kKrassowskyRf = 298.3;
inline constexpr double kProjSphereR = 6370997;  // PROJ's "+ellps=sphere"

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

// How the angles of a .gie operation are written.
enum class TGieAngles { Degrees, GradsFromParis };

struct TGieOperation {
  std::string operation;   // the operation text, blanks collapsed, comments and "\" removed
  bool isInverse = false;  // the operation is the projection's inverse
  TGieAngles angles = TGieAngles::Degrees;
};

struct TGieReport {
  int cases = 0;  // accept/expect pairs, failure expectations and round trips run
  std::vector<std::string> failures;
};

// Runs every case of the matching operation blocks of a .gie file: expected
// values within the file's tolerance (angles compared as metres on the ground,
// as gie does), "expect failure" as a refusal, "roundtrip n" as n forward and
// inverse passes drifting less than the tolerance. false and error when the
// file cannot be read or holds no such operation.
bool RunGieOperation(const std::filesystem::path& path, const TGieOperation& operation,
                     const TProjection& projection, double semiMajorAxis, TGieReport& report,
                     std::string& error);

}  // namespace velantis::test
