// What the benchmark programs that print a comparison after their runs share:
// running the registered benchmarks, and the CPU time of the calling thread.
#pragma once

#include <benchmark/benchmark.h>

#include <time.h>

namespace velantis::bench {

// Runs every registered benchmark; false when the arguments were not
// understood (main then exits 1).
inline bool RunBenchmarks(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return false;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return true;
}

// CPU seconds of this thread: timing the loop body in it compares like with
// like on a machine busy with other work.
inline double ThreadCpuSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

}  // namespace velantis::bench
