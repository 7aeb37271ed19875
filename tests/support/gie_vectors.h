// PROJ's .gie test files: one operation's cases run as gie runs them.
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
  // When set, only the accept/expect pairs this close in longitude to `meridian` run (series
  // that hold within a zone: their error builds up over a thousand round trips).
  double withinDegrees = 0;
  double meridian = 0;
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

}  // namespace velantis::test
