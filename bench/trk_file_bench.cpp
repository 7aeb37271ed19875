// Reading and writing a native track file (TRK) of 1,000,000 points, and
// GPSBabel reading and writing the same track as GPX 1.1, in the same run.
//
// The track is a random walk at 1 Hz near 42 N, 1 E with time, altitude,
// heart rate and, on one point in five, a ground speed. It is built once and
// written with the default options (Windows-1252, notation 0, WGS 84).
//
// - BM_WriteTrk: WriteTrkFile to a temporary file; bytes/s on the file size.
// - BM_ReadTrk: ReadTrkFile of that file; bytes/s, and the heap the loaded
//   track holds per point (mallinfo2 in use after the read minus before it;
//   the file's bytes are released by then, the vector's growth slack is not).
// - BM_GpsBabelGpxToGpx: "gpsbabel -i gpx -f IN -o gpx -F OUT" on the same
//   points written as GPX 1.1 (lat/lon with 9 decimals, ele, time), timed
//   around the child process by the wall clock; bytes/s on the input GPX.
//
// All three are timed by the wall clock around the call alone (manual time),
// so the rates compare like with like;
// "child_cpu_s" gives GPSBabel's own CPU time as well. At the end the rates
// are compared line by line.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>

#include "bench/bench_run.h"
#include "bench/random_walk.h"
#include "core/track.h"
#include "formats/trk_file.h"

namespace {

using velantis::TDateTime;
using velantis::TrkPnt;
using velantis::TTrack;

constexpr size_t kPoints = 1'000'000;
constexpr char kGpsBabel[] = "/usr/bin/gpsbabel";

size_t HeapInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

std::string TempPath(const char* suffix) {
  const char* folder = std::getenv("TMPDIR");
  std::string path = folder != nullptr && *folder != '\0' ? folder : "/tmp";
  return path + "/velantis_trk_bench_" + std::to_string(getpid()) + suffix;
}

const std::string& TrkPath() {
  static const std::string path = TempPath(".trk");
  return path;
}
const std::string& GpxInPath() {
  static const std::string path = TempPath("_in.gpx");
  return path;
}
const std::string& GpxOutPath() {
  static const std::string path = TempPath("_out.gpx");
  return path;
}

int64_t FileSize(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0 ? static_cast<int64_t>(info.st_size) : -1;
}

TTrack& SourceTrack() {
  static TTrack track = [] {
    TTrack t;
    t.SetName("Bench walk");
    t.Reserve(kPoints);
    velantis::bench::TRandomWalk walk(20261125);
    for (size_t i = 0; i < kPoints; ++i) {
      TrkPnt p = walk.Next();
      // One point in five carries the receiver's ground speed (m/s -> km/h).
      p.speedKmh = i % 5 == 0 ? static_cast<float>(walk.LastStepM() * 3.6) : 0.0f;
      t.Anyade_Punt(p);
    }
    return t;
  }();
  return track;
}

bool EnsureTrkFile(std::string& error) {
  static bool written = false;
  if (written) return true;
  const velantis::TNativeOptions options;
  written = velantis::WriteTrkFile(TrkPath(), SourceTrack(), options, error);
  return written;
}

// GPX 1.1 of the track: one segment, lat/lon with 9 decimals, ele, time.
bool EnsureGpxFile(std::string& error) {
  static bool written = false;
  if (written) return true;
  std::FILE* file = std::fopen(GpxInPath().c_str(), "wb");
  if (file == nullptr) {
    error = "cannot create " + GpxInPath();
    return false;
  }
  std::fputs("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
             "<gpx version=\"1.1\" creator=\"velantis bench\" xmlns=\"http://www.topografix.com/GPX/1/1\">\n"
             "<trk><name>Bench walk</name><trkseg>\n",
             file);
  for (const TrkPnt& p : SourceTrack().Points()) {
    velantis::TCalendarTime c;
    p.time.ToCalendar(c);
    std::fprintf(file,
                 "<trkpt lat=\"%.9f\" lon=\"%.9f\"><ele>%.3f</ele>"
                 "<time>%04d-%02d-%02dT%02d:%02d:%02dZ</time></trkpt>\n",
                 p.lat, p.lon, static_cast<double>(p.altitude), c.year, c.month, c.day, c.hour, c.minute,
                 static_cast<int>(std::lround(c.second)));
  }
  std::fputs("</trkseg></trk>\n</gpx>\n", file);
  written = std::fclose(file) == 0;
  if (!written) error = "cannot write " + GpxInPath();
  return written;
}

// Bytes per wall second of each run, for the comparison at the end.
std::map<std::string, double>& BytesPerSecond() {
  static std::map<std::string, double> rates;
  return rates;
}
std::map<std::string, double>& PointsPerSecond() {
  static std::map<std::string, double> rates;
  return rates;
}

void Report(benchmark::State& state, const std::string& name, int64_t bytes, double seconds) {
  const auto iterations = static_cast<int64_t>(state.iterations());
  state.SetBytesProcessed(iterations * bytes);
  state.counters["points_per_s"] =
      benchmark::Counter(static_cast<double>(iterations * static_cast<int64_t>(kPoints)), benchmark::Counter::kIsRate);
  state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
  if (seconds > 0) {
    BytesPerSecond()[name] = static_cast<double>(iterations * bytes) / seconds;
    PointsPerSecond()[name] = static_cast<double>(iterations) * kPoints / seconds;
  }
}

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void BM_WriteTrk(benchmark::State& state) {
  TTrack& track = SourceTrack();
  const velantis::TNativeOptions options;
  std::string error;
  double seconds = 0;
  for (auto _ : state) {
    const double start = Now();
    if (!velantis::WriteTrkFile(TrkPath(), track, options, error)) {
      state.SkipWithError(("WriteTrkFile: " + error).c_str());
      return;
    }
    const double elapsed = Now() - start;
    state.SetIterationTime(elapsed);
    seconds += elapsed;
  }
  Report(state, "write", FileSize(TrkPath()), seconds);
}

void BM_ReadTrk(benchmark::State& state) {
  std::string error;
  if (!EnsureTrkFile(error)) {
    state.SkipWithError(("WriteTrkFile: " + error).c_str());
    return;
  }
  const velantis::TNativeOptions options;
  const TTrack& source = SourceTrack();
  double bytesPerPoint = 0, seconds = 0;
  for (auto _ : state) {
    malloc_trim(0);
    const size_t heap0 = HeapInUse();
    TTrack track;
    const double start = Now();
    const bool ok = velantis::ReadTrkFile(TrkPath(), options, track, error);
    const double elapsed = Now() - start;
    state.SetIterationTime(elapsed);
    seconds += elapsed;
    if (!ok) {
      state.SkipWithError(("ReadTrkFile: " + error).c_str());
      return;
    }
    bytesPerPoint = static_cast<double>(HeapInUse() - heap0) / static_cast<double>(kPoints);
    // The file must give back what was written (positions to the six
    // decimals of notation 0).
    const TrkPnt& a = track.Point(kPoints - 1);
    const TrkPnt& b = source.Point(kPoints - 1);
    const char* differs = track.Count() != kPoints                                       ? "point count"
                          : std::abs(a.lat - b.lat) > 6e-7 || std::abs(a.lon - b.lon) > 6e-7 ? "position"
                          : std::abs(a.time.SecondsTo(b.time)) > 0.5                       ? "time"
                          : a.heartRateByte != b.heartRateByte                             ? "heart rate"
                                                                                           : nullptr;
    if (differs != nullptr) {
      state.SkipWithError((std::string("the track read back differs from the one written: ") + differs).c_str());
      return;
    }
  }
  Report(state, "read", FileSize(TrkPath()), seconds);
  state.counters["heap_bytes_per_point"] = bytesPerPoint;
}

double ChildCpuSeconds() {
  struct rusage usage {};
  getrusage(RUSAGE_CHILDREN, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

void BM_GpsBabelGpxToGpx(benchmark::State& state) {
  if (access(kGpsBabel, X_OK) != 0) {
    state.SkipWithError("gpsbabel is not installed");
    return;
  }
  std::string error;
  if (!EnsureGpxFile(error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  const std::string command = std::string(kGpsBabel) + " -i gpx -f '" + GpxInPath() + "' -o gpx -F '" +
                              GpxOutPath() + "'";
  double seconds = 0, childCpu = 0;
  for (auto _ : state) {
    const double cpu0 = ChildCpuSeconds();
    const double start = Now();
    const int status = std::system(command.c_str());
    const double elapsed = Now() - start;
    childCpu += ChildCpuSeconds() - cpu0;
    if (status != 0) {
      state.SkipWithError(("gpsbabel failed: " + command).c_str());
      return;
    }
    state.SetIterationTime(elapsed);
    seconds += elapsed;
  }
  Report(state, "gpsbabel", FileSize(GpxInPath()), seconds);
  state.counters["child_cpu_s"] = childCpu / static_cast<double>(state.iterations());
  state.counters["out_MB"] = static_cast<double>(FileSize(GpxOutPath())) / 1e6;
}

BENCHMARK(BM_WriteTrk)->Unit(benchmark::kMillisecond)->UseManualTime()->MinTime(2.0);
BENCHMARK(BM_ReadTrk)->Unit(benchmark::kMillisecond)->UseManualTime()->MinTime(2.0);
// GPSBabel takes many seconds a run: two runs.
BENCHMARK(BM_GpsBabelGpxToGpx)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(2);

}  // namespace

int main(int argc, char** argv) {
  if (!velantis::bench::RunBenchmarks(argc, argv)) return 1;
  const auto& bytes = BytesPerSecond();
  const auto& points = PointsPerSecond();
  for (const char* ours : {"write", "read"}) {
    if (!bytes.count(ours)) continue;
    std::printf("%s: %.1f MB/s, %.0f points/s\n", ours, bytes.at(ours) / 1e6, points.at(ours));
    if (bytes.count("gpsbabel"))
      std::printf("  vs gpsbabel gpx->gpx (%.1f MB/s, %.0f points/s): %.2fx in bytes/s, %.2fx in points/s\n",
                  bytes.at("gpsbabel") / 1e6, points.at("gpsbabel"), bytes.at(ours) / bytes.at("gpsbabel"),
                  points.at(ours) / points.at("gpsbabel"));
  }
  for (const std::string& path : {TrkPath(), GpxInPath(), GpxOutPath()}) std::remove(path.c_str());
  return 0;
}
