// PROJ's .gie test files: one operation's cases run as gie runs them, or the pairs read.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "geodesy/projection.h"

namespace velantis::test {

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

// Every case of the matching operation blocks: values within the tolerance (angles
// as metres on the ground), "expect failure" refused, "roundtrip n" drifting less.
// false and error when the file cannot be read or holds no such operation.
bool RunGieOperation(const std::filesystem::path& path, const TGieOperation& operation,
                     const TProjection& projection, double semiMajorAxis, TGieReport& report,
                     std::string& error);

// One .gie operation for a catalogue projection on an ellipsoid (1/f 0: a sphere).
struct TGieRow {
  const char* kind;  // the catalogue name
  const char* file;  // below the test data folder
  TGieOperation operation;
  double a, rf;
  TProjectionParams params;
  int cases;  // how many checks the operation holds, so that none is skipped unseen
};

// Every row run, its cases counted, none failing; a row whose file is missing is skipped.
void ExpectGieRows(std::span<const TGieRow> rows);

// An accept/expect pair with the tolerance last set before it; fromGeographic
// when the first step of its operation names the geographic system.
struct TGiePair {
  double accept[2] = {0, 0};  // lon lat in degrees, or easting northing in metres
  double expect[2] = {0, 0};
  double toleranceM = 0;
  int line = 0;  // of the "expect" line, for messages
  bool fromGeographic = false;
};

// Every pair of a file; geographicCode is the "epsg:NNNN" of the geographic system.
bool ReadGiePairs(const std::filesystem::path& file, const std::string& geographicCode,
                  std::vector<TGiePair>& pairs, std::string& error);

}  // namespace velantis::test
