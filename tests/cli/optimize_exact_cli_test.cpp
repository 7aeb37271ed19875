// velantis optimize --exact on a real flight: the proven FAI triangle of
// tri.igc, which the default search misses (it settles 2 % below).
#include <gtest/gtest.h>

#include <string>

#include "tests/cli/run_velantis.h"
#include "tests/support/testdata.h"

namespace velantis::test {
namespace {

// The turnpoint indices of a --json answer, in order.
std::string TurnpointIndices(const std::string& json) {
  std::string indices;
  for (size_t at = json.find("\"name\":\"Point "); at != std::string::npos; at = json.find("\"name\":\"Point ", at + 1)) {
    const size_t from = json.find("\"index\":", at) + 8;
    indices += (indices.empty() ? "" : ",") + json.substr(from, json.find(',', from) - from);
  }
  return indices;
}

// 1, 1665, 4198: the optimum on our sphere (the independent scorer
// igc-xc-score, on its own earth model, takes fix 0 for the first).
TEST(OptimizeExactCommand, ProvenFaiTriangleOfARealFlight) {
  VELANTIS_TESTDATA_OR_SKIP(flight, "igc/tri.igc");
  for (const bool exact : {true, false}) {
    std::vector<std::string> args{"optimize", flight.string(), "--type", "fai", "--json"};
    if (exact) args.push_back("--exact");
    const TRunResult run = RunVelantis(args);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    ASSERT_EQ(run.out.rfind("{\"type\":\"fai\",", 0), 0u) << run.out;
    EXPECT_EQ(TurnpointIndices(run.out) == "1,1665,4198", exact) << run.out;
  }
}

}  // namespace
}  // namespace velantis::test
