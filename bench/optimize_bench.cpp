// Flight optimisation on the real flights of the test data: the default
// (heuristic) search and the exact search, each with the closing step, beside
// the reference scorer igc-xc-score (node, installed from the npm registry by
// bench/install-igc-xc-score.sh) on the same files in the same run.
//
// - BM_Optimize_Default/<flight>/<shape>: OptimizeFlight.
// - BM_Optimize_Exact/<flight>/<shape>: OptimizeFlightExact.
// - BM_ExactSearch/<flight>/<shape>: ExactSearch alone, and
//   BM_Closing/<flight>/<shape>: CloseFlight on its turnpoints, the two parts
//   of the exact mode (the closing step is the same in both modes).
//   All on a point cache loaded beforehand (the reference's time leaves its
//   IGC parsing out too), timed like the reference: by the wall clock around
//   the call, the fastest run counting (a thread's CPU time would leave out
//   what the reference's wall clock counts on a busy machine).
// - BM_IgcXcScore/<flight>/<shape> (free, triangle, fai; it has no
//   quadrilateral): bench/igc_xc_score_run.mjs runs its solver on the file
//   and reports the fastest of its runs (JIT warm) by node's clock, around
//   the solver alone.
//
// The reference's rule set: its built-in rule sets (FFVL, XContest, FAI ...)
// score other shapes (a free distance over three turnpoints with start and
// finish, triangles that must close within a limit and pay a penalty), so
// none seeks our optimum. The closest is a rule set made of its own bound and
// score functions with our objective: the triangle (with minSide 0.28 for
// the FAI triangle) and the out-and-return over two turnpoints at
// multiplier 0.5 (the free distance P1-P2), with the closing left unlimited
// and free of penalty and no rounding. Its search then proves the same
// optimum as ours, on its own earth model (FCC's flat-ellipsoid formula
// against our FAI sphere: legs differ by up to about 0.5 %), so the summary
// also prints both answers.
//
// At the end a table per flight and shape: the three times, the ratios
// reference / default and reference / exact, the default search's share of
// the proven optimum, and the two scorers' turnpoints.
#include <benchmark/benchmark.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "analysis/exact_flight_optimizer.h"
#include "analysis/exact_search.h"
#include "analysis/flight_optimizer.h"
#include "bench/bench_run.h"
#include "formats/igc_file.h"

namespace {

using namespace velantis;

const char* const kFlights[] = {
    "marcourt.igc", "tri.igc", "flat-xcontest-8.01.igc", "d3p.igc", "discontinuity.igc", "line.igc",
    "trifai-xcontest-189.65.igc", "trifai-xcontest-307.57.igc", "record_de_france.igc",
    "freeflight-xcontest-465.33.igc", "9crx3101.igc", "01lz1hq1.igc",
};
const TShapeKind kShapes[] = {TShapeKind::FreeDistance, TShapeKind::Triangle, TShapeKind::FaiTriangle,
                              TShapeKind::Quadrilateral};
// Milliseconds of solver runs the reference repeats within (at least two runs
// unless one run is longer).
constexpr int kReferenceBudgetMs = 2000;

std::string EnvOr(const char* name, const std::string& fallback) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : fallback;
}

std::string TestDataDir() { return EnvOr("VELANTIS_TESTDATA", VELANTIS_DEFAULT_TESTDATA); }
std::string ReferenceDir() {
  return EnvOr("VELANTIS_IGC_XC_SCORE_DIR", EnvOr("HOME", "/tmp") + "/.cache/velantis/igc-xc-score");
}
bool Exists(const std::string& path) {
  struct stat info {};
  return stat(path.c_str(), &info) == 0;
}

// The point cache of a flight, read once; empty with error when unreadable.
struct TFlight {
  TFlightPointCache cache;
  std::string error;
};
const TFlight& Flight(const std::string& name) {
  static std::map<std::string, std::unique_ptr<TFlight>> flights;
  auto& slot = flights[name];
  if (!slot) {
    slot = std::make_unique<TFlight>();
    TTrack track;
    const std::string path = TestDataDir() + "/igc/" + name;
    if (!Exists(path))
      slot->error = "test data not found: " + path;
    else if (ReadIgcFile(path, TNativeOptions{}, track, slot->error))
      slot->cache.Load(track);
  }
  return *slot;
}

struct TRow {
  size_t points = 0;
  double defaultMs = 0, exactMs = 0, referenceMs = 0, searchMs = 0, closingMs = 0;
  double defaultScore = 0, exactScore = 0, referenceKm = 0;
  std::string exactPoints, referencePoints;
};
std::map<std::pair<std::string, std::string>, TRow>& Rows() {
  static std::map<std::pair<std::string, std::string>, TRow> rows;
  return rows;
}

std::string Indices(const TOptimizationResult& result) {
  std::string text;
  for (const int index : result.Turnpoints()) {
    if (!text.empty()) text += ',';
    text += std::to_string(index);
  }
  return text;
}

enum class TMode { Default, Exact, ExactSearchOnly, ClosingOnly };

bool RunMode(TMode mode, const TFlightPointCache& cache, const TOptimizationShape& shape,
             const TOptimizationResult& exactFound, TOptimizationResult& result) {
  TFlightClosing closing;
  switch (mode) {
    case TMode::Default:
      return OptimizeFlight(cache, shape, nullptr, {}, result);
    case TMode::Exact:
      return OptimizeFlightExact(cache, shape, nullptr, {}, result);
    case TMode::ExactSearchOnly:
      return ExactSearch(cache, shape, nullptr, result);
    case TMode::ClosingOnly:
      result = exactFound;
      return CloseFlight(cache, exactFound.Turnpoints(), nullptr, closing);
  }
  return false;
}

void TimeSearch(benchmark::State& state, const std::string& flight, const TOptimizationShape& shape, TMode mode) {
  const TFlight& f = Flight(flight);
  if (!f.error.empty()) return state.SkipWithError(f.error.c_str());
  TOptimizationResult result, exactFound;
  if (mode == TMode::ClosingOnly) ExactSearch(f.cache, shape, nullptr, exactFound);
  double fastest = 1e300;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const bool done = RunMode(mode, f.cache, shape, exactFound, result);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.SetIterationTime(seconds);
    fastest = std::min(fastest, seconds);
    benchmark::DoNotOptimize(done);
  }
  TRow& row = Rows()[{flight, std::string(shape.name)}];
  row.points = f.cache.Count();
  const double ms = fastest * 1e3;
  switch (mode) {
    case TMode::Default:
      row.defaultMs = ms;
      row.defaultScore = result.score;
      break;
    case TMode::Exact:
      row.exactMs = ms;
      row.exactScore = result.score;
      row.exactPoints = Indices(result);
      break;
    case TMode::ExactSearchOnly:
      row.searchMs = ms;
      break;
    case TMode::ClosingOnly:
      row.closingMs = ms;
      break;
  }
  state.counters["score_km"] = result.score / 1000;
}

// One number after "key": in the runner's JSON line; 0 when absent.
double JsonNumber(const std::string& json, const std::string& key) {
  const size_t at = json.find("\"" + key + "\":");
  return at == std::string::npos ? 0 : std::atof(json.c_str() + at + key.size() + 3);
}
std::string JsonArray(const std::string& json, const std::string& key) {
  const size_t at = json.find("\"" + key + "\":[");
  if (at == std::string::npos) return {};
  const size_t from = at + key.size() + 4;
  return json.substr(from, json.find(']', from) - from);
}

void TimeReference(benchmark::State& state, const std::string& flight, const TOptimizationShape& shape) {
  const std::string file = TestDataDir() + "/igc/" + flight;
  if (!Exists(file)) return state.SkipWithError(("test data not found: " + file).c_str());
  if (!Exists(ReferenceDir() + "/node_modules/igc-xc-score"))
    return state.SkipWithError(("igc-xc-score not installed in " + ReferenceDir() +
                                " (run bench/install-igc-xc-score.sh)").c_str());
  const std::string command = "node '" + std::string(VELANTIS_BENCH_SOURCE_DIR) + "/igc_xc_score_run.mjs' '" +
                              ReferenceDir() + "' '" + file + "' " + std::string(shape.name) + " " +
                              std::to_string(kReferenceBudgetMs);
  std::string json;
  for (auto _ : state) {
    json.clear();
    std::FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return state.SkipWithError("node did not start");
    char buffer[4096];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) json.append(buffer, n);
    if (pclose(pipe) != 0 || json.find("\"ms\"") == std::string::npos)
      return state.SkipWithError(("igc-xc-score failed: " + json).c_str());
    state.SetIterationTime(JsonNumber(json, "ms") / 1e3);
  }
  TRow& row = Rows()[{flight, std::string(shape.name)}];
  row.referenceMs = JsonNumber(json, "ms");
  row.referenceKm = JsonNumber(json, "score_km");
  row.referencePoints = JsonArray(json, "turnpoints");
  state.counters["score_km"] = row.referenceKm;
}

void RegisterAll() {
  for (const char* flight : kFlights) {
    for (const TShapeKind kind : kShapes) {
      const TOptimizationShape& shape = ShapeForKind(kind);
      const std::string suffix = std::string(flight) + "/" + std::string(shape.name);
      const std::pair<const char*, TMode> modes[] = {{"BM_Optimize_Default/", TMode::Default},
                                                     {"BM_Optimize_Exact/", TMode::Exact},
                                                     {"BM_ExactSearch/", TMode::ExactSearchOnly},
                                                     {"BM_Closing/", TMode::ClosingOnly}};
      for (const auto& [prefix, mode] : modes) {
        benchmark::RegisterBenchmark((std::string(prefix) + suffix).c_str(),
                                     [flight, &shape, mode = mode](benchmark::State& s) {
                                       TimeSearch(s, flight, shape, mode);
                                     })
            ->Unit(benchmark::kMillisecond)->UseManualTime()->MinTime(0.2);
      }
      if (kind == TShapeKind::Quadrilateral) continue;
      benchmark::RegisterBenchmark(("BM_IgcXcScore/" + suffix).c_str(),
                                   [flight, &shape](benchmark::State& s) { TimeReference(s, flight, shape); })
          ->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);
    }
  }
}

void PrintSummary() {
  std::printf("\n%-31s %-8s %6s %9s %9s %9s %9s %9s %8s %8s %8s %9s  %-22s %-22s %s\n", "flight", "shape",
              "fixes", "def ms", "exact ms", "search ms", "close ms", "igc ms", "igc/def", "igc/exa", "igc/srch",
              "share", "exact turnpoints", "igc-xc-score turnpoints", "exact km / igc km");
  for (const auto& [key, row] : Rows()) {
    const double share = row.exactScore > 0 ? row.defaultScore / row.exactScore : 1.0;
    std::printf("%-31s %-8s %6zu %9.3f %9.3f %9.3f %9.3f ", key.first.c_str(), key.second.c_str(), row.points,
                row.defaultMs, row.exactMs, row.searchMs, row.closingMs);
    if (row.referenceMs > 0)
      std::printf("%9.3f %8.2f %8.2f %8.2f ", row.referenceMs, row.referenceMs / row.defaultMs,
                  row.referenceMs / row.exactMs, row.referenceMs / row.searchMs);
    else
      std::printf("%9s %8s %8s %8s ", "-", "-", "-", "-");
    std::printf("%8.3f%%  %-22s %-22s", 100 * share, row.exactPoints.c_str(), row.referencePoints.c_str());
    if (row.referenceKm > 0) std::printf(" %.3f / %.3f", row.exactScore / 1000, row.referenceKm);
    std::printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  RegisterAll();
  if (!bench::RunBenchmarks(argc, argv)) return 1;
  PrintSummary();
  return 0;
}
