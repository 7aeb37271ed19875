// 1,000,000 pixels of an ED50 UTM-calibrated map (zone 31T, four calibration
// points, least squares) to latitude/longitude on WGS 84: by Velantis
// (TCalibratedMap::PixelToCoord: pixel transform, transverse Mercator
// inverse, Molodensky shift) and by PROJ's proj_trans_generic on the same
// chain as one pipeline (affine with the coefficients Velantis computed,
// inverse UTM, geocentric three-parameter shift).
//
// "agreement_mm" is the largest distance between the two answers: it is the
// Molodensky approximation's, not the calibration's. At the end the
// Velantis/PROJ time ratio is printed.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "bench/bench_run.h"
#include "maps/calibrated_map.h"

namespace {

using velantis::TLonLat;
using velantis::TPlanePoint;

constexpr size_t kPixels = 1'000'000;
constexpr double kImageWidth = 10000, kImageHeight = 8000;
// ED50 (International 1924) and its shift to WGS 84 (NIMA TR8350.2 EUR-M).
constexpr double kIntlA = 6378388, kIntlRf = 297;
constexpr double kEd50Dx = -87, kEd50Dy = -98, kEd50Dz = -121;
constexpr double kWgs84A = 6378137, kWgs84Rf = 298.257223563;
constexpr double kMetresPerDegree = 111320;

const std::vector<TPlanePoint>& Pixels() {
  static const std::vector<TPlanePoint> pixels = [] {
    std::mt19937_64 random(20261123);
    std::uniform_real_distribution<double> x(0, kImageWidth), y(0, kImageHeight);
    std::vector<TPlanePoint> p(kPixels);
    for (auto& pixel : p) pixel = {x(random), y(random)};
    return p;
  }();
  return pixels;
}

velantis::TDatum Datum(const char* name, double a, double rf, double dx, double dy, double dz) {
  velantis::TDatum datum;
  datum.name = name;
  datum.a = a;
  datum.invFlattening = rf;
  datum.dX = dx;
  datum.dY = dy;
  datum.dZ = dz;
  return datum;
}

// A 1:25,000 sheet near Barcelona scanned at 2.5 m a pixel, slightly rotated.
velantis::TMapCalibration Calibration() {
  velantis::TMapCalibration map;
  map.bitmap = "sheet.png";
  map.datum = "European 1950";
  map.coordinates = velantis::TCoordinateMode::Utm;
  map.projection.name = "UTM";
  for (const TPlanePoint pixel : {TPlanePoint{0, 0}, {kImageWidth, 0}, {kImageWidth, kImageHeight},
                                  {0, kImageHeight}}) {
    map.points.push_back({pixel.x, pixel.y, "31T", 420000 + 2.5 * pixel.x + 0.02 * pixel.y,
                          4600000 - 0.02 * pixel.x - 2.5 * pixel.y});
  }
  return map;
}

struct TBench {
  int configured = 0;
  velantis::TListaDatums datums{configured};
  velantis::TCalibratedMap map;
  bool open = false;
  TBench() {
    datums.Add(Datum("WGS 84", kWgs84A, kWgs84Rf, 0, 0, 0));
    datums.Add(Datum("European 1950", kIntlA, kIntlRf, kEd50Dx, kEd50Dy, kEd50Dz));
    std::string error;
    open = map.Open(Calibration(), datums, "", error);
  }
};

TBench& Bench() {
  static TBench bench;
  return bench;
}

std::vector<TLonLat>& ProjAnswer() {
  static std::vector<TLonLat> answer;
  return answer;
}
double& Seconds(bool ours) {
  static double seconds[2] = {0, 0};
  return seconds[ours ? 1 : 0];
}

template <class TBody>
void Measure(benchmark::State& state, bool ours, TBody body) {
  double total = 0;
  for (auto _ : state) {
    const double start = velantis::bench::ThreadCpuSeconds();
    body();
    total += velantis::bench::ThreadCpuSeconds() - start;
  }
  Seconds(ours) = total / static_cast<double>(state.iterations());
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * kPixels));
}

std::string ProjPipeline(const velantis::TPixelTransform& transform) {
  const auto& m = transform.Forward();
  char text[1024];
  std::snprintf(text, sizeof text,
                "+proj=pipeline +step +proj=affine +xoff=%.17g +s11=%.17g +s12=%.17g +yoff=%.17g "
                "+s21=%.17g +s22=%.17g +step +inv +proj=utm +zone=31 +a=%.17g +rf=%.17g "
                "+step +proj=push +v_3 +step +proj=cart +a=%.17g +rf=%.17g "
                "+step +proj=helmert +x=%g +y=%g +z=%g +step +inv +proj=cart +ellps=WGS84 "
                "+step +proj=pop +v_3 +step +proj=unitconvert +xy_in=rad +xy_out=deg",
                m[0][2], m[0][0], m[0][1], m[1][2], m[1][0], m[1][1], kIntlA, kIntlRf, kIntlA,
                kIntlRf, kEd50Dx, kEd50Dy, kEd50Dz);
  return text;
}

void BM_Calib_Proj(benchmark::State& state) {
  if (!Bench().open) return state.SkipWithError("the calibration did not open");
  PJ_CONTEXT* context = proj_context_create();
  PJ* pj = proj_create(context, ProjPipeline(Bench().map.Transform()).c_str());
  if (!pj) {
    proj_context_destroy(context);
    return state.SkipWithError("PROJ refused the pipeline");
  }
  const auto& pixels = Pixels();
  std::vector<TLonLat> out(kPixels);
  Measure(state, false, [&] {
    for (size_t i = 0; i < kPixels; ++i) out[i] = {pixels[i].x, pixels[i].y};
    proj_trans_generic(pj, PJ_FWD, &out[0].lon, sizeof(TLonLat), kPixels, &out[0].lat,
                       sizeof(TLonLat), kPixels, nullptr, 0, 0, nullptr, 0, 0);
    benchmark::DoNotOptimize(out.data());
  });
  ProjAnswer() = out;
  proj_destroy(pj);
  proj_context_destroy(context);
}

void BM_Calib_Velantis(benchmark::State& state) {
  TBench& bench = Bench();
  if (!bench.open) return state.SkipWithError("the calibration did not open");
  const auto& pixels = Pixels();
  std::vector<TLonLat> out(kPixels);
  bool ok = true;
  Measure(state, true, [&] {
    std::string error;
    for (size_t i = 0; i < kPixels; ++i) ok &= bench.map.PixelToCoord(pixels[i], 0, out[i], error);
    benchmark::DoNotOptimize(out.data());
  });
  if (!ok) return state.SkipWithError("a conversion failed");
  if (ProjAnswer().size() != kPixels) return;
  double worst = 0;
  for (size_t i = 0; i < kPixels; ++i) {
    const double north = (out[i].lat - ProjAnswer()[i].lat) * kMetresPerDegree;
    const double east = (out[i].lon - ProjAnswer()[i].lon) * kMetresPerDegree *
                        std::cos(out[i].lat * std::numbers::pi / 180);
    worst = std::max(worst, std::hypot(north, east));
  }
  state.counters["agreement_mm"] = worst * 1000;
}

// PROJ first: the Velantis run compares its coordinates with PROJ's.
BENCHMARK(BM_Calib_Proj)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Calib_Velantis)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  if (!velantis::bench::RunBenchmarks(argc, argv)) return 1;
  if (Seconds(true) > 0 && Seconds(false) > 0) {
    std::printf("velantis: %.0f pixels/s; %.2fx the speed of proj\n", kPixels / Seconds(true),
                Seconds(false) / Seconds(true));
  }
  return 0;
}
