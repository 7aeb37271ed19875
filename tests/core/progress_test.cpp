#include "core/progress.h"

#include <gtest/gtest.h>

#include <thread>

namespace velantis {
namespace {

// A long operation as the readers and writers run it: set the total, one
// step per record, stop with failure when a step is refused.
bool RunRecords(TProgress* progress, int64_t records, int64_t& done) {
  ProgressSetTotal(progress, records);
  for (done = 0; done < records; ++done)
    if (!ProgressStep(progress)) return false;
  return true;
}

TEST(Progress, CancelStopsTheLoop) {
  const struct {
    bool before, fromThread, success;
    int64_t records;
  } cases[] = {
      {false, false, true, 10'000},         // never cancelled: runs to the end
      {true, false, false, 10'000},         // cancelled before it starts: no record is done
      {false, true, false, 2'000'000'000},  // cancelled by another thread: stops early
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.before << c.fromThread);
    TProgress progress;
    if (c.before) progress.Cancel();
    std::thread canceller;
    if (c.fromThread)
      canceller = std::thread([&] {
        while (progress.Steps() < 1000) std::this_thread::yield();
        progress.Cancel();
      });
    int64_t done = -1;
    EXPECT_EQ(RunRecords(&progress, c.records, done), c.success);
    if (canceller.joinable()) canceller.join();
    EXPECT_EQ(progress.Total(), c.records);
    EXPECT_EQ(progress.Steps(), done);
    EXPECT_EQ(done == c.records, c.success);
    EXPECT_EQ(done == 0, c.before);
    EXPECT_EQ(progress.Fraction() == 1.0, c.success);
  }
  int64_t done = 0;
  EXPECT_TRUE(RunRecords(nullptr, 500, done));  // no progress object: nothing stops
  EXPECT_EQ(done, 500);
}

}  // namespace
}  // namespace velantis
