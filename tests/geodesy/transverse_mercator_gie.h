// A reader for the accept/expect pairs of PROJ's .gie test files, enough for
// the IOGP GIGS 5101 transverse Mercator series: one block per "operation",
// the tolerance in metres that applies to each pair, and whether the
// operation runs from geographic to projected coordinates.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace velantis::test {

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

// geographicCodes: the "epsg:NNNN" texts of the geographic systems; a block
// whose first step names one of them runs geographic -> projected.
bool ReadGieBlocks(const std::filesystem::path& file, const std::vector<std::string>& geographicCodes,
                   std::vector<TGieBlock>& blocks, std::string& error);

}  // namespace velantis::test
