#include "core/progress.h"

#include <gtest/gtest.h>

#include <thread>

namespace velantis {
namespace {

// Another thread cancels a long count: the count stops at its next step,
// refused steps are not counted, and a cancel before the start (or before a
// new total) still stops it; only Reset clears it. The helpers take nullptr.
TEST(Progress, CancelFromAnotherThreadStopsTheCount) {
  TProgress progress;
  ProgressSetTotal(&progress, 2'000'000'000);
  std::thread canceller([&] {
    while (progress.Steps() < 1000) std::this_thread::yield();
    progress.Cancel();
  });
  int64_t done = 0;
  while (ProgressStep(&progress)) ++done;
  canceller.join();
  EXPECT_EQ(progress.Steps(), done);
  EXPECT_GE(done, 1000);
  EXPECT_LT(progress.Fraction(), 1.0);
  ProgressSetTotal(&progress, 4);
  EXPECT_EQ(progress.Steps(), 0);
  EXPECT_FALSE(ProgressStep(&progress));
  progress.Reset();
  EXPECT_EQ(progress.Fraction(), 0.0) << "no total yet";
  ProgressSetTotal(&progress, 4);
  EXPECT_TRUE(ProgressStep(&progress, 3));
  EXPECT_EQ(progress.Fraction(), 0.75);
  EXPECT_TRUE(ProgressStep(&progress, 3));
  EXPECT_EQ(progress.Fraction(), 1.0) << "never above one";
  EXPECT_TRUE(ProgressStep(nullptr));
}

}  // namespace
}  // namespace velantis
