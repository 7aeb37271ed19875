#include <gtest/gtest.h>

#include <regex>

#include "tests/cli/run_velantis.h"

namespace velantis::test {
namespace {

TEST(DatumsCommand, JsonListsEveryDatumWithItsShortLabelAndGrid) {
  const TRunResult run = RunVelantis({"datums", "--json"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out.rfind("[\n{\"index\":0,\"name\":\"WGS 84\",\"short\":\"WGS84\",\"a\":6378137,"
                          "\"inv_f\":298.257223563,\"dx\":0,\"dy\":0,\"dz\":0,\"grid\":null}",
                          0),
            0u)
      << run.out.substr(0, 300);
  const std::regex record(R"(\{"index":(\d+),"name":"[^"]+","short":"[^"]+","a":[-0-9.e]+,"inv_f":[-0-9.e]+,"dx":[-0-9.e]+,"dy":[-0-9.e]+,"dz":[-0-9.e]+,"grid":(null|"[^"/]+\.gsb")\})");
  int count = 0;
  for (auto it = std::sregex_iterator(run.out.begin(), run.out.end(), record); it != std::sregex_iterator(); ++it) {
    EXPECT_EQ(std::stoi((*it)[1]), count);
    ++count;
  }
  EXPECT_GE(count, 150);
  EXPECT_TRUE(run.out.ends_with("}\n]\n"));
}

TEST(DatumsCommand, FolderOptionsWorkAfterTheSubcommandAndAMissingDataFolderIsRefused) {
  const TRunResult run = RunVelantis({"datums", "--data-dir", "/nonexistent"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "velantis: Error reading file DATUMSB.DAT Error opening /nonexistent/datumsb.dat\n");
  EXPECT_EQ(run.out, "");
}

TEST(DatumsCommand, UnknownOptionIsBadUsage) {
  const TRunResult run = RunVelantis({"datums", "--jsn"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.err.rfind("velantis: ", 0), 0u) << run.err;
}

}  // namespace
}  // namespace velantis::test
