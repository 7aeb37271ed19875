// A reader of PROJ's .gie test files, and two ways to run their vectors
// through a projection: the cases of one operation block as gie runs them,
// or the accept/expect pairs of every block for a test to run itself.
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

// Runs every case of the matching operation blocks of a .gie file: expected
// values within the file's tolerance (angles compared as metres on the ground,
// as gie does), "expect failure" as a refusal, "roundtrip n" as n forward and
// inverse passes drifting less than the tolerance. false and error when the
// file cannot be read or holds no such operation.
bool RunGieOperation(const std::filesystem::path& path, const TGieOperation& operation,
                     const TProjection& projection, double semiMajorAxis, TGieReport& report,
                     std::string& error);

// RunGieOperation on a file that must hold the operation: `cases` cases run,
// none failing.
void ExpectGieCases(const std::filesystem::path& path, const TGieOperation& operation,
                    const TProjection& projection, double semiMajorAxis, int cases);

// One operation of a .gie file for a catalogue projection built on an
// ellipsoid (a, 1/f; 1/f 0 for a sphere) with a parameter set.
struct TGieRow {
  const char* kind;  // the catalogue name
  const char* file;  // below the test data folder
  TGieOperation operation;
  double a, rf;
  TProjectionParams params;
  int cases;  // how many checks the operation holds, so that none is skipped unseen
};

// ExpectGieCases for every row; a row whose file is missing is skipped.
void ExpectGieRows(std::span<const TGieRow> rows);

struct TGiePair {
  double accept[2] = {0, 0};  // lon lat in degrees, or easting northing in metres
  double expect[2] = {0, 0};
  double toleranceM = 0;
  int line = 0;  // of the "expect" line, for messages
};

struct TGieBlock {
  std::string operation;  // continuation lines joined, blanks collapsed
  bool fromGeographic = false;
  std::vector<TGiePair> pairs;
};

// The accept/expect pairs of every operation block, each with the tolerance
// last set before it. geographicCodes: the "epsg:NNNN" texts of the
// geographic systems; a block whose first step names one of them runs
// geographic -> projected.
bool ReadGieBlocks(const std::filesystem::path& file, const std::vector<std::string>& geographicCodes,
                   std::vector<TGieBlock>& blocks, std::string& error);

}  // namespace velantis::test
