// Memory of a track of 1,000,000 points: bytes per point measured from the
// process's heap in use (mallinfo2: small blocks plus mmapped ones) and from
// its resident set (/proc/self/statm), before and after building the track.
//
// Three ways of building are measured in the same run:
// - Anyade_Punt one point at a time (the vector doubles: up to 2x slack);
// - the same after Reserve (the exact record size: the floor);
// - Anyade_Punt, then the per-point distances from the start that the field
//   access keeps once asked for (8 more bytes a point);
// and one point in 10,000 carries a label, which lives in the track's side
// map, not in the point record. sizeof(TrkPnt) is printed as a counter.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <random>

#include "bench/random_walk.h"
#include "core/track.h"

namespace {

using velantis::TDateTime;
using velantis::TrkPnt;
using velantis::TTrack;

constexpr size_t kPoints = 1'000'000;
constexpr size_t kLabelEvery = 10'000;

size_t HeapInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

size_t ResidentBytes() {
  long pages = 0, resident = 0;
  if (FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(f);
  }
  return static_cast<size_t>(resident) * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

// The walk, one point in kLabelEvery with a label.
void Fill(TTrack& track) {
  velantis::bench::TRandomWalk walk(20261123);
  velantis::TTextLabel label;
  label.text = "km";
  for (size_t i = 0; i < kPoints; ++i) {
    track.Anyade_Punt(walk.Next());
    if (i % kLabelEvery == 0) track.SetPointLabel(i, label);
  }
}

enum class TMode { Append, Reserved, WithDistances };

void Measure(benchmark::State& state, TMode mode) {
  double heapPerPoint = 0, rssPerPoint = 0;
  for (auto _ : state) {
    malloc_trim(0);
    const size_t heap0 = HeapInUse(), rss0 = ResidentBytes();
    {
      TTrack track;
      if (mode == TMode::Reserved) track.Reserve(kPoints);
      Fill(track);
      if (mode == TMode::WithDistances) {
        double value = 0;
        std::string error;
        track.Retorna_Val_Campo(static_cast<int>(velantis::TFieldCode::DistanceFromStart), kPoints - 1, value,
                                error);
        benchmark::DoNotOptimize(value);
      }
      benchmark::DoNotOptimize(track.Points().data());
      heapPerPoint = static_cast<double>(HeapInUse() - heap0) / kPoints;
      rssPerPoint = static_cast<double>(ResidentBytes() - rss0) / kPoints;
    }
  }
  state.counters["heap_bytes_per_point"] = heapPerPoint;
  state.counters["rss_bytes_per_point"] = rssPerPoint;
  state.counters["sizeof_TrkPnt"] = sizeof(TrkPnt);
}

void BM_TrackAppend(benchmark::State& state) { Measure(state, TMode::Append); }
void BM_TrackReserved(benchmark::State& state) { Measure(state, TMode::Reserved); }
void BM_TrackWithDistances(benchmark::State& state) { Measure(state, TMode::WithDistances); }

// One iteration each: the resident set only grows the first time a block of
// memory is touched, so a second iteration would measure reuse, not cost.
BENCHMARK(BM_TrackAppend)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TrackReserved)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TrackWithDistances)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
