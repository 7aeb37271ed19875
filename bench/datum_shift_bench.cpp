// Shifting 1,000,000 points between datums: Velantis against PROJ's
// proj_trans_generic on the same points, degrees in and degrees out, by the
// three-parameter shift (ED50 -> WGS 84) and through the BeTA2007 NTv2 grid
// (DHDN -> ETRS89).
#include <benchmark/benchmark.h>
#include <proj.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "geodesy/lista_datums.h"

namespace {

using velantis::TDatum;
using velantis::TLonLat;

constexpr size_t kPoints = 1'000'000;

std::string TestData(const std::string& relative) {
  const char* dir = std::getenv("VELANTIS_TESTDATA");
  return (std::filesystem::path(dir && *dir ? dir : VELANTIS_DEFAULT_TESTDATA) / relative).string();
}

std::vector<TLonLat> Points(double west, double east, double south, double north) {
  std::mt19937_64 random(20261123);
  std::uniform_real_distribution<double> lon(west, east), lat(south, north);
  std::vector<TLonLat> points(kPoints);
  for (auto& p : points) p = {lon(random), lat(random)};
  return points;
}

TDatum Datum(const char* name, double a, double invF, double dx, double dy, double dz) {
  TDatum d;
  d.name = name;
  d.a = a;
  d.invFlattening = invF;
  d.dX = dx, d.dY = dy, d.dZ = dz;
  return d;
}

// WGS 84 at 0, ED50 (TR8350.2 mean) at 1, DHDN (TR8350.2) at 2 with the
// BeTA2007 grid attached when the test data are there.
struct TFixture {
  int configured = 0;
  velantis::TListaDatums list{configured};
  TFixture() {
    list.Add(Datum("WGS 84", 6378137, 298.257223563, 0, 0, 0));
    list.Add(Datum("European 1950", 6378388, 297, -87, -98, -121));
    list.Add(Datum("DHDN90", 6377397.155, 299.1528128, 582, 105, 414));
    const auto gridDir = std::filesystem::path(TestData("ntv2/BETA2007.gsb")).parent_path();
    list.AttachGrids(gridDir.string());
  }
};

void RunVelantis(benchmark::State& state, std::vector<TLonLat> points, int from) {
  TFixture fixture;
  if (from == 2 && !fixture.list.Get(2)->grid) {
    state.SkipWithError("BETA2007.gsb not found: set VELANTIS_TESTDATA");
    return;
  }
  std::string message;
  for (auto _ : state) {
    std::vector<TLonLat> work = points;
    for (auto& p : work) fixture.list.Transforma_Grados_Datum(p, from, 0, message);
    benchmark::DoNotOptimize(work.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kPoints));
}

void RunProj(benchmark::State& state, std::vector<TLonLat> points, const std::string& operation) {
  PJ_CONTEXT* context = proj_context_create();
  const std::string pipeline = "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad +step " +
                               operation + " +step +proj=unitconvert +xy_in=rad +xy_out=deg";
  PJ* pj = proj_create(context, pipeline.c_str());
  if (!pj) {
    state.SkipWithError(("PROJ refused " + pipeline).c_str());
    proj_context_destroy(context);
    return;
  }
  for (auto _ : state) {
    std::vector<TLonLat> work = points;
    proj_trans_generic(pj, PJ_FWD, &work[0].lon, sizeof(TLonLat), kPoints, &work[0].lat,
                       sizeof(TLonLat), kPoints, nullptr, 0, 0, nullptr, 0, 0);
    benchmark::DoNotOptimize(work.data());
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kPoints));
  proj_destroy(pj);
  proj_context_destroy(context);
}

const std::vector<TLonLat>& EuropePoints() {
  static const auto points = Points(-9, 30, 36, 70);
  return points;
}

const std::vector<TLonLat>& GermanyPoints() {
  // Inside BeTA2007 (5.5..15.67 E, 47..55.3 N), away from its edges.
  static const auto points = Points(6, 15, 47.5, 55);
  return points;
}

void BM_ThreeParameter_Velantis(benchmark::State& state) { RunVelantis(state, EuropePoints(), 1); }
void BM_ThreeParameter_Proj(benchmark::State& state) {
  char operation[200];
  std::snprintf(operation, sizeof operation,
                "+proj=molodensky +a=6378388 +rf=297 +da=-251 +df=%.17g +dx=-87 +dy=-98 +dz=-121",
                1 / 298.257223563 - 1 / 297.0);
  RunProj(state, EuropePoints(), operation);
}
void BM_Ntv2_Velantis(benchmark::State& state) { RunVelantis(state, GermanyPoints(), 2); }
void BM_Ntv2_Proj(benchmark::State& state) {
  RunProj(state, GermanyPoints(), "+proj=hgridshift +grids=" + TestData("ntv2/BETA2007.gsb"));
}

BENCHMARK(BM_ThreeParameter_Velantis)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ThreeParameter_Proj)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ntv2_Velantis)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ntv2_Proj)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
